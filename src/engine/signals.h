// Signals: noted by the handler, taken at the next safe point.
//
// While text is read, interrupt and quit are ignored, the bus signal has its default action, and
// any other takes effect at once. A fault that the process's own instruction raised leaves by a
// non-local jump to the innermost FaultPoint.
//
// A system call goes on behind a signal, so that nothing that is written gets lost; only a wait for
// input is broken off.
#pragma once

#include "frontend/fill.h"

#include <csetjmp>

namespace tessor {

/// Installs the handlers, on a signal stack of their own. Once, at start-up.
void install_signals();

/// fill() on standard input behind a prompt that has been shown. An interrupt that came too late
/// for the run before it is dropped.
int fill_prompted(Space* cells, MeaningTable* table, LineEnd mode);

/// fill(), with signals treated as while text is read.
int fill_reading(Space* cells, MeaningTable* table, std::FILE* stream, const char** text,
                 LineEnd mode);

/// While one lives, a blocking read fails with EINTR as long as a noted signal hasn't been taken.
class Waiting {
public:
    Waiting();
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
    ~Waiting();
};

/// Set by a non-local jump out of a fault: what the frames in between owned is lost for good.
extern bool frames_lost;

/// Where a fault of the process's own goes: the frame that owns it has called sigsetjmp on it.
struct FaultPoint {
    sigjmp_buf context;
    FaultPoint* outer;
    Space* top = nullptr; ///< of the innermost activation when the fault came

    FaultPoint();
    FaultPoint(const FaultPoint&) = delete;
    FaultPoint& operator=(const FaultPoint&) = delete;
    ~FaultPoint();
    /// Makes this the place, once its context is set.
    void arm();
};

} // namespace tessor
