#include "scalar/angle_unit.h"
#include "scalar/verbs.h"

#include <numbers>

namespace tessor {

namespace {

struct Radians {
    static constexpr bool degrees = false;
    static double of(double x) { return x / 180 * std::numbers::pi; }
};

} // namespace

void rad(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<AngleUnit<Radians>, rad>(top, cell, quads, mode);
}

} // namespace tessor
