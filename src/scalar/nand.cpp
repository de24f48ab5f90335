#include "scalar/connective.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Nand {
    template <class T>
    static constexpr T of(T a, T b) {
        return complement(lesser(a, b));
    }
};

} // namespace

void nand(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Connective<Nand>, nand>(top, cell, quads, mode);
}

long nand_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Connective<Nand>>(left, right, quads);
}

} // namespace tessor
