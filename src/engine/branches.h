// Decisions and jumps.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// CHECK: sets the flag that conditional cells obey from the top value, and drops it. A real from 0
/// to 1 decides by a draw, and so does a hypercomplex number, by its balance; a function in which
/// that happens is marked as probable. 804 for other single elements; arrays of several give yes.
Next check(Activation& run);

/// IF: condition and value; leaves the value if the condition holds, else an empty vector. 801,
/// 802.
Next if_(Activation& run);

/// JUMP: goes to the cell of the running list with this number. An empty vector goes on with the
/// next cell, 0 returns. 138 for anything else, and for what lies beyond the end mark.
Next jump(Activation& run);

} // namespace tessor
