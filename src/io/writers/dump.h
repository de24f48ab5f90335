// The writers: values and cells to text.
//
// dump writes the inspection form, for a person; disass at level 0 in display mode the same, at
// other levels or in source mode the form that the scanner reads back to the same value. Writers
// never fail and never change a value; nesting that the native stack can't take is number 806.
#pragma once

#include "values/space.h"

#include <cstdio>

namespace tessor {

enum class Mode : std::uint8_t { display = 0, source = 1 };

/// Prefix and value in inspection form. PrintOut is set while it is at work; the stream is flushed.
void dump(std::FILE* stream, const char* prefix, const Space& space);

/// Prefix and value at a nesting level. The caller sets and clears PrintOut.
void disass(std::FILE* stream, const char* prefix, const Space& space, int level, Mode mode);

/// The cells from `lowest` to `highest`, each in source form on a line of its own, then ".". The
/// same line stands wherever a sentence has no room for more.
void dumpstack(std::FILE* stream, const Space* lowest, const Space* highest);

// For a person at a debugger; all print to standard output.

/// The text and the names of the bits that are set.
void detail_type(const char* text, std::uint32_t type);
void type(std::uint32_t type);
/// Everything about a Space.
void at(const Space& space);

} // namespace tessor
