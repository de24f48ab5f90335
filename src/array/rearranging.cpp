// REVERSE and TRANSPOSE.
#include "array/items.h"
#include "array/structure.h"
#include "scalar/simd.h"

#include <algorithm>
#include <array>

namespace tessor {

namespace {

constexpr std::int32_t most_axes = 8;
constexpr std::uint32_t tile = 8; ///< rows and columns that are turned together

void reverse_in_place(Space& value) {
    with_item(storage_of(value.data_pointer), [&]<class T>() {
        auto* items = static_cast<T*>(value.data_pointer);
        std::reverse(items, items + value.elements);
    });
}

void reversed_copy(Space& value) {
    const std::uint32_t n = value.elements;
    rearrange(value, [n]<class T>(T* to, const T* from) {
        run_simd([=]() __attribute__((always_inline)) {
            for (std::uint32_t i = 0; i < n; ++i)
                to[i] = from[n - 1 - i];
        });
    });
}

// The matrix of rows by columns, whose columns stand side by side, turned: a tile at a time, so
// that both sides stay in the cache.
template <class T>
void turn(T* to, const T* from, std::uint32_t rows, std::uint32_t columns) {
    run_simd([=]() __attribute__((always_inline)) {
        for (std::uint32_t c = 0; c < columns; c += tile)
            for (std::uint32_t r = 0; r < rows; r += tile) {
                const std::uint32_t last_c = std::min(c + tile, columns);
                const std::uint32_t last_r = std::min(r + tile, rows);
                for (std::uint32_t i = r; i < last_r; ++i)
                    for (std::uint32_t j = c; j < last_c; ++j)
                        to[std::size_t{i} * columns + j] = from[std::size_t{j} * rows + i];
            }
    });
}

struct Axes {
    std::int32_t rank;
    std::array<std::uint32_t, most_axes> extent;
    std::array<std::size_t, most_axes> stride; ///< in the old block
};

Axes axes_of(const Space& value) {
    Axes axes{value.rank, {}, {}};
    std::size_t stride = 1;
    for (std::int32_t axis = 0; axis < value.rank; ++axis) {
        const auto k = static_cast<std::size_t>(axis);
        axes.extent[k] = static_cast<std::uint32_t>(extent(value, axis));
        axes.stride[k] = stride;
        stride *= axes.extent[k];
    }
    return axes;
}

// The new block in its own order: the old last axis runs fastest.
template <class T>
void turn_axes(T* to, const T* from, const Axes& axes, std::int32_t axis) {
    const auto k = static_cast<std::size_t>(axis);
    std::size_t block = 1; // new elements for each step along this axis
    for (std::size_t later = k + 1; later < static_cast<std::size_t>(axes.rank); ++later)
        block *= axes.extent[later];
    for (std::uint32_t i = 0; i < axes.extent[k]; ++i) {
        const T* source = from + i * axes.stride[k];
        if (axis + 1 == axes.rank)
            to[i] = *source;
        else
            turn_axes(to + i * block, source, axes, axis + 1);
    }
}

BlockHandle turned_shape(const Space& value) {
    const std::int32_t rank = value.rank;
    BlockHandle shape(new_shape(rank));
    for (std::int32_t axis = 0; axis < rank; ++axis)
        shape.as<std::int32_t>()[axis] = extent(value, rank - 1 - axis);
    return shape;
}

} // namespace

Next reverse(Activation& run) {
    Space& value = *run.top;
    if (value.rank < 0 || (value.type & ISINPLACE) || !value.data_pointer)
        return Next::advance;
    if (!simple_or_nested(value))
        return failed(run, 994);
    if (unshared(value.data_pointer))
        reverse_in_place(value);
    else
        reversed_copy(value);
    return Next::advance;
}

Next transpose(Activation& run) {
    Space& value = *run.top;
    if (value.type & ISEMPTY)
        return Next::advance;
    if (value.type & ISADDRESS)
        return failed(run, 159);
    if (value.rank <= 1 || !value.data_pointer)
        return Next::advance;
    if (value.rank > most_axes)
        return failed(run, 970);
    const Axes axes = axes_of(value);
    BlockHandle shape = turned_shape(value);
    rearrange(value, [&]<class T>(T* to, const T* from) {
        if (axes.rank == 2)
            turn(to, from, axes.extent[0], axes.extent[1]);
        else
            turn_axes(to, from, axes, 0);
    });
    release_shape(value);
    value.shape_pointer = shape.release();
    return Next::advance;
}

} // namespace tessor
