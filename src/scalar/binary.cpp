#include "scalar/monadic.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Binary {
    static constexpr Rules rules{.counted = monadic_counted};

    static Character apply(Character x) { return x; }
    static std::int32_t apply(std::int32_t x) { return x; }
    static double apply(double x) { return x; }
    template <class T>
    static int flops(const T&, const T&) {
        return 0;
    }
    template <class T>
    static Look look(const T&, Look operand) {
        return {form::binary, passing(operand).marks};
    }
};

} // namespace

void binary(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Binary, binary>(top, cell, quads, mode);
}

} // namespace tessor
