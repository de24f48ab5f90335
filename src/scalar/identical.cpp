#include "scalar/identity.h"
#include "scalar/verbs.h"

namespace tessor {

void identical(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Identity<true>, identical>(top, cell, quads, mode);
}

Space* identical_in_place(Space* top, const Space* floor, Space* quads) {
    return dyadic_in_place<Identity<true>>(top, floor, quads);
}

} // namespace tessor
