// DEG and RAD: plain angles are converted; of other numbers only the unit in which their angles
// print is chosen.
#pragma once

#include "scalar/monadic.h"

namespace tessor {

/// Unit::of converts an angle; Unit::degrees says in which unit angles print from now on.
template <class Unit>
struct AngleUnit {
    static constexpr Rules rules{.counted = monadic_counted};

    static double apply(RealLike auto x) { return Unit::of(static_cast<double>(x)); }
    template <Hypercomplex T>
    static T apply(const T& x) {
        return x;
    }

    template <Number T, class Out>
    static int flops(const T&, const Out&) {
        return RealLike<T> ? 2 : 0;
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        Look result = passing(operand);
        if constexpr (RealLike<T>)
            result.form = form::number;
        else if constexpr (Unit::degrees)
            result.marks |= mark::degrees;
        else
            result.marks &= static_cast<std::uint16_t>(~mark::degrees);
        return result;
    }
};

} // namespace tessor
