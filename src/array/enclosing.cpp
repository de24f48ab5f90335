// RAVEL, ENCLOSE, DISCLOSE, FIRST, REST.
#include "array/items.h"
#include "array/structure.h"
#include "values/reshape.h"
#include "values/shared.h"

#include <algorithm>

namespace tessor {

namespace {

// Variants, as the cell carries them.
constexpr std::uint16_t atom = op::NUMBER;
constexpr std::uint16_t first_one = op::FIRST;
constexpr std::uint16_t without_axis = op::REDUCE;

// What is left of the type where all elements go: marks of the value, and that it was a text.
constexpr std::uint32_t lasting_bits = 0xff0000ffu & ~ISINPLACE;

bool is_array(const Space& value) {
    return value.rank >= 0;
}

// A scalar with element i; subarrays stay enclosed.
Space scalar_of(const Space& value, std::uint32_t i) {
    Space scalar{};
    ArrayBuilder single(1);
    single.add_copies(value.data_pointer, 1, i);
    scalar.elements = 1;
    scalar.data_pointer = single.finish();
    scalar.type = (value.type & ~all_class_bits) | ISSCALAR;
    recompute_kinds(scalar, true);
    if (!(scalar.type & STRUCTURED))
        scalar.depth = 0;
    settle_scalar(scalar);
    return scalar;
}

void replace(Space& place, const Space& value) {
    dereferencepoint(&place);
    place = value;
}

void give_first_of_empty(Space& value) {
    const bool text = (value.type & HASASCII) != 0;
    dereferencepoint(&value);
    if (text)
        make_character(value, ' ');
    else
        make_integer(value, 0);
}

// Elements from `from` on, n of them; the last extent becomes `extent`, or goes if it is 0.
void keep_items(Space& value, std::uint32_t from, std::uint32_t n, std::int32_t new_extent) {
    const std::int32_t rank = new_extent == 0 ? value.rank - 1 : value.rank;
    BlockHandle shape;
    if (rank > 0) {
        shape = BlockHandle(new_shape(rank));
        for (std::int32_t axis = 0; axis < rank; ++axis)
            shape.as<std::int32_t>()[axis] = extent(value, axis);
        if (new_extent != 0)
            shape.as<std::int32_t>()[rank - 1] = new_extent;
    }
    ArrayBuilder kept(n);
    kept.add_copies(value.data_pointer, n, from);
    void* block = kept.finish();
    release_data(value.data_pointer, value.elements);
    release_shape(value);
    value.rank = rank;
    value.shape_pointer = shape.release();
    value.data_pointer = block;
    value.elements = n;
    value.last_index = static_cast<std::int32_t>(n) - 1;
    value.type = (value.type & ~all_class_bits) | class_bits(rank, n);
    recompute_kinds(value, true);
    if (rank == 0)
        settle_scalar(value);
}

void make_empty_rest(Space& value, bool drops_axis) {
    const std::int32_t rank = drops_axis && value.rank > 0 ? 1 : value.rank;
    BlockHandle shape;
    if (rank > 0) {
        shape = BlockHandle(new_shape(rank));
        std::fill_n(shape.as<std::int32_t>(), rank, 0);
    }
    const std::uint32_t type =
        (value.type & lasting_bits) | (value.type & HASASCII) | class_bits(rank, 0);
    dereferencepoint(&value);
    value = Space{};
    value.rank = rank;
    value.type = type;
    value.shape_pointer = shape.release();
}

} // namespace

Next ravel_body(Activation& run) {
    ravel(*run.top);
    return Next::advance;
}

Next enclose_body(Activation& run) {
    Space& value = *run.top;
    const bool as_atom = run.now->suboperation == atom;
    if (!as_atom && (value.type & ISSCALAR))
        return Next::advance;
    const int depth = is_array(value) ? value.depth : 0;
    BlockHandle shape(new_shape(1));
    *shape.as<std::int32_t>() = 1;
    ArrayBuilder single(1);
    single.add_enclosed(value);
    value = Space{};
    value.rank = 1;
    value.elements = 1;
    value.shape_pointer = shape.release();
    value.data_pointer = single.finish();
    value.type = STRUCTURED | ISSTRUCTURE | (as_atom ? ISSCALAR : ISVECTOR | ISONEELEMENT);
    value.depth = static_cast<std::int16_t>(std::min(as_atom ? depth : depth + 1, 32767));
    return Next::advance;
}

Next disclose(Activation& run) {
    Space& value = *run.top;
    if (!is_array(value) || !(value.type & STRUCTURED) || !value.data_pointer)
        return Next::advance;
    if (value.elements != 1)
        return failed(run, 973);
    const Element element = element_at(value, 0);
    if (element.tag != tag::subarray)
        return Next::advance;
    Space inner = *element.subarray;
    referencepoint(&inner);
    replace(value, inner);
    return Next::advance;
}

Next first(Activation& run) {
    Space& value = *run.top;
    if (value.rank <= 0)
        return Next::advance;
    if (!value.data_pointer) {
        give_first_of_empty(value);
        return Next::advance;
    }
    const bool very_first = run.now->suboperation == first_one;
    const Element element = element_at(value, 0);
    if (very_first && element.tag == tag::subarray) {
        Space inner = *element.subarray;
        referencepoint(&inner);
        replace(value, inner);
        return Next::advance;
    }
    if (value.rank == 1 || very_first) {
        if (element.tag < tag::subarray || element.tag > tag::octonion)
            return failed(run, 994);
        replace(value, scalar_of(value, 0));
        return Next::advance;
    }
    const auto slices = static_cast<std::uint32_t>(extent(value, value.rank - 1));
    keep_items(value, 0, value.elements / slices, 0);
    return Next::advance;
}

Next rest(Activation& run) {
    Space& value = *run.top;
    if (!is_array(value))
        return Next::advance;
    const bool drops_axis = run.now->suboperation == without_axis;
    const std::int32_t slices =
        value.rank > 0 && value.elements > 1 ? extent(value, value.rank - 1) : 1;
    if (slices == 1) {
        make_empty_rest(value, drops_axis);
        return Next::advance;
    }
    const std::uint32_t slice = value.elements / static_cast<std::uint32_t>(slices);
    const bool drops = drops_axis && slices == 2;
    keep_items(value, slice, value.elements - slice, drops ? 0 : slices - 1);
    return Next::advance;
}

} // namespace tessor
