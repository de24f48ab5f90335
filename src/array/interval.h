// INTERVAL: sequences of characters and numbers, and lattices of hypercomplex numbers.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// One to three elements: a count, from and to, or from, to and step. Two characters give those
/// between them, one those from the blank on; real numbers a vector; complex numbers, quaternions
/// and octonions an array with an axis for every component that takes part, the first running
/// fastest. Elements come by repeated addition. An empty argument gives the integer 0. Raises 142,
/// 146 and 153 to 158, with the argument as it was.
Next interval(Activation& run);

} // namespace tessor
