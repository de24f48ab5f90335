#include "array/reshape.h"

#include "values/array.h"
#include "values/refderef.h"
#include "values/reshape.h"
#include "values/shared.h"

#include <cstring>

namespace tessor {

namespace {

void replace_by_integer(Space& top, std::int32_t value) {
    dereferencepoint(&top);
    make_integer(top, value);
}

// An unset value looks like an address without a name.
bool is_address_of_name(const Space& value) {
    return value.rank == kind::ADDRESS && !(value.type & ISLOCAL) && value.name;
}

void name_as_text(Space& top) {
    const std::size_t length = std::strlen(top.name);
    void* data = allocate_block(length, encode({Storage::character, form::text, 0}));
    std::memcpy(data, top.name, length);
    Space text;
    make_vector(text, static_cast<std::uint32_t>(length), data, HASASCII);
    dereferencepoint(&top);
    top = text;
    operations += static_cast<double>(length);
}

void replace_by_no_extents(Space& top) {
    dereferencepoint(&top);
    make_empty(top);
    top.type = ISEMPTY;
    top.depth = 1;
}

// The shape block becomes the data of a vector, and is not copied.
void extents_as_vector(Space& top) {
    const auto rank = static_cast<std::uint32_t>(top.rank);
    void* extents = top.shape_pointer;
    count_up(extents);
    Space vector;
    make_vector(vector, rank, extents, HASINTEGER);
    dereferencepoint(&top);
    top = vector;
}

} // namespace

Next reshape(Activation& run) {
    if (const int number = reshape_data(run.top - 1, run.top))
        return failed(run, number);
    --run.top;
    operations += run.top->elements;
    return Next::advance;
}

Next shape(Activation& run) {
    Space& top = *run.top;
    if (is_address_of_name(top))
        name_as_text(top);
    else if (top.rank > 0)
        extents_as_vector(top);
    else
        replace_by_no_extents(top);
    return Next::advance;
}

Next rank(Activation& run) {
    replace_by_integer(*run.top, run.top->rank);
    return Next::advance;
}

Next depth(Activation& run) {
    replace_by_integer(*run.top, run.top->depth);
    return Next::advance;
}

} // namespace tessor
