// Typed loops over the runs of a reduction.
#pragma once

#include "array/folding.h"
#include "io/writers/exception.h"
#include "scalar/simd.h"
#include "values/shared.h"

#include <algorithm>
#include <memory>

namespace tessor {

/// Columns that are folded together along the last axis: their accumulators stay in the cache.
inline constexpr std::uint32_t columns = 4096;

inline void look_at_signals() {
    if (signal_noted())
        take_signals();
}

/// Folds runs that stand side by side. `load(i)` gives element i, `step(accumulator, x)` the next
/// accumulator; `put(j, accumulator)` takes result j. Several runs at once hide the latency of one.
template <bool forward, class Load, class Step, class Put>
void fold_rows(std::uint32_t n, std::uint32_t m, Load load, Step step, Put put) {
    constexpr std::uint32_t together = 4;
    const auto at = [=](std::uint32_t i) { return forward ? i : n - 1 - i; };
    std::uint32_t j = 0;
    for (; j + together <= m; j += together) {
        const std::size_t base = std::size_t{j} * n;
        auto a = load(base + at(0));
        auto b = load(base + n + at(0));
        auto c = load(base + 2 * std::size_t{n} + at(0));
        auto d = load(base + 3 * std::size_t{n} + at(0));
        for (std::uint32_t i = 1; i < n; ++i) {
            a = step(a, load(base + at(i)));
            b = step(b, load(base + n + at(i)));
            c = step(c, load(base + 2 * std::size_t{n} + at(i)));
            d = step(d, load(base + 3 * std::size_t{n} + at(i)));
        }
        put(j, a);
        put(j + 1, b);
        put(j + 2, c);
        put(j + 3, d);
        look_at_signals();
    }
    for (; j < m; ++j) {
        const std::size_t base = std::size_t{j} * n;
        auto accumulator = load(base + at(0));
        for (std::uint32_t i = 1; i < n;) {
            const std::uint32_t stop = std::min(n, i + (1u << 20));
            for (; i < stop; ++i)
                accumulator = step(accumulator, load(base + at(i)));
            look_at_signals();
        }
        put(j, accumulator);
    }
}

/// The same for runs whose elements are m apart.
template <bool forward, class Value, class Load, class Step, class Put>
void fold_columns(std::uint32_t n, std::uint32_t m, Load load, Step step, Put put) {
    const std::unique_ptr<Value[]> room(new Value[std::min(m, columns)]);
    Value* const accumulators = room.get();
    for (std::uint32_t first = 0; first < m; first += columns) {
        const std::uint32_t width = std::min(columns, m - first);
        for (std::uint32_t i = 0; i < n; ++i) {
            const std::size_t row = std::size_t{forward ? i : n - 1 - i} * m + first;
            run_simd([=]() __attribute__((always_inline)) {
                if (i == 0) {
                    for (std::uint32_t k = 0; k < width; ++k)
                        accumulators[k] = load(row + k);
                } else {
#pragma GCC ivdep
                    for (std::uint32_t k = 0; k < width; ++k)
                        accumulators[k] = step(accumulators[k], load(row + k));
                }
            });
            if (i % 1024 == 0)
                look_at_signals();
        }
        for (std::uint32_t k = 0; k < width; ++k)
            put(first + k, accumulators[k]);
    }
}

template <bool forward, class Value, class Load, class Step, class Put>
void fold_runs(const Folding& f, Load load, Step step, Put put) {
    if (f.last_axis && f.m > 1)
        fold_columns<forward, Value>(f.n, f.m, load, step, put);
    else
        fold_rows<forward>(f.n, f.m, load, step, put);
}

} // namespace tessor
