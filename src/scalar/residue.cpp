#include "scalar/arithmetic.h"
#include "scalar/dyadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

template <class T>
concept UpToComplex = RealLike<T> || std::same_as<T, Complex>;

// Value modulo modulus, both complex or one of them; the modulus isn't 0.
template <UpToComplex V, UpToComplex M>
Complex complex_residue(const V& value, const M& modulus) {
    const Complex taken = multiplied(modulus, complex_floor(divided(value, modulus)));
    return {{component(value, 0) - settled(taken.c[0]), component(value, 1) - settled(taken.c[1])}};
}

// The left operand is the value, the right one the modulus. A modulus of 0 gives the value, whose
// tag may then differ from that of the other results.
struct Residue {
    static constexpr Rules rules{.restricted = HASQUATERNION | HASOCTONION,
                                 .integers_as_reals = false};

    // Exact in doubles, as a quotient of integers never rounds up to a whole number.
    static std::int32_t apply(std::int32_t v, std::int32_t m) {
        const auto value = static_cast<double>(v);
        const auto modulus = static_cast<double>(m);
        const double quotient = value / (m == 0 ? 1.0 : modulus);
        const double whole = m > 0 ? std::trunc(quotient) : std::floor(quotient);
        return static_cast<std::int32_t>(m == 0 ? value : value - modulus * whole);
    }
    static double remainder(double v, double m) { return m == 0 ? v : v - m * std::floor(v / m); }
    static double apply(double v, RealLike auto m) { return remainder(v, static_cast<double>(m)); }
    static Either<double, std::int32_t> apply(std::same_as<std::int32_t> auto v,
                                              std::same_as<double> auto m) {
        return {remainder(v, m), v, m != 0};
    }
    template <RealLike M>
    static Complex apply(const Complex& v, M m) {
        return m == 0 ? v : complex_residue(v, m);
    }
    static Complex apply(const Complex& v, const Complex& m) {
        return zero_from(m, 0) ? v : complex_residue(v, m);
    }
    template <RealLike V>
    static Either<Complex, V> apply(V v, const Complex& m) {
        const bool modulus = !zero_from(m, 0);
        return {modulus ? complex_residue(v, m) : Complex{}, v, modulus};
    }

    static int flops(std::int32_t, std::int32_t, std::int32_t) { return 0; }
    template <UpToComplex V, UpToComplex M, class Out>
    static int flops(const V&, const M&, const Out&) {
        return width<Wider<V, M>> == 1 ? 4 : 20;
    }

    template <class V, class M>
    static Look look(const V&, const M&, const Looks&) {
        return {form::number, 0};
    }
};

} // namespace

void residue(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Residue, residue>(top, cell, quads, mode);
}

long residue_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Residue>(left, right, quads);
}

} // namespace tessor
