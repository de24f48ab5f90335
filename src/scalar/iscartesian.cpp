#include "scalar/form_test.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Cartesian {
    static bool holds(std::int32_t tag, std::uint16_t form) {
        return tag >= tag::complex && form == form::cartesian;
    }
};

} // namespace

void iscartesian(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<FormTest<Cartesian>, iscartesian>(top, cell, quads, mode);
}

} // namespace tessor
