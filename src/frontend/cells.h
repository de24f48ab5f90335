// Writing program cells.
#pragma once

#include "frontend/scanner.h"

#include <span>

namespace tessor {

/// A body has this much room behind its code: FUNCTIONEND and the end mark always fit.
inline constexpr std::uint32_t closing_cells = 2;

/// Adds a cell to the current level, which takes over what it refers to. A full level reports 807
/// and gives the cell up: false.
bool emit(Scanner& s, Space cell);
/// The cells of one token: all of them or none.
bool emit(Scanner& s, std::span<Space> cells);

/// The cell before the next one, null at the start of the level.
Space* cell_before(Scanner& s);

/// An OPERATOR cell; takes over the counted spelling.
Space operator_cell(char* spelling, int operation, int suboperation = 0);

/// A cell that refers to a name: takes counts of its own on link, name and target (which may be
/// null).
Space name_cell(std::int32_t rank, std::uint32_t type, int suboperation, MeaningTable* table,
                char* name, Space* target);

/// The cell of a spelling: an OPERATOR cell, or a VARIABLE cell if the user gave the spelling a
/// meaning and :: didn't stand in front. Takes over the counted spelling.
Space oper(Scanner& s, char* spelling, int operation, int suboperation, bool& built_in);

/// What the token at the start of the input is spelled like, as a counted text.
char* spelling_as_typed(Scanner& s, const WordMatch& match);

/// Compiles a spelling of the table; the input stands in front of it.
void compile_spelling(Scanner& s, const WordMatch& match);

/// Counts up a name's pending left-hand side: global or not. Full: reports 808 with the cell.
void push_target(Scanner& s, bool global, const Space& cell);
/// Takes one away, for an instruction that assigns.
void pop_target(Scanner& s);

/// Marks the function being compiled, if there is one.
void mark_function(Scanner& s, std::uint32_t bits);

/// Standard output first, then a line of the front end on the error stream.
void complain(const char* text);

} // namespace tessor
