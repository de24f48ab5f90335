#include "scalar/ordering.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Less {
    template <class T>
    static bool exact(T l, T r) {
        return l < r;
    }
    static bool places(double difference, double tolerance) {
        return margin_to_pass(tolerance) < -difference;
    }
};

} // namespace

void less(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Ordering<Less>, less>(top, cell, quads, mode);
}

long less_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Ordering<Less>>(left, right, quads);
}

} // namespace tessor
