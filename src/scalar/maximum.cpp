#include "scalar/extreme.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Greater {
    static constexpr int widest = 2;
    static constexpr std::uint32_t restricted = HASQUATERNION | HASOCTONION;
    static bool left(double difference) { return !(difference <= 0); }
    static bool left(std::int32_t l, std::int32_t r) { return l > r; }
};

} // namespace

void maximum(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Extreme<Greater>, maximum>(top, cell, quads, mode);
}

long maximum_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Extreme<Greater>>(left, right, quads);
}

} // namespace tessor
