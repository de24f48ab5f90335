#include "scalar/identity.h"
#include "scalar/verbs.h"

namespace tessor {

void identical(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Identity<true>, identical>(top, cell, quads, mode);
}

long identical_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Identity<true>>(left, right, quads);
}

} // namespace tessor
