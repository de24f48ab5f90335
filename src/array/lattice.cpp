#include "array/lattice.h"

#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "parallel/slices.h"
#include "values/block.h"
#include "values/hypercomplex.h"
#include "values/layout.h"
#include "values/shared.h"

#include <algorithm>

namespace tessor {

namespace {

constexpr std::uint32_t stretch = 1 << 16;

// A place in a lattice: the values of the components there, and their indices.
struct Cursor {
    std::array<double, 8> value;
    std::array<std::uint32_t, 8> index;
};

// The place of an element, by multiplication. The first element stands at the start itself.
Cursor cursor_at(const Lattice& lattice, std::uint32_t element) {
    Cursor cursor{lattice.start, {}};
    for (int c = 0; element != 0 && c < lattice.axes; ++c) {
        const auto k = static_cast<std::size_t>(c);
        cursor.index[k] = element % lattice.count[k];
        element /= lattice.count[k];
        if (cursor.index[k] != 0)
            cursor.value[k] = lattice.start[k] + cursor.index[k] * lattice.step[k];
    }
    return cursor;
}

// One element further, where the first component has come to its end.
void carry(const Lattice& lattice, Cursor& cursor) {
    for (std::size_t c = 0; c < static_cast<std::size_t>(lattice.axes); ++c) {
        cursor.value[c] += lattice.step[c];
        if (++cursor.index[c] < lattice.count[c])
            return;
        cursor.value[c] = lattice.start[c];
        cursor.index[c] = 0;
    }
}

template <int width>
double* fill_run(double* to, std::uint32_t n, Cursor& cursor, double step) {
    double first = cursor.value[0];
    for (std::uint32_t i = 0; i < n; ++i, to += width) {
        to[0] = first;
        for (int c = 1; c < width; ++c)
            to[c] = cursor.value[static_cast<std::size_t>(c)];
        first += step;
    }
    return to;
}

template <int width>
void to_cartesian(double* items, std::uint32_t n) {
    double none = 0;
    if constexpr (width > 1)
        for (std::uint32_t i = 0; i < n; ++i, items += width)
            cartesian<width>(items, items, none);
}

// Elements `first` to `end` - 1, each at its place in the block.
template <int width>
void fill_slice(const Lattice& lattice, double* items, std::uint32_t first, std::uint32_t end) {
    Cursor cursor = cursor_at(lattice, first);
    double* to = items + std::size_t{first} * width;
    while (first < end) {
        const std::uint32_t left = lattice.count[0] - cursor.index[0];
        const std::uint32_t n = std::min({left, end - first, stretch});
        double* const from = to;
        to = fill_run<width>(to, n, cursor, lattice.step[0]);
        if (n == left) {
            cursor.index[0] = lattice.count[0] - 1;
            carry(lattice, cursor);
        } else {
            cursor.index[0] += n;
            cursor.value[0] = to[-width] + lattice.step[0];
        }
        if (lattice.polar)
            to_cartesian<width>(from, n);
        first += n;
        if (signal_noted())
            take_signals();
    }
}

void fill(const Lattice& lattice, double* items, const Slice& slice) {
    switch (lattice.tag) {
    case tag::real: fill_slice<1>(lattice, items, slice.first, slice.end); break;
    case tag::complex: fill_slice<2>(lattice, items, slice.first, slice.end); break;
    case tag::quaternion: fill_slice<4>(lattice, items, slice.first, slice.end); break;
    default: fill_slice<8>(lattice, items, slice.first, slice.end); break;
    }
    op_flops += static_cast<double>(slice.end - slice.first) * lattice.axes;
}

struct LatticeJob : Job {
    Lattice lattice;
    double* items = nullptr;
};

LatticeJob& the_job() {
    static LatticeJob job;
    return job;
}

void fill_on_worker(Job& base, std::uint32_t stream) {
    const auto& job = static_cast<LatticeJob&>(base);
    fill(job.lattice, job.items, slice_of(job.count, job.streams, stream));
    total_flops += op_flops;
}

void share(const Lattice& lattice, double* items, const Space* result, const Space& cell) {
    wait_for_coprocessors();
    LatticeJob& job = the_job();
    job.run = fill_on_worker;
    job.cell = cell;
    job.count = lattice.elements;
    job.result = result;
    job.lattice = lattice;
    job.items = items;
    publish(job);
    try {
        fill(lattice, items, slice_of(job.count, job.streams, 0));
    } catch (...) {
        settle_coprocessors();
        throw;
    }
}

} // namespace

void* fill_lattice(const Lattice& lattice, const Space* result, const Space& cell) {
    const Storage storage = tag_storage(lattice.tag);
    BlockHandle block(
        allocate_items(lattice.elements, item_size(storage), encode({storage, lattice.form, 0})));
    if (parallel_worthy(lattice.elements))
        share(lattice, block.as<double>(), result, cell);
    else
        fill(lattice, block.as<double>(), {0, lattice.elements});
    return block.release();
}

} // namespace tessor
