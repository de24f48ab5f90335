#include "scalar/monadic.h"
#include "scalar/verbs.h"

#include <cmath>

namespace tessor {

namespace {

struct Truncate {
    static constexpr Rules rules{.counted = monadic_counted};

    static std::int32_t apply(std::int32_t x) { return x; }
    static Promoted apply(double x) { return promoted(std::trunc(x)); }
    template <Hypercomplex T>
    static T apply(T x) {
        for (double& component : x.c)
            component = std::trunc(component);
        return x;
    }

    static int flops(std::int32_t, std::int32_t) { return 0; }
    template <Number T, class Out>
    static constexpr int flops(const T&, const Out&) {
        return 2 * width<T>;
    }

    template <Number T>
    static Look look(const T&, Look operand) {
        if (std::same_as<T, std::int32_t>)
            return passing(operand);
        return {operand.form, marks_without_r(operand.marks)};
    }
};

} // namespace

void truncate(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Truncate, truncate>(top, cell, quads, mode);
}

} // namespace tessor
