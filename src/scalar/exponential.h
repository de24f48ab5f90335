// Complex numbers by modulus and angle, as exponentials and logarithms make and take them.
#pragma once

#include "scalar/value.h"
#include "values/hypercomplex.h"

#include <cmath>

namespace tessor {

/// The number with this modulus and angle; the modulus may have any sign.
inline Complex turned(double modulus, double angle) {
    return {{snap(std::cos(angle)) * modulus, snap(std::sin(angle)) * modulus}};
}

/// e to the power z.
inline Complex exponential_of(const Complex& z) {
    return turned(std::exp(z.c[0]), z.c[1]);
}

/// The natural logarithm: that of the modulus, and the angle.
inline Complex logarithm_of(const Complex& z) {
    return {{std::log(std::sqrt(norm<2>(z.c))), angle_of(z.c[1], z.c[0])}};
}

} // namespace tessor
