#include "scalar/monadic.h"
#include "scalar/verbs.h"
#include "values/hypercomplex.h"

#include <cmath>

namespace tessor {

namespace {

struct Magnitude {
    static constexpr Rules rules{.counted = monadic_counted};

    // The most negative integer has no counterpart, and stays.
    static std::int32_t apply(std::int32_t x) {
        const auto bits = static_cast<std::uint32_t>(x);
        return static_cast<std::int32_t>(x < 0 ? 0u - bits : bits);
    }
    static double apply(double x) { return std::fabs(x); }
    template <Hypercomplex T>
    static double apply(const T& x) {
        return std::sqrt(norm<width<T>>(x.c));
    }

    template <Number T, class Out>
    static int flops(const T&, Out) {
        return RealLike<T> ? 0 : 2 * width<T>;
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        return {form::number, marks_without_r(operand.marks)};
    }
};

} // namespace

void magnitude(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Magnitude, magnitude>(top, cell, quads, mode);
}

} // namespace tessor
