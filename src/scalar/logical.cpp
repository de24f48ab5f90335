#include "scalar/logic.h"
#include "scalar/monadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Logical {
    static constexpr Rules rules{.counted = monadic_counted};

    using Other = AsMeant;
    static bool other(std::int32_t tag, std::uint16_t form) {
        return tag == tag::ascii ? form == form::binary : is_truth_form(form);
    }

    static Truth apply(Character x) { return {is_true(x)}; }
    static Truth apply(std::int32_t x) { return {is_true(x)}; }
    static double apply(double x) { return clamp(x); }
    template <Hypercomplex T>
    static T apply(const T& x) {
        return clamp(x);
    }

    template <class T, class Out>
    static int flops(const T&, const Out&) {
        return 0;
    }

    template <class T>
    static Look look(const T& x, Look operand) {
        using Out = decltype(apply(x));
        return std::same_as<Out, Truth> ? truth_look(operand) : degree_look(operand);
    }
};

} // namespace

void logical(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Logical, logical>(top, cell, quads, mode);
}

} // namespace tessor
