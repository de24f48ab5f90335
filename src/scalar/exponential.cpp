#include "scalar/hyperlog.h"
#include "scalar/monadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Exponential {
    static constexpr Rules rules{.counted = monadic_counted};

    static double apply(RealLike auto x) { return std::exp(static_cast<double>(x)); }
    static Complex apply(const Complex& z) { return exponential_of(z); }
    template <Hypercomplex T>
    static Either<T, double> apply(const T& x) requires(width<T> > 2) {
        return hyper_exponential(x);
    }

    template <Number T, class Out>
    static int flops(const T&, const Out&) {
        return 0;
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        return {RealLike<T> ? std::uint16_t{form::number} : keep_cartesian(operand.form),
                passing(operand).marks};
    }
    template <Number T>
    static Look unusual_look(const T&, const Either<T, double>&, Look operand) {
        return {form::number, passing(operand).marks};
    }
};

} // namespace

void exponential(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Exponential, exponential>(top, cell, quads, mode);
}

} // namespace tessor
