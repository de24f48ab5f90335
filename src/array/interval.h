// INTERVAL: runs of characters and numbers, and lattices of hypercomplex numbers.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// INTERVAL of one to three elements: a count, from and to, or from, to and a step. Characters go
/// from the first to the second, or from the blank to the only one. Numbers give a vector, of
/// integers as long as all of them are near integers. Of complex numbers, quaternions and octonions
/// each component is an axis of the result; last ones that are all 0 are dropped. An empty value
/// gives 0. 142, 146, 153 to 158; the argument stays, but for hypercomplex ends on the real line,
/// which are reals from then on.
Next interval(Activation& run);

} // namespace tessor
