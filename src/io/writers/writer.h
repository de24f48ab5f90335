// What the writers share: the buffer in front of a stream, and the place where a value stands.
#pragma once

#include "values/space.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace tessor {

/// What a text that is to be read back must know of the names that there will be then: what uses a
/// name may be read before the name has its meaning, or after.
struct Vocabulary {
    /// A variable whose name is no name, as long as it has no meaning; by then it may have none.
    bool (*is_word)(MeaningTable* names, const Space& variable);
    /// A word that has been given a meaning.
    bool (*is_named)(MeaningTable* names, std::string_view word);
    MeaningTable* names; ///< the innermost table of names

    bool hides_name(const Space& variable) const { return is_word(names, variable); }
    bool hides(std::string_view word) const { return is_named(names, word); }
};

/// Collects text and hands it to the stream in large pieces; the rest goes out when it dies.
class Writer {
public:
    explicit Writer(std::FILE* stream) : stream_(stream) {}
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { drain(); }

    void put(char byte) {
        *room(1) = byte;
        ++used_;
    }
    void put(std::string_view text);

    /// A place for up to `size` bytes (at most 256); `advance` takes what was filled.
    char* room(std::size_t size) {
        if (sizeof buffer_ - used_ < size)
            drain();
        return buffer_ + used_;
    }
    void advance(const char* end) { used_ = static_cast<std::size_t>(end - buffer_); }

    /// The last byte of the text so far; 0 if there is none.
    char last() const { return used_ > 0 ? buffer_[used_ - 1] : drained_; }

    /// From now on the text is one of batches, each with room for so many cells.
    void begin_batches(int room, const Vocabulary* vocabulary) {
        batch_room_ = room;
        vocabulary_ = vocabulary;
    }
    /// Null: the text is read back, if at all, where the names mean what they mean now.
    const Vocabulary* vocabulary() const { return vocabulary_; }
    /// What follows compiles to `count` cells: a batch that can't take them ends before.
    void count_cells(int count) {
        cells_ += count;
        if (batch_room_ > 0 && cells_ > batch_room_) {
            end_batch();
            cells_ = count;
        }
    }
    /// The line that ends a batch.
    void end_batch() {
        put(".\n");
        cells_ = 0;
    }

    /// Everything goes to the stream.
    void drain();
    /// Everything leaves the stream as well.
    void flush();
    /// Between two hundreds of elements: a person sees what there is, and noted signals are taken.
    void seam();
    /// Takes noted signals, with what is written so far.
    void listen();

private:
    std::FILE* stream_;
    std::size_t used_ = 0;
    char drained_ = 0; ///< the last byte that has left the buffer
    const Vocabulary* vocabulary_ = nullptr;
    int batch_room_ = 0; ///< 0: the text isn't one of batches
    int cells_ = 0;      ///< cells of this batch so far
    int terminal_ = -1;  ///< whether the stream is one; unknown while negative
    char buffer_[4096];
};

/// Cells that a batch has room for: as many as a sentence.
inline constexpr int cells_of_a_batch = 1024;

/// How a value is to look: for a person; as a person sees a text that stands inside an array; and
/// so that the scanner reads it back.
enum class Style : std::uint8_t { display, quoted, source };

/// Where a value stands.
struct Place {
    int level = 0;
    Style style = Style::display;
    bool item = false; ///< inside an array, where only the items of a literal can stand
};

/// A value or cell, without a prefix.
void write_value(Writer& out, const Space& space, Place place);

/// A cell of a kind below 0: an instruction, a name, a function.
void write_cell(Writer& out, const Space& cell, Place place);

/// True if a name begins like one of a class.
bool has_prefix(std::string_view name);
/// True if the scanner reads a name back as this one neither bare nor between quotes: it was made
/// from a text.
bool is_key(std::string_view name);
/// Such a name's address: its text, and AT.
void write_key(Writer& out, std::string_view name);

/// The address of a local, which only the function under way can use: no source form leads to it.
bool is_local_address(const Space& value);
/// An address in a function's own table: where a saved text is read it refers to nothing, and its
/// failure ends the batch.
bool fails_elsewhere(const Space& value);

/// The cells from `lowest` to `highest` in source form, a line each, and the end of the batch.
void write_stack(Writer& out, const Space* lowest, const Space* highest);

/// The indent of a nesting level.
void write_indent(Writer& out, int level);

/// An instruction's spelling behind a blank, with :: if it is to have its first meaning whatever it
/// has been given, or would be read as the shape of the literal in front of it.
void write_spelling(Writer& out, std::string_view spelling, bool first_meaning);
/// A word that is to have its first meaning.
void write_word(Writer& out, std::string_view word);

/// The number in digits.
void write_integer(Writer& out, std::int32_t value);

/// Stops with number 806 when there is too little native stack to go one level deeper.
void guard_depth(Writer& out);

} // namespace tessor
