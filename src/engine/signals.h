// Signals: noted by the handler, taken at the next safe point.
//
// While text is read, interrupt and quit are ignored, the bus signal has its default action, and
// any other takes effect at once. A fault that the process's own instruction raised leaves by a
// non-local jump to the innermost FaultPoint.
#pragma once

#include "frontend/fill.h"

#include <csetjmp>

namespace tessor {

/// Installs the handlers, on a signal stack of their own. Once, at start-up.
void install_signals();

/// fill(), with signals treated as while text is read.
int fill_reading(Space* cells, MeaningTable* table, std::FILE* stream, const char** text,
                 LineEnd mode);

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
