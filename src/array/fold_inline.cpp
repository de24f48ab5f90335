// Reductions of numbers of one kind by the four rules of arithmetic.
#include "array/fold_loops.h"
#include "scalar/arithmetic.h"
#include "values/layout.h"

#include <cmath>
#include <utility>

namespace tessor {

namespace {

std::uint32_t word(Storage storage) {
    return encode({storage, form::number, 0});
}

// The steps of the folds. An accumulator stands on the left of ADD, on the right of the others.
struct Sum {
    static constexpr bool forward = true;
    template <class T>
    static T step(T a, T x) requires RealLike<T> || std::same_as<T, std::int64_t> {
        return a + x;
    }
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

// Below this many elements a sum of integers is exact in any order, and so are all its parts.
constexpr std::uint32_t exact_length = 1 << 20;
// A sum that may take as many more without leaving what doubles hold exactly.
constexpr double exact_sum = 9007199254740992.0 - 2147483648.0 * exact_length;

template <class Item>
std::int64_t exact_part(const Item* items, std::uint32_t n) {
    std::int64_t sum = 0;
    std::int64_t* const out = &sum;
    run_simd([=]() __attribute__((always_inline)) {
        std::int64_t part = 0;
        for (std::uint32_t k = 0; k < n; ++k)
            part += items[k];
        *out = part;
    });
    return sum;
}

// One run of integers, as a fold of doubles would have it.
template <class Item>
double sum_of_run(const Item* items, std::uint32_t n) {
    double sum = 0;
    while (n != 0) {
        const std::uint32_t length = std::min(n, exact_length);
        if (std::fabs(sum) <= exact_sum) {
            sum += static_cast<double>(exact_part(items, length));
        } else {
            for (std::uint32_t k = 0; k < length; ++k)
                sum += items[k];
        }
        items += length;
        n -= length;
        look_at_signals();
    }
    return sum;
}

// Runs that are worth a vector loop each go one by one, shorter ones side by side.
template <class Item>
void sum_integers(const Folding& f, const Item* items, double* results) {
    constexpr std::uint32_t worth = 48;
    if (f.n >= worth) {
        for (std::uint32_t j = 0; j < f.m; ++j)
            results[j] = sum_of_run(items + std::size_t{j} * f.n, f.n);
        return;
    }
    fold_rows<true, std::int64_t>(
        f.n, f.m, [=](std::size_t i) { return std::int64_t{items[i]}; },
        [](std::int64_t a, std::int64_t x) { return a + x; },
        [=](std::uint32_t j, std::int64_t sum) { results[j] = static_cast<double>(sum); });
}

// Results as doubles, whatever the items are.
template <class Op, class Item>
void fold_to_doubles(const Folding& f, const Item* items, double* results) {
    if constexpr (std::same_as<Op, Sum> && std::is_integral_v<Item>) {
        if (f.adjacent())
            return sum_integers(f, items, results);
    }
    fold_runs<Op::forward, double>(
        f, [=](std::size_t i) { return static_cast<double>(items[i]); },
        [](double a, double x) { return Op::step(a, x); },
        [=](std::uint32_t j, double a) { results[j] = a; });
}

// Integers where all results fit; else doubles that stand for both kinds.
Folded whole_results(const Folding& f, BlockHandle doubles) {
    auto* results = doubles.as<double>();
    std::uint32_t misfits = 0;
    for (std::uint32_t j = 0; j < f.m; ++j) {
        results[j] += 0.0; // an integer has no -0.0
        misfits += std::fabs(results[j]) > largest_integer;
    }
    if (misfits == 0) {
        BlockHandle integers(allocate_items(f.m, sizeof(std::int32_t), word(Storage::integer)));
        std::transform(results, results + f.m, integers.as<std::int32_t>(),
                       [](double x) { return static_cast<std::int32_t>(x); });
        return {integers.release()};
    }
    if (misfits == f.m)
        header_of(doubles.get()).layout = word(Storage::real);
    if (f.m == 1)
        return {doubles.release(), HASREAL, HASINTEGER | COMPLEXED};
    return {doubles.release(), HASREAL | COMPLEXED};
}

// A quotient is a real even where it is whole.
template <class Op, class Item>
Folded fold_integers(const Folding& f, const void* items) {
    constexpr bool divides = std::same_as<Op, Ratio>;
    BlockHandle doubles(
        allocate_items(f.m, sizeof(double), word(divides ? Storage::real : Storage::promoted)));
    fold_to_doubles<Op>(f, static_cast<const Item*>(items), doubles.as<double>());
    return divides ? Folded{doubles.release(), HASREAL} : whole_results(f, std::move(doubles));
}

template <class Op, class Item>
Folded fold_reals(const Folding& f, const void* items) {
    BlockHandle block(allocate_items(f.m, sizeof(double), word(Storage::real)));
    auto* const results = block.as<double>();
    const Item* const from = static_cast<const Item*>(items);
    fold_runs<Op::forward, double>(
        f, [=](std::size_t i) { return static_cast<double>(from[i]); },
        [](double a, double x) { return Op::step(a, x); },
        [=](std::uint32_t j, double a) { results[j] = a; });
    return {block.release()};
}

template <class Op, int N>
Folded fold_hyper(const Folding& f, const void* items) {
    constexpr Storage storage = tag_storage(hyper_tag<N>);
    BlockHandle block(allocate_items(f.m, item_size(storage), word(storage)));
    auto* const results = block.as<double>();
    const auto* const from = static_cast<const double*>(items);
    fold_runs<Op::forward, Hyper<N>>(
        f, [=](std::size_t i) { return Stored<Hyper<N>>::load(from, i); },
        [](const Hyper<N>& a, const Hyper<N>& x) { return Op::step(a, x); },
        [=](std::uint32_t j, const Hyper<N>& a) { Stored<Hyper<N>>::save(results, j, a); });
    return {block.release()};
}

// Doubles that stand for both kinds are of one kind here.
template <class Op>
Folded fold_doubles(const Folding& f, const void* items) {
    return first_tag(f.data) == tag::integer ? fold_integers<Op, double>(f, items)
                                             : fold_reals<Op, double>(f, items);
}

template <class Op>
Folded fold_packed(const Folding& f, const void* items) {
    switch (storage_of(items)) {
    case Storage::integer: return fold_integers<Op, std::int32_t>(f, items);
    case Storage::truth: return fold_integers<Op, std::uint8_t>(f, items);
    case Storage::real: return fold_reals<Op, double>(f, items);
    case Storage::degree: return fold_reals<Op, std::uint8_t>(f, items);
    case Storage::complex: return fold_hyper<Op, 2>(f, items);
    case Storage::quaternion: return fold_hyper<Op, 4>(f, items);
    case Storage::octonion: return fold_hyper<Op, 8>(f, items);
    case Storage::quotient:
    case Storage::promoted: return fold_doubles<Op>(f, items);
    default: return {};
    }
}

Folded fold_by_verb(const Folding& f, const void* items) {
    switch (f.verb) {
    case op::ADD: return fold_packed<Sum>(f, items);
    case op::SUBTRACT: return fold_packed<Difference>(f, items);
    case op::MULTIPLY: return fold_packed<Product>(f, items);
    default: return fold_packed<Ratio>(f, items);
    }
}

// The argument's elements as plain numbers; null if they aren't all of one kind.
BlockHandle plain_numbers(const Folding& f) {
    const std::int32_t kind = first_tag(f.data);
    if (kind < tag::integer || kind > tag::octonion)
        return {};
    ArrayBuilder numbers(f.data.elements);
    for (std::uint32_t i = 0; i < f.data.elements; ++i) {
        Element element = element_at(f.data, i);
        if (element.tag != kind)
            return {};
        element.form = form::number;
        element.marks = 0;
        element.name = nullptr;
        numbers.add(element);
    }
    return BlockHandle(numbers.finish());
}

} // namespace

Folded fold_inline(const Folding& f) {
    if (f.n != 1 && storage_of(f.data.data_pointer) != Storage::elements)
        return fold_by_verb(f, f.data.data_pointer);
    BlockHandle numbers = plain_numbers(f);
    if (!numbers || f.n == 1)
        return {numbers.release()};
    return fold_by_verb(f, numbers.get());
}

} // namespace tessor
