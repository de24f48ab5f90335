#include "scalar/monadic.h"
#include "scalar/verbs.h"
#include "values/hypercomplex.h"

namespace tessor {

namespace {

struct Reciprocal {
    static constexpr Rules rules{.counted = monadic_counted};

    static double apply(RealLike auto x) { return 1.0 / static_cast<double>(x); }
    template <Hypercomplex T>
    static T apply(const T& x) {
        T result;
        inverse<width<T>>(result.c, x.c);
        return result;
    }

    static int flops(RealLike auto, double) { return 0; }
    template <Hypercomplex T>
    static int flops(const T&, const T&) {
        return 2 * width<T> - 1;
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        if constexpr (width<T> <= 2)
            return {operand.form, marks_without_r(operand.marks)};
        else
            return {keep_cartesian(operand.form), passing(operand).marks};
    }
};

} // namespace

void reciprocal(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Reciprocal, reciprocal>(top, cell, quads, mode);
}

} // namespace tessor
