#include "values/timing.h"

#include <sys/time.h>

namespace tessor {

std::array<InstructionRecord, instruction_count> InstructionTiming;
double tval = 0;
double prevtime = 0;
double duration = 0;

double read_clock() {
    timeval now;
    gettimeofday(&now, nullptr);
    tval = static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_usec) / 1000000;
    return tval;
}

} // namespace tessor
