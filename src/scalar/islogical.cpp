#include "scalar/truth_test.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Logical {
    static bool by_form(std::uint16_t form) { return is_truth_form(form); }
    static bool by_value(std::int32_t x) { return is_certain(x); }
    static bool by_value(const auto& x) { return is_degree(x); }
    static bool binary(Character) { return false; }
};

} // namespace

void islogical(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<TruthTest<Logical>, islogical>(top, cell, quads, mode);
}

} // namespace tessor
