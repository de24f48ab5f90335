#include "values/reshape.h"

#include "values/array.h"
#include "values/refderef.h"

#include <algorithm>
#include <cstring>

namespace tessor {

namespace {

bool as_int32(double value, std::int32_t& whole) {
    if (!(value >= -2147483648.0 && value <= 2147483647.0))
        return false;
    whole = static_cast<std::int32_t>(value);
    return static_cast<double>(whole) == value;
}

// A shape element that is, or counts as, an integer: a number whose other components add up to 0.
bool integer_valued(const Element& element, std::int32_t& whole) {
    if (element.tag == tag::integer) {
        whole = element.integer;
        return true;
    }
    const int width = components_of(element.tag);
    if (width == 0)
        return false;
    double rest = 0;
    for (int i = 1; i < width; ++i)
        rest += element.c[i];
    return rest == 0 && as_int32(element.c[0], whole);
}

// The extents of a shape, with the number of the first rule that they break.
struct Extents {
    ArrayBuilder converted; ///< when the elements can't serve as they are
    bool as_they_are = true;
    std::uint64_t count = 1; ///< product, saturating above 32 bits
    std::uint32_t rank = 0;
    int number = 0;
};

constexpr std::uint64_t count_limit = 0xffffffffu;
constexpr std::uint32_t rank_limit = 0x7fffffffu;

void multiply_in(Extents& extents, std::int32_t extent, bool& zero) {
    if (extent == 0)
        zero = true;
    if (extents.count <= count_limit)
        extents.count *= static_cast<std::uint32_t>(extent);
}

Extents read_extents(const Space& right) {
    Extents extents;
    extents.rank = right.elements;
    const bool integers = (right.type & element_kinds) == HASINTEGER;
    const bool in_block = !(right.type & ISINPLACE);
    const Storage storage = in_block ? storage_of(right.data_pointer) : Storage::elements;
    extents.as_they_are =
        integers && in_block && (storage == Storage::integer || storage == Storage::elements);
    bool whole_numbers = true;
    bool negative = false;
    bool zero = false;
    for (std::uint32_t i = 0; i < right.elements; ++i) {
        Element element = element_at(right, i);
        std::int32_t whole = 0;
        if (element.tag == tag::ascii) {
            extents.number = 1102;
            return extents;
        }
        if (!integer_valued(element, whole)) {
            whole_numbers = false;
            continue;
        }
        negative |= whole < 0;
        if (!negative)
            multiply_in(extents, whole, zero);
        if (!extents.as_they_are) {
            element.tag = tag::integer;
            element.integer = whole;
            extents.converted.add(element);
            if (element.name)
                count_up(element.name);
        }
    }
    if (zero)
        extents.count = 0;
    if (!whole_numbers || negative)
        extents.number = 113;
    else if (extents.count > count_limit || extents.rank > rank_limit)
        extents.number = 146;
    return extents;
}

// The number to report if one of the first `copied` elements can't be copied: files can't.
int copy_fault(const Space& space, std::uint32_t copied) {
    if ((space.type & ISINPLACE) || storage_of(space.data_pointer) != Storage::elements)
        return 0;
    const auto* elements = static_cast<const DataElement*>(space.data_pointer);
    const bool mixed = (space.type & (COMPLEXED | STRUCTURED)) != 0;
    const std::uint32_t n = mixed ? std::min(copied, space.elements) : 1;
    for (std::uint32_t i = 0; i < n; ++i) {
        const std::int32_t t = elements[i].tag;
        const bool copies = (t >= (mixed ? 1 : 2) && t <= tag::octonion) || t == tag::function;
        if (!copies)
            return mixed ? 994 : 991;
    }
    return 0;
}

// The number to report if the value can't be given `count` elements, 0 if it can.
int resize_fault(const Space& left, std::uint32_t count) {
    if (left.rank < 0)
        return 991;
    const bool shared = !(left.type & ISINPLACE) && !unshared(left.data_pointer);
    const bool copies = count > left.elements || (count < left.elements && shared);
    return copies ? copy_fault(left, count) : 0;
}

// A block of `count` elements that repeats the first `old` of another one.
void* repeated(const void* block, std::uint32_t old, std::uint32_t count) {
    const std::size_t item = item_size(storage_of(block));
    void* fresh = allocate_items(count, item, header_of(block).layout);
    auto* bytes = static_cast<char*>(fresh);
    const std::size_t total = std::size_t{count} * item;
    std::size_t done = std::min(std::size_t{old} * item, total);
    std::memcpy(bytes, block, done);
    while (done < total) {
        const std::size_t run = std::min(done, total - done);
        std::memcpy(bytes + done, bytes, run);
        done += run;
    }
    if (storage_of(block) == Storage::elements)
        referencedataelems(static_cast<const DataElement*>(fresh), count);
    return fresh;
}

// The data block of a scalar in place, for a value that is to be an array.
void* block_of_scalar(const Space& scalar) {
    ArrayBuilder builder(1);
    builder.add(element_at(scalar, 0));
    return builder.finish();
}

void resize(Space& left, std::uint32_t count) {
    if (left.type & ISINPLACE) {
        void* block = block_of_scalar(left);
        left.type &= ~ISINPLACE;
        left.first_index = 0;
        left.last_index = 0;
        left.data_pointer = block;
    }
    const std::uint32_t old = left.elements;
    void* block = left.data_pointer;
    if (count == old)
        return;
    if (count < old && unshared(block)) {
        if (storage_of(block) == Storage::elements)
            dereferencedataelems(static_cast<DataElement*>(block) + count, old - count);
        left.elements = count;
        left.data_pointer = Reallocate(block, std::size_t{count} * item_size(storage_of(block)));
        return;
    }
    void* fresh = repeated(block, old, count);
    release_data(block, old);
    left.data_pointer = fresh;
}

// The same elements in a block of their own. Returns the number to report, or 0.
int make_private(Space& left) {
    if ((left.type & ISINPLACE) || left.rank < 0 || !left.data_pointer)
        return 0;
    void* block = left.data_pointer;
    if (unshared(block)) {
        left.type |= INOUT;
        return 0;
    }
    if (const int number = copy_fault(left, left.elements))
        return number;
    left.data_pointer = repeated(block, left.elements, left.elements);
    release_data(block, left.elements);
    return 0;
}

void set_no_elements(Space& left, std::uint32_t rank) {
    left = Space{};
    left.rank = static_cast<std::int32_t>(rank);
    left.type = ISEMPTY | (rank < 2 ? ISVECTOR : ISARRAY);
    left.depth = 1;
}

void set_frame(Space& left, std::uint32_t rank, std::uint32_t count) {
    if (left.depth == 0)
        left.depth = 1;
    left.rank = static_cast<std::int32_t>(rank);
    left.type &= ~(ISSCALAR | ISONEELEMENT | ISVECTOR | ISARRAY | ISSTRUCTURE | ISEMPTY);
    left.type |= rank < 2 ? ISVECTOR : ISARRAY;
    if (count == 1)
        left.type |= ISONEELEMENT;
    left.first_index = 0;
    left.last_index = static_cast<std::int32_t>(count - 1);
    left.elements = count;
}

// Gives up what is left of `right` when `shape`, its own block or a converted one, has been taken.
void use_up(Space& right, const void* shape) {
    release_shape(right);
    if (!(right.type & ISINPLACE) && right.data_pointer != shape)
        release_data(right.data_pointer, right.elements);
    right = Space{};
}

} // namespace

int reshape_data(Space* left, Space* right) {
    if (right->rank > 1)
        return 10;
    if (right->type & ISEMPTY) {
        if (const int number = make_private(*left))
            return number;
        dereferencepoint(right);
        *right = Space{};
        return 0;
    }
    if (right->type & STRUCTURED)
        return 1101;
    if (right->rank < 0 || right->elements == 0)
        return 113;
    Extents extents = read_extents(*right);
    if (extents.number)
        return extents.number;
    const auto count = static_cast<std::uint32_t>(extents.count);
    if (count != 0 && left->elements == 0)
        return 11;
    if (count != 0) {
        if (const int number = resize_fault(*left, count))
            return number;
    }
    if (count != 0)
        resize(*left, count);
    void* shape = extents.as_they_are ? right->data_pointer : extents.converted.finish();
    use_up(*right, shape);
    if (count != 0) {
        release_shape(*left);
        set_frame(*left, extents.rank, count);
    } else {
        dereferencepoint(left);
        set_no_elements(*left, extents.rank);
    }
    left->shape_pointer = shape;
    return 0;
}

void ravel(Space& value) {
    if (value.rank < 0 || value.rank == 1)
        return;
    std::int32_t* shape = new_shape(1);
    shape[0] = static_cast<std::int32_t>(value.elements);
    if (value.type & ISINPLACE) {
        ArrayBuilder single(1);
        try {
            single.add(element_at(value, 0));
        } catch (...) {
            release_block(shape);
            throw;
        }
        value.type &= ~ISINPLACE;
        value.first_index = 0;
        value.last_index = 0;
        value.data_pointer = single.finish();
    }
    if (value.rank == 0) {
        value.type = (value.type & ~ISSCALAR) | (value.elements == 1 ? ISONEELEMENT : 0u);
        value.depth = 1;
    }
    release_shape(value);
    value.rank = 1;
    value.type = (value.type & ~ISARRAY) | ISVECTOR;
    value.shape_pointer = shape;
}

} // namespace tessor
