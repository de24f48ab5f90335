#include "scalar/arithmetic.h"
#include "scalar/dyadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Divide {
    static constexpr Rules rules{};

    static Quotient apply(std::int32_t l, std::int32_t r) {
        return {static_cast<double>(l) / static_cast<double>(r)};
    }
    static double apply(RealLike auto l, RealLike auto r) {
        return divided(static_cast<double>(l), static_cast<double>(r));
    }
    template <Number L, Number R>
    static Wider<L, R> apply(const L& l, const R& r) requires(Hypercomplex<L> || Hypercomplex<R>) {
        return divided(l, r);
    }

    static constexpr int flops(std::int32_t, std::int32_t, Quotient q) {
        return Stored<Quotient>::fits(q) ? 0 : 1;
    }
    template <Number L, Number R, class Out>
    static int flops(const L& l, const R& r, const Out&) {
        return divided_flops(l, r);
    }
};

} // namespace

void divide(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Divide, divide>(top, cell, quads, mode);
}

long divide_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Divide>(left, right, quads);
}

} // namespace tessor
