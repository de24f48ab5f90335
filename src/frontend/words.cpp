#include "frontend/words.h"

namespace tessor {

namespace {

struct Matcher {
    Input& input;
    std::size_t from;
    bool across_lines;
    WordMatch best{};

    int byte_at(std::size_t length) const { return peek(input, from + length); }

    void offer(const Word& word, std::size_t length) {
        std::size_t whole = length;
        if (!word.stands_alone) {
            if (!is_boundary(byte_at(length)))
                return;
            ++whole;
        }
        if (whole > best.length)
            best = {&word, whole, length};
    }

    std::size_t skip_gap(char which, std::size_t length) const {
        for (;; ++length) {
            const int byte = byte_at(length);
            const bool blank = is_blank(byte) || (byte == '\n' && across_lines)
                               || (which == wide_gap && (byte == '"' || byte == '|'));
            if (!blank)
                return length;
        }
    }

    // The one word that is left needs no search.
    void run_single(const Word& word, std::size_t depth, std::size_t length) {
        for (; depth < word.length; ++depth, ++length)
            if (byte_at(length) != static_cast<unsigned char>(word.text[depth]))
                return;
        offer(word, length);
    }

    // The words from `begin` to `end` agree in their first `depth` bytes, which took `length` bytes
    // of the input.
    void run(const Word* begin, const Word* end, std::size_t depth, std::size_t length) {
        const auto byte_of = [&depth](const Word& word) {
            return static_cast<unsigned char>(word.text[depth]);
        };
        while (begin < end) {
            if (end - begin == 1 && !begin->has_gap) {
                run_single(*begin, depth, length);
                return;
            }
            if (begin->length == depth)
                offer(*begin++, length);
            while (begin < end && byte_of(*begin) <= wide_gap) {
                const unsigned char which = byte_of(*begin);
                const Word* behind = begin;
                while (behind < end && byte_of(*behind) == which)
                    ++behind;
                run(begin, behind, depth + 1, skip_gap(static_cast<char>(which), length));
                begin = behind;
            }
            if (begin == end)
                return;
            const int byte = byte_at(length);
            if (byte == input_end)
                return;
            begin = std::partition_point(begin, end,
                                         [&](const Word& word) { return byte_of(word) < byte; });
            end = std::partition_point(begin, end,
                                       [&](const Word& word) { return byte_of(word) == byte; });
            ++depth;
            ++length;
        }
    }
};

} // namespace

WordMatch match_word(Input& input, std::size_t from, const Word* begin, const Word* end,
                     bool across_lines) {
    Matcher matcher{input, from, across_lines};
    matcher.run(begin, end, 1, 1);
    return matcher.best;
}

} // namespace tessor
