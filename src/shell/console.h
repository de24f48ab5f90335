// The console: starts the system, reads and runs sentences from standard input, ends it.
#pragma once

namespace tessor {

/// The whole life of the process; returns its exit code.
int console(int argc, char** argv);

} // namespace tessor
