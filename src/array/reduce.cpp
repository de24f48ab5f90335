#include "array/reduce.h"

#include "array/folding.h"
#include "io/writers/exception.h"
#include "values/refderef.h"

#include <algorithm>
#include <array>

namespace tessor {

namespace {

constexpr std::uint32_t frame_bits =
    ISSCALAR | ISONEELEMENT | ISVECTOR | ISARRAY | ISSTRUCTURE | ISEMPTY;
constexpr std::uint32_t characters = HASASCII | HASUNICODE;

struct Fold {
    op::Instruction verb;
    bool takes_characters;
    bool forward;
};

constexpr Fold folds[] = {
    {op::ADD, false, true},
    {op::SUBTRACT, false, false},
    {op::MULTIPLY, false, false},
    {op::DIVIDE, false, false},
    {op::RESIDUE, false, false},
    {op::MINIMUM, true, false},
    {op::MAXIMUM, true, false},
    {op::POWER, false, false},
    {op::LOGARITHM, false, false},
    {op::CIRCULAR, false, false},
    {op::BINOMIAL, false, false},
    {op::AND, false, true},
    {op::OR, false, true},
    {op::STRONGAND, false, true},
    {op::STRONGOR, false, true},
    {op::STRONGNAND, false, true},
    {op::STRONGNOR, false, true},
    {op::IDENTICAL, true, false},
    {op::NOTIDENTICAL, true, false},
    {op::LESS, true, false},
    {op::NOTGREATER, true, false},
    {op::EQUIVALENT, true, false},
    {op::NOTLESS, true, false},
    {op::GREATER, true, true},
    {op::NOTEQUIVALENT, true, false},
};

const Fold* fold_of(int verb) {
    const auto* found = std::find_if(std::begin(folds), std::end(folds),
                                     [=](const Fold& fold) { return fold.verb == verb; });
    return found == std::end(folds) ? nullptr : found;
}

std::uint32_t shape_bits(std::int32_t rank, std::uint32_t m) {
    if (rank == 0)
        return ISSCALAR;
    return (rank == 1 ? ISVECTOR : ISARRAY) | (m == 1 ? ISONEELEMENT : 0u);
}

// A block of the extents that stay; null for a scalar.
BlockHandle reduced_shape(const Space& value, bool last_axis) {
    const std::int32_t rank = value.rank - 1;
    if (rank == 0)
        return {};
    std::int32_t* shape = new_shape(rank);
    for (std::int32_t axis = 0; axis < rank; ++axis)
        shape[axis] = extent(value, last_axis ? axis : axis + 1);
    return BlockHandle(shape);
}

// The argument's frame without the axis that is folded; it owns the shape.
struct Frame {
    BlockHandle shape;
    std::int32_t rank;
    std::uint32_t elements;
    std::uint32_t type;

    Frame(const Space& value, std::uint32_t m, bool last_axis)
        : shape(reduced_shape(value, last_axis)),
          rank(value.rank - 1),
          elements(m),
          type((value.type & ~frame_bits) | shape_bits(value.rank - 1, m)) {}
};

// The value's new data, in its new frame; the old ones go.
void replace(Space& value, Frame& frame, void* block) {
    release_data(value.data_pointer, value.elements);
    release_shape(value);
    value.rank = frame.rank;
    value.type = frame.type;
    value.shape_pointer = frame.shape.release();
    if (value.rank == 0)
        value.depth = 0;
    value.elements = frame.elements;
    value.last_index = static_cast<std::int32_t>(frame.elements) - 1;
    value.data_pointer = block;
    if (value.rank == 0)
        settle_scalar(value);
}

// What stays of a value whose fold has failed: as many of its elements as its frame has then.
void keep_first(Space& value, Frame& frame) {
    ArrayBuilder first(frame.elements);
    first.add_copies(value.data_pointer, frame.elements);
    replace(value, frame, first.finish());
}

bool is_arithmetic(int verb) {
    return verb == op::ADD || verb == op::SUBTRACT || verb == op::MULTIPLY || verb == op::DIVIDE;
}

Folded fold(const Folding& f) {
    const std::uint32_t mixed = f.data.type & (COMPLEXED | STRUCTURED);
    if (f.verb == op::ADD && mixed == COMPLEXED)
        return fold_components(f);
    Folded folded;
    if (is_arithmetic(f.verb) && mixed == 0)
        folded = fold_inline(f);
    else if (mixed == 0)
        folded = fold_choices(f);
    return folded.block ? folded : fold_generally(f);
}

Folded checked_fold(const Activation& run, Folding f) {
    const Fold* found = fold_of(f.verb);
    if (!found)
        f.refuse(79);
    if (!found->takes_characters && (run.top->type & characters))
        f.refuse(75);
    f.forward = found->forward;
    return fold(f);
}

Next reduce_axis(Activation& run, bool last_axis) {
    Space& value = *run.top;
    if ((value.type & ISINPLACE) || !value.data_pointer)
        return Next::advance;
    if (value.type & ISADDRESS)
        fail(145, &run.top, run.now);
    if (value.rank <= 0)
        return Next::advance;
    const auto n = static_cast<std::uint32_t>(extent(value, last_axis ? value.rank - 1 : 0));
    const std::uint32_t m = value.elements / n;
    Frame frame(value, m, last_axis);
    operations += value.elements;
    try {
        const Folded folded =
            checked_fold(run, {run, value, frame.rank, n, m, last_axis, run.now->suboperation,
                               /*forward=*/false});
        frame.type = (frame.type & ~folded.clear) | folded.set;
        replace(value, frame, folded.block);
    } catch (const ErrorJump& jump) {
        if (jump.value == -1) // not for a signal
            keep_first(value, frame);
        throw;
    }
    return Next::advance;
}

} // namespace

Next reduce(Activation& run) {
    return reduce_axis(run, false);
}

Next reducelastaxis(Activation& run) {
    return reduce_axis(run, true);
}

} // namespace tessor
