#include "scalar/equivalence.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Equivalent {
    static constexpr bool truth = true;
    static constexpr int widest = 8;
    static constexpr std::uint32_t restricted = 0;
    static double degree(double distance, double tolerance) {
        return distance < tolerance ? 1 - distance : 0.0;
    }
};

} // namespace

void equivalent(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Equivalence<Equivalent>, equivalent>(top, cell, quads, mode);
}

long equivalent_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Equivalence<Equivalent>>(left, right, quads);
}

} // namespace tessor
