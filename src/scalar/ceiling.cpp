#include "scalar/rounding.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Up {
    static constexpr double step = -1;
    static double whole(double x) { return std::ceil(x); }
    static Complex complex(const Complex& z) {
        const Complex f = complex_floor({{-z.c[0], -z.c[1]}});
        return {{-f.c[0], -f.c[1]}};
    }
};

} // namespace

void ceiling(Space** top, const Space* cell, Space* quads, signed char mode) {
    repaired_tolerance(quads);
    monadic<Rounding<Up>, ceiling>(top, cell, quads, mode);
}

} // namespace tessor
