#include "scalar/dyadic.h"
#include "scalar/exponential.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

// Not inlined, so that a loop and a single element give the same NaN of two.

[[gnu::noinline]] Complex by_complex(const Complex& l, double r) {
    const Complex base = logarithm_of(l);
    const double log = std::log(r);
    const double n = norm<2>(base.c);
    return {{base.c[0] * log / n, base.c[1] * log / n}};
}

[[gnu::noinline]] Complex by_real(double l, const Complex& r) {
    const double base = std::log(l);
    const Complex log = logarithm_of(r);
    const double n = base * base;
    return {{log.c[0] * base / n, log.c[1] * base / n}};
}

[[gnu::noinline]] Complex quotient(const Complex& l, const Complex& r) {
    const Complex base = logarithm_of(l);
    const Complex log = logarithm_of(r);
    const double n = norm<2>(base.c);
    return {{(base.c[0] * log.c[0] + base.c[1] * log.c[1]) / n,
             (log.c[1] * base.c[0] - base.c[1] * log.c[0]) / n}};
}

// Of two reals, the right one is the base; the logarithm of a complex right operand is what is
// divided.
struct Logarithm {
    static constexpr Rules rules{};

    static double apply(RealLike auto l, RealLike auto r) {
        return std::log(static_cast<double>(l)) / std::log(static_cast<double>(r));
    }
    static Complex apply(const Complex& l, RealLike auto r) {
        return by_complex(l, static_cast<double>(r));
    }
    static Complex apply(RealLike auto l, const Complex& r) {
        return by_real(static_cast<double>(l), r);
    }
    static Complex apply(const Complex& l, const Complex& r) { return quotient(l, r); }

    template <Number L, Number R, class Out>
    static int flops(const L&, const R&, const Out&) {
        constexpr bool complex_base = Hypercomplex<L>;
        constexpr bool complex_number = Hypercomplex<R>;
        return complex_base ? (complex_number ? 25 : 15) : complex_number ? 13 : 3;
    }

    template <Number L, Number R>
    static Look look(const L&, const R&, const Looks&) {
        return {form::number, 0};
    }
};

} // namespace

void logarithm(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Logarithm, logarithm>(top, cell, quads, mode);
}

long logarithm_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Logarithm>(left, right, quads);
}

} // namespace tessor
