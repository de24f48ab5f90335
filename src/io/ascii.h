// Numbers to characters and back.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// ENASCII: integers from 0 to 255, and reals that #CT makes such, become characters of that byte,
/// in subarrays too. Everything else stays, without names. Too deep a nesting is 806.
Next enascii(Activation& run);

/// DEASCII: characters become integers from 0 to 255, in subarrays too.
Next deascii(Activation& run);

} // namespace tessor
