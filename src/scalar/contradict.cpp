#include "scalar/contradict.h"

#include "values/shared.h"

#include <cmath>

namespace tessor {

namespace {

// A NaN counts as 1.
double clamp(double x) {
    if (x < 0)
        return 0;
    return x <= 1 ? x : 1;
}

double imbalance(const double* components, int n) {
    double sum = 0;
    for (int i = 0; i < n; ++i)
        sum += clamp(components[i]);
    const double half = n / 2.0;
    return std::fabs(sum - half) / half;
}

} // namespace

double contradict_c(const double* components) {
    op_flops += 5;
    return imbalance(components, 2);
}

double contradict_q(const double* components) {
    const bool short_one = std::isnan(components[3]);
    op_flops += short_one ? 8 : 11;
    return imbalance(components, short_one ? 3 : 4);
}

double contradict_o(const double* components) {
    int n = 8;
    while (n > 5 && std::isnan(components[n - 1]))
        --n;
    op_flops += 2 * n + 2;
    return imbalance(components, n);
}

} // namespace tessor
