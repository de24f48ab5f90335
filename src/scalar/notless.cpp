#include "scalar/ordering.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct NotLess {
    template <class T>
    static bool exact(T l, T r) {
        return l >= r;
    }
    static bool places(double difference, double tolerance) {
        return -difference <= margin_to_stay(tolerance);
    }
};

} // namespace

void notless(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Ordering<NotLess>, notless>(top, cell, quads, mode);
}

Space* notless_in_place(Space* top, const Space* floor, Space* quads) {
    return dyadic_in_place<Ordering<NotLess>>(top, floor, quads);
}

} // namespace tessor
