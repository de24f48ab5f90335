// LESS and its like: truth values, from exact comparison of integers and characters and from the
// places of all other numbers on the real line.
#pragma once

#include "scalar/dyadic.h"

namespace tessor {

// A negative tolerance counts as 0, so that one comparison decides. With a tolerance that is a NaN
// nothing is less or greater, and only 0 is within it.

/// What a difference must be above to count as one.
inline double margin_to_pass(double tolerance) {
    return tolerance < 0 ? 0.0 : tolerance;
}
/// What a difference may be and not count.
inline double margin_to_stay(double tolerance) {
    return tolerance > 0 ? tolerance : 0.0;
}

/// Order::exact compares two values of one type; Order::places decides by the difference of the
/// places and the tolerance.
template <class Order>
struct Ordering {
    static constexpr Rules rules{.refused = ISADDRESS};
    double tolerance = default_tolerance;

    static Truth apply(Character l, Character r) { return {Order::exact(l.byte, r.byte)}; }
    static Truth apply(std::int32_t l, std::int32_t r) { return {Order::exact(l, r)}; }
    static Bit apply(Bit l, Bit r) { return {Order::exact(l.value, r.value)}; }
    template <Number L, Number R>
    Truth apply(const L& l, const R& r) const {
        return {Order::places(signed_magnitude(l) - signed_magnitude(r), tolerance)};
    }

    static int flops(Character, Character, Truth) { return 0; }
    static int flops(Bit, Bit, Bit) { return 0; }
    template <Number L, Number R>
    static int flops(const L& l, const R& r, Truth) {
        return comparison_flops(l, r);
    }
};

} // namespace tessor
