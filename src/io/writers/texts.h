// Characters and texts, bare and between quotes.
#pragma once

#include "io/writers/writer.h"
#include "values/array.h"

namespace tessor {

/// Pure text by its kind bits.
inline bool is_text(const Space& space) {
    return (space.type & HASASCII) && !(space.type & (STRUCTURED | COMPLEXED));
}

/// Characters alone, whatever other kinds the array has held: a literal of them is a text.
bool holds_text(const Space& space);

/// Whether a text in an array is read back as one.
bool fits_as_item(const Space& text);

void write_text(Writer& out, const Space& text, Place place);

/// A character that stands for itself in source form.
void write_quoted(Writer& out, const Element& element);

/// The extents between brackets.
void write_shape(Writer& out, const Space& space);

} // namespace tessor
