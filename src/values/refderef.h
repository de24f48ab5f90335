// Counting values up and down.
//
// A Space that is stored anywhere holds one count on each block that it refers to directly. A block
// owns what its own records refer to and gives it up when its count falls to 0. So copying a value,
// nested or not, is two counts at the most, and releasing a nested value walks it with a work list,
// never with native recursion.
#pragma once

#include "values/block.h"
#include "values/space.h"

namespace tessor {

/// Counts up everything that the Space refers to directly. Null does nothing.
void referencepoint_blocks(const Space& space);

inline void referencepoint(const Space* space) {
    if (space && !(space->type & ISINPLACE))
        referencepoint_blocks(*space);
}

/// Counts down everything that the Space refers to. The fields stay, the pointers become null.
void dereferencepoint_blocks(Space& space) noexcept;

inline void dereferencepoint(Space* space) noexcept {
    if (space && !(space->type & ISINPLACE))
        dereferencepoint_blocks(*space);
}

/// Counts up, or gives up, what n elements refer to (names, subarrays, payloads, files, cells).
void referencedataelems(const DataElement* elements, std::uint32_t n);
void dereferencedataelems(DataElement* elements, std::uint32_t n) noexcept;

/// Frees a data block whose count has fallen to 0, with what it owns.
void free_data(void* block, std::uint32_t n) noexcept;

/// Counts down a data block of n elements in any layout, and what it owns with the last count.
inline void release_data(void* block, std::uint32_t n) noexcept {
    if (block && count_down(block))
        free_data(block, n);
}

/// Counts down the shape of an array, which can hold named integers. The field becomes null.
inline void release_shape(Space& space) noexcept {
    if (space.rank <= 0)
        return;
    release_data(space.shape_pointer, static_cast<std::uint32_t>(space.rank));
    space.shape_pointer = nullptr;
}

/// Counts down a counted block of one Space (a subarray, a name's value), with what it owns.
void release_enclosed(Space* block) noexcept;

/// Counts down a function body.
void release_body(Space* body) noexcept;

/// Releases every cell of a program up to the end mark. The buffer stays.
void cleanup(Space* cells) noexcept;

/// A new body of count 1: copies of the cells of a FUNCTION's body, each counted up. Neither a
/// record of YIELD nor the text kept for RESULT goes along.
Space* copyfun(const Space& function);

/// What a body of cells is closed by.
inline bool is_end(const Space& cell) {
    return cell.type == 0;
}

/// Closes the stream in a file element's counted block when the last reference to the block goes;
/// set by the owner of files.
extern void (*close_stream)(void* block) noexcept;

/// Counts down a link of the meaning chain, with what it owns; set by the symbol tables.
extern void (*release_link)(MeaningTable* link) noexcept;

} // namespace tessor
