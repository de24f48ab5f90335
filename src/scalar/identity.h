// IDENTICAL and NOTIDENTICAL: exact, component by component.
#pragma once

#include "scalar/dyadic.h"

namespace tessor {

/// `same` is the truth value of two operands that are the same.
template <bool same>
struct Identity {
    static constexpr Rules rules{.refused = ISADDRESS};

    static Truth apply(Character l, Character r) { return {(l.byte == r.byte) == same}; }
    static Bit apply(Bit l, Bit r) { return {(l.value == r.value) == same}; }
    template <Number L, Number R>
    static Truth apply(const L& l, const R& r) {
        return {identical_numbers(l, r) == same};
    }

    static int flops(Character, Character, Truth) { return 0; }
    static int flops(Bit, Bit, Bit) { return 0; }
    template <Number L, Number R>
    static int flops(const L& l, const R& r, Truth) {
        return identity_flops(l, r);
    }
};

} // namespace tessor
