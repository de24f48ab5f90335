#include "array/lattice.h"

#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "parallel/slices.h"
#include "scalar/frame.h"
#include "scalar/simd.h"
#include "values/array.h"
#include "values/hypercomplex.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace tessor {

namespace {

struct FillJob : Job {
    Lattice lattice;
    void* block = nullptr;
    Space* made = nullptr;
};

// The record of the one job that there is at a time.
FillJob& the_job() {
    static FillJob job;
    return job;
}

void look_at_signals() {
    if (signal_noted())
        take_signals();
}

// Runs `part(first, end)` for stretches of a slice.
template <class Part>
void in_stretches(Slice slice, Part part) {
    while (slice.first < slice.end) {
        look_at_signals();
        const std::uint32_t n = std::min(long_stretch, slice.end - slice.first);
        part(slice.first, n);
        slice.first += n;
    }
}

// Items of a byte or of 32 bits, which wrap.
template <class Item>
void fill_whole(const Axis& axis, void* block, Slice slice) {
    const auto start = static_cast<std::uint32_t>(static_cast<std::int64_t>(axis.start));
    const auto step = static_cast<std::uint32_t>(static_cast<std::int64_t>(axis.step));
    in_stretches(slice, [=](std::uint32_t first, std::uint32_t n) {
        Item* items = static_cast<Item*>(block) + first;
        const std::uint32_t from = start + first * step;
        run_simd([=]() __attribute__((always_inline)) {
            for (std::uint32_t i = 0; i < n; ++i)
                items[i] = static_cast<Item>(from + i * step);
        });
    });
}

// The value of the lowest bit that is set in a finite number other than 0.
double lowest_bit(double x) {
    int exponent = 0;
    const double mantissa = std::frexp(std::fabs(x), &exponent);
    const auto bits = static_cast<std::uint64_t>(std::ldexp(mantissa, 53));
    return std::ldexp(1.0, exponent - 53 + std::countr_zero(bits));
}

// Whether no addition along the axis is rounded, so that it makes no difference in which order, and
// by what operation, the elements come about. All of them are multiples of one power of 2.
bool is_exact(const Axis& axis) {
    constexpr double room = 4503599627370496.0; // 2 to the 52
    const double farthest = std::fabs(axis.start) + axis.count * std::fabs(axis.step);
    if (!std::isfinite(farthest) || axis.step == 0)
        return false;
    double unit = lowest_bit(axis.step);
    if (axis.start != 0)
        unit = std::min(unit, lowest_bit(axis.start));
    return farthest <= unit * room;
}

void fill_exact(const Axis& axis, double* block, Slice slice) {
    const double step = axis.step;
    const double start = axis.start;
    in_stretches(slice, [=](std::uint32_t first, std::uint32_t n) {
        double* items = block + first;
        const double from = first == 0 ? start : start + first * step;
        run_simd([=]() __attribute__((always_inline)) {
            for (std::uint32_t i = 0; i < n; ++i)
                items[i] = from + static_cast<double>(static_cast<std::int32_t>(i)) * step;
        });
        items[0] = from; // -0.0 has lost its sign
    });
}

// Where a slice stands on each axis.
class Walk {
public:
    Walk(const Lattice& lattice, std::uint32_t first) : lattice_(lattice) {
        for (std::size_t c = 0; c < rank(); ++c) {
            const Axis& axis = lattice.axes[c];
            const std::uint32_t index = first % axis.count;
            first /= axis.count;
            values_[c] = index == 0 ? axis.start : axis.start + index * axis.step;
            left_[c] = axis.count - index;
        }
    }

    /// The next elements, up to n, for which only the first component changes. The walk goes on
    /// behind them.
    template <class Put>
    std::uint32_t run(std::uint32_t n, Put put) {
        n = std::min(n, left_[0]);
        const double step = lattice_.axes[0].step;
        double value = values_[0];
        for (std::uint32_t i = 0; i < n; ++i) {
            put(i, value);
            value += step;
        }
        values_[0] = value;
        left_[0] -= n;
        if (left_[0] == 0)
            carry();
        return n;
    }

    const std::array<double, most_axes>& values() const { return values_; }

private:
    std::size_t rank() const { return static_cast<std::size_t>(lattice_.rank); }

    void restart(std::size_t c) {
        values_[c] = lattice_.axes[c].start;
        left_[c] = lattice_.axes[c].count;
    }

    void carry() {
        restart(0);
        for (std::size_t c = 1; c < rank(); ++c) {
            if (--left_[c] != 0) {
                values_[c] += lattice_.axes[c].step;
                return;
            }
            restart(c);
        }
    }

    const Lattice& lattice_;
    std::array<double, most_axes> values_{}; ///< beyond the last axis they are 0
    std::array<std::uint32_t, most_axes> left_{};
};

// `width` components an element.
template <int width>
void fill_components(const Lattice& lattice, double* block, Slice slice) {
    Walk walk(lattice, slice.first);
    in_stretches(slice, [&](std::uint32_t first, std::uint32_t n) {
        double* at = block + std::size_t{first} * width;
        for (std::uint32_t done = 0; done < n;) {
            const std::array<double, most_axes> values = walk.values();
            const std::uint32_t run = walk.run(n - done, [=](std::uint32_t i, double value) {
                double* items = at + std::size_t{i} * width;
                items[0] = value;
                for (std::size_t c = 1; c < width; ++c)
                    items[c] = values[c];
            });
            if constexpr (width > 1) {
                double uncounted = 0;
                for (std::uint32_t i = 0; lattice.polar && i < run; ++i)
                    cartesian<width>(at + std::size_t{i} * width, at + std::size_t{i} * width,
                                     uncounted);
            }
            done += run;
            at += std::size_t{run} * width;
        }
    });
}

void fill_reals(const Lattice& lattice, double* block, Slice slice) {
    if (is_exact(lattice.axes[0]))
        fill_exact(lattice.axes[0], block, slice);
    else
        fill_components<1>(lattice, block, slice);
}

void fill_slice(const Lattice& lattice, void* block, Slice slice) {
    auto* numbers = static_cast<double*>(block);
    switch (lattice.tag) {
    case tag::ascii: fill_whole<std::uint8_t>(lattice.axes[0], block, slice); return;
    case tag::integer: fill_whole<std::int32_t>(lattice.axes[0], block, slice); return;
    case tag::real: fill_reals(lattice, numbers, slice); break;
    case tag::complex: fill_components<2>(lattice, numbers, slice); break;
    case tag::quaternion: fill_components<4>(lattice, numbers, slice); break;
    default: fill_components<8>(lattice, numbers, slice); break;
    }
    op_flops += static_cast<double>(lattice.rank) * (slice.end - slice.first);
}

void run_on_worker(Job& base, std::uint32_t stream) {
    const auto& job = static_cast<FillJob&>(base);
    fill_slice(job.lattice, job.block, slice_of(job.count, job.streams, stream));
    total_flops += op_flops;
}

void collect(Job& base) {
    Space& made = *static_cast<FillJob&>(base).made;
    if (base.given_up) {
        dereferencepoint(&made);
        make_empty(made);
    }
}

void fill_shared(const Lattice& lattice, std::uint32_t n, void* block, const Space& cell,
                 Space* result) {
    wait_for_coprocessors();
    FillJob& job = the_job();
    job.run = run_on_worker;
    job.collect = nullptr;
    job.cell = cell;
    job.count = n;
    job.result = job.made = result;
    job.lattice = lattice;
    job.block = block;
    publish(job);
    try {
        fill_slice(lattice, block, slice_of(n, job.streams, 0));
    } catch (...) {
        give_up_job();
        settle_coprocessors();
        throw;
    }
    job.collect = collect;
}

} // namespace

void* filled(const Lattice& lattice, std::uint32_t n, const Space& cell, Space* result) {
    const Storage storage = tag_storage(lattice.tag);
    BlockHandle block(allocate_items(n, item_size(storage), encode({storage, lattice.form, 0})));
    if (parallel_worthy(n) && lattice.tag != tag::ascii)
        fill_shared(lattice, n, block.get(), cell, result);
    else
        fill_slice(lattice, block.get(), {0, n});
    return block.release();
}

} // namespace tessor
