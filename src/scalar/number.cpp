#include "scalar/monadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

// A character that was written in binary is the number of its byte.
struct PlainNumber {
    static constexpr Rules rules{.counted = monadic_counted};

    static int refuses(Character, const Look& look) { return look.form == form::binary ? 0 : 811; }
    static std::int32_t apply(Character x) { return x.byte; }
    template <Number T>
    static T apply(const T& x) {
        return x;
    }
    template <class T, class Out>
    static int flops(const T&, const Out&) {
        return 0;
    }
    template <class T>
    static Look look(const T&, Look) {
        return {form::number, 0};
    }
};

} // namespace

void number(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<PlainNumber, number>(top, cell, quads, mode);
}

} // namespace tessor
