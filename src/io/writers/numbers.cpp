#include "io/writers/numbers.h"

#include <charconv>

namespace tessor {

namespace {

// Whole numbers up to here print without an exponent at any of the precisions in use.
constexpr double plain_whole = 1e9;

} // namespace

char* number_text(char* out, std::int32_t value) {
    return std::to_chars(out, out + number_room, value).ptr;
}

char* number_text(char* out, double value, int digits) {
    const bool plain = value > -plain_whole && value < plain_whole && value != 0;
    if (plain && value == static_cast<double>(static_cast<std::int32_t>(value)))
        return number_text(out, static_cast<std::int32_t>(value));
    return std::to_chars(out, out + number_room, value, std::chars_format::general, digits).ptr;
}

} // namespace tessor
