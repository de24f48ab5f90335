// One element of an array or a scalar, as text.
#pragma once

#include "io/writers/writer.h"
#include "values/array.h"

namespace tessor {

/// An element that is no subarray, with the blank in front of it. `whole_as_integer`: a real with a
/// whole value is written as an integer. `joined` tells whether characters just before take it
/// without a blank, and is brought up to date.
void write_element(Writer& out, const Element& element, Place place, bool whole_as_integer,
                   bool& joined);

/// The name of a named constant in place of its value. False: it has none to show.
bool write_constant_name(Writer& out, const Element& element, Place place);

/// The bits of a value, the highest first.
void write_bits(Writer& out, std::uint32_t value, int bits);

/// A character beyond the bytes, by its number.
void write_hexadecimal(Writer& out, std::uint16_t value);

} // namespace tessor
