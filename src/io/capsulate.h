// Vectors of numbers to hypercomplex numbers and back.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// ENCAPSULATE: a vector of 2 to 8 integers and reals becomes the number of these components, in
/// subarrays too. A vector of any other length that begins with a whole real becomes that integer.
/// Mixed arrays with subarrays (1003) and values that aren't vectors (1004) stay, with a warning.
Next encapsulate(Activation& run);

/// DECAPSULATE: a scalar becomes the vector of its components, every element of an array such a
/// vector; an array of one subarray gives way to it. Too deep a nesting is 806.
Next decapsulate(Activation& run);

/// GROUP: 994.
Next group(Activation& run);

} // namespace tessor
