#include "scalar/connective.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Or {
    template <class T>
    static constexpr T of(T a, T b) {
        return greater_of(a, b);
    }
};

} // namespace

void or_(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Connective<Or>, or_>(top, cell, quads, mode);
}

long or_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Connective<Or>>(left, right, quads);
}

} // namespace tessor
