#include "scalar/connective.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Nor {
    template <class T>
    static constexpr T of(T a, T b) {
        return complement(greater_of(a, b));
    }
};

} // namespace

void nor(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Connective<Nor>, nor>(top, cell, quads, mode);
}

long nor_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Connective<Nor>>(left, right, quads);
}

} // namespace tessor
