// Leaving a function with another one in hand.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// YIELD: the function on top becomes a private copy that keeps a record of this frame, and the
/// activation returns with it on top. Nothing resumes the record. 950.
Next yield(Activation& run);

/// YIELDTO: calls the function on top; a RETURN stands behind it. 950.
Next yield_to(Activation& run);

} // namespace tessor
