// Setting the seeds of all streams at once.
#pragma once

#include "engine/machine.h"

namespace tessor {

inline constexpr std::int32_t seed_by_clock = -1;

/// Seeds every stream in use, each its own sequence from one value; see SEED_PRNGS. `cell` is the
/// instruction.
void seed_streams(std::int32_t value, const Space& cell);

/// SEED: by the one integer or real on top, which goes; any other value is number 850.
Next seed(Activation& run);
/// RANDOMISE: by the clock.
Next randomise(Activation& run);

} // namespace tessor
