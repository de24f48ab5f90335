// Instructions that set how work is split among the streams of execution.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// PARALLEL: so many streams from now on, at least 1 and at most those started (a higher number is
/// reported as 204 and capped). Anything but one integer is 202.
Next parallel(Activation& run);
/// SERIAL: vectors up to this size aren't split; at least the number of streams. Anything but one
/// integer is 203.
Next serial(Activation& run);

} // namespace tessor
