#include "scalar/connective.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct StrongAnd {
    template <class T>
    static constexpr T of(T a, T b) {
        return excess(a, b);
    }
};

} // namespace

void strongand(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Connective<StrongAnd>, strongand>(top, cell, quads, mode);
}

long strongand_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Connective<StrongAnd>>(left, right, quads);
}

} // namespace tessor
