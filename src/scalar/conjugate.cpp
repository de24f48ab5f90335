#include "scalar/arithmetic.h"
#include "scalar/monadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Conjugate {
    static constexpr Rules rules{.counted = monadic_counted};

    template <Number T>
    static T apply(const T& x) {
        if constexpr (RealLike<T>)
            return x;
        else
            return conjugated(x);
    }

    template <Number T>
    static int flops(const T&, const T&) {
        return 0;
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        Look result = passing(operand);
        if (!RealLike<T> && !(operand.form & (form::cartesian | form::polar)))
            result.form = form::number;
        return result;
    }
};

} // namespace

void conjugate(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Conjugate, conjugate>(top, cell, quads, mode);
}

} // namespace tessor
