// Function definitions in the source: headers and ends.
#pragma once

#include "frontend/scanner.h"

namespace tessor {

/// A header whose counts stand in it.
struct HeaderMatch {
    std::size_t length = 0;      ///< the boundary byte included; 0: no such header
    std::size_t text_length = 0; ///< without it
    std::int32_t arguments = -1;
    std::int32_t locals = 0;
    bool neadic_with_locals = false;
};

/// A header that begins with ARGS or VARS.
HeaderMatch match_header(Scanner& s);
void compile_header(Scanner& s, const HeaderMatch& match);

/// Opens a definition; takes over the counted header text.
void open_definition(Scanner& s, char* header, int arguments, int locals);

/// Closes the innermost definition; takes over the counted text of its end.
void close_definition(Scanner& s, char* end);

/// Closes by force what is still open, with a warning each.
void close_all(Scanner& s);

/// The function's own table, made and pushed for the first name that needs it. Returns its link.
MeaningTable* own_table(Scanner& s);

/// Gives back a level's own link.
void leave_table(Level& at) noexcept;

} // namespace tessor
