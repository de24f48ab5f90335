// Running what is on the stack.
#pragma once

#include "engine/machine.h"
#include "values/block.h"

namespace tessor {

/// Characters alone, as a scalar or a vector: what can be compiled.
bool is_executable_text(const Space& value);

/// The characters of a text, zero-ended, and before that what ends a sentence.
BlockHandle source_of(const Space& text);

/// EXECUTE: calls the function on top; compiles and runs a text, sentence by sentence, on this
/// frame. 995 for anything else.
Next execute(Activation& run);

/// DIP and DEEP: calls the function on top on what lies below the value under it, which comes back
/// on top. The function's table isn't entered, and it gets as many operands as there are. 995.
Next dip(Activation& run);

} // namespace tessor
