// What the conversions of a value's elements share.
#pragma once

#include "values/array.h"

namespace tessor {

/// COMPLEXED anew, from the kinds of an array of more than one element.
void settle_kinds(Space& value);

/// Adds a copy of element i, without a name and shown, whatever it was.
void add_unnamed(ArrayBuilder& builder, const void* block, std::uint32_t i);

/// Sets a depth that is at least one more than a subarray's.
void raise_depth(Space& value, std::int16_t inner);

/// Puts a scalar's element, with new kinds, or an array's block in place of the old data.
void replace_data(Space& value, void* data);

/// A value that a conversion works on; released with the handle unless it is taken.
class Converted {
public:
    /// A copy of its own.
    explicit Converted(const Space& value);
    Converted(const Converted&) = delete;
    Converted& operator=(const Converted&) = delete;
    ~Converted();

    Space& value() { return value_; }
    /// Into the builder as a subarray.
    void enclose_in(ArrayBuilder& builder, std::uint16_t form, std::uint16_t marks);

private:
    Space value_;
};

} // namespace tessor
