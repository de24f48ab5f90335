#include "scalar/arithmetic.h"
#include "scalar/dyadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

using Masked = Either<Character, Fault>;

// A character stays with 1 and becomes a blank with 0.
Masked masked(Character c, std::int32_t bit) {
    const bool is_bit = (bit & ~1) == 0;
    return {{bit == 0 ? std::uint8_t{' '} : c.byte}, {149}, is_bit};
}

struct Multiply {
    static constexpr Rules rules{.refused = ISADDRESS | HASUNICODE,
                                 .counted = numeric_kinds | HASASCII};

    static Masked apply(Character l, std::same_as<std::int32_t> auto r) { return masked(l, r); }
    static Masked apply(std::same_as<std::int32_t> auto l, Character r) { return masked(r, l); }
    static Promoted apply(std::int32_t l, std::int32_t r) {
        // In single precision the product is off by far less than the bound lies below the limit.
        const float rough = static_cast<float>(l) * static_cast<float>(r);
        Promoted product = promoted(static_cast<double>(l) * static_cast<double>(r));
        product.whole = static_cast<std::int32_t>(static_cast<std::uint32_t>(l)
                                                  * static_cast<std::uint32_t>(r));
        product.misfit = std::fabs(rough) < 2147483000.0f ? 0 : -1;
        return product;
    }
    static double apply(RealLike auto l, RealLike auto r) {
        return multiplied(static_cast<double>(l), static_cast<double>(r));
    }
    template <Number L, Number R>
    static Wider<L, R> apply(const L& l, const R& r) requires(Hypercomplex<L> || Hypercomplex<R>) {
        return multiplied(l, r);
    }

    static int flops(Character, std::int32_t, const Masked&) { return 0; }
    static int flops(std::int32_t, Character, const Masked&) { return 0; }
    static constexpr int flops(std::int32_t, std::int32_t, const Promoted& p) {
        return p.fits ? 0 : 1;
    }
    template <Number L, Number R, class Out>
    static int flops(const L& l, const R& r, const Out&) {
        return multiplied_flops(l, r);
    }

    static Look look(Character, std::int32_t, const Looks& looks) { return passing(looks.left); }
    static Look look(std::int32_t, Character, const Looks& looks) { return passing(looks.right); }
    static Look look(std::same_as<std::int32_t> auto, std::same_as<std::int32_t> auto,
                     const Looks& looks) {
        return {form::number,
                static_cast<std::uint16_t>(passing(looks.right).marks & ~unsigned{mark::r})};
    }
};

} // namespace

void multiply(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Multiply, multiply>(top, cell, quads, mode);
}

long multiply_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Multiply>(left, right, quads);
}

} // namespace tessor
