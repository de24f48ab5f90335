// Tables of fixed spellings, and the longest match in them.
//
// A table is made when it compiles, from rows that each name one or more spellings, separated by
// blanks. Its words are sorted by their bytes, so that the words that begin with what was read so
// far are neighbours: matching narrows a range byte by byte. A word is also a permanent counted
// text, so cells and elements can hold it as it stands.
#pragma once

#include "frontend/input.h"
#include "values/block.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace tessor {

/// Stands in a spelling for any run of blanks and line ends, none at all too.
inline constexpr char gap = '\1';
/// The same, in which " and | count as blanks.
inline constexpr char wide_gap = '\2';

struct Word {
    BlockHeader header{-1, 0};
    char text[24] = {};
    std::uint8_t length = 0;
    bool stands_alone = false; ///< needs no boundary byte behind it
    bool has_gap = false;
    std::uint16_t row = 0;

    constexpr std::string_view view() const { return {text, length}; }
};

template <std::size_t N>
struct Words {
    std::array<Word, N> words;
    std::array<std::uint16_t, 257> first; ///< where the words with this first byte begin
};

/// Number of spellings in the rows of a table.
template <class Rows>
consteval std::size_t count_words(const Rows& rows) {
    std::size_t n = 0;
    for (const auto& row : rows)
        n += 1 + static_cast<std::size_t>(std::ranges::count(row.spellings, ' '));
    return n;
}

constexpr bool bytes_before(std::string_view a, std::string_view b) {
    return std::ranges::lexicographical_compare(a, b, [](char x, char y) {
        return static_cast<unsigned char>(x) < static_cast<unsigned char>(y);
    });
}

constexpr Word make_word(std::string_view text, std::size_t row) {
    Word word;
    word.length = static_cast<std::uint8_t>(text.size());
    word.row = static_cast<std::uint16_t>(row);
    for (std::size_t i = 0; i < text.size(); ++i) {
        word.text[i] = text[i];
        word.has_gap |= text[i] == gap || text[i] == wide_gap;
    }
    return word;
}

/// The words of a table in order.
template <std::size_t N, class Rows>
consteval Words<N> make_words(const Rows& rows) {
    Words<N> made{};
    std::size_t n = 0;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        std::string_view rest = rows[row].spellings;
        while (!rest.empty()) {
            const std::size_t length = std::min(rest.find(' '), rest.size());
            made.words[n++] = make_word(rest.substr(0, length), row);
            rest.remove_prefix(std::min(length + 1, rest.size()));
        }
    }
    std::ranges::sort(
        made.words, [](const Word& a, const Word& b) { return bytes_before(a.view(), b.view()); });
    std::size_t at = 0;
    for (std::size_t byte = 0; byte <= 256; ++byte) {
        while (at < N && static_cast<unsigned char>(made.words[at].text[0]) < byte)
            ++at;
        made.first[byte] = static_cast<std::uint16_t>(at);
    }
    return made;
}

/// True if no word is empty, too long for its place, or there twice.
template <std::size_t N>
consteval bool well_made(const Words<N>& made) {
    for (std::size_t i = 0; i < N; ++i) {
        const Word& word = made.words[i];
        if (word.length == 0 || word.length >= sizeof word.text)
            return false;
        if (i > 0 && !bytes_before(made.words[i - 1].view(), word.view()))
            return false;
    }
    return true;
}

struct WordMatch {
    const Word* word = nullptr;
    std::size_t length = 0;      ///< the boundary byte included
    std::size_t text_length = 0; ///< without it
};

/// The longest word of a sorted range that stands in the input at `from`. `across_lines` tells
/// whether a gap runs over line ends.
WordMatch match_word(Input& input, std::size_t from, const Word* begin, const Word* end,
                     bool across_lines);

template <std::size_t N>
WordMatch match_word(Input& input, std::size_t from, const Words<N>& table, bool across_lines) {
    const int byte = peek(input, from);
    if (byte == input_end)
        return {};
    const auto index = static_cast<std::size_t>(byte);
    const Word* words = table.words.data();
    return match_word(input, from, words + table.first[index], words + table.first[index + 1],
                      across_lines);
}

} // namespace tessor
