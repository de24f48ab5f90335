// How far the degrees of a many-valued truth are from balance: 0 where they make up half of what
// they could, 1 where all agree.
#pragma once

#include "scalar/logic.h"

#include <cmath>

namespace tessor {

/// The number of components that take part: NaNs at the end of a quaternion (one) or an octonion
/// (up to three) don't.
template <int N>
int components_in_use(const double* components) {
    constexpr int least = N == 2 ? 2 : N == 4 ? 3 : 5;
    int n = N;
    while (n > least && std::isnan(components[n - 1]))
        --n;
    return n;
}

/// |S - n/2| / (n/2), with S the sum of the n components in use, limited to 0 to 1 or as they are.
template <int N, bool limited>
double imbalance(const double* components) {
    const int n = components_in_use<N>(components);
    double sum = 0;
    for (int i = 0; i < n; ++i)
        sum += limited ? clamp(components[i]) : components[i];
    const double half = n / 2.0;
    return std::fabs(sum - half) / half;
}

/// Flops of a contradiction of this many components.
constexpr int flops_of_imbalance(int n) {
    return n < 5 ? 3 * n - 1 : 2 * n + 2;
}

/// Of a complex number, a quaternion and an octonion, by their components, each limited to 0 to 1.
/// Flops are counted in op_flops.
double contradict_c(const double* components);
double contradict_q(const double* components);
double contradict_o(const double* components);

} // namespace tessor
