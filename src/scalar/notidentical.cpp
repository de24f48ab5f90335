#include "scalar/identity.h"
#include "scalar/verbs.h"

namespace tessor {

void notidentical(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Identity<false>, notidentical>(top, cell, quads, mode);
}

long notidentical_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Identity<false>>(left, right, quads);
}

} // namespace tessor
