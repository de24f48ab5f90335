#include "scalar/identity.h"
#include "scalar/verbs.h"

namespace tessor {

void notidentical(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Identity<false>, notidentical>(top, cell, quads, mode);
}

Space* notidentical_in_place(Space* top, const Space* floor, Space* quads) {
    return dyadic_in_place<Identity<false>>(top, floor, quads);
}

} // namespace tessor
