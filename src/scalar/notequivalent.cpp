#include "scalar/equivalence.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct NotEquivalent {
    static constexpr bool truth = false;
    static constexpr int widest = 4;
    static constexpr std::uint32_t restricted = HASOCTONION;
    static double degree(double distance, double tolerance) {
        return distance < tolerance ? distance : 1.0;
    }
};

} // namespace

void notequivalent(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Equivalence<NotEquivalent>, notequivalent>(top, cell, quads, mode);
}

long notequivalent_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Equivalence<NotEquivalent>>(left, right, quads);
}

} // namespace tessor
