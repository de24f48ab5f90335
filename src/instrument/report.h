// The report of timings at the end of the interpreter's life.
//
// Counts are of scalar operations, not of runs: an ADD of a thousand elements counts a thousand,
// and every average and rate is one of these.
#pragma once

#include "values/timing.h"

#include <cstdio>
#include <span>

namespace tessor {

/// Which parts of the report are wanted.
struct ReportParts {
    bool flops = false;        ///< floating-point columns
    bool terse_ops = false;    ///< one line an instruction
    bool just_summary = false; ///< no records
    bool cycles = false;       ///< columns of processor cycles
    double MHz = 0;            ///< their clock
};

/// What has been measured.
struct Measured {
    std::span<const InstructionRecord> records; ///< by instruction number
    std::span<const double> thread_flops;       ///< of each thread; empty if there is one alone
    double verbs = 0;                           ///< cells run
    double user = 0;                            ///< process times, in seconds
    double system = 0;
};

/// Prints the report; nothing if no instruction has been timed.
void report_timings(std::FILE* out, const Measured& measured, const ReportParts& parts);

} // namespace tessor
