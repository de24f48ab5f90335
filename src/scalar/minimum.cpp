#include "scalar/extreme.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Lesser {
    static constexpr int widest = 4;
    static constexpr std::uint32_t restricted = HASOCTONION;
    static bool left(double difference) { return difference < 0; }
    static bool left(std::int32_t l, std::int32_t r) { return l < r; }
};

} // namespace

void minimum(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Extreme<Lesser>, minimum>(top, cell, quads, mode);
}

long minimum_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Extreme<Lesser>>(left, right, quads);
}

} // namespace tessor
