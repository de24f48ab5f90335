#include "scalar/hyperlog.h"
#include "scalar/monadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct NaturalLog {
    static constexpr Rules rules{.counted = monadic_counted};

    static double apply(RealLike auto x) { return std::log(static_cast<double>(x)); }
    static Complex apply(const Complex& z) { return logarithm_of(z); }
    template <Hypercomplex T>
    static Either<T, Either<double, Complex>> apply(const T& x) requires(width<T> > 2) {
        return hyper_logarithm(x);
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
    static Look unusual_look(const T&, const Either<T, Either<double, Complex>>& result,
                             Look operand) {
        return {result.other.is_usual ? std::uint16_t{form::number} : keep_cartesian(operand.form),
                passing(operand).marks};
    }
};

} // namespace

void naturallog(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<NaturalLog, naturallog>(top, cell, quads, mode);
}

} // namespace tessor
