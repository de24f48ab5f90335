#include "scalar/connective.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct StrongOr {
    template <class T>
    static constexpr T of(T a, T b) {
        return limited_sum(a, b);
    }
};

} // namespace

void strongor(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Connective<StrongOr>, strongor>(top, cell, quads, mode);
}

long strongor_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Connective<StrongOr>>(left, right, quads);
}

} // namespace tessor
