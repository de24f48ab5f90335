// POLAR and CARTESIAN: a plain number has its components converted; any other only changes the
// form in which it prints.
#pragma once

#include "scalar/monadic.h"
#include "values/hypercomplex.h"

namespace tessor {

/// Form::bit is the form to get; Form::convert<N> makes components of plain ones.
template <class Form>
struct Relabel {
    static constexpr Rules rules{.counted = monadic_counted};

    struct Other {
        template <Number T>
        static T apply(T x) {
            double flops = 0;
            if constexpr (Hypercomplex<T>)
                Form::template convert<width<T>>(x.c, x.c, flops);
            return x;
        }
        template <Number T>
        static int flops(T x, const T&) {
            double flops = 0;
            if constexpr (Hypercomplex<T>)
                Form::template convert<width<T>>(x.c, x.c, flops);
            return static_cast<int>(flops);
        }
        template <Number T>
        static Look look(const T&, Look operand) {
            return {form::number | Form::bit, passing(operand).marks};
        }
    };
    static bool other(std::int32_t tag, std::uint16_t form) {
        return tag >= tag::complex && form == form::number;
    }

    template <Number T>
    static T apply(const T& x) {
        return x;
    }
    template <Number T>
    static int flops(const T&, const T&) {
        return 0;
    }
    template <Number T>
    static Look look(const T&, Look operand) {
        Look result = passing(operand);
        if (!RealLike<T>)
            result.form = Form::bit;
        return result;
    }
};

} // namespace tessor
