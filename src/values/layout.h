// How a data block holds its elements.
//
// A block is either `elements` (DataElements, for mixed, nested and named data) or packed: one tag,
// form and marks for all, kept in the block's layout word, and the values in a plain array. Cold
// code reads any layout through element_at and writes through an ArrayBuilder (array.h) or
// own_elements; only hot loops look at the storage.
#pragma once

#include "values/block.h"
#include "values/space.h"

namespace tessor {

enum class Storage : std::uint8_t {
    elements,   ///< DataElement
    character,  ///< one byte each, tag ascii
    integer,    ///< int32_t
    real,       ///< double
    complex,    ///< double[2]
    quaternion, ///< double[4]
    octonion,   ///< double[8]
    truth,      ///< one byte each, 0 or 1: integers
    degree,     ///< one byte each, 0 or 1: reals 0.0 or 1.0
    quotient,   ///< double; whole values from 0 to 2147483647 are integers, the rest reals
    promoted,   ///< double; values up to 2147483647 in magnitude are integers, the rest reals
};

/// What a layout word tells.
struct Layout {
    Storage storage = Storage::elements;
    std::uint16_t form = form::number;
    std::uint16_t marks = 0;
    bool operator==(const Layout&) const = default;
};

/// Marks that a packed block can carry; elements with others stay DataElements.
inline constexpr std::uint16_t packed_marks = mark::probable | mark::degrees | mark::r;

constexpr std::uint32_t encode(Layout layout) {
    const std::uint32_t m = layout.marks;
    return static_cast<std::uint32_t>(layout.storage) | (m & 1u) << 4 | (m & 0x20u)
           | (m & 0x100u) >> 2 | static_cast<std::uint32_t>(layout.form) << 16;
}
constexpr Layout decode(std::uint32_t word) {
    return {static_cast<Storage>(word & 0xf), static_cast<std::uint16_t>(word >> 16),
            static_cast<std::uint16_t>((word >> 4 & 1u) | (word & 0x20u) | (word & 0x40u) << 2)};
}

/// Layout of a data block.
inline Layout layout_of(const void* block) {
    return decode(header_of(block).layout);
}
inline Storage storage_of(const void* block) {
    return static_cast<Storage>(header_of(block).layout & 0xf);
}

/// Bytes of one item.
constexpr std::size_t item_size(Storage storage) {
    switch (storage) {
    case Storage::elements: return sizeof(DataElement);
    case Storage::character:
    case Storage::truth:
    case Storage::degree: return 1;
    case Storage::integer: return 4;
    case Storage::real:
    case Storage::quotient:
    case Storage::promoted: return 8;
    case Storage::complex: return 16;
    case Storage::quaternion: return 32;
    case Storage::octonion: return 64;
    }
    return 0;
}

/// The tag that all items share; none for elements, quotients and promoted numbers.
constexpr std::int32_t storage_tag(Storage storage) {
    switch (storage) {
    case Storage::character: return tag::ascii;
    case Storage::integer:
    case Storage::truth: return tag::integer;
    case Storage::real:
    case Storage::degree: return tag::real;
    case Storage::complex: return tag::complex;
    case Storage::quaternion: return tag::quaternion;
    case Storage::octonion: return tag::octonion;
    default: return tag::none;
    }
}

/// The plain packed storage of a tag; elements for tags that aren't packed.
constexpr Storage tag_storage(std::int32_t tag) {
    switch (tag) {
    case tag::ascii: return Storage::character;
    case tag::integer: return Storage::integer;
    case tag::real: return Storage::real;
    case tag::complex: return Storage::complex;
    case tag::quaternion: return Storage::quaternion;
    case tag::octonion: return Storage::octonion;
    default: return Storage::elements;
    }
}

/// Number of doubles in a value of a real or hypercomplex tag; 0 for others.
constexpr int components_of(std::int32_t tag) {
    switch (tag) {
    case tag::real: return 1;
    case tag::complex: return 2;
    case tag::quaternion: return 4;
    case tag::octonion: return 8;
    default: return 0;
    }
}

/// A whole quotient that fits is an integer.
inline bool quotient_is_integer(double q) {
    return q >= 0 && q <= 2147483647.0 && q == static_cast<double>(static_cast<std::int32_t>(q));
}

/// Promoted numbers come from integers: those that fit are integers.
inline bool promoted_is_integer(double p) {
    return p >= -2147483647.0 && p <= 2147483647.0;
}

} // namespace tessor
