// The stack instructions.
#pragma once

#include "engine/machine.h"

namespace tessor {

Next discard(Activation& run);
Next right(Activation& run);
Next swap(Activation& run);
Next duplicate(Activation& run);
Next clear(Activation& run);
Next push_mark(Activation& run);
Next countstack(Activation& run);
Next counttomark(Activation& run);
Next cleartomark(Activation& run);

} // namespace tessor
