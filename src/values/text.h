// Counted texts: zero-ended byte strings in counted blocks. Names, spellings, header words.
#pragma once

#include <cstddef>
#include <string_view>

namespace tessor {

/// A counted copy. Throws OutOfStorage.
char* stringdup(std::string_view text);
/// A counted text of both, one after the other.
char* stringcat(std::string_view first, std::string_view second);

/// True if two texts are the same.
bool stringcmp(const char* a, const char* b);
/// 0 if the same, else the difference of the first bytes that differ, as signed bytes.
int strcomp(const char* a, const char* b);

} // namespace tessor
