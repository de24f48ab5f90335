// Reductions that choose among the elements: the least, the greatest, and whether all or any are
// true. The verbs' own functions would give the same, element by element.
#include "array/fold_loops.h"
#include "scalar/logic.h"

#include <cmath>
#include <limits>

namespace tessor {

namespace {

// An element stands on the left of the accumulator, which stays on a tie. What isn't a number is
// passed over by the one verb, and kept by the other until the next element.
struct Least {
    template <class T>
    static T step(T a, T x) {
        return x < a ? x : a;
    }
    template <class T>
    static constexpr T worst = std::numeric_limits<T>::has_infinity
                                   ? std::numeric_limits<T>::infinity()
                                   : std::numeric_limits<T>::max();
    static bool is_odd(double) { return false; }
};
struct Greatest {
    template <class T>
    static T step(T a, T x) {
        return !(x <= a) ? x : a;
    }
    template <class T>
    static constexpr T worst = std::numeric_limits<T>::has_infinity
                                   ? -std::numeric_limits<T>::infinity()
                                   : std::numeric_limits<T>::lowest();
    static bool is_odd(double x) { return x != x; }
};

template <class Choice, class T>
T in_order(const T* items, std::uint32_t n) {
    T chosen = items[n - 1];
    for (std::uint32_t i = n - 1; i > 0; --i)
        chosen = Choice::step(chosen, items[i - 1]);
    return chosen;
}

// Whole numbers: the order makes no difference.
template <class Choice, class T>
[[gnu::always_inline]] inline T chosen_of(const T* items, std::uint32_t n) {
    T chosen = Choice::template worst<T>;
    for (std::uint32_t i = 0; i < n; ++i)
        chosen = Choice::step(chosen, items[i]);
    return chosen;
}

// Reals: many chains. `odd` tells that there is what isn't a number where it matters.
template <class Choice>
[[gnu::always_inline]] inline double chosen_of(const double* items, std::uint32_t n, bool& odd) {
    constexpr std::uint32_t lanes = 32;
    double best[lanes];
    std::int64_t odds[lanes] = {};
    std::fill_n(best, lanes, Choice::template worst<double>);
    std::uint32_t i = 0;
    for (; n - i >= lanes; i += lanes)
        for (std::uint32_t k = 0; k < lanes; ++k) {
            best[k] = Choice::step(best[k], items[i + k]);
            odds[k] |= Choice::is_odd(items[i + k]) ? 1 : 0;
        }
    for (std::uint32_t k = 0; i < n; ++i, ++k) {
        best[k] = Choice::step(best[k], items[i]);
        odds[k] |= Choice::is_odd(items[i]) ? 1 : 0;
    }
    for (std::uint32_t k = 1; k < lanes; ++k) {
        best[0] = Choice::step(best[0], best[k]);
        odds[0] |= odds[k];
    }
    odd = odds[0] != 0;
    return best[0];
}

template <class Choice, class T>
T chosen_of_run(const T* items, std::uint32_t n) {
    T chosen{};
    T* const out = &chosen;
    run_simd([=]() __attribute__((always_inline)) { *out = chosen_of<Choice>(items, n); });
    return chosen;
}

// Of zeros the sign of the last one stays, which the fold meets first.
double signed_zero(const double* items, std::uint32_t n) {
    while (items[--n] != 0) {
    }
    return items[n];
}

template <class Choice>
double chosen_of_run(const double* items, std::uint32_t n) {
    double chosen = 0;
    bool odd = false;
    double* const out = &chosen;
    bool* const out_odd = &odd;
    run_simd([=]()
                 __attribute__((always_inline)) { *out = chosen_of<Choice>(items, n, *out_odd); });
    const double last = items[n - 1]; // which the fold begins with
    if (odd || last != last)
        return in_order<Choice>(items, n);
    return chosen == 0 ? signed_zero(items, n) : chosen;
}

// Results in the items' own type, or in that of the numbers that bytes stand for.
template <class Choice, class T, class Out>
void choose(const Folding& f, Out* results) {
    constexpr std::uint32_t worth = 64;
    const T* const items = static_cast<const T*>(f.data.data_pointer);
    if (!f.adjacent() || f.n < worth) {
        fold_runs<false, T>(
            f, [=](std::size_t i) { return items[i]; }, [](T a, T x) { return Choice::step(a, x); },
            [=](std::uint32_t j, T chosen) { results[j] = static_cast<Out>(chosen); });
        return;
    }
    for (std::uint32_t j = 0; j < f.m; ++j) {
        results[j] = static_cast<Out>(chosen_of_run<Choice>(items + std::size_t{j} * f.n, f.n));
        look_at_signals();
    }
}

// What the verb would have counted, step by step.
void count_steps(const Folding& f, double flops) {
    const double steps = static_cast<double>(f.data.elements) - f.m;
    operations += steps;
    total_flops += steps * flops;
    flopos = flops;
}

constexpr double real_flops = 2; ///< of a choice between two reals, and of the verb itself
constexpr double other_flops = 1;

template <class Choice, class T, class Out>
Folded chosen(const Folding& f, Storage storage, std::uint16_t form, double flops) {
    BlockHandle block(allocate_items(f.m, sizeof(Out), encode({storage, form, 0})));
    choose<Choice, T>(f, block.as<Out>());
    count_steps(f, flops);
    return {block.release()};
}

// A character keeps its look.
template <class Choice>
Folded extreme(const Folding& f) {
    const void* block = f.data.data_pointer;
    switch (storage_of(block)) {
    case Storage::character: {
        const Folded folded = chosen<Choice, std::uint8_t, std::uint8_t>(f, Storage::character,
                                                                         form::text, other_flops);
        header_of(folded.block).layout = header_of(block).layout;
        return folded;
    }
    case Storage::integer:
        return chosen<Choice, std::int32_t, std::int32_t>(f, Storage::integer, form::number,
                                                          other_flops);
    case Storage::truth:
        return chosen<Choice, std::uint8_t, std::int32_t>(f, Storage::integer, form::number,
                                                          other_flops);
    case Storage::real:
        return chosen<Choice, double, double>(f, Storage::real, form::number, real_flops);
    case Storage::degree:
        return chosen<Choice, std::uint8_t, double>(f, Storage::real, form::number, real_flops);
    default: return {};
    }
}

// Integers are true above 0: all are if the least is, one is if the greatest is.
template <class Choice>
Folded truths(const Folding& f) {
    switch (storage_of(f.data.data_pointer)) {
    case Storage::truth:
        return chosen<Choice, std::uint8_t, std::uint8_t>(f, Storage::truth, form::boolean,
                                                          other_flops);
    case Storage::integer: {
        const BlockHandle found(chosen<Choice, std::int32_t, std::int32_t>(
                                    f, Storage::integer, form::number, other_flops)
                                    .block);
        BlockHandle bits(allocate_items(f.m, 1, encode({Storage::truth, form::boolean, 0})));
        std::transform(found.as<std::int32_t>(), found.as<std::int32_t>() + f.m,
                       bits.as<std::uint8_t>(),
                       [](std::int32_t x) { return static_cast<std::uint8_t>(is_true(x)); });
        return {bits.release()};
    }
    default: return {};
    }
}

} // namespace

Folded fold_choices(const Folding& f) {
    if (f.n < 2 || storage_of(f.data.data_pointer) == Storage::elements)
        return {};
    switch (f.verb) {
    case op::MINIMUM: return extreme<Least>(f);
    case op::MAXIMUM: return extreme<Greatest>(f);
    case op::AND:
    case op::STRONGAND: return truths<Least>(f);
    case op::OR:
    case op::STRONGOR: return truths<Greatest>(f);
    default: return {};
    }
}

} // namespace tessor
