#include "scalar/rounding.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Down {
    static constexpr double step = 1;
    static double whole(double x) { return std::floor(x); }
    static Complex complex(const Complex& z) { return complex_floor(z); }
};

} // namespace

void floor(Space** top, const Space* cell, Space* quads, signed char mode) {
    repaired_tolerance(quads);
    monadic<Rounding<Down>, floor>(top, cell, quads, mode);
}

} // namespace tessor
