// Numbers as text, byte for byte what printf gives for "%d" and "%.*g".
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessor {

/// Significant digits of reals: for a person, and to read back the same bits.
inline constexpr int display_digits = 10;
inline constexpr int source_digits = 17;

/// Room that any number fits in.
inline constexpr std::size_t number_room = 32;

/// Write the number from `out` on, and return the end of it. No zero byte is added.
char* number_text(char* out, std::int32_t value);
char* number_text(char* out, double value, int digits);

/// A whole value below 2147483647 in magnitude: one that prints as an integer among other kinds.
inline bool prints_whole(double value) {
    return value > -2147483647.0 && value < 2147483647.0
           && value == static_cast<double>(static_cast<std::int32_t>(value));
}

} // namespace tessor
