// RESHAPE and the questions about a value's frame.
#pragma once

#include "engine/machine.h"

namespace tessor {

Next reshape(Activation& run); ///< data, shape: the data in the new shape; see reshape_data
Next shape(Activation& run);   ///< the extents as a vector; of an address, the name as text
Next rank(Activation& run);    ///< the rank field as an integer
Next depth(Activation& run);   ///< the depth field as an integer

} // namespace tessor
