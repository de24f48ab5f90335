#include "scalar/dyadic.h"
#include "scalar/factor.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Binomial {
    static constexpr Rules rules{};
    double tolerance = default_tolerance;

    static Either<double, Fault> apply(RealLike auto l, RealLike auto r) {
        const Checked<long double> made = binom(static_cast<double>(l), static_cast<double>(r));
        return {static_cast<double>(made.value), {made.number}, made.number == 0};
    }
    template <Number L, Number R>
    Either<Complex, Fault> apply(const L& l, const R& r) const requires(width<Wider<L, R>> == 2) {
        const Checked<Complex> made = binom_complex(extended(l), extended(r), tolerance);
        return {made.value, {made.number}, made.number == 0};
    }

    static int flops(RealLike auto l, RealLike auto r, const Either<double, Fault>&) {
        return binom_flops(static_cast<double>(l), static_cast<double>(r));
    }
    template <Number L, Number R>
    int flops(const L& l, const R& r, const Either<Complex, Fault>&) const {
        const Complex a = extended(l);
        const Complex b = extended(r);
        return gammax_flops({{b.c[0] - a.c[0], b.c[1] - a.c[1]}}, tolerance)
               + gammax_flops(a, tolerance) + gammax_flops(b, tolerance);
    }

    template <Number L, Number R>
    static Look look(const L&, const R&, const Looks&) {
        return {form::number, 0};
    }

private:
    template <Number T>
    static Complex extended(const T& x) {
        return {{component(x, 0), component(x, 1)}};
    }
};

} // namespace

void binomial(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Binomial, binomial>(top, cell, quads, mode);
}

long binomial_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Binomial>(left, right, quads);
}

} // namespace tessor
