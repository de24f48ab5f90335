// ISBINARY, ISNUMBER, ISCARTESIAN, ISPOLAR: tests of a number's form, whatever its value.
#pragma once

#include "scalar/monadic.h"

namespace tessor {

/// Test::holds tells for a tag and a form. Characters aren't tested.
template <class Test>
struct FormTest {
    static constexpr Rules rules{.counted = monadic_counted};

    template <bool answer>
    struct Answer {
        template <Number T>
        static Truth apply(const T&) {
            return {answer};
        }
        template <Number T>
        static int flops(const T&, Truth) {
            return 0;
        }
        template <Number T>
        static Look look(const T&, Look) {
            return {form::boolean, 0};
        }
    };

    using Other = Answer<true>;
    static bool other(std::int32_t tag, std::uint16_t form) { return Test::holds(tag, form); }

    template <Number T>
    static Truth apply(const T& x) {
        return Answer<false>::apply(x);
    }
    template <Number T>
    static int flops(const T& x, Truth result) {
        return Answer<false>::flops(x, result);
    }
    template <Number T>
    static Look look(const T& x, Look operand) {
        return Answer<false>::look(x, operand);
    }
};

} // namespace tessor
