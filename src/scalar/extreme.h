// MINIMUM and MAXIMUM: one of the operands, by their places on the real line.
#pragma once

#include "scalar/dyadic.h"

namespace tessor {

/// Choice::left tells, from the difference of the places, whether the left operand is kept;
/// Choice::widest is the widest number that the verb takes.
template <class Choice>
struct Extreme {
    static constexpr Rules rules{.refused = ISADDRESS, .restricted = Choice::restricted};

    template <class T>
    static constexpr bool taken = width<T> <= Choice::widest;

    static Character apply(Character l, Character r) {
        return Choice::left(int{l.byte}, int{r.byte}) ? l : r;
    }
    static std::int32_t apply(std::int32_t l, std::int32_t r) { return Choice::left(l, r) ? l : r; }
    static double apply(RealLike auto l, RealLike auto r) {
        const auto x = static_cast<double>(l);
        const auto y = static_cast<double>(r);
        return Choice::left(x - y) ? x : y;
    }
    template <Hypercomplex T>
    static T apply(const T& l, const T& r) requires(taken<T>) {
        return keeps_left(l, r) ? l : r;
    }
    // The winner keeps its tag.
    template <Number L, Number R>
    static auto apply(const L& l,
                      const R& r) requires(width<L> != width<R> && taken<L> && taken<R>) {
        const bool left = keeps_left(l, r);
        if constexpr (width<R> < width<L>)
            return Either<L, R>{l, r, left};
        else
            return Either<R, L>{r, l, !left};
    }

    static bool keeps_left(Character l, Character r) {
        return Choice::left(int{l.byte}, int{r.byte});
    }
    template <Number L, Number R>
    static bool keeps_left(const L& l, const R& r) requires(Hypercomplex<L> || Hypercomplex<R>) {
        return Choice::left(signed_magnitude(l) - signed_magnitude(r));
    }

    static int flops(Character, Character, Character) { return 0; }
    static int flops(std::int32_t, std::int32_t, std::int32_t) { return 0; }
    template <Number L, Number R, class Out>
    static int flops(const L& l, const R& r, const Out&) {
        return 1 + magnitude_flops(l) + magnitude_flops(r);
    }
};

} // namespace tessor
