// Putting the comparison tolerance right, before verbs that round by it.
#pragma once

#include "values/space.h"

namespace tessor {

/// Makes #CT a real of form logical from 0 to 1, whatever it was, and returns it: a real, an
/// integer or the first component of an octonion is limited, and anything else gives way to the
/// default.
double repaired_tolerance(Space* quads);

} // namespace tessor
