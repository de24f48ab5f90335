#include "scalar/connective.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct StrongNand {
    template <class T>
    static constexpr T of(T a, T b) {
        return complement(excess(a, b));
    }
};

} // namespace

void strongnand(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Connective<StrongNand>, strongnand>(top, cell, quads, mode);
}

long strongnand_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Connective<StrongNand>>(left, right, quads);
}

} // namespace tessor
