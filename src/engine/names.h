// Names at run time: what a name cell pushes, and storing under a name.
#pragma once

#include "engine/machine.h"

namespace tessor {

Next push_variable(Activation& run);      ///< VARIABLE cell; calls a function that is a verb
Next push_address(Activation& run);       ///< ADDRESS cell
Next push_local(Activation& run);         ///< LOCAL VARIABLE cell
Next push_local_address(Activation& run); ///< LOCAL ADDRESS cell
Next push_label(Activation& run);         ///< LABEL cell

Next assign(Activation& run); ///< ASSIGN: the value stays on the stack
Next set(Activation& run);    ///< SET: both are gone

} // namespace tessor
