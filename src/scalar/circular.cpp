#include "scalar/circular_functions.h"
#include "scalar/dyadic.h"
#include "scalar/verbs.h"

#include <utility>

namespace tessor {

namespace {

constexpr int wrong_number = 85;
constexpr std::size_t functions = last_function - first_function + 1;

template <class T>
using ResultOf = std::conditional_t<RealLike<T>, double, T>;

// Function F of any number. Of a quaternion or an octonion the first two components count; the
// others pass.
template <int F, Number T>
ResultOf<T> value_of(const T& x, int& flops) {
    if constexpr (RealLike<T>) {
        flops += real_function_flops<F>;
        return real_function<F>(static_cast<double>(x));
    } else {
        const Complex z = complex_function<F>({{x.c[0], x.c[1]}}, flops);
        T result = x;
        result.c[0] = z.c[0];
        result.c[1] = z.c[1];
        return result;
    }
}

// The library's results by the block, then those near zero made 0 as vector code.
template <int F, class T>
void real_loop(const T* items, double* results, std::uint32_t n) {
    constexpr std::uint32_t block = 512;
    for (std::uint32_t first = 0; first < n; first += block) {
        const std::uint32_t length = std::min(block, n - first);
        double* const at = results + first;
        for (std::uint32_t i = 0; i < length; ++i)
            at[i] = library_function<F>(static_cast<double>(items[first + i]));
        if constexpr (snapped<F>)
            run_simd([=]() __attribute__((always_inline)) {
                for (std::uint32_t i = 0; i < length; ++i)
                    at[i] = snap(at[i]);
            });
    }
}

// One loop for a function and a tag.
template <int F, class T>
void function_loop(const void* operand, void* room, std::uint32_t n, Tally& tally) {
    const auto* items = static_cast<const typename Stored<T>::Item*>(operand);
    auto* results = static_cast<double*>(room);
    if constexpr (RealLike<T>) {
        real_loop<F>(items, results, n);
        tally.flops = n * static_cast<std::uint32_t>(real_function_flops<F>);
    } else {
        int flops = 0;
        for (std::uint32_t i = 0; i < n; ++i)
            Stored<T>::save(results, i, value_of<F>(Stored<T>::load(items, i), flops));
        tally.flops = static_cast<std::uint32_t>(flops);
    }
}

template <class T>
struct Functions {
    using Loop = void (*)(const void*, void*, std::uint32_t, Tally&);
    using Value = ResultOf<T> (*)(const T&, int&);

    template <std::size_t... I>
    static constexpr std::array<Loop, functions> loops(std::index_sequence<I...>) {
        return {function_loop<static_cast<int>(I) + first_function, T>...};
    }
    template <std::size_t... I>
    static constexpr std::array<Value, functions> values(std::index_sequence<I...>) {
        return {value_of<static_cast<int>(I) + first_function, T>...};
    }
    static constexpr auto loop = loops(std::make_index_sequence<functions>{});
    static constexpr auto value = values(std::make_index_sequence<functions>{});
};

constexpr std::size_t index_of(std::int32_t number) {
    return static_cast<std::size_t>(number - first_function);
}

// The kernel of one type on the left; the number on the right is one of a function.
template <class T>
struct Circular {
    static void narrow(const void*, const Stretch& s, void* room, Tally& tally) {
        const auto* numbers = static_cast<const std::int32_t*>(s.right);
        if (s.right_single)
            return Functions<T>::loop[index_of(*numbers)](s.left, room, s.n, tally);
        const auto* items = static_cast<const typename Stored<T>::Item*>(s.left);
        auto* results = static_cast<double*>(room);
        int flops = 0;
        for (std::uint32_t i = 0; i < s.n; ++i) {
            const T x = Stored<T>::load(items, s.left_single ? 0 : i);
            const auto result = Functions<T>::value[index_of(numbers[i])](x, flops);
            Stored<ResultOf<T>>::save(results, i, result);
        }
        tally.flops = static_cast<std::uint32_t>(flops);
    }

    static bool look(Look left, Look, bool, Look& result) {
        result = passing(left);
        return true;
    }
    // For numbers that are none of a function: the element road finds them.
    static bool no_look(Look, Look, bool, Look&) { return false; }

    static int element(const void*, const Element& left, const Element& right, bool,
                       Element& result) {
        int flops = 0;
        const T x = Stored<T>::get(left);
        Stored<ResultOf<T>>::put(result, Functions<T>::value[index_of(right.integer)](x, flops));
        op_flops += flops;
        const Look found = passing({left.form, left.marks});
        result.form = found.form;
        result.marks = found.marks;
        return 0;
    }

    static constexpr Kernel kernel_with(decltype(Kernel::look) look_at) {
        Kernel kernel{};
        kernel.storage = Stored<ResultOf<T>>::storage;
        kernel.wide_storage = Storage::elements;
        kernel.narrow = narrow;
        kernel.look = look_at;
        kernel.element = element;
        return kernel;
    }
    static constexpr Kernel packed = kernel_with(look);
    static constexpr Kernel one_by_one = kernel_with(no_look);
};

bool is_mixed(const Space& space) {
    return (space.type & (COMPLEXED | STRUCTURED)) != 0;
}

// The number of the function is looked at before what it is to be a function of.
int refuses(const Space& holder, const Element& left, const Element& right) {
    const bool single = (holder.type & (ISSCALAR | ISONEELEMENT)) != 0;
    if (right.tag == tag::subarray)
        return single || is_mixed(holder) ? 0 : wrong_number;
    if (right.tag != tag::integer || !is_function_number(right.integer))
        return wrong_number;
    const bool known =
        left.tag == tag::subarray || left.tag == tag::integer || components_of(left.tag) > 0;
    return known ? 0 : is_mixed(holder) ? 162 : 994;
}

constexpr DyadicVerb circular_verb(bool packed) {
    DyadicVerb made{Rules{.left_as_reals = true, .nested_flop = true}, {}, circular, 0, refuses};
    const auto pick = [packed]<class T>(T) {
        return packed ? &Circular<T>::packed : &Circular<T>::one_by_one;
    };
    made.kernels[tag::integer][tag::integer] = pick(std::int32_t{});
    made.kernels[tag::real][tag::integer] = pick(double{});
    made.kernels[tag::complex][tag::integer] = pick(Complex{});
    made.kernels[tag::quaternion][tag::integer] = pick(Quaternion{});
    made.kernels[tag::octonion][tag::integer] = pick(Octonion{});
    return made;
}

bool holds_function_numbers(const Space& space) {
    if (space.type & ISINPLACE)
        return space.tag == tag::integer && is_function_number(space.integer);
    if (space.rank < 0 || !space.data_pointer)
        return false;
    if (storage_of(space.data_pointer) == Storage::truth)
        return true;
    if (storage_of(space.data_pointer) != Storage::integer)
        return false;
    const auto* numbers = static_cast<const std::int32_t*>(space.data_pointer);
    return std::all_of(numbers, numbers + space.elements, is_function_number);
}

} // namespace

void circular(Space** top, const Space* cell, Space* quads, signed char mode) {
    static constexpr DyadicVerb packed = circular_verb(true);
    static constexpr DyadicVerb one_by_one = circular_verb(false);
    const long flops = circular_in_place(*top - 1, *top, quads);
    if (flops < 0) {
        const bool valid = holds_function_numbers(**top);
        const DyadicVerb& verb = valid ? packed : one_by_one;
        return run_dyadic(verb, &verb, top, cell, quads, mode);
    }
    op_flops = static_cast<double>(flops);
    --*top;
    count_operations(1);
}

long circular_in_place(Space* left, const Space* right, Space*) {
    if (!numbers_in_place(*left, *right, Rules{}.refused) || !holds_function_numbers(*right))
        return -1;
    int flops = 1;
    const Look look = passing({left->form, left->marks});
    const std::size_t function = index_of(right->integer);
    const double result = left->tag == tag::real
                              ? Functions<double>::value[function](left->real, flops)
                              : Functions<std::int32_t>::value[function](left->integer, flops);
    put_in_place(*left, in_place_of(result), look, right->type & ISPROBABLE);
    return flops;
}

} // namespace tessor
