#include "scalar/monadic.h"
#include "scalar/verbs.h"
#include "values/hypercomplex.h"

#include <cmath>

namespace tessor {

namespace {

// The sign of a number on the real line, else a number of modulus 1.
struct Direction {
    static constexpr Rules rules{.counted = monadic_counted};

    static std::int32_t apply(RealLike auto x) { return (x > 0) - (x < 0); }
    template <Hypercomplex T>
    static T apply(T x) {
        const double modulus = std::sqrt(norm<width<T>>(x.c));
        for (double& component : x.c)
            component /= modulus;
        return x;
    }

    static int flops(std::int32_t, std::int32_t) { return 0; }
    static int flops(double, std::int32_t) { return 1; }
    template <Hypercomplex T>
    static int flops(const T&, const T&) {
        return 2 * width<T>;
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        Look result = passing(operand);
        if (!RealLike<T>)
            result.form = keep_cartesian(operand.form);
        return result;
    }
};

} // namespace

void direction(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Direction, direction>(top, cell, quads, mode);
}

} // namespace tessor
