#include "scalar/angle_unit.h"
#include "scalar/verbs.h"

#include <numbers>

namespace tessor {

namespace {

struct Degrees {
    static constexpr bool degrees = true;
    static double of(double x) { return x / std::numbers::pi * 180; }
};

} // namespace

void deg(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<AngleUnit<Degrees>, deg>(top, cell, quads, mode);
}

} // namespace tessor
