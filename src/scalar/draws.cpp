// ROLL and RANDOM: each component of a number, and each character, takes a draw of its own.
//
// Packed loops fetch draws by the row and then run over numbers and draws as vector code. The
// sequence is that of drawing one by one.
#include "scalar/monadic.h"
#include "scalar/random.h"
#include "scalar/verbs.h"

#include <cmath>
#include <limits>

namespace tessor {

namespace {

constexpr double modulus = 2147483647.0;
constexpr double beyond_modulus = modulus + 32;
constexpr std::uint32_t row_length = std::min(stretch_length, 2048u);

template <class T>
constexpr bool has_range(T x) {
    return (x > 0) | (x < 0);
}

// From blank up to the character.
struct Characters {
    static std::uint8_t of(std::int32_t draw, std::uint8_t character) {
        const double share = draw / beyond_modulus * (character - 31);
        return static_cast<std::uint8_t>(static_cast<std::int32_t>(share) + 32);
    }
};

struct Roll {
    static constexpr bool skips = true; ///< no draw where there is nothing to draw from
    static constexpr int integer_flops = 3;
    static constexpr int real_flops = 5;
    // Unsigned: a generator that stands still at its modulus makes n + 1.
    static std::int32_t of(std::int32_t draw, std::int32_t n) {
        const double share = static_cast<double>(draw) * n / modulus;
        const auto whole = static_cast<std::uint32_t>(static_cast<std::int32_t>(share));
        return static_cast<std::int32_t>(whole + (n > 0 ? 1u : ~0u));
    }
    static double of(std::int32_t draw, double x) {
        return __builtin_trunc(x * draw / modulus) + (x > 0 ? 1.0 : -1.0);
    }
};

struct Share {
    static constexpr bool skips = false;
    static constexpr int integer_flops = 3;
    static constexpr int real_flops = 3;
    static double of(std::int32_t draw, RealLike auto x) {
        return draw / modulus * static_cast<double>(x);
    }
};

template <class Op, class From, class To>
void row(const From* from, const std::int32_t* values, To* to, std::uint32_t n) {
    run_simd([=]() __attribute__((always_inline)) {
#pragma GCC ivdep
        for (std::uint32_t i = 0; i < n; ++i)
            to[i] = Op::of(values[i], from[i]);
    });
}

template <class Op>
double drawn_part(double x) {
    if (Op::skips && !has_range(x))
        return std::numeric_limits<double>::quiet_NaN();
    return Op::of(PRNGS(&prngs_seed), x);
}

// False: an integer has no range, and no integer to give.
template <class Op, class From, class To>
bool draw_items(const From* from, To* to, std::size_t n) {
    std::int32_t values[row_length];
    for (std::size_t i = 0; i < n; i += row_length) {
        const auto length = static_cast<std::uint32_t>(std::min<std::size_t>(row_length, n - i));
        bool ranges = true;
        if constexpr (requires { Op::skips; })
            if (Op::skips)
                for (std::uint32_t k = 0; k < length; ++k)
                    ranges &= has_range(from[i + k]);
        if (ranges) {
            PRNGS_row(&prngs_seed, values, length);
            row<Op>(from + i, values, to + i, length);
        } else if constexpr (std::same_as<From, double>) {
            for (std::uint32_t k = 0; k < length; ++k)
                to[i + k] = drawn_part<Op>(from[i + k]);
        } else {
            return false;
        }
    }
    return true;
}

template <class Op, class T>
struct Drawn {
    static constexpr bool character = std::same_as<T, Character>;
    using Rule = std::conditional_t<character, Characters, Op>;
    using Item = typename Stored<T>::Item;
    using Result = std::conditional_t<character || Op::skips || Hypercomplex<T>, T, double>;
    static constexpr bool checked = Op::skips && std::same_as<T, std::int32_t>;
    static constexpr std::uint32_t parts = character ? 1 : std::max(width<T>, 1);
    static constexpr int flops = character || std::same_as<T, std::int32_t>
                                     ? Op::integer_flops
                                     : Op::real_flops * static_cast<int>(parts);

    static constexpr Look result_look{
        character ? std::uint16_t{form::text} : std::uint16_t{form::number}, mark::probable};
    static bool look(Look, Look, bool, Look& result) {
        result = result_look;
        return true;
    }

    // A stretch that misfits gives its draws back.
    static void narrow(const void*, const Stretch& s, void* room, Tally& tally) {
        const std::int32_t before = prngs_seed;
        auto* results = static_cast<typename Stored<Result>::Item*>(room);
        const auto* items = static_cast<const Item*>(s.left);
        tally.misfit = !draw_items<Rule>(items, results, std::size_t{s.n} * parts);
        if (tally.misfit)
            prngs_seed = before;
        tally.flops = s.n * static_cast<std::uint32_t>(flops);
    }

    static int element(const void*, const Element& operand, const Element&, bool, Element& result) {
        result.tag = operand.tag;
        result.form = result_look.form;
        result.marks = result_look.marks;
        if constexpr (character) {
            result.character = Rule::of(PRNGS(&prngs_seed), operand.character);
        } else if constexpr (std::same_as<T, std::int32_t>) {
            if (Op::skips && operand.integer == 0) {
                Stored<double>::put(result, std::numeric_limits<double>::quiet_NaN());
                return 0;
            }
            Stored<Result>::put(result, Op::of(PRNGS(&prngs_seed), operand.integer));
        } else {
            for (std::uint32_t i = 0; i < parts; ++i)
                result.c[i] = drawn_part<Op>(operand.c[i]);
        }
        op_flops += flops;
        return 0;
    }

    static constexpr Kernel kernel = [] {
        Kernel made{};
        made.storage = Stored<Result>::storage;
        made.wide_storage = Storage::elements;
        made.checked = checked;
        made.narrow = narrow;
        made.look = look;
        made.element = element;
        return made;
    }();
};

template <class Op>
constexpr MonadicVerb drawing_verb(VerbFunction verb) {
    MonadicVerb made{Rules{.counted = monadic_counted, .left_as_reals = !Op::skips, .draws = true},
                     {},
                     verb,
                     0,
                     {},
                     nullptr};
    made.kernels[tag::ascii] = &Drawn<Op, Character>::kernel;
    made.kernels[tag::integer] = &Drawn<Op, std::int32_t>::kernel;
    made.kernels[tag::real] = &Drawn<Op, double>::kernel;
    made.kernels[tag::complex] = &Drawn<Op, Complex>::kernel;
    made.kernels[tag::quaternion] = &Drawn<Op, Quaternion>::kernel;
    made.kernels[tag::octonion] = &Drawn<Op, Octonion>::kernel;
    return made;
}

// A character, integer or real in place.
template <class Op>
void draw_in_place(Space& space) {
    Element operand;
    operand.tag = space.tag;
    Element result;
    if (space.tag == tag::real) {
        operand.c[0] = space.real;
        Drawn<Op, double>::element(nullptr, operand, operand, false, result);
    } else if (space.tag == tag::integer) {
        operand.integer = space.integer;
        Drawn<Op, std::int32_t>::element(nullptr, operand, operand, false, result);
    } else {
        operand.character = space.character;
        Drawn<Op, Character>::element(nullptr, operand, operand, false, result);
    }
    const InPlace made = result.tag == tag::real ? in_place_of(result.c[0])
                         : result.tag == tag::integer
                             ? in_place_of(result.integer)
                             : InPlace{tag::ascii, word_of(result.character, 0)};
    put_in_place(space, made, {result.form, result.marks}, ISPROBABLE);
    count_operations(1);
}

template <class Op, VerbFunction verb>
void drawing(Space** top, const Space* cell, Space* quads, signed char mode) {
    static constexpr MonadicVerb table = drawing_verb<Op>(verb);
    Space& operand = **top;
    operand.type |= ISPROBABLE;
    if (operand.type & ISINPLACE)
        draw_in_place<Op>(operand);
    else
        run_monadic(table, &table, top, cell, quads, mode);
}

} // namespace

void roll(Space** top, const Space* cell, Space* quads, signed char mode) {
    drawing<Roll, roll>(top, cell, quads, mode);
}

void Random(Space** top, const Space* cell, Space* quads, signed char mode) {
    drawing<Share, Random>(top, cell, quads, mode);
}

} // namespace tessor
