// Giving a value a new shape: what RESHAPE and the shape of a literal share.
#pragma once

#include "values/space.h"

namespace tessor {

/// Reshapes `left` by the integers of `right`, repeating or cutting its elements in block order.
/// Returns 0 when done: the record of `right` is used up, its data block is left's shape. Otherwise
/// returns the number to report (10, 11, 113, 146, 991, 994, 1101, 1102), with both unchanged. An
/// empty `right` leaves rank, shape and elements of `left` and makes its data private.
int reshape_data(Space* left, Space* right);

/// Makes a vector of a value's elements in block order: a scalar becomes a one-element vector, an
/// array loses its axes but not its depth. Vectors and what has no elements stay.
void ravel(Space& value);

} // namespace tessor
