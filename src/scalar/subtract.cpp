#include "scalar/dyadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Subtract {
    static constexpr Rules rules{};

    // Integers wrap, where those of a sum become reals.
    static std::int32_t apply(std::int32_t l, std::int32_t r) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(l)
                                         - static_cast<std::uint32_t>(r));
    }
    static double apply(RealLike auto l, RealLike auto r) {
        return static_cast<double>(l) - static_cast<double>(r);
    }
    template <Number L, Number R>
    static Wider<L, R> apply(const L& l, const R& r) requires(Hypercomplex<L> || Hypercomplex<R>) {
        Wider<L, R> difference;
        for (int i = 0; i < width<Wider<L, R>>; ++i) {
            const bool both = i < width<L> && i < width<R>;
            difference.c[i] = both           ? component(l, i) - component(r, i)
                              : i < width<L> ? component(l, i)
                                             : -component(r, i);
        }
        return difference;
    }

    static int flops(std::int32_t, std::int32_t, std::int32_t) { return 0; }
    template <Number L, Number R, class Out>
    static int flops(const L&, const R&, const Out&) {
        return std::min(width<L>, width<R>);
    }
};

} // namespace

void subtract(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Subtract, subtract>(top, cell, quads, mode);
}

long subtract_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Subtract>(left, right, quads);
}

} // namespace tessor
