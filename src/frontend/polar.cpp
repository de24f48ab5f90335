#include "frontend/polar.h"

#include "values/space.h"

#include <cmath>

namespace tessor {

namespace {

// A sine or cosine that is as good as 0 is 0, and so is a NaN.
double snap(double x) {
    return std::fabs(x) >= 1e-15 ? x : 0.0;
}
double snapped_sin(double angle) {
    return snap(std::sin(angle));
}
double snapped_cos(double angle) {
    return snap(std::cos(angle));
}

void complex_from_polar(double* c) {
    const double modulus = c[0];
    const double angle = c[1];
    c[0] = modulus * snapped_cos(angle);
    c[1] = modulus * snapped_sin(angle);
}

void quaternion_from_polar(double* c) {
    const double modulus = c[0];
    const double p = c[1];
    const double q = c[2];
    const double s = c[3];
    c[0] = modulus * snapped_cos(p) * snapped_cos(q);
    c[1] = modulus * snapped_sin(p) * snapped_cos(q);
    c[2] = modulus * snapped_sin(q);
    c[3] = 0;
    if (s != 0) {
        for (int i = 0; i < 3; ++i)
            c[i] *= snapped_cos(s);
        c[3] = modulus * snapped_sin(s);
    }
}

// Hyperspherical coordinates, in as many dimensions as there are angles, five at the least.
void octonion_from_polar(double* c) {
    int last = 7;
    while (last > 4 && c[last] == 0)
        --last;
    double along = c[0];
    for (int i = 0; i < last; ++i) {
        const double angle = c[i + 1];
        c[i] = along * snapped_cos(angle);
        along *= snapped_sin(angle);
    }
    c[last] = along;
}

} // namespace

void polar_to_cartesian(std::int32_t tag, double* components) {
    switch (tag) {
    case tag::complex: complex_from_polar(components); break;
    case tag::quaternion: quaternion_from_polar(components); break;
    case tag::octonion: octonion_from_polar(components); break;
    default: break;
    }
}

} // namespace tessor
