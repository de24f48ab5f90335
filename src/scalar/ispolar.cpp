#include "scalar/form_test.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Polar {
    static bool holds(std::int32_t tag, std::uint16_t form) {
        return tag >= tag::complex && form == form::polar;
    }
};

} // namespace

void ispolar(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<FormTest<Polar>, ispolar>(top, cell, quads, mode);
}

} // namespace tessor
