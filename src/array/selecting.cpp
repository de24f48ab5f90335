// COMPRESS, COMPRESSLASTAXIS and REPLICATE.
#include "array/items.h"
#include "array/structure.h"
#include "values/reshape.h"
#include "values/shared.h"

#include <algorithm>
#include <cstring>

namespace tessor {

namespace {

// An empty vector whose type is exactly that.
void make_no_vector(Space& value, std::int16_t depth) {
    dereferencepoint(&value);
    make_empty(value);
    value.depth = depth;
}

// A byte for each mask element: 1 if it keeps what stands there.
BlockHandle keepers(const Space& mask, std::uint32_t& kept) {
    BlockHandle bytes(allocate_block(mask.elements));
    auto* to = bytes.as<std::uint8_t>();
    const void* block = mask.data_pointer;
    if (storage_of(block) == Storage::truth) {
        std::memcpy(to, block, mask.elements);
    } else if (storage_of(block) == Storage::integer) {
        const auto* items = static_cast<const std::int32_t*>(block);
        std::transform(items, items + mask.elements, to,
                       [](std::int32_t x) { return static_cast<std::uint8_t>(x > 0); });
    } else {
        for (std::uint32_t i = 0; i < mask.elements; ++i)
            to[i] = element_at(mask, i).integer > 0;
    }
    kept = static_cast<std::uint32_t>(std::count(to, to + mask.elements, 1));
    return bytes;
}

// Every item is written, and the place moves on if it stays: no branch to be guessed wrong. The
// result has room for one more.
template <class T>
void keep_cycling(T* to, const T* from, std::uint32_t n, const std::uint8_t* keep,
                  std::uint32_t cycle) {
    for (std::uint32_t i = 0; i < n;)
        for (std::uint32_t k = 0; k < cycle && i < n; ++k, ++i) {
            *to = from[i];
            to += keep[k];
        }
}

template <class T>
void keep_runs(T* to, const T* from, std::uint32_t runs, const std::uint8_t* keep,
               std::uint32_t length) {
    for (std::uint32_t k = 0; k < runs; ++k, from += length)
        if (keep[k])
            to = std::copy_n(from, length, to);
}

struct Selection {
    const std::uint8_t* keep;
    std::uint32_t length; ///< of the mask
    std::uint32_t run;    ///< adjacent elements for each of its elements; 1: it cycles
    std::uint32_t result; ///< elements that stay
};

// The items that stay, in a fresh block.
void* selected(const Space& data, const Selection& s) {
    const void* block = data.data_pointer;
    const Storage storage = storage_of(block);
    const std::uint64_t room = std::uint64_t{s.result} + 1;
    BlockHandle fresh(allocate_items(room, item_size(storage), header_of(block).layout));
    with_item(storage, [&]<class T>() {
        auto* to = fresh.as<T>();
        const auto* from = static_cast<const T*>(block);
        if (s.run == 1)
            keep_cycling(to, from, data.elements, s.keep, s.length);
        else
            keep_runs(to, from, s.length, s.keep, s.run);
    });
    if (storage == Storage::elements)
        referencedataelems(fresh.as<DataElement>(), s.result);
    return fresh.release();
}

void take_selected(Space& data, const Selection& s, std::int32_t axis, std::int32_t new_extent) {
    BlockHandle shape(new_shape(data.rank));
    for (std::int32_t k = 0; k < data.rank; ++k)
        shape.as<std::int32_t>()[k] = k == axis ? new_extent : extent(data, k);
    void* block = s.result == 0 ? nullptr : selected(data, s);
    release_data(data.data_pointer, data.elements);
    release_shape(data);
    data.shape_pointer = shape.release();
    data.data_pointer = block;
    data.elements = s.result;
    data.last_index = s.result == 0 ? 0 : static_cast<std::int32_t>(s.result) - 1;
    data.type = (data.type & ~all_class_bits) | class_bits(data.rank, s.result);
    if (!(data.type & (COMPLEXED | STRUCTURED | HASOCTONION)))
        return;
    if (block)
        recompute_kinds(data, false);
    else
        data.type &= ~(element_kinds | COMPLEXED | STRUCTURED | ISSTRUCTURE);
}

Next compress_axis(Activation& run, bool last_axis) {
    Space& data = run.top[-1];
    const Space& mask = *run.top;
    operations += data.rank < 0 ? 0 : data.elements;
    if (mask.rank < 0 || (mask.type & (element_kinds | STRUCTURED)) != HASINTEGER
        || !has_data(mask))
        return failed(run, 4);
    if (mask.type & (ISSCALAR | ISONEELEMENT)) {
        if (element_at(mask, 0).integer < 1)
            make_no_vector(data, 0);
        pop(run);
        return Next::advance;
    }
    if (!(mask.type & ISVECTOR))
        return failed(run, 4);
    if (data.rank < 1)
        return failed(run, 31);
    const std::int32_t axis = last_axis ? data.rank - 1 : 0;
    if (extent(data, axis) != static_cast<std::int32_t>(mask.elements))
        return failed(run, 31);
    std::uint32_t kept = 0;
    const BlockHandle keep = keepers(mask, kept);
    const std::uint32_t others = data.elements / mask.elements;
    const bool cycles = !last_axis || others == 1;
    take_selected(data,
                  {keep.as<std::uint8_t>(), mask.elements, cycles ? 1 : others, kept * others},
                  axis, static_cast<std::int32_t>(kept));
    pop(run);
    return Next::advance;
}

// The count, if it is whole.
bool whole_count(const Space& value, std::int32_t& count) {
    if (value.rank < 0 || !has_data(value)
        || !(value.type & (ISSCALAR | ISONEELEMENT | HASINTEGER)))
        return false;
    const Element element = element_at(value, 0);
    if (element.tag == tag::integer) {
        count = element.integer;
        return true;
    }
    const double x = element.c[0];
    if (element.tag != tag::real || !(x >= -2147483648.0 && x <= 2147483647.0))
        return false;
    count = static_cast<std::int32_t>(x);
    return count == x;
}

// The data, k times over. Returns 0, or the number to report.
int repeat(Space& data, std::int32_t k) {
    const std::int64_t n = std::int64_t{k} * data.elements;
    if (k < 0)
        return 113;
    if (n > 2147483647)
        return 146;
    void* extents =
        allocate_block(sizeof(std::int32_t), encode({Storage::integer, form::number, 0}));
    *static_cast<std::int32_t*>(extents) = static_cast<std::int32_t>(n);
    Space shape;
    make_vector(shape, 1, extents, HASINTEGER);
    int number = 0;
    try {
        number = reshape_data(&data, &shape);
    } catch (const OutOfStorage&) {
        dereferencepoint(&shape);
        throw;
    }
    if (number)
        dereferencepoint(&shape);
    return number;
}

} // namespace

Next compress(Activation& run) {
    return compress_axis(run, false);
}

Next compresslastaxis(Activation& run) {
    return compress_axis(run, true);
}

Next replicate(Activation& run) {
    Space& data = run.top[-1];
    std::int32_t k = 0;
    if (!whole_count(*run.top, k))
        return failed(run, 994);
    if (k == 0) {
        make_no_vector(data, 1);
    } else if (k != 1) {
        const int number = run.top->rank > 0 ? 10 : repeat(data, k);
        if (number)
            return failed(run, number);
    }
    pop(run);
    operations += run.top->rank < 0 ? 0 : run.top->elements;
    return Next::advance;
}

} // namespace tessor
