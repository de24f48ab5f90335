// Numbers in the source: integers, reals, hypercomplex numbers in either form, bits.
#pragma once

#include "frontend/constants.h"

#include <string>

namespace tessor {

struct NumberMatch {
    std::size_t length = 0; ///< 0: no number here
    bool whole = false;     ///< digits only, with no exponent or a positive one
    double value = 0;
};

/// The longest number at `from`: digits, point and exponent, or an infinity or NaN by name.
NumberMatch match_number(Input& input, std::size_t from);

struct ElementMatch {
    std::size_t length = 0; ///< 0: nothing here
    Element element;
};

/// The number of any kind that the input begins with. Polar ones are found in code only; they are
/// stored by their cartesian components.
ElementMatch match_numeric(Input& input, Place place);

struct BitsMatch {
    std::size_t length = 0; ///< 0: no bits here
    std::size_t from = 0;   ///< where the digits begin
    std::size_t digits = 0;
};

/// 0# and digits, at `from`.
BitsMatch match_bits(Input& input, std::size_t from);
/// The same and a backquote, behind a first backquote: `from` is the place behind that, and the
/// length counts from the start of the input.
BitsMatch match_quoted_bits(Input& input, std::size_t from);

/// The value of the digits behind leading zeros, of at most `limit` of them; more are reported by
/// `number`.
std::uint32_t bits_value(const Input& input, const BitsMatch& match, std::size_t limit, int number);

/// A whole number: digits with an optional minus and an exponent without one.
NumberMatch match_whole(Input& input);

/// A whole number as the literals store it: an integer if it fits, else a real.
Element number_element(const NumberMatch& number);

struct IntegerMatch {
    std::size_t length = 0; ///< 0: no integer here
    std::int32_t value = 0;
};

/// Decimal digits with an optional minus, cut to 32 bits.
IntegerMatch match_integer(Input& input, std::size_t from);

/// Up to nine digits with a blank or a line end behind them, so that they can be nothing else.
inline IntegerMatch match_plain_integer(Input& input, int first) {
    constexpr std::size_t most = 9;
    std::int32_t value = 0;
    std::size_t length = 0;
    int byte = first;
    for (; is_digit(byte) && length < most; byte = peek(input, ++length))
        value = value * 10 + (byte - '0');
    if (length == 0 || !(is_blank(byte) || byte == '\n'))
        return {};
    return {length, value};
}

/// Rewrites every high minus into a minus.
void fixsign(std::string& text);

} // namespace tessor
