#include "scalar/monadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Negative {
    static constexpr Rules rules{.counted = monadic_counted};

    // Only characters written in binary count as numbers: bytes, modulo 256.
    static int refuses(Character, const Look& look) { return look.form == form::binary ? 0 : 164; }
    static Character apply(Character x) { return {static_cast<std::uint8_t>(-x.byte)}; }
    static std::int32_t apply(std::int32_t x) {
        return static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(x));
    }
    static double apply(double x) { return -x; }
    template <Hypercomplex T>
    static T apply(T x) {
        for (double& component : x.c)
            component = -component;
        return x;
    }

    static int flops(Character, Character) { return 0; }
    static int flops(std::int32_t, std::int32_t) { return 0; }
    template <Number T>
    static int flops(const T&, const T&) {
        return width<T>;
    }

    static Look look(Character, Look operand) {
        return {form::binary, marks_without_r(operand.marks)};
    }
    template <Number T>
    static Look look(const T&, Look operand) {
        if constexpr (RealLike<T>)
            return {keep_binary(operand.form), marks_without_r(operand.marks)};
        else
            return {keep_cartesian(operand.form), passing(operand).marks};
    }
};

} // namespace

void negative(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Negative, negative>(top, cell, quads, mode);
}

} // namespace tessor
