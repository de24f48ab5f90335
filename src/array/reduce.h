// REDUCE and REDUCELASTAXIS: an axis folded by a dyadic scalar verb.
//
// REDUCE folds the first axis, whose elements stand side by side; REDUCELASTAXIS the last one,
// whose elements are as far apart as there are results. A forward verb starts with the first
// element of a run, (a op b) op c; a backward one with the last, a op (b op c). The order of
// floating-point operations is always that of the fold.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// The value on top, whose axis goes. A scalar or an empty array stays as it is. The verb is the
/// cell's suboperation. Raises 145 for an address; and, once the value has its reduced frame, 79
/// for no verb or one that doesn't fold, 75 for characters, 806, and what the verb raises.
Next reduce(Activation& run);
Next reducelastaxis(Activation& run);

} // namespace tessor
