#include "scalar/relabel.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Cartesian {
    static constexpr std::uint16_t bit = form::cartesian;
    template <int N>
    static void convert(double* to, const double* from, double& flops) {
        tessor::cartesian<N>(to, from, flops);
    }
};

} // namespace

void cartesian(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Relabel<Cartesian>, cartesian>(top, cell, quads, mode);
}

} // namespace tessor
