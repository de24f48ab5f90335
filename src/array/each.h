// A function on every element.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// EACH: data, function. A function of one argument replaces every element by what it makes of it;
/// of one with two arguments, only its kind is checked. Nothing happens to empty data, nor to a
/// value that is no array. 989, 990; 806, 994 in an element.
Next each(Activation& run);

/// The elements of a value off the stack through a function of one argument; the result is pushed.
/// What the function leaves beside stays below it.
void monadiceach(Activation& run, const Space& data, const Space& function);

} // namespace tessor
