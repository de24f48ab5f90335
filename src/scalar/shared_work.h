// A scalar verb whose elements are shared between the main thread and the workers.
//
// Each stream runs the roads on its slice. Slices of packed results are made straight in one block;
// a slice whose results turn out to be of another kind goes on in a block of its own, and all are
// joined when the job is collected. The elements are those of a serial run.
#pragma once

#include "parallel/coprocessor.h"
#include "scalar/roads.h"

namespace tessor {

/// Publishes the job of a verb whose frame is set up, and runs the main thread's slice. The outcome
/// has the block that results go to as far as they fit, or none. If that slice fails, the workers
/// are waited for, and the operands are left as in a serial run. False: it isn't worth the while,
/// and nothing is done yet.
bool share(Frame& f, const DyadicVerb& verb, Outcome& out);
bool share(Frame& f, const MonadicVerb& verb, Outcome& out);

/// What the close of the verb leaves to the job: the data of an operand that the slices still read,
void keep_operand(void* block, std::uint32_t n);
/// and the result's Space, whose data and type are completed when the job is collected.
void complete_later(Space& result);

} // namespace tessor
