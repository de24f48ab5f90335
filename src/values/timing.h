// What the system measures of itself: clock readings in seconds, and a record for each instruction.
//
// All counters are doubles, so that they never wrap. The main thread's.
#pragma once

#include "values/instructions.h"

#include <array>

namespace tessor {

struct InstructionRecord {
    double time = 0;         ///< sum of the durations
    double squared_time = 0; ///< sum of their squares
    double count = 0;        ///< scalar operations; a run without any counts as one
    double flops = 0;
};
/// By instruction number.
extern std::array<InstructionRecord, instruction_count> InstructionTiming;

extern double tval;     ///< the last clock reading
extern double prevtime; ///< when the sentence began
extern double duration; ///< of the activation that ended last

/// Reads the clock, in whole microseconds. It is in `tval` from then on.
double read_clock();

} // namespace tessor
