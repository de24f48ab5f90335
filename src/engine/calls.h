// Calling functions and coming back.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// Calls the FUNCTION on top of the stack: its operands are the values below. Too few of them is
/// 800, no room for the locals, or on the native stack, 806; the function is off the stack then.
Next call(Activation& run);

/// Releases the locals that were made for this activation, and moves its values down over them.
void close_locals(Activation& run) noexcept;

Next do_return(Activation& run);     ///< RETURN and FUNCTIONEND
Next make_operator(Activation& run); ///< OPERATOR: a function that runs when its name is met

} // namespace tessor
