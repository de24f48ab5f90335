#include "scalar/ordering.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

// A NaN is not greater either.
struct NotGreater {
    template <class T>
    static bool exact(T l, T r) {
        return l <= r;
    }
    static bool places(double difference, double tolerance) {
        return !(difference > margin_to_stay(tolerance));
    }
};

} // namespace

void notgreater(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Ordering<NotGreater>, notgreater>(top, cell, quads, mode);
}

long notgreater_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Ordering<NotGreater>>(left, right, quads);
}

} // namespace tessor
