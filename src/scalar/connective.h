// AND and its like: truth values of two integers or characters, degrees of truth of all other
// numbers, component by component.
#pragma once

#include "scalar/dyadic.h"
#include "scalar/logic.h"

namespace tessor {

// The tables of the connectives are written once for truth values, 0 and 1, and for degrees.

template <class T>
constexpr T lesser(T a, T b) {
    return a < b ? a : b;
}
template <class T>
constexpr T greater_of(T a, T b) {
    return a > b ? a : b;
}
/// How far two degrees together go beyond 1, and up to 1.
template <class T>
constexpr T excess(T a, T b) {
    return greater_of(T{0}, static_cast<T>(a + b - 1));
}
template <class T>
constexpr T limited_sum(T a, T b) {
    return lesser(T{1}, static_cast<T>(a + b));
}
template <class T>
constexpr T complement(T a) {
    return static_cast<T>(1 - a);
}

/// Table::of combines two degrees, as doubles or as integers.
template <class Table>
struct Connective {
    static constexpr Rules rules{.refused = ISADDRESS, .truths = true};

    static Bit bit(auto x) { return {is_true(x)}; }
    static Bit apply(Bit l, Bit r) { return {Table::of(l.value, r.value)}; }
    static Bit apply(Character l, Character r) { return apply(bit(l), bit(r)); }
    static Bit apply(std::int32_t l, std::int32_t r) { return apply(bit(l), bit(r)); }
    static Certainty apply(ByteLike auto l, ByteLike auto r) {
        return {Table::of(l.value, r.value)};
    }
    static double apply(RealLike auto l, RealLike auto r) {
        return Table::of(clamp(static_cast<double>(l)), clamp(static_cast<double>(r)));
    }
    // What only the wider number has is lost.
    template <Number L, Number R>
    static Wider<L, R> apply(const L& l, const R& r) requires(Hypercomplex<L> || Hypercomplex<R>) {
        Wider<L, R> result{};
        for (int i = 0; i < common<L, R>; ++i)
            result.c[i] = Table::of(clamp(component(l, i)), clamp(component(r, i)));
        return result;
    }

    template <Number L, Number R>
    static constexpr int common = std::min(width<L>, width<R>);

    template <class L, class R>
    static int flops(L, R, Bit) {
        return 0;
    }
    static int flops(ByteLike auto, ByteLike auto, Certainty) { return 3; }
    template <Number L, Number R, class Out>
    static int flops(const L&, const R&, const Out&) {
        return 3 * common<L, R>;
    }

    template <class L, class R>
    static Look look(const L& l, const R& r, const Looks& looks) {
        using Out = decltype(apply(l, r));
        Look look = usual_look<L, R, Out>(looks);
        if constexpr (Number<Out>)
            look.form = form::logical;
        return look;
    }
};

} // namespace tessor
