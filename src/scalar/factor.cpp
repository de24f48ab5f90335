#include "scalar/factor.h"

#include <cmath>

namespace tessor {

namespace {

template <class T>
bool whole(T x) {
    return std::floor(x) == x;
}

template <class T>
bool odd(T x) {
    return std::fabs(std::fmod(x, T{2})) == 1;
}

// The factorial of x, from -1 to 1 without the ends, as a rational function around 0.5.
template <class T>
T rational_part(T x) {
    constexpr double numerator[] = {-0.7567002385928,  11.2029121505218,  5.2381653641874,
                                    -62.7275543027149, 1089.094443338165, 3132.869061049572,
                                    232.6453044878145};
    constexpr double denominator[] = {-10.3125739380508,  14.3853048828456,    201.4965441739693,
                                      -629.3447351061687, -1421.6453534644902, 4597.142440656356,
                                      7194.088849193596};
    const T z = x - T{0.5};
    T n = numerator[0];
    for (int i = 1; i < 7; ++i)
        n = n * z + numerator[i];
    T d = z + denominator[0];
    for (int i = 1; i < 7; ++i)
        d = d * z + denominator[i];
    return 0.886226925452758 + z * n / d;
}

// Below 0, where x isn't whole: the product up to the first x above 0 divides.
template <class T>
T factor_below(T x) {
    const T first = x;
    T p = 1;
    do {
        x += 1;
        p *= x;
        if (std::isinf(p))
            return odd(std::floor(-first)) ? T{-0.0} : T{0};
    } while (x < 0);
    return 1 / p * rational_part(x);
}

// Above 0: the product down to the last factor above 1.
template <class T>
T factor_above(T x) {
    if (x < 1)
        return rational_part(x);
    T p = x;
    T y = x - 1;
    for (; y > 1 && !std::isinf(p); y -= 1)
        p *= y;
    return y == 1 || std::isinf(p) ? p : p * rational_part(y);
}

// The quotient of b (b - 1) ... (a factors) by a!, factor by factor; for coefficients whose parts
// are too large. It takes the fewer of a and b - a factors, so that it is soon done or infinite.
long double binom_by_factors(double a, double b) {
    if (b < 0) { // a isn't
        const long double value = binom_by_factors(std::min(a, -b - 1), a - b - 1);
        return odd(a) ? -value : value;
    }
    const long double n = std::min(a, b - a);
    long double quotient = 1;
    for (long double i = 0; i < n && !std::isinf(quotient); i += 1)
        quotient = quotient * (b - i) / (i + 1);
    return quotient;
}

// b (b - 1) ... over a factors, by a!; a is whole and above 0, and not above b where that isn't
// negative.
long double binom_of_whole(double a, double b) {
    const long double divisor = factor<long double>(a).value;
    if (std::isinf(divisor))
        return binom_by_factors(a, b);
    long double product = 1;
    for (long double i = 0; i < a; i += 1)
        product *= b - i;
    return std::isinf(product) ? binom_by_factors(a, b) : product / divisor;
}

bool turns(double a, double b) {
    return whole(a) && whole(b) && a < b && b < 0;
}

} // namespace

template <class T>
Checked<T> factor(T x) {
    if (x == 0 || x == 1)
        return {1};
    if (x < 0)
        return whole(x) ? Checked<T>{T{-0.0}, 36} : Checked<T>{factor_below(x)};
    return {x > 0 ? factor_above(x) : x};
}
template Checked<double> factor(double x);
template Checked<long double> factor(long double x);

Checked<long double> binom(double a, double b) {
    if (turns(a, b)) {
        const Checked<long double> turned = binom(-(b + 1), -(a + 1));
        return {odd(b - a) ? -turned.value : turned.value, turned.number};
    }
    if (whole(a) && whole(b)) {
        if (a == b || a == 0)
            return {1};
        if (a < 0 || (b >= 0 && a > b))
            return {0};
        return {binom_of_whole(a, b)};
    }
    if (b < 0 && whole(b))
        return {0, 40};
    const Checked<long double> rest = factor<long double>(b - a);
    const long double divisor = rest.value * factor<long double>(a).value;
    return {factor<long double>(b).value / divisor, rest.number};
}

int binom_flops(double a, double b) {
    return turns(a, b) ? 6 : 0;
}

} // namespace tessor
