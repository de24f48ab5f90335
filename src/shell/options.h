// The words of the command line.
//
// They are read from the last to the first. Only the letter behind a dash is an option, so -qt is
// -q alone; other letters say nothing, but for u and v. An option that needs a number and has none,
// or that asks for a text alone, ends the process before it has started.
#pragma once

#include "instrument/report.h"

#include <cstdint>
#include <optional>

namespace tessor {

/// What the words ask for, apart from the flags that the whole system shares (values/shared.h).
struct Options {
    bool quiet = false;
    std::uint32_t processors = 0; ///< as given with -c; 0 without it
    std::uint32_t thrds = 1;      ///< threads for each of them
    ReportParts report;           ///< of timings, at the end
};

/// Reads the words into `options` and the shared flags. Texts go to standard output. Returns the
/// exit code if the process is to end here.
std::optional<int> read_options(int argc, char** argv, Options& options);

} // namespace tessor
