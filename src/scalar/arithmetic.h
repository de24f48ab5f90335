// Products, quotients and floors of numbers, as the arithmetic verbs form them.
#pragma once

#include "scalar/value.h"
#include "values/hypercomplex.h"

#include <cmath>

namespace tessor {

/// The components of a number in a row.
template <Number T>
struct Row {
    explicit Row(const T& value) {
        for (int i = 0; i < width<T>; ++i)
            c[i] = component(value, i);
    }
    double c[width<T>];
};

/// The product, left times right.
template <Number L, Number R>
Wider<L, R> product_of(const L& l, const R& r) requires(Hypercomplex<L> || Hypercomplex<R>) {
    Wider<L, R> result;
    product<width<L>, width<R>>(result.c, Row<L>(l).c, Row<R>(r).c);
    return result;
}

template <Number L, Number R>
int flops_of_product(const L& l, const R& r) {
    return static_cast<int>(product_flops<width<L>, width<R>>(Row<L>(l).c, Row<R>(r).c));
}

// Reals. Nothing is left of a factor that meets 0, not even of an infinity; of two numbers that are
// none the quotient is 1.

inline double multiplied(double l, double r) {
    return (l == 0) | (r == 0) ? 0.0 : l * r;
}
inline double divided(double l, double r) {
    return (l != l) & (r != r) ? 1.0 : l / r;
}

// Two complex numbers: factors on the real line are multiplied and divided as such. A product is a
// sum twice: where loops are made vectors, g++ 12 fuses a difference beside a sum with its products
// (fmaddsub), whatever -ffp-contract says.

/// A component of a full complex product that isn't a number is infinite.
inline double settled(double x) {
    return x == x ? x : __builtin_inf();
}

inline Complex multiplied(const Complex& l, const Complex& r) {
    const double a = l.c[0], b = l.c[1], c = r.c[0], d = r.c[1];
    const bool left_real = b == 0;
    const bool right_real = d == 0;
    const double crossed = left_real ? (right_real ? 0.0 : a * d) : b * c;
    const bool shortened = left_real | right_real;
    return {{shortened ? a * c : settled(a * c + -b * d),
             shortened ? crossed : settled(a * d + b * c)}};
}

inline int multiplied_flops(const Complex& l, const Complex& r) {
    const bool left_real = l.c[1] == 0;
    const bool right_real = r.c[1] == 0;
    return left_real & right_real ? 1 : left_real | right_real ? 2 : 6;
}

inline Complex divided(const Complex& l, const Complex& r) {
    const double a = l.c[0], b = l.c[1], c = r.c[0], d = r.c[1];
    const bool left_real = b == 0;
    const bool right_real = d == 0;
    const double norm = c * c + d * d;
    const double first = left_real | right_real ? a * c : a * c + b * d;
    const double second = left_real ? -(a * d) : right_real ? b * c : b * c - a * d;
    const bool reals = left_real & right_real;
    return {{(reals ? a : first) / (reals ? c : norm), reals ? 0.0 : second / norm}};
}

inline int divided_flops(const Complex& l, const Complex& r) {
    const bool left_real = l.c[1] == 0;
    const bool right_real = r.c[1] == 0;
    return left_real & right_real ? 1 : left_real ? 7 : right_real ? 5 : 11;
}

// Any two numbers of which one is hypercomplex.

template <Number L, Number R>
Wider<L, R> multiplied(const L& l, const R& r) requires(Hypercomplex<L> || Hypercomplex<R>) {
    return product_of(l, r);
}
template <Number L, Number R>
int multiplied_flops(const L& l, const R& r) {
    return flops_of_product(l, r);
}

template <Hypercomplex T>
T conjugated(const T& x) {
    T result;
    conjugate<width<T>>(result.c, x.c);
    return result;
}

/// Left times the inverse of right.
template <Number L, Number R>
Wider<L, R> divided(const L& l, const R& r) requires(Hypercomplex<L> || Hypercomplex<R>) {
    if constexpr (RealLike<R>) {
        Wider<L, R> quotient;
        for (int i = 0; i < width<L>; ++i)
            quotient.c[i] = l.c[i] / static_cast<double>(r);
        return quotient;
    } else {
        Wider<L, R> quotient = product_of(l, conjugated(r));
        const double divisor = norm<width<R>>(r.c);
        for (double& component : quotient.c)
            component /= divisor;
        return quotient;
    }
}

template <Number L, Number R>
int divided_flops(const L& l, const R& r) {
    constexpr int left = width<L>;
    constexpr int right = width<R>;
    constexpr int around = right - 1 + 2 * right - 1 + std::max(left, right);
    if constexpr (right == 1)
        return left;
    else if constexpr (left == 4 && right == 4)
        return l.c[3] == 0 ? (r.c[3] == 0 ? 26 : 34) : r.c[3] == 0 ? 31 : 42;
    else
        return flops_of_product(l, r) + around;
}

/// Both components floored; where the fractions add up to 1 or more, the one with the larger
/// fraction goes up by 1, the first on a tie.
inline Complex complex_floor(const Complex& z) {
    Complex f{{std::floor(z.c[0]), std::floor(z.c[1])}};
    const double first = z.c[0] - f.c[0];
    const double second = z.c[1] - f.c[1];
    if (!(first + second < 1))
        f.c[second <= first ? 0 : 1] += 1;
    return f;
}

} // namespace tessor
