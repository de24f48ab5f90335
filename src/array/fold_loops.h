// Typed loops over the runs of a reduction. Each run is folded strictly in its order; what is fast
// is that several runs go side by side.
#pragma once

#include "array/folding.h"
#include "scalar/frame.h"
#include "scalar/simd.h"
#include "values/shared.h"

#include <algorithm>

namespace tessor {

/// Elements of a long run between two looks at the signals.
inline constexpr std::uint32_t run_stretch = 1 << 20;

/// Runs that are folded together: as many chains of operations as hide the latency of one.
template <class Value>
inline constexpr std::uint32_t side_by_side = sizeof(Value) <= sizeof(double) ? 8 : 2;

/// Folds runs whose elements are adjacent. `load(i)` gives element i, `step(accumulator, x)` the
/// next accumulator; `put(j, accumulator)` takes result j.
template <bool forward, std::uint32_t together, class Load, class Step, class Put>
void fold_adjacent(std::uint32_t n, std::uint32_t first, Load load, Step step, Put put) {
    const std::size_t base = std::size_t{first} * n;
    const auto at = [=](std::uint32_t run, std::uint32_t i) {
        return base + std::size_t{run} * n + (forward ? i : n - 1 - i);
    };
    decltype(load(0)) accumulators[together];
    for (std::uint32_t r = 0; r < together; ++r)
        accumulators[r] = load(at(r, 0));
    for (std::uint32_t i = 1; i < n;) {
        const std::uint32_t stop = n - i < run_stretch ? n : i + run_stretch;
        for (; i < stop; ++i)
            for (std::uint32_t r = 0; r < together; ++r)
                accumulators[r] = step(accumulators[r], load(at(r, i)));
        look_at_signals();
    }
    for (std::uint32_t r = 0; r < together; ++r)
        put(first + r, accumulators[r]);
}

template <bool forward, class Value, class Load, class Step, class Put>
void fold_rows(std::uint32_t n, std::uint32_t m, Load load, Step step, Put put) {
    constexpr std::uint32_t together = side_by_side<Value>;
    std::uint32_t j = 0;
    for (; m - j >= together; j += together)
        fold_adjacent<forward, together>(n, j, load, step, put);
    for (; j < m; ++j)
        fold_adjacent<forward, 1>(n, j, load, step, put);
}

/// Bytes of accumulators that stay in the nearest cache.
inline constexpr std::size_t column_bytes = 1 << 14;

/// Accumulators of `width` columns, from row i on: four rows for each time that they are loaded and
/// stored.
template <bool forward, class Value, class Load, class Step>
[[gnu::always_inline]] inline void
fold_block(Value* accumulators, std::uint32_t width, std::uint32_t i, std::uint32_t stop,
           std::uint32_t n, std::size_t m, std::size_t first, Load load, Step step) {
    const auto row = [=](std::uint32_t number) {
        return (forward ? number : n - 1 - number) * m + first;
    };
    for (; stop - i >= 4; i += 4) {
        const std::size_t a = row(i), b = row(i + 1), c = row(i + 2), d = row(i + 3);
#pragma GCC ivdep
        for (std::uint32_t k = 0; k < width; ++k) {
            const Value two = step(step(accumulators[k], load(a + k)), load(b + k));
            accumulators[k] = step(step(two, load(c + k)), load(d + k));
        }
    }
    for (; i < stop; ++i) {
        const std::size_t a = row(i);
#pragma GCC ivdep
        for (std::uint32_t k = 0; k < width; ++k)
            accumulators[k] = step(accumulators[k], load(a + k));
    }
}

/// The same for runs whose elements are m apart: columns of accumulators.
template <bool forward, class Value, class Load, class Step, class Put>
void fold_columns(std::uint32_t n, std::uint32_t m, Load load, Step step, Put put) {
    constexpr auto columns = static_cast<std::uint32_t>(column_bytes / sizeof(Value));
    const BlockHandle room(allocate_block(column_bytes));
    auto* const accumulators = room.as<Value>();
    for (std::uint32_t first = 0; first < m;) {
        const std::uint32_t width = std::min(columns, m - first);
        const std::size_t start = (forward ? 0 : std::size_t{n - 1} * m) + first;
        for (std::uint32_t k = 0; k < width; ++k)
            accumulators[k] = load(start + k);
        const std::uint32_t height = std::max(4u, long_stretch / width);
        for (std::uint32_t i = 1; i < n;) {
            const std::uint32_t stop = n - i < height ? n : i + height;
            run_simd([=]() __attribute__((always_inline)) {
                fold_block<forward>(accumulators, width, i, stop, n, m, first, load, step);
            });
            i = stop;
            look_at_signals();
        }
        for (std::uint32_t k = 0; k < width; ++k)
            put(first + k, accumulators[k]);
        first += width;
    }
}

template <bool forward, class Value, class Load, class Step, class Put>
void fold_runs(const Folding& f, Load load, Step step, Put put) {
    if (f.adjacent())
        fold_rows<forward, Value>(f.n, f.m, load, step, put);
    else
        fold_columns<forward, Value>(f.n, f.m, load, step, put);
}

} // namespace tessor
