// Contexts of names: the tables that an activation looks names up in.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// CONTEXT in all its forms: a new small or large table, or the global one, on top of the chain,
/// until this activation ends.
Next change_context(Activation& run);

Next wipe(Activation& run); ///< WIPE: forgets all names of the innermost table

Next list_variables(Activation& run); ///< VARIABLES: the innermost table's names with _ in front
Next list_functions(Activation& run); ///< FUNCTIONS: those with . in front

} // namespace tessor
