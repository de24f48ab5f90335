// Exponential and logarithm of quaternions and octonions: a plane through the real line, turned.
#pragma once

#include "scalar/exponential.h"

#include <numbers>

namespace tessor {

/// The root of the sum of the squares of all components but the first.
template <Hypercomplex T>
double size_beside(const T& x) {
    return std::sqrt(norm<width<T> - 1>(x.c + 1));
}

/// e to the power x; a real where x lies on the real line.
template <Hypercomplex T>
Either<T, double> hyper_exponential(const T& x) requires(width<T> > 2) {
    const double size = std::exp(x.c[0]);
    const double v = size_beside(x);
    if (v == 0)
        return {{}, size, false};
    const double sine = snap(std::sin(v));
    T result;
    result.c[0] = size * snap(std::cos(v));
    for (int i = 1; i < width<T>; ++i)
        result.c[i] = x.c[i] * size * sine / v;
    return {result, {}, true};
}

/// The natural logarithm; on the real line that of a real, complex where it is negative. Close to
/// the line the sine is 0, and the quotient an infinity or a NaN.
template <Hypercomplex T>
Either<T, Either<double, Complex>> hyper_logarithm(const T& x) requires(width<T> > 2) {
    const double r = std::sqrt(norm<width<T>>(x.c));
    const double log = std::log(r);
    const double v = size_beside(x);
    if (v == 0 && x.c[0] >= 0)
        return {{}, {log, {}, true}, false};
    if (v == 0 && x.c[0] < 0)
        return {{}, {{}, {{log, std::numbers::pi}}, false}, false};
    const double angle = angle_of(v, x.c[0]);
    const double sine = snap(std::sin(angle));
    T result;
    result.c[0] = log;
    for (int i = 1; i < width<T>; ++i)
        result.c[i] = x.c[i] * angle / (r * sine);
    return {result, {}, true};
}

} // namespace tessor
