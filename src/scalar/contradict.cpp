#include "scalar/contradict.h"

#include "values/shared.h"

namespace tessor {

namespace {

template <int N>
double counted_imbalance(const double* components) {
    op_flops += flops_of_imbalance(components_in_use<N>(components));
    return imbalance<N, true>(components);
}

} // namespace

double contradict_c(const double* components) {
    return counted_imbalance<2>(components);
}

double contradict_q(const double* components) {
    return counted_imbalance<4>(components);
}

double contradict_o(const double* components) {
    return counted_imbalance<8>(components);
}

} // namespace tessor
