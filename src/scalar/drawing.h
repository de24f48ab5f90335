// Kernels of the verbs that decide degrees by draws. Draws come in the order of elements and
// components, so these loops are no vector code.
#pragma once

#include "scalar/logic.h"
#include "scalar/monadic.h"
#include "scalar/random.h"

namespace tessor {

/// A stretch in order. Results stand at the places of their operands, or in other memory.
template <class Op, class T>
void in_order(const void* record, const Stretch& s, void* room, Tally& tally) {
    using Out = typename Single<Op, T>::Out;
    const Op& op = *static_cast<const Op*>(record);
    const auto* from = static_cast<const typename Stored<T>::Item*>(s.left);
    auto* items = static_cast<typename Stored<Out>::Item*>(room);
    tally = {0, s.n, false};
    for (std::uint32_t i = 0; i < s.n; ++i) {
        const T x = Stored<T>::load(from, i);
        const Out result = op.apply(x);
        tally.flops += static_cast<std::uint32_t>(op.flops(x, result));
        Stored<Out>::save(items, i, result);
    }
}

/// The kernel of an operation with another loop.
template <class Op, class T>
constexpr Kernel with_loop(decltype(Kernel::narrow) narrow) {
    Kernel kernel = Single<Op, T>::kernel;
    kernel.narrow = narrow;
    return kernel;
}

/// The components decided, as 0.0 or 1.0.
template <class Op, Hypercomplex T>
T decided(const Op& op, T x) {
    for (double& component : x.c)
        component = op.decide(component) ? 1.0 : 0.0;
    return x;
}

} // namespace tessor
