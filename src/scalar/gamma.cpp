#include "scalar/factor.h"

#include <algorithm>
#include <cmath>

#include "values/hypercomplex.h"

namespace tessor {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double two_pi = 6.283185307179586;
constexpr double half_log_two_pi = 0.9189385332046728;
constexpr double log_two_pi = 1.8378770664093456;

Complex times(const Complex& l, const Complex& r) {
    return {{l.c[0] * r.c[0] - l.c[1] * r.c[1], l.c[0] * r.c[1] + l.c[1] * r.c[0]}};
}

Complex quotient(const Complex& l, const Complex& r) {
    const double n = norm<2>(r.c);
    return {{(l.c[0] * r.c[0] + l.c[1] * r.c[1]) / n, (l.c[1] * r.c[0] - l.c[0] * r.c[1]) / n}};
}

Complex exponential_turn(double logarithm, double angle) {
    const double modulus = std::exp(logarithm);
    return {{modulus * std::cos(angle), modulus * std::sin(angle)}};
}

// e to the power q and 1 less that, for q of 0 or below, where the second would lose digits.
struct Decay {
    double rest;
    double lost;
};

Decay decay_of(double q) {
    if (q >= -0.1054) {
        const double s = q * q;
        const double d = (20.0012308218942 * s + 840.0738529605262) * -q;
        const double lost = 2 * d / (d + (s + 180.01477047052043) * s + 1680.1477059210524);
        return {1 - lost, lost};
    }
    if (q > -39.15) {
        const double rest = std::exp(q);
        return {rest, 1 - rest};
    }
    return {0, 1};
}

// Left of 0: gamma of z from that of 1 - z. The sine of pi z is taken apart so that nothing of it
// is lost far from the axis.
struct Reflection {
    double logarithm;
    double angle;
    Complex divisor;
    bool near_pole;
};

Reflection reflection_of(double x, double c, double tolerance) {
    const Decay decay = decay_of(-two_pi * c);
    const double g = x - std::trunc(x - 0.5);
    const double sine = std::sin(pi * g);
    const Complex divisor{
        {2 * sine * sine * decay.rest + decay.lost, std::sin(two_pi * g) * decay.rest}};
    const double distance =
        divisor.c[0] + std::fabs(divisor.c[1]) - two_pi * decay.rest * tolerance;
    return {log_two_pi - c * pi, (0.5 - x) * pi, divisor, distance <= 0 || norm<2>(divisor.c) == 0};
}

// A place far enough to the right for the series, and the product of (z + j) / w over the n steps
// from z to there.
struct Shift {
    double w;
    double norm;
    Complex product{{1, 0}};
    bool shifted = false;
    bool near_pole = false;
};

Shift shift_of(double x, double c, double tolerance) {
    const double bound = std::max(0.1, std::min(10.0, 14.142 - c));
    if (bound - x <= 0)
        return {x, c * c + x * x};
    const double steps = std::trunc(bound - x) + 1;
    Shift shift;
    shift.shifted = true;
    shift.w = x + steps;
    shift.norm = shift.w * shift.w + c * c;
    const double u = shift.w / shift.norm;
    const double v = -c / shift.norm;
    shift.product = {{1 - u, -v}};
    // Where z is small the first steps are counted from z, or their factors would cancel.
    const double from_z = std::trunc(6 - 0.6 * c - x);
    double su = 0;
    double sv = 0;
    for (double j = 0; j < from_z; j += 1) {
        const Complex factor{
            {(c * c + shift.w * x) / shift.norm + su, steps * c / shift.norm + sv}};
        su += u;
        sv += v;
        shift.product = times(shift.product, factor);
    }
    su = u;
    sv = v;
    for (double j = std::max(from_z, 0.0) + 1; j < steps; j += 1) {
        su += u;
        sv += v;
        shift.product = times(shift.product, {{1 - su, -sv}});
    }
    shift.near_pole = norm<2>(shift.product.c) == 0 || (from_z > 0 && x + c - tolerance <= 0);
    return shift;
}

// What Stirling's formula adds to (w - 0.5) ln w - w, for w + ci with this norm.
Complex stirling_sum(double w, double c, double norm_of_w) {
    constexpr double coefficients[] = {0.00641025641025641,   -0.0019175269175269176,
                                       0.0008417508417508417, -0.0005952380952380953,
                                       0.0007936507936507937, -0.002777777777777778,
                                       0.08333333333333333};
    if (norm_of_w > 1e18)
        return {{half_log_two_pi, 0}};
    const Complex h{{w / norm_of_w, -(c / norm_of_w)}};
    const Complex square = times(h, h);
    Complex sum{{coefficients[0], 0}};
    for (int i = 1; i < 7; ++i) {
        sum = times(sum, square);
        sum.c[0] += coefficients[i];
    }
    sum = times(h, sum);
    sum.c[0] += half_log_two_pi;
    return sum;
}

// Gamma of w + ci by its logarithm, with the powers of w that the shift has used up taken out.
Complex log_gamma(double x, double c, const Shift& shift) {
    const double half_log = std::log(shift.norm) / 2;
    const double angle = angle_of(c, shift.w);
    const Complex series = stirling_sum(shift.w, c, shift.norm);
    return {{(x - 0.5) * half_log - c * angle + series.c[0] - shift.w,
             angle * (x - 0.5) + half_log * c + series.c[1] - c}};
}

constexpr Checked<Complex> too_close{{{0, 0}}, 130};

// c is above 0, or where nothing is tolerated 0.
Checked<Complex> gamma_right(double x, double c, double tolerance) {
    const Shift shift = shift_of(x, c, tolerance);
    if (shift.near_pole)
        return too_close;
    const Complex logarithm = log_gamma(x, c, shift);
    const Complex value = exponential_turn(logarithm.c[0], logarithm.c[1]);
    return {shift.shifted ? quotient(value, shift.product) : value};
}

Checked<Complex> gamma_left(double x, double c, double tolerance) {
    const Reflection reflection = reflection_of(x, c, tolerance);
    if (reflection.near_pole)
        return too_close;
    const double mirrored = 1 - x;
    const Shift shift = shift_of(mirrored, c, tolerance);
    if (shift.near_pole)
        return too_close;
    const Complex logarithm = log_gamma(mirrored, c, shift);
    const Complex value = quotient(
        exponential_turn(reflection.logarithm - logarithm.c[0], reflection.angle - logarithm.c[1]),
        reflection.divisor);
    return {shift.shifted ? times(value, shift.product) : value};
}

} // namespace

Checked<Complex> gammax(const Complex& z, double tolerance) {
    const double x = z.c[0];
    const double y = z.c[1];
    if (counts_as_real(z, tolerance)) {
        const Checked<double> real = factor<double>(x);
        return {{{real.value, 0}}, real.number};
    }
    const double c = std::fabs(y);
    const bool left = x < 0;
    Checked<Complex> result = left ? gamma_left(x, c, tolerance) : gamma_right(x, c, tolerance);
    if (left ? y >= 0 : y < 0)
        result.value.c[1] = -result.value.c[1];
    return result;
}

Checked<Complex> binom_complex(const Complex& a, const Complex& b, double tolerance) {
    const Complex rest{{b.c[0] - a.c[0], b.c[1] - a.c[1]}};
    const Complex divisor = times(gammax(a, tolerance).value, gammax(rest, tolerance).value);
    const Checked<Complex> over = gammax(b, tolerance);
    if (norm<2>(divisor.c) == 0)
        return {{{0, 0}}, over.number};
    return {quotient(over.value, divisor), over.number};
}

} // namespace tessor
