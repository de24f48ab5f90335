#include "scalar/contradict.h"
#include "scalar/monadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

// One value can't contradict itself. Components that are degrees already are taken as they are.
template <bool limited>
struct Contradiction {
    static constexpr Rules rules{.counted = monadic_counted};

    using Other = Contradiction<false>;
    static bool other(std::int32_t, std::uint16_t form) { return is_truth_form(form); }

    static Truth apply(Character) { return {false}; }
    static Truth apply(RealLike auto) { return {false}; }
    template <Hypercomplex T>
    static double apply(const T& x) {
        return imbalance<width<T>, limited>(x.c);
    }

    template <class T>
    static int flops(const T& x, double) {
        return flops_of_imbalance(components_in_use<width<T>>(x.c));
    }
    template <class T>
    static int flops(const T&, Truth) {
        return 0;
    }

    template <class T>
    static Look look(const T& x, Look operand) {
        if constexpr (std::same_as<decltype(apply(x)), Truth>)
            return truth_look(operand);
        else
            return {limited ? std::uint16_t{form::logical} : operand.form,
                    degree_look(operand).marks};
    }
};

} // namespace

void contradiction(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Contradiction<true>, contradiction>(top, cell, quads, mode);
}

} // namespace tessor
