// Running a function many times.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// LOOP: count and function. Calls it that often with the running index on top, each time on the
/// values below; it must leave one value less than it takes (978). REPEAT calls it in this frame,
/// without an index, and demands nothing of what it leaves. 976, 977, 979, 988; too few values:
/// 800.
Next loop(Activation& run);

} // namespace tessor
