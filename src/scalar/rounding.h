// What FLOOR and CEILING share: they are one verb with two directions.
#pragma once

#include "scalar/arithmetic.h"
#include "scalar/monadic.h"
#include "scalar/tolerance.h"

namespace tessor {

/// Way::whole rounds a real, Way::complex a complex number; Way::step is what the component that is
/// furthest off is moved back by.
template <class Way>
struct Rounding {
    static constexpr Rules rules{.counted = monadic_counted};
    double tolerance = default_tolerance;

    static std::int32_t apply(std::int32_t x) { return x; }
    static Promoted apply(double x) { return promoted(Way::whole(x)); }
    static Complex apply(const Complex& z) { return Way::complex(z); }

    // Where the fractions add up to 1 within the tolerance, the largest of them, the first on a
    // tie, counts as a whole.
    template <Hypercomplex T>
    T apply(const T& x) const requires(width<T> > 2) {
        T result;
        double sum = 0;
        double largest = -1;
        int at = 0;
        for (int i = 0; i < width<T>; ++i) {
            result.c[i] = Way::whole(x.c[i]);
            const double off = std::fabs(x.c[i] - result.c[i]);
            sum += off;
            if (off > largest) {
                largest = off;
                at = i;
            }
        }
        if (sum >= 1 - tolerance)
            result.c[at] += Way::step;
        return result;
    }

    template <Number T, class Out>
    static constexpr int flops(const T&, const Out&) {
        return 0;
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        return passing(operand);
    }
};

} // namespace tessor
