// The console: starts the system, reads and runs sentences from standard input, ends it.
#pragma once

namespace tessor {

/// One sentence of standard input, compiled and run.
void read_and_run();

/// The whole life of the process; returns its exit code.
int console(int argc, char** argv);

} // namespace tessor
