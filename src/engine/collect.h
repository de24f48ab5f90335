// Gathering values of the stack into a vector.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// COLLECT: the values above the nearest mark become one vector in its place; the spelling that
/// demands a mark reports 201 without one, the others then take the whole frame. One value stays as
/// it is, none gives an empty vector. 994 if several hold an address, a function or a mark.
Next collect(Activation& run);

} // namespace tessor
