// The two roads that a scalar verb's elements take, and what the frame tells them.
//
// The packed road runs loops over packed operands as far as they go; the element road does what is
// left, one element at a time. Both leave the operands to the frame.
#pragma once

#include "io/writers/exception.h"
#include "scalar/frame.h"
#include "values/shared.h"

namespace tessor {

/// The operand whose block the result is written over, as the language tells it. Where the storage
/// of the result differs, other memory is used, and only the choice itself is left to be seen.
enum class Target { fresh, left, right, both };

struct Frame {
    Space** top;
    const Space* cell;
    Space* quads;
    Space* left;
    Space* right; ///< null for a monadic verb
    const Rules* rules;
    const void* op;
    std::uint32_t n;
    std::uint32_t joined; ///< types of the operands
    bool left_single = false;
    bool right_single = false;
    bool keep = false; ///< no operand block may be overwritten
    Target target = Target::fresh;
};

/// A result in the making.
struct Outcome {
    BlockHandle fresh;      ///< a block of our own, or
    void* reused = nullptr; ///< that of the operand which is overwritten
    std::uint32_t done = 0;
    std::uint32_t kinds = 0;

    void* block() const { return reused ? reused : fresh.get(); }
};

inline bool in_place(const Space& space) {
    return (space.type & ISINPLACE) != 0;
}

/// Kind bits of n results of a kernel, as packed items of this tag.
inline std::uint32_t kinds_of(const Kernel& kernel, std::int32_t tag, const void* items,
                              std::uint32_t n) {
    return kernel.kinds ? kernel.kinds(items, n) : kind_bit(tag);
}

/// Takes noted signals between stretches; `first` is the element to come.
inline void between_stretches(std::uint32_t first) {
    if (first && signal_noted())
        take_signals();
}

/// Sets `done` to the number of results that the loops made: all, those before the first that they
/// can't make, or none if the operands aren't packed.
void packed_road(Frame& f, const DyadicVerb& verb, Outcome& out);
void packed_road(Frame& f, const MonadicVerb& verb, Outcome& out);

/// Makes the results from `done` on, in a fresh block with those made before.
void element_road(const Frame& f, const DyadicVerb& verb, Outcome& out);
void element_road(const Frame& f, const MonadicVerb& verb, Outcome& out);

} // namespace tessor
