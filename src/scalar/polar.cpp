#include "scalar/relabel.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct Polar {
    static constexpr std::uint16_t bit = form::polar;
    template <int N>
    static void convert(double* to, const double* from, double& flops) {
        tessor::polar<N>(to, from, flops);
    }
};

} // namespace

void polar(Space** top, const Space* cell, Space* quads, signed char mode) {
    monadic<Relabel<Polar>, polar>(top, cell, quads, mode);
}

} // namespace tessor
