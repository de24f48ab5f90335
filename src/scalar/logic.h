// Truth as the logic verbs see it: degrees from 0 to 1, and which elements are true.
#pragma once

#include "scalar/value.h"

namespace tessor {

/// A degree of truth: x limited to 0 to 1. A NaN counts as 1.
constexpr double clamp(double x) {
    const double floored = 0 > x ? 0.0 : x;
    return floored < 1 ? floored : 1.0;
}

/// The degree of every component.
template <Hypercomplex T>
constexpr T clamp(T x) {
    for (double& component : x.c)
        component = clamp(component);
    return x;
}

/// A character is true unless it is a control character or a space.
constexpr bool is_true(Character x) {
    return x.byte > 0x20;
}
constexpr bool is_true(std::int32_t x) {
    return x > 0;
}

/// Whether every component is exactly 0 or 1.
template <Number T>
constexpr bool is_certain(const T& x) {
    bool certain = true;
    for (int i = 0; i < width<T>; ++i)
        certain &= (component(x, i) == 0) | (component(x, i) == 1);
    return certain;
}

/// Whether every component lies between 0 and 1.
template <Number T>
constexpr bool is_degree(const T& x) {
    bool degree = true;
    for (int i = 0; i < width<T>; ++i)
        degree &= (component(x, i) >= 0) & (component(x, i) <= 1);
    return degree;
}

constexpr bool is_truth_form(std::uint16_t form) {
    return form == form::boolean || form == form::logical;
}

/// An integer that is a truth value: marks as of the element it came from, without the letter r.
constexpr Look truth_look(Look operand) {
    return {form::boolean, static_cast<std::uint16_t>(operand.marks & 0x3eff)};
}
/// A degree, in the same way.
constexpr Look degree_look(Look operand) {
    return {form::logical, static_cast<std::uint16_t>(operand.marks & 0x3eff)};
}

/// What BOOLEAN and LOGICAL make of elements whose form says how they are meant: characters in
/// binary are bytes, true unless 0, and truth values stay as they are.
struct AsMeant {
    static Truth apply(Character x) { return {x.byte != 0}; }
    template <class T>
    static T apply(T x) requires(Number<T> || ByteLike<T>) {
        return x;
    }

    template <class T, class Out>
    static int flops(const T&, const Out&) {
        return 0;
    }

    static Look look(Character, Look operand) { return truth_look(operand); }
    template <class T>
    static Look look(const T&, Look operand) {
        return {operand.form, static_cast<std::uint16_t>(operand.marks & passing_marks)};
    }
};

} // namespace tessor
