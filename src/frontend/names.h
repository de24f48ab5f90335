// Names, addresses, labels and locals in the source.
#pragma once

#include "frontend/scanner.h"

namespace tessor {

/// A name behind a prefix.
struct PrefixedMatch {
    std::size_t length = 0; ///< the prefix included; 0: no such name
    char prefix = 0;
};
/// A word behind one of _ $ . and %.
PrefixedMatch match_prefixed(Input& input);
/// & and digits.
std::size_t match_local(Input& input);

void compile_prefixed(Scanner& s, const PrefixedMatch& match);
void compile_local(Scanner& s);
/// A name between the bytes 2 and 3; the input stands in front of the 2.
void compile_quoted(Scanner& s);
/// Begins to collect a plain name with the first byte of the input.
void begin_name(Scanner& s);

/// True if the scanner takes the bare name, or the beginning of it, for a word, a constant or a
/// number as long as the name has no meaning.
bool reads_as_word(const char* name);

} // namespace tessor
