#include "scalar/form_test.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Binary {
    static bool holds(std::int32_t tag, std::uint16_t form) {
        return tag < tag::complex && form == form::binary;
    }
};

} // namespace

void isbinary(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<FormTest<Binary>, isbinary>(top, cell, quads, mode);
}

} // namespace tessor
