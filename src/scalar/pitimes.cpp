#include "scalar/monadic.h"
#include "scalar/verbs.h"

#include <numbers>

namespace tessor {

namespace {

struct PiTimes {
    static constexpr Rules rules{.counted = monadic_counted};

    static double apply(RealLike auto x) { return static_cast<double>(x) * std::numbers::pi; }
    template <Hypercomplex T>
    static T apply(T x) {
        for (double& component : x.c)
            component *= std::numbers::pi;
        return x;
    }

    template <Number T, class Out>
    static int flops(const T&, const Out&) {
        return width<T>;
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        return passing(operand);
    }
};

} // namespace

void pitimes(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<PiTimes, pitimes>(top, cell, quads, mode);
}

} // namespace tessor
