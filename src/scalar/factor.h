// Factorials, binomial coefficients and the gamma function: the functions behind FACTORIAL and
// BINOMIAL. None raises anything; what went wrong is the number in the result.
#pragma once

#include "scalar/value.h"

namespace tessor {

/// A value with the number to report; 0 for good.
template <class T>
struct Checked {
    T value;
    int number = 0;
};

/// The factorial of a real, computed in T (double or long double): a running product down or up to
/// between -1 and 1, and a rational function there. At a negative whole number -0.0 and 36.
template <class T>
Checked<T> factor(T x);
extern template Checked<double> factor(double x);
extern template Checked<long double> factor(long double x);

/// The binomial coefficient b! / (a! (b - a)!) of reals: a out of b. Reports 36 where b - a is a
/// negative whole number but for those that whole operands give a value, and 40 where b is one and
/// a isn't whole.
Checked<long double> binom(double a, double b);

/// Flops of a binom.
int binom_flops(double a, double b);

/// The real road of gammax: a number whose imaginary part is below the tolerance.
inline bool counts_as_real(const Complex& z, double tolerance) {
    return !(tolerance <= (z.c[1] < 0 ? -z.c[1] : z.c[1]));
}

/// Away from the real axis, the gamma function of z: reflection, a shift to the right, and
/// Stirling's series. On it, the factorial of the real part. Reports 130 near a pole, and 36 as
/// factor.
Checked<Complex> gammax(const Complex& z, double tolerance);

/// Flops of a gammax.
inline int gammax_flops(const Complex& z, double tolerance) {
    return counts_as_real(z, tolerance) ? 0 : 2;
}

/// The complex binomial: gammax(b) / (gammax(a) gammax(b - a)), and 0 where that divides by 0. Only
/// what gammax(b) reports counts.
Checked<Complex> binom_complex(const Complex& a, const Complex& b, double tolerance);

} // namespace tessor
