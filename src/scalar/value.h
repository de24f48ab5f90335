// The C++ values that element operations work on.
//
// An operation is a set of overloads of `apply` on these types; what it returns says which element
// results. Results whose kind depends on the data (Promoted, Quotient, Degree, Either) have a
// usual, narrow form, in which packed loops run for as long as all of a stretch fits it.
#pragma once

#include "values/array.h"

#include <algorithm>
#include <concepts>
#include <type_traits>

namespace tessor {

struct Character {
    std::uint8_t byte;
};

/// Components of a complex number, a quaternion or an octonion; always cartesian.
template <int N>
struct Hyper {
    double c[N];
};
using Complex = Hyper<2>;
using Quaternion = Hyper<4>;
using Octonion = Hyper<8>;

template <class T>
concept RealLike = std::same_as<T, std::int32_t> || std::same_as<T, double>;

/// Number of components of a number; 0 for what is no number.
template <class T>
inline constexpr int width = RealLike<T> ? 1 : 0;
template <int N>
inline constexpr int width<Hyper<N>> = N;

template <class T>
concept Number = (0 < width<T>);
template <class T>
concept Hypercomplex = (1 < width<T>);

/// The number with the more components of two.
template <Number L, Number R>
using Wider = std::conditional_t<(width<L> < width<R>), R, L>;

/// Component i of a number, 0 beyond its last.
template <Number T>
constexpr double component(const T& value, int i) {
    if constexpr (RealLike<T>)
        return i == 0 ? static_cast<double>(value) : 0.0;
    else
        return i < width<T> ? value.c[i] : 0.0;
}

/// Components from `first` on all exactly 0.
template <Number T>
constexpr bool zero_from(const T& value, int first) {
    bool zero = true;
    for (int i = first; i < width<T>; ++i)
        zero &= component(value, i) == 0;
    return zero;
}

// Elements of a byte each, in blocks that hold truth values only: loops that leave them so.

/// An integer 0 or 1.
struct Bit {
    std::int8_t value;
};
/// A real truth degree that is exactly 0 or 1.
struct Certainty {
    std::int8_t value;
};

template <class T>
concept ByteLike = std::same_as<T, Bit> || std::same_as<T, Certainty>;

// Results beside the values themselves. A `misfit` below 0 says that the narrow form won't do, or
// may not: loops gather these signs in as wide a word as the values have, so as to stay vector
// code.

/// An integer 0 or 1.
struct Truth {
    bool value;
};
/// A real truth degree. Unless `misfit` is negative it is exactly 0 or 1, `one`.
struct Degree {
    bool one;
    std::int64_t misfit;
    double value;
};
/// A whole number that is an integer if its magnitude is at most 2147483647, as `fits` tells, else
/// a real. Unless `misfit` is negative it fits for certain and is `whole`.
struct Promoted {
    std::int32_t whole;
    std::int32_t misfit;
    std::uint32_t fits;
    double value;
};
/// A quotient of integers: an integer if it is whole and not negative, else a real.
struct Quotient {
    double value;
};
/// A value of the usual type, or else one of the other.
template <class Usual, class Other>
struct Either {
    Usual usual;
    Other other;
    bool is_usual;
};
/// No value: the number to report.
struct Fault {
    int number;
};

inline constexpr double largest_integer = 2147483647.0;

/// A whole double as a Promoted; NaN and what is too large stay real.
inline Promoted promoted(double value) {
    const bool fits = (value < 0 ? -value : value) <= largest_integer;
    return {static_cast<std::int32_t>(fits ? value : 0.0), fits ? 0 : -1, fits ? 1u : 0u, value};
}

inline Degree degree(double value) {
    return {value == 1, (value == 0) | (value == 1) ? 0 : -1, value};
}

/// form and marks of an element.
struct Look {
    std::uint16_t form = form::number;
    std::uint16_t marks = 0;
    bool operator==(const Look&) const = default;
};

/// Marks that no result keeps: the named constant, and what prints as nothing.
inline constexpr std::uint16_t passing_marks = 0x3fff;

// How values and results are stored. `Item` is what a packed block of the usual form holds;
// `checked` results may not fit it, and go over to items of the type `Wide`, if there is one.
// Results of `two_kinds` are integers where they fit, and else reals; `sample` gives one of either
// kind.

template <class T>
struct Stored;

template <class T, Storage S>
struct StoredPlain {
    using Item = T;
    static constexpr Storage storage = S;
    static constexpr bool checked = false;
    static constexpr bool two_kinds = false;
    using Wide = void;
    static constexpr Storage wide_storage = Storage::elements;
};

template <>
struct Stored<std::int32_t> : StoredPlain<std::int32_t, Storage::integer> {
    static std::int32_t get(const Element& e) { return e.integer; }
    static void put(Element& e, std::int32_t v) {
        e.tag = tag::integer;
        e.integer = v;
    }
    static std::int32_t load(const std::int32_t* items, std::size_t i) { return items[i]; }
    static void save(std::int32_t* items, std::size_t i, std::int32_t v) { items[i] = v; }
};

template <>
struct Stored<double> : StoredPlain<double, Storage::real> {
    static double get(const Element& e) { return e.c[0]; }
    static void put(Element& e, double v) {
        e.tag = tag::real;
        e.c[0] = v;
    }
    static double load(const double* items, std::size_t i) { return items[i]; }
    static void save(double* items, std::size_t i, double v) { items[i] = v; }
};

template <>
struct Stored<Character> : StoredPlain<std::uint8_t, Storage::character> {
    static Character get(const Element& e) { return {e.character}; }
    static void put(Element& e, Character v) {
        e.tag = tag::ascii;
        e.character = v.byte;
    }
    static Character load(const std::uint8_t* items, std::size_t i) { return {items[i]}; }
    static void save(std::uint8_t* items, std::size_t i, Character v) { items[i] = v.byte; }
};

template <>
struct Stored<Truth> : StoredPlain<std::uint8_t, Storage::truth> {
    static void put(Element& e, Truth v) { Stored<std::int32_t>::put(e, v.value); }
    static void save(std::uint8_t* items, std::size_t i, Truth v) { items[i] = v.value; }
};

template <ByteLike T, Storage S>
struct StoredByte : StoredPlain<std::int8_t, S> {
    static T load(const std::int8_t* items, std::size_t i) { return {items[i]}; }
    static void save(std::int8_t* items, std::size_t i, T v) { items[i] = v.value; }
};

template <>
struct Stored<Bit> : StoredByte<Bit, Storage::truth> {
    static Bit get(const Element& e) { return {e.integer != 0}; }
    static void put(Element& e, Bit v) { Stored<std::int32_t>::put(e, v.value); }
};

template <>
struct Stored<Certainty> : StoredByte<Certainty, Storage::degree> {
    static Certainty get(const Element& e) { return {e.c[0] != 0}; }
    static void put(Element& e, Certainty v) { Stored<double>::put(e, v.value); }
};

template <int N>
inline constexpr std::int32_t hyper_tag = N == 2   ? tag::complex
                                          : N == 4 ? tag::quaternion
                                                   : tag::octonion;

template <int N>
struct Stored<Hyper<N>> : StoredPlain<double, tag_storage(hyper_tag<N>)> {
    static Hyper<N> get(const Element& e) { return load(e.c, 0); }
    static void put(Element& e, const Hyper<N>& v) {
        e.tag = hyper_tag<N>;
        save(e.c, 0, v);
    }
    static Hyper<N> load(const double* items, std::size_t i) {
        Hyper<N> v;
        for (int k = 0; k < N; ++k)
            v.c[k] = items[i * N + static_cast<std::size_t>(k)];
        return v;
    }
    static void save(double* items, std::size_t i, const Hyper<N>& v) {
        for (int k = 0; k < N; ++k)
            items[i * N + static_cast<std::size_t>(k)] = v.c[k];
    }
};

template <>
struct Stored<Degree> {
    using Item = std::uint8_t;
    static constexpr Storage storage = Storage::degree;
    static constexpr bool checked = true;
    static constexpr bool two_kinds = false;
    using Wide = double;
    static constexpr Storage wide_storage = Storage::real;
    static void put(Element& e, Degree v) { Stored<double>::put(e, v.value); }
    static void save(std::uint8_t* items, std::size_t i, Degree v) { items[i] = v.one; }
    static std::int64_t misfit(const Degree& v) { return v.misfit; }
    static double wide(Degree v) { return v.value; }
};

template <>
struct Stored<Promoted> {
    using Item = std::int32_t;
    static constexpr Storage storage = Storage::integer;
    static constexpr bool checked = true;
    static constexpr bool two_kinds = true;
    using Wide = double;
    static constexpr Storage wide_storage = Storage::promoted;
    static void put(Element& e, const Promoted& v) {
        if (v.fits)
            Stored<std::int32_t>::put(e, v.whole);
        else
            Stored<double>::put(e, v.value);
    }
    static void save(std::int32_t* items, std::size_t i, const Promoted& v) { items[i] = v.whole; }
    static bool fits(const Promoted& v) { return v.fits != 0; }
    static std::int32_t misfit(const Promoted& v) { return v.misfit; }
    static constexpr Promoted sample(bool integer) { return {0, 0, integer, 0}; }
    // An integer has no -0.0.
    static double wide(const Promoted& v) { return v.value + 0.0; }
};

template <>
struct Stored<Quotient> {
    using Item = std::int32_t;
    static constexpr Storage storage = Storage::integer;
    static constexpr bool checked = true;
    static constexpr bool two_kinds = true;
    using Wide = double;
    static constexpr Storage wide_storage = Storage::quotient;
    static constexpr bool fits(Quotient v) {
        constexpr double rounding = 4503599627370496.0; // leaves no place for a fraction
        const double whole =
            std::is_constant_evaluated() ? v.value + rounding - rounding : __builtin_trunc(v.value);
        return (v.value >= 0) & (v.value <= largest_integer) & (v.value == whole);
    }
    static std::int32_t misfit(Quotient v) { return fits(v) ? 0 : -1; }
    static constexpr Quotient sample(bool integer) { return {integer ? 0.0 : 0.5}; }
    static void put(Element& e, Quotient v) {
        if (fits(v))
            Stored<std::int32_t>::put(e, static_cast<std::int32_t>(v.value));
        else
            Stored<double>::put(e, v.value);
    }
    static void save(std::int32_t* items, std::size_t i, Quotient v) {
        const bool within = (v.value >= 0) & (v.value <= largest_integer);
        items[i] = static_cast<std::int32_t>(within ? v.value : 0.0);
    }
    // An integer has no -0.0.
    static double wide(Quotient v) { return v.value + 0.0; }
};

template <class Usual, class Other>
struct Stored<Either<Usual, Other>> {
    using Item = typename Stored<Usual>::Item;
    static constexpr Storage storage = Stored<Usual>::storage;
    static constexpr bool checked = true;
    static constexpr bool two_kinds = false;
    using Wide = void;
    static constexpr Storage wide_storage = Storage::elements;
    static void put(Element& e, const Either<Usual, Other>& v) {
        if (v.is_usual)
            Stored<Usual>::put(e, v.usual);
        else if constexpr (!std::same_as<Other, Fault>)
            Stored<Other>::put(e, v.other);
    }
    static void save(Item* items, std::size_t i, const Either<Usual, Other>& v) {
        Stored<Usual>::save(items, i, v.usual);
    }
    static std::int32_t misfit(const Either<Usual, Other>& v) { return v.is_usual ? 0 : -1; }
};

/// The number to report for a result that is none; 0 for every other result.
template <class T>
constexpr int fault_of(const T&) {
    return 0;
}
constexpr int fault_of(const Fault& fault) {
    return fault.number;
}
template <class Usual, class Other>
constexpr int fault_of(const Either<Usual, Other>& v) {
    return v.is_usual ? 0 : fault_of(v.other);
}

} // namespace tessor
