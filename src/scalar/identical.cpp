#include "scalar/identity.h"
#include "scalar/verbs.h"

namespace tessor {

void identical(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Identity<true>, identical>(top, cell, quads, mode);
}

} // namespace tessor
