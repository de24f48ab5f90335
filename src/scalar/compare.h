// The real line on which comparisons put all numbers, and the tolerance of comparisons.
#pragma once

#include "scalar/value.h"
#include "values/hypercomplex.h"

#include <cmath>

namespace tessor {

inline constexpr double default_tolerance = 1e-15;
inline constexpr int tolerance_quad = 6; ///< place of #CT in the system values

/// The value of #CT: an integer counts as a real, anything else that isn't real as the default.
double general_tolerance(const Space& ct);

inline double comparison_tolerance(const Space* system_values) {
    const Space& space = system_values[tolerance_quad];
    if (!(space.type & ISINPLACE) && space.rank == 0 && space.data_pointer
        && storage_of(space.data_pointer) == Storage::elements) {
        const auto* element = static_cast<const DataElement*>(space.data_pointer);
        if (element->tag == tag::real)
            return element->real;
    }
    return general_tolerance(space);
}

/// The sign of the first component that isn't 0; a NaN counts as positive. Complex numbers: a NaN
/// in front gives -1.
template <Number T>
double sign_of(const T& x) {
    if constexpr (RealLike<T>) {
        return x > 0 ? 1 : x < 0 ? -1 : 0;
    } else if constexpr (std::same_as<T, Complex>) {
        const double a = x.c[0];
        const double b = x.c[1];
        const double sign = (a > 0) | ((a == 0) & (b > 0)) ? 1.0 : -1.0;
        return (a == 0) & (b == 0) ? 0.0 : sign;
    } else {
        double flops = 0;
        return width<T> == 4 ? csgnquat(x.c, flops) : csgnocto(x.c, flops);
    }
}

/// Where a number stands on the real line: its magnitude with the sign above.
template <Number T>
double signed_magnitude(const T& x) {
    if constexpr (RealLike<T>)
        return static_cast<double>(x);
    else
        return sign_of(x) * std::sqrt(norm<width<T>>(x.c));
}

/// Flops of a signed magnitude: sign and root.
template <Number T>
int magnitude_flops(const T& x) {
    if constexpr (RealLike<T>) {
        return 0;
    } else if constexpr (std::same_as<T, Complex>) {
        return 6;
    } else {
        double flops = 2 * width<T>;
        static_cast<void>(width<T> == 4 ? csgnquat(x.c, flops) : csgnocto(x.c, flops));
        return static_cast<int>(flops);
    }
}

/// Flops of a comparison of two numbers that go to the real line; integers don't.
template <Number L, Number R>
int comparison_flops(const L& l, const R& r) {
    if constexpr (std::same_as<L, std::int32_t> && std::same_as<R, std::int32_t>)
        return 0;
    else
        return 3 + magnitude_flops(l) + magnitude_flops(r);
}
inline int comparison_flops(Character, Character) {
    return 0;
}

/// Components that are no distance apart, and identical: equal, both NaN, or infinities that don't
/// ascend.
inline bool no_distance(double x, double y) {
    constexpr double infinity = __builtin_inf();
    return (x == y) | ((x != x) & (y != y)) | ((x == infinity) & (y == -infinity));
}

inline double first_distance(double x, double y) {
    return no_distance(x, y) ? 0.0 : std::fabs(x - y);
}

/// The distance by which EQUIVALENT and NOTEQUIVALENT decide.
template <Number L, Number R>
double distance(const L& l, const R& r) {
    if constexpr (RealLike<L> && RealLike<R>) {
        return first_distance(static_cast<double>(l), static_cast<double>(r));
    } else {
        if (zero_from(l, 1) && zero_from(r, 1))
            return first_distance(component(l, 0), component(r, 0));
        if constexpr (std::same_as<L, Complex> && std::same_as<R, Complex>) {
            if (std::isnan(l.c[0]) && std::isnan(r.c[0]))
                return std::isnan(l.c[1]) ? 0.0 : std::fabs(l.c[1] - r.c[1]);
            if (std::isnan(l.c[1]) && std::isnan(r.c[1]))
                return std::fabs(l.c[0] - r.c[0]);
        }
        return std::fabs(signed_magnitude(l) - signed_magnitude(r));
    }
}

/// Exact identity of two numbers.
template <Number L, Number R>
bool identical_numbers(const L& l, const R& r) {
    constexpr bool reals = std::same_as<L, double> && std::same_as<R, double>;
    if constexpr ((RealLike<L> || RealLike<R>)&&!reals) {
        return (component(l, 0) == component(r, 0)) & zero_from(l, 1) & zero_from(r, 1);
    } else {
        bool same = true;
        for (int i = 0; i < width<Wider<L, R>>; ++i)
            same &= no_distance(component(l, i), component(r, i));
        return same;
    }
}

template <Number L, Number R>
constexpr int identity_flops(const L&, const R&) {
    if constexpr (std::same_as<L, std::int32_t> && std::same_as<R, std::int32_t>)
        return 0;
    else
        return width<Wider<L, R>>;
}
constexpr int identity_flops(Character, Character) {
    return 0;
}

} // namespace tessor
