// The functions of CIRCULAR: of a real number, and of a complex one with its count of flops.
//
// A complex function is made of those of the real parts, as the textbooks have it, not of the C
// library's complex functions: results on the branch cuts are these formulas'.
#pragma once

#include "scalar/arithmetic.h"
#include "scalar/exponential.h"

namespace tessor {

inline constexpr int first_function = -7;
inline constexpr int last_function = 7;

constexpr bool is_function_number(std::int32_t number) {
    return first_function <= number && number <= last_function;
}

/// A function of which results near zero are taken as 0.
template <int F>
inline constexpr bool snapped = F == 1 || F == 2;

/// Function F of a real number, not snapped yet: outside its domain a NaN.
template <int F>
inline double library_function(double x) {
    if constexpr (F == 0)
        return std::sqrt(1 - x * x);
    else if constexpr (F == 1)
        return std::sin(x);
    else if constexpr (F == 2)
        return std::cos(x);
    else if constexpr (F == 3)
        return std::tan(x);
    else if constexpr (F == 4)
        return std::sqrt(x * x + 1);
    else if constexpr (F == 5)
        return std::sinh(x);
    else if constexpr (F == 6)
        return std::cosh(x);
    else if constexpr (F == 7)
        return std::tanh(x);
    else if constexpr (F == -1)
        return std::asin(x);
    else if constexpr (F == -2)
        return std::acos(x);
    else if constexpr (F == -3)
        return std::atan(x);
    else if constexpr (F == -4)
        return std::sqrt(x * x - 1);
    else if constexpr (F == -5)
        return std::asinh(x);
    else if constexpr (F == -6)
        return std::acosh(x);
    else
        return std::atanh(x);
}

template <int F>
inline double real_function(double x) {
    return snapped<F> ? snap(library_function<F>(x)) : library_function<F>(x);
}

template <int F>
inline constexpr int real_function_flops = snapped<F> ? 1 : 0;

/// The complex square root.
inline Complex root_of(const Complex& w, int& flops) {
    const double p = w.c[0], q = w.c[1];
    if (near_zero(q)) {
        flops += p <= 0 ? 4 : 3;
        return p <= 0 ? Complex{{0.0, std::sqrt(-p)}} : Complex{{std::sqrt(p), 0.0}};
    }
    if (near_zero(p)) {
        flops += 5;
        const double s = std::sqrt((q <= 0 ? -q : q) / 2);
        return {{s, q <= 0 ? -s : s}};
    }
    flops += 14;
    return turned(std::sqrt(std::sqrt(p * p + q * q)), std::atan2(q, p) / 2);
}

/// The square; a part that isn't a number, an infinity less an infinity, is infinite.
inline Complex square_of(const Complex& z, int& flops) {
    const double a = z.c[0], b = z.c[1];
    flops += b == 0 ? 1 : 6;
    if (b == 0)
        return {{a * a, 0.0}};
    return {{settled(a * a - b * b), settled(2 * a * b)}};
}

/// sign times the square plus `more`, under the root.
inline Complex root_of_square(const Complex& z, double sign, double more, int& flops) {
    const Complex square = square_of(z, flops);
    return root_of({{sign * square.c[0] + more, sign * square.c[1]}}, flops);
}

inline Complex sum_of(const Complex& l, const Complex& r) {
    return {{l.c[0] + r.c[0], l.c[1] + r.c[1]}};
}

inline Complex times_i(const Complex& z) {
    return {{-z.c[1], z.c[0]}};
}

/// The logarithm divided by i.
inline Complex turned_logarithm(const Complex& t) {
    const Complex l = logarithm_of(t);
    return {{l.c[1], -l.c[0]}};
}

/// Of the two values of an inverse cosine the one on the right.
inline Complex right_hand(const Complex& z) {
    if (z.c[0] < 0)
        return {{-z.c[0], -z.c[1]}};
    if (near_zero(z.c[0]))
        return {{0.0, std::fabs(z.c[1])}};
    return z;
}

inline Complex sine_of(const Complex& z) {
    const double a = z.c[0], b = z.c[1];
    return {{std::sin(a) * std::cosh(b), std::cos(a) * std::sinh(b)}};
}
inline Complex cosine_of(const Complex& z) {
    const double a = z.c[0], b = z.c[1];
    return {{std::cos(a) * std::cosh(b), -(std::sin(a) * std::sinh(b))}};
}
inline Complex hyperbolic_sine_of(const Complex& z) {
    const double a = z.c[0], b = z.c[1];
    return {{std::sinh(a) * std::cos(b), std::cosh(a) * std::sin(b)}};
}
inline Complex hyperbolic_cosine_of(const Complex& z) {
    const double a = z.c[0], b = z.c[1];
    return {{std::cosh(a) * std::cos(b), std::sinh(a) * std::sin(b)}};
}

/// A tangent; `shared` are the flops of sine and cosine together.
inline Complex tangent_of(const Complex& sine, const Complex& cosine, int shared, int& flops) {
    flops += shared + divided_flops(sine, cosine);
    return divided(sine, cosine);
}

/// The root of the square less 1, as a product.
inline Complex root_of_factors(const Complex& z, int& flops) {
    const Complex above{{z.c[0] + 1, z.c[1]}};
    const Complex below{{z.c[0] - 1, z.c[1]}};
    if (near_zero(norm<2>(above.c)))
        return {{0.0, 0.0}};
    return multiplied(above, root_of(divided(below, above), flops));
}

inline Complex inverse_tangent_of(const Complex& z, int& flops) {
    const Complex above{{1 - z.c[1], z.c[0]}};
    const Complex below{{1 + z.c[1], -z.c[0]}};
    return turned_logarithm(root_of(divided(above, below), flops));
}

inline Complex inverse_hyperbolic_tangent_of(const Complex& z) {
    const Complex above = logarithm_of({{1 + z.c[0], z.c[1]}});
    const Complex below = logarithm_of({{1 - z.c[0], -z.c[1]}});
    return {{(above.c[0] - below.c[0]) * 0.5, (above.c[1] - below.c[1]) * 0.5}};
}

/// Flops of a complex function that are the same for every operand.
template <int F>
inline constexpr int fixed_flops = F == 1 || F == 5 || F == 6 ? 6
                                   : F == 2                   ? 7
                                   : F == -7                  ? 20
                                   : F == 0                   ? 2
                                   : F == 4                   ? 1
                                                              : 0;

/// Function F of a complex number. Compiled once, so that even the signs of NaNs are the same for
/// all who call it.
template <int F>
[[gnu::noinline]] Complex complex_function(const Complex& z, int& flops) {
    flops += fixed_flops<F>;
    if constexpr (F == 0)
        return root_of_square(z, -1, 1, flops);
    else if constexpr (F == 1)
        return sine_of(z);
    else if constexpr (F == 2)
        return cosine_of(z);
    else if constexpr (F == 3)
        return tangent_of(sine_of(z), cosine_of(z), 9, flops);
    else if constexpr (F == 4)
        return root_of_square(z, 1, 1, flops);
    else if constexpr (F == 5)
        return hyperbolic_sine_of(z);
    else if constexpr (F == 6)
        return hyperbolic_cosine_of(z);
    else if constexpr (F == 7)
        return tangent_of(hyperbolic_sine_of(z), hyperbolic_cosine_of(z), 8, flops);
    else if constexpr (F == -1)
        return turned_logarithm(sum_of(root_of_square(z, -1, 1, flops), times_i(z)));
    else if constexpr (F == -2)
        return right_hand(turned_logarithm(sum_of(z, root_of_square(z, 1, -1, flops))));
    else if constexpr (F == -3)
        return inverse_tangent_of(z, flops);
    else if constexpr (F == -4)
        return root_of_factors(z, flops);
    else if constexpr (F == -5)
        return logarithm_of(sum_of(z, root_of_square(z, 1, 1, flops)));
    else if constexpr (F == -6)
        return right_hand(logarithm_of(sum_of(z, root_of_square(z, 1, -1, flops))));
    else
        return inverse_hyperbolic_tangent_of(z);
}

} // namespace tessor
