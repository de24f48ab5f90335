// EQUIVALENT and NOTEQUIVALENT: a truth value for integers and characters, else a degree of truth
// by the distance of two numbers.
#pragma once

#include "scalar/dyadic.h"

#include <bit>

namespace tessor {

/// Meaning::truth is the truth value of equality; Meaning::degree is the degree of truth at a
/// distance; Meaning::widest is the widest number that the verb takes.
template <class Meaning>
struct Equivalence {
    static constexpr Rules rules{.refused = ISADDRESS, .restricted = Meaning::restricted};
    double tolerance = default_tolerance;

    static Truth apply(Character l, Character r) { return {(l.byte == r.byte) == Meaning::truth}; }
    static Truth apply(std::int32_t l, std::int32_t r) { return {(l == r) == Meaning::truth}; }
    static Bit apply(Bit l, Bit r) { return {(l.value == r.value) == Meaning::truth}; }
    Degree apply(RealLike auto l, RealLike auto r) const {
        const auto x = static_cast<double>(l);
        const auto y = static_cast<double>(r);
        const double apart = std::fabs(x - y);
        const bool equal = (apart == 0) & (tolerance > 0);
        return {equal == Meaning::truth, inexact(apart),
                Meaning::degree(first_distance(x, y), tolerance)};
    }
    template <Number L, Number R>
    Degree apply(const L& l, const R& r) const
        requires(width<Wider<L, R>> > 1 && width<Wider<L, R>> <= Meaning::widest) {
        return degree(Meaning::degree(distance(l, r), tolerance));
    }

    // Negative if the distance is not 0 but below the tolerance, or is no finite number. Distances
    // aren't negative, so they have the order of their bits.
    std::int64_t inexact(double distance) const {
        const auto apart = std::bit_cast<std::int64_t>(distance);
        const auto near = std::bit_cast<std::int64_t>(tolerance > 0 ? tolerance : 0.0);
        constexpr auto infinity = std::bit_cast<std::int64_t>(__builtin_inf());
        return ((apart - near) & -apart) | (infinity - 1 - apart);
    }

    static int flops(Character, Character, Truth) { return 0; }
    static int flops(Bit, Bit, Bit) { return 0; }
    template <Number L, Number R, class Out>
    static int flops(const L& l, const R& r, const Out&) {
        return comparison_flops(l, r);
    }
};

} // namespace tessor
