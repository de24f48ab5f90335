#include "values/hypercomplex.h"

#include <algorithm>
#include <cmath>

namespace tessor {

namespace {

constexpr double pi = 3.141592653589793;

// By the last component, from 4 to 7.
constexpr int cartesianocto_flops[] = {25, 34, 41, 50};

double snapped_cos(double angle) {
    return snap(std::cos(angle));
}
double snapped_sin(double angle) {
    return snap(std::sin(angle));
}

double square_sum(const double* from, int first, int last) {
    double sum = from[first] * from[first];
    for (int i = first + 1; i <= last; ++i)
        sum += from[i] * from[i];
    return sum;
}

// The last of components 4 to 7 that isn't 0; 4 if all are.
int last_octonion_component(const double* c) {
    int last = 7;
    while (last > 4 && c[last] == 0)
        --last;
    return last;
}

template <int N>
int sign_of_first(const double* from, double& flops) {
    for (int i = 0; i < N; ++i) {
        if (from[i] == 0)
            continue;
        const bool negative = from[i] < 0;
        flops += 2 * (i + 1) - (negative ? 1 : 0);
        return negative ? -1 : 1;
    }
    flops += 2 * N;
    return 0;
}

} // namespace

double angle_of(double y, double x) {
    if (near_zero(y))
        return x < 0 ? pi : 0.0;
    return std::atan2(y, x);
}

void polarcomplex(double* to, const double* from, double& flops) {
    const double a = from[0];
    const double b = from[1];
    to[0] = std::sqrt(a * a + b * b);
    to[1] = angle_of(b, a);
    flops += 6;
}

void cartesiancomplex(double* to, const double* from, double& flops) {
    const double modulus = from[0];
    const double angle = from[1];
    to[0] = modulus * snapped_cos(angle);
    to[1] = modulus * snapped_sin(angle);
    flops += 4;
}

// The last angle is that of the component itself, not of its share in the modulus: beyond 1 there
// is none.
void polarquat(double* to, const double* from, double& flops) {
    const double a = from[0];
    const double b = from[1];
    const double c = from[2];
    const double d = from[3];
    if (d == 0) {
        to[0] = std::sqrt(a * a + b * b + c * c);
        to[1] = angle_of(b, a);
        to[2] = std::asin(c);
        to[3] = 0;
        flops += 9;
        return;
    }
    const double rest = std::sqrt(b * b + c * c);
    to[0] = std::sqrt(a * a + b * b + c * c + d * d);
    to[1] = angle_of(b, a);
    to[2] = angle_of(rest, a);
    to[3] = std::asin(d);
    flops += near_zero(rest) ? 18 : 22;
}

void cartesianquat(double* to, const double* from, double& flops) {
    const double modulus = from[0];
    const double p = from[1];
    const double q = from[2];
    const double s = from[3];
    if (s == 0) {
        to[0] = modulus * snapped_cos(p) * snapped_cos(q);
        to[1] = modulus * snapped_sin(p) * snapped_cos(q);
        to[2] = modulus * snapped_sin(q);
        to[3] = 0;
        flops += 10;
        return;
    }
    to[0] = modulus * snapped_cos(p) * snapped_cos(q) * snapped_cos(s);
    to[1] = modulus * snapped_sin(p) * snapped_cos(q) * snapped_cos(s);
    to[2] = modulus * snapped_sin(q) * snapped_cos(s);
    to[3] = modulus * snapped_sin(s);
    flops += 16;
}

void polarocto(double* to, const double* from, double& flops) {
    double e[8];
    std::copy_n(from, 8, e);
    const int last = last_octonion_component(e);
    to[0] = std::sqrt(square_sum(e, 0, last));
    flops += 2 * (last + 1);
    for (int i = 1; i < last; ++i) {
        const double rest = std::sqrt(square_sum(e, i, last));
        const int sum_flops = 2 * (last - i + 1);
        to[i] = angle_of(rest, e[i - 1]);
        flops += (near_zero(rest) ? sum_flops : 2 * sum_flops) + 2;
    }
    to[last] = angle_of(e[last], e[last - 1]);
    flops += 2;
    std::fill(to + last + 1, to + 8, 0.0);
}

void cartesianocto(double* to, const double* from, double& flops) {
    double angles[8];
    std::copy_n(from, 8, angles);
    const int last = last_octonion_component(angles);
    double projection = angles[0];
    for (int i = 0; i < last; ++i) {
        to[i] = projection * snapped_cos(angles[i + 1]);
        projection *= snapped_sin(angles[i + 1]);
    }
    to[last] = projection;
    std::fill(to + last + 1, to + 8, 0.0);
    flops += cartesianocto_flops[last - 4];
}

int csgnquat(const double* from, double& flops) {
    return sign_of_first<4>(from, flops);
}

int csgnocto(const double* from, double& flops) {
    return sign_of_first<8>(from, flops);
}

} // namespace tessor
