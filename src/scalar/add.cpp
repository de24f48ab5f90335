#include "scalar/dyadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Add {
    static constexpr Rules rules{};

    static Promoted apply(std::int32_t l, std::int32_t r) {
        const std::uint32_t bits = static_cast<std::uint32_t>(l) + static_cast<std::uint32_t>(r);
        const auto sum = static_cast<std::int32_t>(bits);
        // The lowest bit of a sum is its sign only if it is the most negative one, which is a real.
        const auto lowest = static_cast<std::int32_t>(bits & (0u - bits));
        const std::int32_t misfit = ((l ^ sum) & (r ^ sum)) | lowest;
        return {sum, misfit, misfit < 0 ? 0u : 1u, static_cast<double>(l) + static_cast<double>(r)};
    }
    static double apply(RealLike auto l, RealLike auto r) {
        return static_cast<double>(l) + static_cast<double>(r);
    }
    template <Number L, Number R>
    static Wider<L, R> apply(const L& l, const R& r) requires(Hypercomplex<L> || Hypercomplex<R>) {
        Wider<L, R> sum;
        for (int i = 0; i < width<Wider<L, R>>; ++i) {
            const bool both = i < width<L> && i < width<R>;
            sum.c[i] = both           ? component(l, i) + component(r, i)
                       : i < width<L> ? component(l, i)
                                      : component(r, i);
        }
        return sum;
    }

    static constexpr int flops(std::int32_t, std::int32_t, const Promoted& sum) {
        return sum.fits ? 0 : 1;
    }
    template <Number L, Number R, class Out>
    static int flops(const L&, const R&, const Out&) {
        return std::min(width<L>, width<R>);
    }

    /// A complex sum looks like the operand that it is written over.
    static Look look(const Complex&, const Complex&, const Looks& looks) {
        return passing(looks.over_right ? looks.right : looks.left);
    }
};

} // namespace

void add(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Add, add>(top, cell, quads, mode);
}

long add_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Add>(left, right, quads);
}

} // namespace tessor
