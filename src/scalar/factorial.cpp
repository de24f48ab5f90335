#include "io/writers/exception.h"
#include "scalar/factor.h"
#include "scalar/monadic.h"
#include "scalar/tolerance.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

constexpr std::int32_t factorials[] = {1,    1,     2,      6,       24,       120,      720,
                                       5040, 40320, 362880, 3628800, 39916800, 479001600};

struct Factorial {
    static constexpr Rules rules{.counted = monadic_counted};
    double tolerance = default_tolerance;

    static Either<double, Fault> apply(double x) {
        const Checked<long double> made = factor<long double>(x);
        return {static_cast<double>(made.value), {made.number}, made.number == 0};
    }
    static Either<std::int32_t, Either<double, Fault>> apply(std::int32_t x) {
        if (static_cast<std::uint32_t>(x) < std::size(factorials))
            return {factorials[x], {}, true};
        return {0, apply(static_cast<double>(x)), false};
    }
    Either<Complex, Fault> apply(const Complex& z) const {
        const Checked<Complex> made = gammax(z, tolerance);
        return {made.value, {made.number}, made.number == 0};
    }

    template <RealLike T, class Out>
    static int flops(T, const Out&) {
        return 0;
    }
    int flops(const Complex& z, const Either<Complex, Fault>&) const {
        return gammax_flops(z, tolerance);
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        return {form::number, marks_without_r(operand.marks)};
    }
};

// A value of quaternions or octonions alone.
bool all_too_wide(const Space& value) {
    if (value.rank < 0 || value.elements == 0 || (value.type & (COMPLEXED | STRUCTURED)))
        return false;
    const std::int32_t first = first_tag(value);
    return first == tag::quaternion || first == tag::octonion;
}

} // namespace

void factorial(Space** top, const Space* cell, Space* quads, signed char mode) {
    repaired_tolerance(quads);
    if (all_too_wide(**top))
        fail(991, top, cell);
    monadic<Factorial, factorial>(top, cell, quads, mode);
}

} // namespace tessor
