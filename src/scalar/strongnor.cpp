#include "scalar/connective.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct StrongNor {
    template <class T>
    static constexpr T of(T a, T b) {
        return complement(limited_sum(a, b));
    }
};

} // namespace

void strongnor(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Connective<StrongNor>, strongnor>(top, cell, quads, mode);
}

long strongnor_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Connective<StrongNor>>(left, right, quads);
}

} // namespace tessor
