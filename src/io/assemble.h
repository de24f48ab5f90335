// Text to functions, and any value to text.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// ASSEMBLE: a text becomes one function for each of its sentences. A sentence that is a definition
/// gives that function, any other a neadic one. Anything but a text is 981.
Next assemble(Activation& run);

/// DISASSEMBLE and FORMTEXT: a value becomes the text that the scanner reads back, or the one that
/// a person sees. No memory to write it to is 711.
Next disassemble(Activation& run);

} // namespace tessor
