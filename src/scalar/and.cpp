#include "scalar/connective.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct And {
    template <class T>
    static constexpr T of(T a, T b) {
        return lesser(a, b);
    }
};

} // namespace

void and_(Space** top, const Space* cell, Space* quads, signed char mode) {
    dyadic<Connective<And>, and_>(top, cell, quads, mode);
}

long and_in_place(Space* left, const Space* right, Space* quads) {
    return dyadic_in_place<Connective<And>>(left, right, quads);
}

} // namespace tessor
