#include "scalar/compare.h"
#include "scalar/monadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Signum {
    static constexpr Rules rules{.counted = monadic_counted};

    template <Number T>
    static std::int32_t apply(const T& x) {
        if constexpr (RealLike<T>)
            return (x > 0) - (x < 0);
        else
            return static_cast<std::int32_t>(sign_of(x));
    }

    static int flops(std::int32_t, std::int32_t) { return 0; }
    static int flops(double, std::int32_t) { return 1; }
    template <Hypercomplex T>
    static int flops(const T& x, std::int32_t) {
        double flops = 3;
        if constexpr (2 < width<T>) {
            flops = 0;
            width<T> == 4 ? csgnquat(x.c, flops) : csgnocto(x.c, flops);
        }
        return static_cast<int>(flops);
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        return {form::number, marks_without_r(operand.marks)};
    }
};

} // namespace

void signum(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Signum, signum>(top, cell, quads, mode);
}

} // namespace tessor
