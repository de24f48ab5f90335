// Recounting of all blocks, for checked builds.
#pragma once

#include "values/space.h"

#include <span>

namespace tessor {

/// Counts every block anew from its roots, between sentences. A stored count that differs, and a
/// live block that nothing refers to, are told on the error stream, and the process aborts. `held`:
/// values that the caller has counted for itself.
void recount(std::span<const Space> held = {});

/// The same for the read-execute loop: with many blocks only after as many sentences as make the
/// walks cost no more than the sentences.
void recount_now_and_then();

} // namespace tessor
