// The door of each level of a walk over nested data.
#pragma once

#include "engine/machine.h"
#include "io/writers/exception.h"

namespace tessor {

/// Takes noted signals; too little native stack for one more level is message 806, which ends the
/// sentence.
inline void enter_level(Activation& run) {
    if (signal_noted())
        take_signals();
    if (!stack_guard(for_report))
        fail(806, &run.top, run.now);
}

} // namespace tessor
