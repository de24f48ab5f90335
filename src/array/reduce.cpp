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

// Gives the value its reduced frame. Its data stay.
void reduce_frame(Space& value, std::uint32_t m, bool last_axis) {
    BlockHandle shape = reduced_shape(value, last_axis);
    release_shape(value);
    value.rank -= 1;
    value.elements = m;
    value.last_index = static_cast<std::int32_t>(m) - 1;
    value.shape_pointer = shape.release();
    if (value.rank == 0)
        value.depth = 0;
    value.type = (value.type & ~frame_bits) | shape_bits(value.rank, m);
}

// The argument's data, held aside until the fold has ended.
class HeldData {
public:
    explicit HeldData(const Space& value) : space_(value) {}
    HeldData(const HeldData&) = delete;
    HeldData& operator=(const HeldData&) = delete;
    ~HeldData() { release_data(space_.data_pointer, space_.elements); }
    const Space& space() const { return space_; }

private:
    Space space_;
};

bool is_arithmetic(int verb) {
    return verb == op::ADD || verb == op::SUBTRACT || verb == op::MULTIPLY || verb == op::DIVIDE;
}

Folded fold(const Folding& f) {
    const std::uint32_t mixed = f.data.type & (COMPLEXED | STRUCTURED);
    if (is_arithmetic(f.verb) && mixed == 0 && (f.data.type & numeric_kinds))
        return fold_inline(f);
    if (f.verb == op::ADD && mixed == COMPLEXED)
        return fold_components(f);
    if (f.verb == op::MINIMUM || f.verb == op::MAXIMUM) {
        const Folded folded = fold_extremes(f);
        if (folded.block)
            return folded;
    }
    return fold_generally(f);
}

// What stays of a value whose fold has failed: as many of its elements as its frame has now.
void keep_first(Space& result, const Space& data) {
    ArrayBuilder first(result.elements);
    try {
        first.add_copies(data.data_pointer, result.elements);
        result.data_pointer = first.finish();
    } catch (const OutOfStorage&) {
        const std::int16_t depth = result.depth;
        release_shape(result);
        make_empty(result);
        result.depth = depth;
    }
    if (result.rank == 0)
        settle_scalar(result);
}

void complete(Space& result, const Folded& folded) {
    result.data_pointer = folded.block;
    result.type = (result.type & ~folded.clear) | folded.set;
    if (result.rank == 0)
        settle_scalar(result);
}

Next reduce_axis(Activation& run, bool last_axis) {
    Space& value = *run.top;
    if (value.type & ISINPLACE || !value.data_pointer)
        return Next::advance;
    if (value.type & ISADDRESS)
        fail(145, &run.top, run.now);
    if (value.rank <= 0)
        return Next::advance;
    const auto n = static_cast<std::uint32_t>(extent(value, last_axis ? value.rank - 1 : 0));
    const std::uint32_t m = value.elements / n;
    const Space before = value;
    reduce_frame(value, m, last_axis);
    const HeldData data(before);
    value.data_pointer = nullptr;
    operations += before.elements;
    try {
        const Fold* found = fold_of(run.now->suboperation);
        if (!found)
            fail(79, &run.top, run.now);
        if (!found->takes_characters && (before.type & characters))
            fail(75, &run.top, run.now);
        complete(value,
                 fold({run, data.space(), value, n, m, last_axis, found->verb, found->forward}));
    } catch (...) {
        while (run.top > &value)
            pop(run);
        keep_first(value, data.space());
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
