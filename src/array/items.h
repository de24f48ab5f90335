// Moving the items of data blocks, whatever they are.
#pragma once

#include "values/array.h"
#include "values/refderef.h"

#include <cstddef>

namespace tessor {

template <std::size_t size>
struct Item {
    std::byte bytes[size];
};

/// Calls f.operator()<T>() with a type of the size of the storage's items.
template <class F>
void with_item(Storage storage, F f) {
    switch (item_size(storage)) {
    case 1: f.template operator()<std::uint8_t>(); break;
    case 4: f.template operator()<std::uint32_t>(); break;
    case 8: f.template operator()<std::uint64_t>(); break;
    case 16: f.template operator()<Item<16>>(); break;
    case 32: f.template operator()<Item<32>>(); break;
    case 40: f.template operator()<DataElement>(); break;
    default: f.template operator()<Item<64>>(); break;
    }
}

/// A block with all n items of another in a new order, which takes its place: `move` is called with
/// the new and the old items. Elements keep their counts.
template <class Move>
void rearrange(Space& space, Move move) {
    void* old = space.data_pointer;
    const Storage storage = storage_of(old);
    const std::uint32_t n = space.elements;
    void* fresh = allocate_items(n, item_size(storage), header_of(old).layout);
    with_item(storage,
              [&]<class T>() { move(static_cast<T*>(fresh), static_cast<const T*>(old)); });
    space.data_pointer = fresh;
    if (storage != Storage::elements) {
        release_block(old);
    } else if (unshared(old)) {
        free_block(old);
    } else {
        referencedataelems(static_cast<const DataElement*>(fresh), n);
        release_data(old, n);
    }
}

/// The kind bits of n elements, with STRUCTURED and ISSTRUCTURE for subarrays and COMPLEXED for
/// several kinds; `depth` is 1, or one more than that of the deepest subarray.
std::uint32_t kinds_in(const void* block, std::uint32_t n, std::int16_t& depth);

/// Sets the kind bits of a value by what its elements are now.
void recompute_kinds(Space& space, bool with_depth);

/// The bits of a rank and a number of elements.
std::uint32_t class_bits(std::int32_t rank, std::uint32_t elements);
inline constexpr std::uint32_t all_class_bits =
    ISSCALAR | ISONEELEMENT | ISVECTOR | ISARRAY | ISEMPTY;

/// Whether every element is a character, a number or a subarray.
bool simple_or_nested(const Space& space);

} // namespace tessor
