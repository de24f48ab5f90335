#include "scalar/identity.h"
#include "scalar/verbs.h"

namespace tessor {

void notidentical(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Identity<false>, notidentical>(top, cell, quads, mode);
}

} // namespace tessor
