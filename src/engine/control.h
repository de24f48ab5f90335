// Instructions that steer the run itself.
#pragma once

#include "engine/machine.h"

namespace tessor {

Next noop(Activation& run);
Next trace(Activation& run);
Next step(Activation& run);
Next run_on(Activation& run); ///< RUN
Next end_process(Activation& run);

/// The trace line and the inspection prompt that stand before a cell, if they are on.
void inspect(Activation& run);

} // namespace tessor
