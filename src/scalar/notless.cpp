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

long notless_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Ordering<NotLess>>(left, right, quads);
}

} // namespace tessor
