// Typed loops over the runs of a reduction. Each run is folded strictly in its order; what is fast
// is that several runs go side by side.
#pragma once

#include "array/folding.h"
#include "scalar/frame.h"
#include "scalar/simd.h"
#include "values/shared.h"

#include <algorithm>
#include <utility>

namespace tessor {

/// Elements of a long run between two looks at the signals.
inline constexpr std::uint32_t run_stretch = 1 << 20;

/// Runs that are folded together: as many chains of operations as hide the latency of one.
template <class Value>
inline constexpr std::uint32_t side_by_side = sizeof(Value) <= sizeof(double) ? 8 : 2;

/// Elements i to stop - 1 of as many runs as there are numbers `r`. Constant indices, and no call
/// in sight, keep the accumulators in registers.
template <class Value, class Element, class Step, std::uint32_t... r>
[[gnu::noinline]] void fold_stretch(Value* accumulators, std::uint32_t i, std::uint32_t stop,
                                    Element element, Step step,
                                    std::integer_sequence<std::uint32_t, r...>) {
    Value values[] = {accumulators[r]...};
    for (; i < stop; ++i)
        ((values[r] = step(values[r], element(r, i))), ...);
    ((accumulators[r] = values[r]), ...);
}

/// Folds such runs, from `first` on. `at(run, i)` is the place of element i of a run, `load(place)`
/// gives the element, `step(accumulator, x)` the next accumulator; `put(j, accumulator)` takes
/// result j.
template <bool forward, class At, class Load, class Step, class Put, std::uint32_t... r>
void fold_together(std::uint32_t n, std::uint32_t first, At at, Load load, Step step, Put put,
                   std::integer_sequence<std::uint32_t, r...> runs) {
    const auto element = [=](std::uint32_t run, std::uint32_t i) {
        return load(at(first + run, forward ? i : n - 1 - i));
    };
    decltype(element(0, 0)) accumulators[] = {element(r, 0)...};
    for (std::uint32_t i = 1; i < n;) {
        const std::uint32_t stop = n - i < run_stretch ? n : i + run_stretch;
        fold_stretch(accumulators, i, stop, element, step, runs);
        i = stop;
        look_at_signals();
    }
    (put(first + r, accumulators[r]), ...);
}

template <std::uint32_t count>
inline constexpr std::make_integer_sequence<std::uint32_t, count> numbers{};

/// Folds runs whose elements are adjacent.
template <bool forward, class Value, class Load, class Step, class Put>
void fold_rows(std::uint32_t n, std::uint32_t m, Load load, Step step, Put put) {
    constexpr std::uint32_t together = side_by_side<Value>;
    const auto at = [=](std::uint32_t run, std::uint32_t i) { return std::size_t{run} * n + i; };
    std::uint32_t j = 0;
    for (; m - j >= together; j += together)
        fold_together<forward>(n, j, at, load, step, put, numbers<together>);
    for (; j < m; ++j)
        fold_together<forward>(n, j, at, load, step, put, numbers<1>);
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

/// So few columns that registers hold them.
template <bool forward, std::uint32_t m, class Load, class Step, class Put>
void fold_narrow(std::uint32_t n, Load load, Step step, Put put) {
    const auto at = [](std::uint32_t run, std::uint32_t i) { return std::size_t{i} * m + run; };
    fold_together<forward>(n, 0, at, load, step, put, numbers<m>);
}

template <bool forward, class Value, class Load, class Step, class Put>
void fold_runs(const Folding& f, Load load, Step step, Put put) {
    if (f.adjacent())
        fold_rows<forward, Value>(f.n, f.m, load, step, put);
    else if (f.m == 2)
        fold_narrow<forward, 2>(f.n, load, step, put);
    else if (f.m == 3)
        fold_narrow<forward, 3>(f.n, load, step, put);
    else if (f.m == 4)
        fold_narrow<forward, 4>(f.n, load, step, put);
    else
        fold_columns<forward, Value>(f.n, f.m, load, step, put);
}

} // namespace tessor
