// Functions that remember their results.
//
// A result is kept in the global table under the text of the arguments and of the function itself:
// a function that is defined anew starts afresh, and two with the same text share one memory.
// Functions that read, write or draw, and neadic ones, are just called.
#pragma once

#include "engine/machine.h"

namespace tessor {

Next result(Activation& run);     ///< RESULT: the remembered result, or a call that is remembered
Next reevaluate(Activation& run); ///< REEVALUATE: a call that is remembered anew

} // namespace tessor
