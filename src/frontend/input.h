// Source bytes with a look-ahead that is filled one byte at a time.
//
// Recognisers peek only while their own rule can still match, so no more is read than is needed to
// decide a token: a console isn't waited for, and a stream that others read too stands right behind
// the sentence. Bytes that were read for a decision and not used serve the next token; a restart
// throws them away.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>
#include <vector>

namespace tessor {

struct Input {
    std::FILE* stream = nullptr;
    const unsigned char* at = nullptr; ///< first byte that no token has used
    std::size_t ready = 0;             ///< bytes from there on that have been read
    bool from_text = false;
    bool ended = false;
    std::vector<unsigned char> buffer; ///< look-ahead of a stream
};

/// What peek and next give at the end of the input.
inline constexpr int input_end = -1;

/// Restarts on a text if one is given, else on the stream.
void restart(Input& input, std::FILE* stream, const char* text);
/// Gives up what a token may have taken to be looked at; a restart must follow.
void release_look_ahead(Input& input);

/// Reads up to the byte at `ahead`. May throw ErrorJump, when a signal interrupts the reading.
int peek_further(Input& input, std::size_t ahead);
int next_from_source(Input& input);

/// The byte `ahead` places behind the first unused one.
inline int peek(Input& input, std::size_t ahead) {
    return ahead < input.ready ? input.at[ahead] : peek_further(input, ahead);
}

/// Uses up n bytes that have been read.
inline void use(Input& input, std::size_t n) {
    input.at += n;
    input.ready -= n;
}

/// Reads and uses one byte.
inline int next(Input& input) {
    if (input.ready == 0)
        return next_from_source(input);
    const int byte = *input.at;
    use(input, 1);
    return byte;
}

/// Bytes that have been read, from `from` on; valid until more is read.
inline std::string_view bytes(const Input& input, std::size_t from, std::size_t length) {
    return {reinterpret_cast<const char*>(input.at) + from, length};
}

constexpr bool is_blank(int byte) {
    return byte == ' ' || byte == '\t' || byte == '\r';
}
constexpr bool is_digit(int byte) {
    return byte >= '0' && byte <= '9';
}
constexpr bool is_name_letter(int byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte == '_';
}
constexpr bool is_word_byte(int byte) {
    return is_digit(byte) || is_name_letter(byte);
}
/// Any byte that isn't part of a word; the end of the input is none.
constexpr bool is_boundary(int byte) {
    return byte > 0 && !is_word_byte(byte);
}

/// The high minus of numbers.
inline constexpr int high_minus = 0xaf;

constexpr bool is_minus(int byte) {
    return byte == '-' || byte == high_minus;
}

} // namespace tessor
