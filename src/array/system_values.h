// The system values as array operators read them.
#pragma once

#include "values/space.h"

namespace tessor {

/// #IO as an integer; 1 if it holds anything that isn't one.
std::int32_t index_origin(const Space* quads);

/// Whether a real is within the tolerance of a whole number, which is left in `whole`.
bool near_integer(double x, double tolerance, double& whole);

} // namespace tessor
