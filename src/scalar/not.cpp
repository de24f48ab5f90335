#include "scalar/logic.h"
#include "scalar/monadic.h"
#include "scalar/verbs.h"

#include <bit>

namespace tessor {

namespace {

struct Not {
    static constexpr Rules rules{.counted = monadic_counted};

    // Elements whose form says how they are meant: of what was written in binary all bits are
    // turned over, and the components of truth values are degrees already.
    struct Other {
        static Character apply(Character x) { return {static_cast<std::uint8_t>(~x.byte)}; }
        static std::int32_t apply(std::int32_t x) { return ~x; }
        static double apply(double x) {
            return std::bit_cast<double>(~std::bit_cast<std::uint64_t>(x));
        }
        template <Hypercomplex T>
        static T apply(T x) requires(2 < width<T>) {
            for (double& component : x.c)
                component = 1 - component;
            return x;
        }

        template <class T>
        static int flops(const T&, const T&) {
            return 0;
        }

        static Look look(Character, Look operand) { return passing(operand); }
        template <Number T>
        static Look look(const T&, Look operand) {
            return {operand.form,
                    std::same_as<T, std::int32_t> ? passing(operand).marks : no_marks};
        }
    };
    static bool other(std::int32_t tag, std::uint16_t form) {
        if (tag >= tag::quaternion)
            return is_truth_form(form);
        return tag != tag::complex && form == form::binary;
    }

    static Truth apply(Character x) { return {!is_true(x)}; }
    static Truth apply(std::int32_t x) { return {!is_true(x)}; }
    static Bit apply(Bit x) { return {static_cast<std::int8_t>(x.value ^ 1)}; }
    static Certainty apply(Certainty x) { return {static_cast<std::int8_t>(x.value ^ 1)}; }
    static double apply(double x) { return 1 - clamp(x); }
    template <Hypercomplex T>
    static T apply(T x) {
        for (double& component : x.c)
            component = 1 - clamp(component);
        return x;
    }

    template <class T, class Out>
    static int flops(const T&, const Out&) {
        return 0;
    }

    static Look look(Complex, Look operand) { return {form::logical, passing(operand).marks}; }
    template <class T>
    static Look look(const T& x, Look operand) {
        using Out = decltype(apply(x));
        constexpr bool degree = std::same_as<Out, Certainty> || Number<Out>;
        return degree ? Look{form::logical, no_marks} : truth_look(operand);
    }

    static constexpr std::uint16_t no_marks = 0;
};

} // namespace

void not_(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Not, not_>(top, cell, quads, mode);
}

} // namespace tessor
