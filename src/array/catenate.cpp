#include "array/items.h"
#include "array/structure.h"

#include <algorithm>

namespace tessor {

namespace {

bool is_empty(const Space& value) {
    return (value.type & ISEMPTY) != 0;
}

void drop_right(Activation& run) {
    pop(run);
}

void take_right(Activation& run) {
    dereferencepoint(run.top - 1);
    run.top[-1] = *run.top;
    --run.top;
}

// A scalar as a vector of one.
void make_one_vector(Space& value) {
    if (value.rank != 0 && (value.type & ISSCALAR)) // an atom
        value.type = (value.type & ~ISSCALAR) | ISVECTOR | ISONEELEMENT;
    if (value.rank != 0)
        return;
    std::int32_t* shape = new_shape(1);
    *shape = 1;
    try {
        void* block = value.data_pointer;
        if (value.type & ISINPLACE) {
            ArrayBuilder single(1);
            single.add(element_at(value, 0));
            block = single.finish();
        }
        value.data_pointer = block;
    } catch (...) {
        release_block(shape);
        throw;
    }
    if (value.type & ISINPLACE)
        value.first_index = 0;
    value.last_index = 0;
    value.type = (value.type & ~(ISSCALAR | ISINPLACE)) | ISVECTOR | ISONEELEMENT;
    value.rank = 1;
    value.depth = std::max<std::int16_t>(value.depth, 1);
    value.shape_pointer = shape;
}

// What the right operand has against its elements: 0, or the number to report.
int refusal(const Space& right) {
    if (right.type & ISINPLACE)
        return 0;
    if (right.type & (COMPLEXED | STRUCTURED))
        return simple_or_nested(right) ? 0 : 994;
    const std::int32_t tag = first_tag(right);
    const bool of_two_kinds = tag == tag::none;
    return of_two_kinds || (tag >= tag::ascii && tag <= tag::octonion) ? 0 : 991;
}

void add(ArrayBuilder& all, const Space& value) {
    if (value.type & ISINPLACE)
        all.add_in_place(value);
    else
        all.add_copies(value.data_pointer, value.elements);
}

std::uint32_t joined_type(const Space& left, const Space& right) {
    std::uint32_t type = (left.type & ~(all_class_bits | ISINPLACE)) | ISVECTOR;
    type |= right.type & (element_kinds | COMPLEXED | STRUCTURED | ISSTRUCTURE);
    return several(type & (element_kinds | STRUCTURED)) ? type | COMPLEXED : type;
}

void join(Space& left, const Space& right) {
    const std::uint32_t n = left.elements + right.elements;
    BlockHandle shape(new_shape(1));
    *shape.as<std::int32_t>() = static_cast<std::int32_t>(n);
    ArrayBuilder all(n);
    add(all, left);
    add(all, right);
    const std::uint32_t type = joined_type(left, right);
    const int depth = 1 + std::max<int>(1, right.depth);
    dereferencepoint(&left);
    left = Space{};
    left.rank = 1;
    left.type = type;
    left.shape_pointer = shape.release();
    left.depth = static_cast<std::int16_t>(std::min(depth, 32767));
    left.elements = n;
    left.last_index = static_cast<std::int32_t>(n) - 1;
    left.data_pointer = all.finish();
}

} // namespace

Next catenate(Activation& run) {
    Space& left = run.top[-1];
    const Space& right = *run.top;
    if (is_empty(left)) {
        is_empty(right) ? drop_right(run) : take_right(run);
        return Next::advance;
    }
    if (left.rank > 1 || right.rank > 1 || left.rank < 0 || right.rank < 0)
        return failed(run, 994);
    if (is_empty(right)) {
        make_one_vector(left);
        drop_right(run);
        return Next::advance;
    }
    if (const int number = refusal(right))
        return failed(run, number);
    if (std::uint64_t{left.elements} + right.elements > 2147483647u)
        return failed(run, 146);
    join(left, right);
    pop(run);
    return Next::advance;
}

} // namespace tessor
