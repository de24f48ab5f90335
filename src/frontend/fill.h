// The scanner: text to program cells, one sentence at a time.
#pragma once

#include "frontend/symtab.h"

#include <cstdio>

namespace tessor {

inline constexpr int cells_per_buffer = 1024;

/// What a line end means to the scanner.
enum class LineEnd : int { blank = 0, ends = 1, inspects = 2 };

/// Compiles one sentence into `cells`, which has room for cells_per_buffer cells and one end mark
/// behind them. Names resolve in `table`. Bytes come from *text if text is given (it is moved
/// behind what was read), else from the stream, no further than the sentence needs. Returns the
/// number of cells, END included; 0 when compiling was abandoned (nothing is left in the cells
/// then).
int fill(Space* cells, MeaningTable* table, std::FILE* stream, const char** text, LineEnd mode);

/// Forgets what earlier sentences have left open: the next one begins in code.
void reset_scanner();

} // namespace tessor
