// Reductions of numbers of one kind by the four rules of arithmetic.
#include "array/fold_loops.h"
#include "scalar/arithmetic.h"
#include "values/layout.h"

#include <cmath>

namespace tessor {

namespace {

// Items of one type, in the block itself or copied out of it.
template <class Item>
class Items {
public:
    Items(const Space& data, Storage storage, int parts) {
        const void* block = data.data_pointer;
        const Storage found = storage_of(block);
        const bool doubles = found == Storage::quotient || found == Storage::promoted;
        if (found == storage || (storage == Storage::real && doubles))
            items_ = static_cast<const Item*>(block);
        else
            copy(data, parts);
    }
    const Item* get() const { return items_; }

private:
    void copy(const Space& data, int parts) {
        const std::size_t width = static_cast<std::size_t>(parts);
        copy_ = BlockHandle(allocate_items(data.elements, width * sizeof(Item)));
        auto* to = copy_.as<Item>();
        for (std::uint32_t i = 0; i < data.elements; ++i, to += width) {
            const Element element = element_at(data, i);
            if constexpr (std::is_same_v<Item, std::int32_t>)
                *to = element.integer;
            else
                std::copy_n(element.c, width, to);
        }
        items_ = copy_.as<Item>();
    }

    BlockHandle copy_;
    const Item* items_ = nullptr;
};

// The steps of the folds. An accumulator stands on the left of ADD, on the right of the others.
struct Sum {
    static constexpr bool forward = true;
    static double step(double a, double x) { return a + x; }
    template <int N>
    static Hyper<N> step(Hyper<N> a, const Hyper<N>& x) {
        for (int k = 0; k < N; ++k)
            a.c[k] += x.c[k];
        return a;
    }
};
struct Difference {
    static constexpr bool forward = false;
    static double step(double a, double x) { return x - a; }
    template <int N>
    static Hyper<N> step(Hyper<N> a, const Hyper<N>& x) {
        for (int k = 0; k < N; ++k)
            a.c[k] = x.c[k] - a.c[k];
        return a;
    }
};
struct Product {
    static constexpr bool forward = false;
    template <class T>
    static T step(const T& a, const T& x) {
        return multiplied(x, a);
    }
};
struct Ratio {
    static constexpr bool forward = false;
    template <class T>
    static T step(const T& a, const T& x) {
        return divided(x, a);
    }
};

std::uint32_t word(Storage storage) {
    return encode({storage, form::number, 0});
}

// Whole blocks of integers are summed as such for as long as every partial sum is exact.
double sum_of(const std::int32_t* items, std::uint32_t n) {
    constexpr std::uint32_t length = 1 << 20;
    constexpr double exact = 9007199254740992.0 - 2147483648.0 * length;
    double sum = 0;
    for (std::uint32_t i = 0; i < n; i += length) {
        const std::uint32_t stop = std::min(n - i, length);
        if (std::fabs(sum) < exact) {
            std::int64_t block = 0;
            std::int64_t* out = &block;
            const std::int32_t* from = items + i;
            run_simd([=]() __attribute__((always_inline)) {
                std::int64_t part = 0;
                for (std::uint32_t k = 0; k < stop; ++k)
                    part += from[k];
                *out = part;
            });
            sum += static_cast<double>(block);
        } else {
            for (std::uint32_t k = 0; k < stop; ++k)
                sum += items[i + k];
        }
        look_at_signals();
    }
    return sum;
}

template <class Op>
void fold_to_doubles(const Folding& f, const std::int32_t* items, double* results) {
    if (std::is_same_v<Op, Sum> && (!f.last_axis || f.m == 1)) {
        for (std::uint32_t j = 0; j < f.m; ++j)
            results[j] = sum_of(items + std::size_t{j} * f.n, f.n);
        return;
    }
    fold_runs<Op::forward, double>(
        f, [=](std::size_t i) { return static_cast<double>(items[i]); },
        [](double a, double x) { return Op::step(a, x); },
        [=](std::uint32_t j, double a) { results[j] = a; });
}

bool fits(double x) {
    return !(std::fabs(x) > largest_integer);
}

// Integers where all results fit; else doubles that stand for both kinds.
Folded whole_results(const Folding& f, BlockHandle doubles) {
    auto* results = doubles.as<double>();
    const std::uint32_t misfits =
        f.m - static_cast<std::uint32_t>(std::count_if(results, results + f.m, fits));
    if (misfits == 0) {
        BlockHandle integers(allocate_items(f.m, sizeof(std::int32_t), word(Storage::integer)));
        auto* to = integers.as<std::int32_t>();
        std::transform(results, results + f.m, to,
                       [](double x) { return static_cast<std::int32_t>(x); });
        return {integers.release()};
    }
    if (misfits == f.m)
        header_of(doubles.get()).layout = word(Storage::real);
    if (f.m == 1)
        return {doubles.release(), HASREAL, HASINTEGER | COMPLEXED};
    return {doubles.release(), HASREAL | COMPLEXED};
}

template <class Op>
Folded fold_integers(const Folding& f) {
    constexpr bool divides = std::is_same_v<Op, Ratio>;
    const Items<std::int32_t> items(f.data, Storage::integer, 1);
    BlockHandle doubles(
        allocate_items(f.m, sizeof(double), word(divides ? Storage::real : Storage::promoted)));
    fold_to_doubles<Op>(f, items.get(), doubles.as<double>());
    return divides ? Folded{doubles.release(), HASREAL} : whole_results(f, std::move(doubles));
}

template <class Op>
Folded fold_reals(const Folding& f) {
    const Items<double> items(f.data, Storage::real, 1);
    BlockHandle block(allocate_items(f.m, sizeof(double), word(Storage::real)));
    const double* from = items.get();
    auto* results = block.as<double>();
    fold_runs<Op::forward, double>(
        f, [=](std::size_t i) { return from[i]; },
        [](double a, double x) { return Op::step(a, x); },
        [=](std::uint32_t j, double a) { results[j] = a; });
    return {block.release()};
}

template <class Op, int N>
Folded fold_hyper(const Folding& f) {
    constexpr Storage storage = tag_storage(hyper_tag<N>);
    const Items<double> items(f.data, storage, N);
    BlockHandle block(allocate_items(f.m, N * sizeof(double), word(storage)));
    const double* from = items.get();
    auto* results = block.as<double>();
    fold_runs<Op::forward, Hyper<N>>(
        f, [=](std::size_t i) { return Stored<Hyper<N>>::load(from, i); },
        [](const Hyper<N>& a, const Hyper<N>& x) { return Op::step(a, x); },
        [=](std::uint32_t j, const Hyper<N>& a) { Stored<Hyper<N>>::save(results, j, a); });
    return {block.release()};
}

template <class Op>
Folded fold_by_tag(const Folding& f) {
    switch (element_at(f.data, 0).tag) {
    case tag::integer: return fold_integers<Op>(f);
    case tag::real: return fold_reals<Op>(f);
    case tag::complex: return fold_hyper<Op, 2>(f);
    case tag::quaternion: return fold_hyper<Op, 4>(f);
    default: return fold_hyper<Op, 8>(f);
    }
}

// An element stands on the left of the accumulator; equal ones and what isn't ordered leave the
// choice to the verb.
template <bool least>
std::int32_t extreme(std::int32_t a, std::int32_t x) {
    return (least ? x < a : x > a) ? x : a;
}
template <bool least>
double extreme(double a, double x) {
    return (least ? x - a < 0 : !(x - a <= 0)) ? x : a;
}

// The extreme of a run, whatever the order: many at a time. False where the order shows:
// infinities, what isn't a number, zeros of either sign.
template <bool least>
bool any_order(const std::int32_t* items, std::uint32_t n, std::int32_t& result) {
    std::int32_t* const to = &result;
    run_simd([=]() __attribute__((always_inline)) {
        std::int32_t best = items[0];
        for (std::uint32_t i = 1; i < n; ++i)
            best = least ? std::min(best, items[i]) : std::max(best, items[i]);
        *to = best;
    });
    return true;
}
template <bool least>
bool any_order(const double* items, std::uint32_t n, double& result) {
    constexpr std::uint32_t lanes = 32;
    if (n < lanes)
        return false;
    double odds = 0;
    double* const out = &odds;
    double* const to = &result;
    run_simd([=]() __attribute__((always_inline)) {
        double best[lanes];
        double odd[lanes] = {};
        for (std::uint32_t k = 0; k < lanes; ++k)
            best[k] = items[k];
        for (std::uint32_t i = 0; i + lanes <= n; i += lanes)
            for (std::uint32_t k = 0; k < lanes; ++k) {
                const double x = items[i + k];
                best[k] = (least ? x < best[k] : x > best[k]) ? x : best[k];
                odd[k] += x - x;
            }
        double all = best[0];
        double sum = odd[0];
        for (std::uint32_t k = 1; k < lanes; ++k) {
            all = (least ? best[k] < all : best[k] > all) ? best[k] : all;
            sum += odd[k];
        }
        for (std::uint32_t i = n / lanes * lanes; i < n; ++i) {
            all = (least ? items[i] < all : items[i] > all) ? items[i] : all;
            sum += items[i] - items[i];
        }
        *to = all;
        *out = sum;
    });
    return odds == 0 && result != 0;
}

// The loops stand for runs of the verb, of which every one counts what one of two items does.
void count_steps(const Folding& f, Space left, Space right) {
    const long flops = quick_verbs[f.verb].verb(&left, &right, f.run.quads);
    const double steps = static_cast<double>(f.m) * (f.n - 1);
    operations += steps;
    flopos = static_cast<double>(flops);
    total_flops += steps * flopos;
}

void count_steps(const Folding& f, std::int32_t) {
    Space item;
    make_integer(item, 0);
    count_steps(f, item, item);
}

void count_steps(const Folding& f, double) {
    Space item;
    make_real(item, 0);
    count_steps(f, item, item);
}

template <class T, bool least>
Folded fold_extreme(const Folding& f, Storage storage) {
    const auto* from = static_cast<const T*>(f.data.data_pointer);
    BlockHandle block(allocate_items(f.m, sizeof(T), word(storage)));
    auto* results = block.as<T>();
    count_steps(f, T{});
    if ((!f.last_axis || f.m == 1) && f.n >= 64) {
        for (std::uint32_t j = 0; j < f.m; ++j) {
            const T* items = from + std::size_t{j} * f.n;
            if (any_order<least>(items, f.n, results[j]))
                continue;
            T a = items[f.n - 1];
            for (std::uint32_t i = f.n - 1; i > 0; --i)
                a = extreme<least>(a, items[i - 1]);
            results[j] = a;
        }
        return {block.release()};
    }
    fold_runs<false, T>(
        f, [=](std::size_t i) { return from[i]; }, [](T a, T x) { return extreme<least>(a, x); },
        [=](std::uint32_t j, T a) { results[j] = a; });
    return {block.release()};
}

} // namespace

Folded fold_inline(const Folding& f) {
    switch (f.verb) {
    case op::ADD: return fold_by_tag<Sum>(f);
    case op::SUBTRACT: return fold_by_tag<Difference>(f);
    case op::MULTIPLY: return fold_by_tag<Product>(f);
    default: return fold_by_tag<Ratio>(f);
    }
}

Folded fold_extremes(const Folding& f) {
    const Layout layout = layout_of(f.data.data_pointer);
    const bool least = f.verb == op::MINIMUM;
    if (layout.form != form::number || layout.marks != 0 || f.n < 2)
        return {};
    if (layout.storage == Storage::integer)
        return least ? fold_extreme<std::int32_t, true>(f, Storage::integer)
                     : fold_extreme<std::int32_t, false>(f, Storage::integer);
    if (layout.storage == Storage::real)
        return least ? fold_extreme<double, true>(f, Storage::real)
                     : fold_extreme<double, false>(f, Storage::real);
    return {};
}

} // namespace tessor
