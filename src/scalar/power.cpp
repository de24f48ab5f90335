#include "scalar/exponential.h"
#include "scalar/monadic.h"
#include "scalar/verbs.h"

#include <cstring>

namespace tessor {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double third = 0.3333333333333333; // the exponent of CBRT

bool whole(double x) {
    return std::floor(x) == x;
}

// 2 to the power n by a shift.
bool shifts(std::int32_t l, std::int32_t n) {
    return l == 2 && n >= 1 && n <= 30;
}
constexpr bool shifts(double, std::int32_t) {
    return false;
}

// Not inlined, so that a loop and a single element give the same NaN of two.

[[gnu::noinline]] Complex complex_power(const Complex& l, double e) {
    const Complex log = logarithm_of(l);
    return turned(std::exp(log.c[0] * e), log.c[1] * e);
}

[[gnu::noinline]] Complex complex_power(double l, const Complex& e) {
    const double log = std::log(l);
    return turned(std::exp(log * e.c[0]), log * e.c[1]);
}

[[gnu::noinline]] Complex complex_power(const Complex& l, const Complex& e) {
    const Complex log = logarithm_of(l);
    return turned(std::exp(log.c[0] * e.c[0] - log.c[1] * e.c[1]),
                  log.c[0] * e.c[1] + log.c[1] * e.c[0]);
}

// Of a base below 0, by an exponent that isn't whole.
[[gnu::noinline]] Complex root_below(double x, double e) {
    return turned(std::exp(std::log(-x) * e), e * pi);
}

struct Power {
    static constexpr Rules rules{};

    static double apply(RealLike auto l, std::int32_t n) {
        return shifts(l, n) ? static_cast<double>(std::uint32_t{1} << n)
                            : std::pow(static_cast<double>(l), static_cast<double>(n));
    }
    static Either<double, Complex> apply(RealLike auto l, double e) {
        const auto x = static_cast<double>(l);
        if (e == third)
            return {std::cbrt(x), {}, true};
        if (x < 0 && !whole(e))
            return {0, root_below(x, e), false};
        return {e == 0.5 ? std::sqrt(x) : std::pow(x, e), {}, true};
    }
    static Complex apply(const Complex& l, RealLike auto e) {
        return complex_power(l, static_cast<double>(e));
    }
    static Complex apply(RealLike auto l, const Complex& e) {
        return complex_power(static_cast<double>(l), e);
    }
    static Complex apply(const Complex& l, const Complex& e) { return complex_power(l, e); }

    static int flops(RealLike auto l, std::int32_t n, double) { return shifts(l, n) ? 0 : 1; }
    static int flops(RealLike auto, double, const Either<double, Complex>& power) {
        return power.is_usual ? 1 : 9;
    }
    template <Number L, Number R>
    static int flops(const L&, const R&, const Complex&) {
        return RealLike<L> ? 8 : RealLike<R> ? 14 : 18;
    }

    // Real powers by an integer, or of one, have the marks of the base.
    template <Number L, Number R>
    static Look look(const L&, const R&, const Looks& looks) {
        constexpr bool reals = std::same_as<L, double> && std::same_as<R, double>;
        constexpr bool marked = RealLike<L> && RealLike<R> && !reals;
        return {form::number, marked ? marks_without_r(looks.left.marks) : std::uint16_t{0}};
    }
};

// A complex power without an imaginary part counts as a real among the kinds.
std::uint32_t kinds_of_powers(const void* items, std::uint32_t n) {
    const auto* components = static_cast<const double*>(items);
    std::uint32_t flat = 0;
    for (std::uint32_t i = 0; i < n; ++i)
        flat += components[2 * std::size_t{i} + 1] == 0;
    return (flat != 0 ? HASREAL : 0u) | (flat != n ? HASCOMPLEX : 0u);
}

template <class L, class R>
constexpr Kernel complex_kernel = [] {
    Kernel kernel = Pair<Power, L, R>::kernel;
    kernel.kinds = kinds_of_powers;
    return kernel;
}();

// Loops over many bases with one exponent, where it is resolved once.

template <class L>
struct Bases {
    const L* items;
    double operator[](std::size_t i) const { return static_cast<double>(items[i]); }
};

// What the product p lacks of x * x: halves of x have exact products.
[[gnu::always_inline]] inline double split_error(double x, double p) {
    const double scaled = 134217729.0 * x;
    const double high = scaled - (scaled - x);
    const double low = x - high;
    return ((high * high - p) + 2 * high * low) + low * low;
}

// x * x is what pow gives wherever it is clear of the middle between two doubles: pow errs by less
// than 0.515 units in the last place for results of this size.
struct Square {
    double value;
    std::int64_t doubtful; ///< below 0
};
template <bool fused>
[[gnu::always_inline]] inline Square square_of(double x) {
    constexpr double largest = 0x1p100;
    constexpr double clear = 0.485 * 0x1p-52;
    const double p = x * x;
    const double error = fused ? __builtin_fma(x, x, -p) : split_error(x, p);
    const auto exponent = std::bit_cast<std::int64_t>(p) & 0x7ff0000000000000;
    const double allowed = std::bit_cast<double>(exponent) * clear;
    const bool surely = (p >= 1 / largest) & (p <= largest) & (__builtin_fabs(error) <= allowed);
    return {p, surely | (x == 0) ? 0 : -1};
}

// The compiler must not see the 2, or it makes the product of it.
double library_square(double x) {
    static const volatile double two = 2;
    return std::pow(x, two);
}

// Squares by the processor's vectors. With `doubts`, each of them is noted; false: none.
template <bool fused, class L>
bool square_loop(Bases<L> bases, std::uint32_t n, double* powers, std::int64_t* doubts) {
    std::int64_t any = 0;
    std::int64_t* out = &any;
    run_simd([=]() __attribute__((always_inline)) {
        std::int64_t found = 0;
        if (doubts) {
#pragma GCC ivdep
            for (std::uint32_t i = 0; i < n; ++i) {
                const Square square = square_of<fused>(bases[i]);
                powers[i] = square.value;
                doubts[i] = square.doubtful;
                found |= square.doubtful;
            }
        } else {
#pragma GCC ivdep
            for (std::uint32_t i = 0; i < n; ++i) {
                const Square square = square_of<fused>(bases[i]);
                powers[i] = square.value;
                found |= square.doubtful;
            }
        }
        *out = found;
    });
    return any != 0;
}

template <class L>
bool square_vectors(Bases<L> bases, std::uint32_t n, double* powers, std::int64_t* doubts) {
    return simd_level == SimdLevel::baseline ? square_loop<false>(bases, n, powers, doubts)
                                             : square_loop<true>(bases, n, powers, doubts);
}

// Asks the library where there are doubts; n is a multiple of eight.
template <class L>
void settle_doubts(Bases<L> bases, std::uint32_t n, double* powers, const std::int64_t* doubts) {
    for (std::uint32_t group = 0; group < n; group += 8) {
        std::int64_t any = 0;
        for (std::uint32_t i = group; i < group + 8; ++i)
            any |= doubts[i];
        if (any == 0)
            continue;
        for (std::uint32_t i = group; i < group + 8; ++i)
            if (doubts[i] != 0)
                powers[i] = library_square(bases[i]);
    }
}

template <class L>
struct Loops {
    static Bases<L> bases(const Stretch& s) { return {static_cast<const L*>(s.left)}; }

    // Short bases leave no doubts, and noting them costs half of the time: a block takes after the
    // one before it. Bases are read more than once, so those that squares are written over are
    // kept.
    static void square(const Stretch& s, double* powers) {
        constexpr std::uint32_t block = 512;
        alignas(64) std::int64_t doubts[block];
        alignas(64) L kept[block];
        const bool over_bases = s.left == powers;
        const std::uint32_t n = s.n / 8 * 8;
        bool doubtful = false;
        for (std::uint32_t done = 0; done < n; done += block) {
            const std::uint32_t some = std::min(block, n - done);
            Bases<L> x{bases(s).items + done};
            if (over_bases)
                x.items = static_cast<const L*>(std::memcpy(kept, x.items, some * sizeof(L)));
            double* to = powers + done;
            const bool noted = doubtful;
            doubtful = square_vectors(x, some, to, noted ? doubts : nullptr);
            if (doubtful && !noted)
                square_vectors(x, some, to, doubts);
            if (doubtful)
                settle_doubts(x, some, to, doubts);
        }
        for (std::uint32_t i = n; i < s.n; ++i)
            powers[i] = library_square(bases(s)[i]);
    }
    static void root(const Stretch& s, double* powers, bool& misfit) {
        const Bases<L> x = bases(s);
        const std::uint32_t n = s.n;
        bool* out = &misfit;
        run_simd([=]() __attribute__((always_inline)) {
            std::int64_t below = 0;
#pragma GCC ivdep
            for (std::uint32_t i = 0; i < n; ++i) {
                below |= x[i] < 0 ? -1 : 0;
                powers[i] = std::sqrt(x[i]);
            }
            *out = below < 0;
        });
    }
    // Any power: true where bases below 0 or exponents of their own kind ask for more than pow.
    template <bool one_exponent>
    static bool unusual(const Stretch& s) {
        const Bases<L> x = bases(s);
        const auto* e = static_cast<const double*>(s.right);
        const std::uint32_t n = s.n;
        bool found = false;
        bool* out = &found;
        run_simd([=]() __attribute__((always_inline)) {
            std::int64_t any = 0;
            for (std::uint32_t i = 0; i < n; ++i) {
                any |= x[i] < 0 ? -1 : 0;
                if constexpr (!one_exponent)
                    any |= (e[i] == third) | (e[i] == 0.5) ? -1 : 0;
            }
            *out = any != 0;
        });
        return found;
    }
    static void general(const Stretch& s, double e, double* powers, bool& misfit) {
        const Bases<L> x = bases(s);
        misfit = !whole(e) && unusual<true>(s);
        for (std::uint32_t i = 0; i < s.n && !misfit; ++i)
            powers[i] = std::pow(x[i], e);
    }
    static void usual(const Stretch& s, double* powers) {
        const Bases<L> x = bases(s);
        const auto* e = static_cast<const double*>(s.right);
        for (std::uint32_t i = 0; i < s.n; ++i)
            powers[i] = std::pow(x[i], e[i]);
    }

    template <class R>
    static void run(const void*, const Stretch& s, void* room, Tally& tally) {
        const R exponent = *static_cast<const R*>(s.right);
        const auto e = static_cast<double>(exponent);
        auto* powers = static_cast<double*>(room);
        tally = {s.n, s.n, false};
        if (e == 2)
            square(s, powers);
        else if (e == 0.5)
            root(s, powers, tally.misfit);
        else
            general(s, e, powers, tally.misfit);
        if constexpr (std::same_as<L, std::int32_t> && std::same_as<R, std::int32_t>)
            if (shifts(2, exponent))
                tally.flops -=
                    static_cast<std::uint32_t>(std::count(bases(s).items, bases(s).items + s.n, 2));
    }
};

// The loop of two real types that looks at the exponents first.
template <class L, class R>
void run_real(const void* op, const Stretch& s, void* room, Tally& tally) {
    if (s.right_single) {
        if (static_cast<double>(*static_cast<const R*>(s.right)) != third)
            return Loops<L>::template run<R>(op, s, room, tally);
    } else if constexpr (std::same_as<R, double>) {
        if (!s.left_single && !Loops<L>::template unusual<false>(s)) {
            tally = {s.n, s.n, false};
            return Loops<L>::usual(s, static_cast<double*>(room));
        }
    }
    Pair<Power, L, R>::template run<false>(op, s, room, tally);
}

template <class L, class R>
constexpr Kernel real_kernel = [] {
    Kernel kernel = Pair<Power, L, R>::kernel;
    kernel.narrow = run_real<L, R>;
    return kernel;
}();

template <class L>
constexpr void put_row(const Kernel* (&row)[rows]) {
    if constexpr (RealLike<L>) {
        row[tag::integer] = &real_kernel<L, std::int32_t>;
        row[tag::real] = &real_kernel<L, double>;
    } else {
        row[tag::integer] = &complex_kernel<L, std::int32_t>;
        row[tag::real] = &complex_kernel<L, double>;
    }
    row[tag::complex] = &complex_kernel<L, Complex>;
}

constexpr DyadicVerb power_table = [] {
    DyadicVerb table{Power::rules, {}, power, sizeof(Power)};
    put_row<std::int32_t>(table.kernels[tag::integer]);
    put_row<double>(table.kernels[tag::real]);
    put_row<Complex>(table.kernels[tag::complex]);
    return table;
}();

} // namespace

void power(Space** top, const Space* cell, Space* quads, signed char mode) {
    const Power op;
    if (!scalar_road(op, top, mode))
        run_dyadic(power_table, &op, top, cell, quads, mode);
}

long power_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Power>(left, right, quads);
}

} // namespace tessor
