// The symbol tables as a store: values kept under any value.
//
// What isn't an address serves as a name by its text form (toaddr.h).
#pragma once

#include "engine/machine.h"

namespace tessor {

/// FORGET: the name on top, found along the chain, has no value and no entry any more.
Next forget(Activation& run);

/// GET: the value that an address refers to, or that is stored under the value on top: an empty
/// vector if none is. 23 for an unset local and for a name that is gone.
Next get(Activation& run);

/// DO: executes what is stored under the value on top.
Next do_(Activation& run);

/// AT: the address of what is stored under the value on top.
Next at(Activation& run);

} // namespace tessor
