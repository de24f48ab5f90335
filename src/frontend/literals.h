// Array literals, texts and their shapes; single numbers and constants.
#pragma once

#include "frontend/numbers.h"
#include "frontend/scanner.h"

namespace tessor {

/// Begins a text or an array literal in code; the opening bytes are used up.
void open_literal(Scanner& s, ScanMode mode, bool enclosed);

/// A scalar cell, and the elements of the input it takes.
void compile_number(Scanner& s, const ElementMatch& match);
void compile_bits(Scanner& s, const BitsMatch& match);
void compile_quoted_bits(Scanner& s, const BitsMatch& match);
void compile_constant(Scanner& s, const ConstantMatch& match);

/// The quick way for what most numbers are: a few digits and a blank. False if there is more to it.
bool compile_plain_integer(Scanner& s, int first);

/// Bytes that can begin a number of any kind.
constexpr bool begins_number(int byte) {
    constexpr std::string_view others = ".-#INdinr\xaf";
    return is_digit(byte) || others.find(static_cast<char>(byte)) != std::string_view::npos;
}
/// Bytes that can begin a named constant.
constexpr bool begins_constant(int byte) {
    return byte == '#' || byte == '-' || byte == 'F' || byte == 'T';
}

/// Forgets what is in the making. The mode stays; a literal mode goes on with a new literal.
void drop_literals(Scanner& s) noexcept;

} // namespace tessor
