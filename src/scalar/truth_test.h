// ISBOOLEAN and ISLOGICAL: truth values by the form of an element, or else by its value.
#pragma once

#include "scalar/logic.h"
#include "scalar/monadic.h"

namespace tessor {

/// Test::by_form tells the forms of numbers that are enough; Test::by_value decides all others, and
/// Test::binary a character that was written in binary. No other character is a truth value.
template <class Test>
struct TruthTest {
    static constexpr Rules rules{.counted = monadic_counted};

    struct Other {
        static Truth apply(Character x) { return {Test::binary(x)}; }
        template <Number T>
        static Truth apply(const T&) {
            return {true};
        }
        template <class T>
        static int flops(const T&, Truth) {
            return 0;
        }
        template <class T>
        static Look look(const T&, Look) {
            return {form::boolean, 0};
        }
    };
    static bool other(std::int32_t tag, std::uint16_t form) {
        return tag == tag::ascii ? form == form::binary : Test::by_form(form);
    }

    static Truth apply(Character) { return {false}; }
    template <Number T>
    static Truth apply(const T& x) {
        return {Test::by_value(x)};
    }
    template <class T>
    static int flops(const T&, Truth) {
        return 0;
    }
    template <class T>
    static Look look(const T&, Look) {
        return {form::boolean, 0};
    }
};

} // namespace tessor
