// The output verbs.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// OUTPUT, PRINT and their forms without a line end: the value at the top, written to standard
/// output. PRINT drops it.
Next output(Activation& run);

} // namespace tessor
