// The stack instructions.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// The value that MARK pushes.
inline bool is_mark(const Space& value) {
    return value.rank == kind::OPERATOR && value.operation == op::MARK;
}

Next discard(Activation& run);
Next right(Activation& run);
Next swap(Activation& run);
Next duplicate(Activation& run);
Next clear(Activation& run);
Next push_mark(Activation& run);
Next countstack(Activation& run);
Next counttomark(Activation& run);
Next cleartomark(Activation& run);

} // namespace tessor
