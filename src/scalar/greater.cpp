#include "scalar/ordering.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Greater {
    template <class T>
    static bool exact(T l, T r) {
        return l > r;
    }
    static bool places(double difference, double tolerance) {
        return margin_to_pass(tolerance) < difference;
    }
};

} // namespace

void greater(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Ordering<Greater>, greater>(top, cell, quads, mode);
}

long greater_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Ordering<Greater>>(left, right, quads);
}

} // namespace tessor
