// The text form of a value: what makes a key of anything.
//
// Two values that are the same give the same text, so the symbol table is also a store keyed by
// values, and a function's remembered results are found by the texts of its arguments. A text is
// its own bytes; everything else is written in letters and signs that no plain name has.
#pragma once

#include "values/block.h"
#include "values/space.h"

#include <cstddef>
#include <string_view>

namespace tessor {

/// A text in the making, in a counted block.
class KeyText {
public:
    void put(char byte) {
        if (size_ == capacity_)
            grow(1);
        block_.as<char>()[size_++] = byte;
    }
    void put(std::string_view text);

    std::size_t size() const { return size_; }
    std::string_view view() const { return {block_.as<char>(), size_}; }
    /// The counted text, zero-ended, handed to the caller. The key is empty again.
    char* finish();

private:
    void grow(std::size_t more);

    BlockHandle block_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

/// Appends the text form of a value or cell; `nested` is above 0 inside another value. False: it is
/// nested too deeply for the native stack, which the caller reports as 806.
bool TOAddr1(KeyText& text, const Space& value, int nested);

/// The text form by itself, a fresh counted text; null where TOAddr1 gives false.
char* TOAddr(const Space& value, int nested);

/// A number that isn't whole, by its binary exponent and sixteenths.
void rtox(KeyText& text, double value);
/// A component of a complex number, quaternion or octonion.
void realtox(KeyText& text, double value);

} // namespace tessor
