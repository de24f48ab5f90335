#include "scalar/form_test.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Plain {
    static bool holds(std::int32_t, std::uint16_t form) { return form == form::number; }
};

} // namespace

void isnumber(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<FormTest<Plain>, isnumber>(top, cell, quads, mode);
}

} // namespace tessor
