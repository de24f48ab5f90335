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
    bool slice = false;       ///< a part of a result that several threads make
    std::uint32_t offset = 0; ///< what stands before the slice in the operands
    bool alone = false;       ///< neither it nor what it holds may be shared between threads
};

/// A result in the making.
struct Outcome {
    BlockHandle fresh;      ///< a block of our own, or
    void* reused = nullptr; ///< that of the operand which is overwritten
    std::uint32_t done = 0;
    std::uint32_t kinds = 0;
    std::uint32_t integers = 0; ///< of doubles that stand for two kinds of number
    bool shared = false;        ///< workers are making it too

    // A slice has its place in a block that others write too, for as long as its results fit there.
    void* place = nullptr;
    bool wide_place = false; ///< room for what the wide loop makes
    bool over_operand = false;

    void* block() const { return reused ? reused : fresh ? fresh.get() : place; }
};

/// What the packed road is going to make, as far as the first few results tell.
struct Forecast {
    Storage storage = Storage::elements; ///< elements: the element road makes all
    Storage wide_storage = Storage::elements;
    bool wide = false;         ///< doubles from the start
    bool over_operand = false; ///< in the block of the operand that is written over
    Look look;
};
Forecast forecast(Frame& f, const DyadicVerb& verb);
Forecast forecast(Frame& f, const MonadicVerb& verb);
/// The block of the operand that is written over, if it can hold such results; else null.
void* target_block(const Frame& f, Storage storage);
/// Items of a packed block of integers or truth bytes, as doubles.
void widen_items(const void* from, Storage storage, double* to, std::uint32_t n);

/// The operand that is written over, if one is.
inline Space& overwritten(const Frame& f) {
    return f.target == Target::right ? *f.right : *f.left;
}

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

/// After a failure: a block of f.n elements, which is taken over, takes the place of the operand
/// that results were to be written over. `kinds` are bits of elements that it has got.
void put_over_operand(const Frame& f, void* block, std::uint32_t kinds) noexcept;

/// Makes the results from `done` on, in a fresh block with those made before.
void element_road(const Frame& f, const DyadicVerb& verb, Outcome& out);
void element_road(const Frame& f, const MonadicVerb& verb, Outcome& out);

} // namespace tessor
