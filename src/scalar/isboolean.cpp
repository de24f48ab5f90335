#include "scalar/truth_test.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Boolean {
    static bool by_form(std::uint16_t form) { return form == form::boolean; }
    static bool by_value(const auto& x) { return is_certain(x); }
    static bool binary(Character x) { return x.byte <= 1; }
};

} // namespace

void isboolean(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<TruthTest<Boolean>, isboolean>(top, cell, quads, mode);
}

} // namespace tessor
