// Evenly spaced numbers along one or more axes, and the filling of a block with them.
#pragma once

#include "values/space.h"

#include <array>
#include <cstdint>

namespace tessor {

/// The values of one component: each is the one before plus the step.
struct Axis {
    double start = 0;
    double step = 0;
    std::uint32_t count = 1;
};

inline constexpr int most_axes = 8;

/// A component for each axis, the first of which runs fastest. Characters and integers have one.
struct Lattice {
    std::int32_t tag = tag::integer;
    std::uint16_t form = form::cartesian;
    bool polar = false; ///< the components are a modulus and angles
    int rank = 1;
    std::array<Axis, most_axes> axes;

    /// The product of the counts, which need not fit in 32 bits.
    double size() const {
        double product = 1;
        for (int i = 0; i < rank; ++i)
            product *= axes[static_cast<std::size_t>(i)].count;
        return product;
    }
};

/// A packed block with the n elements of a lattice, n above 0. Large ones are shared with the
/// workers, which may go on behind the return, so that `result`, the cell that the block is for,
/// may not be touched before the next wait. Counts the flops of this thread in op_flops.
void* filled(const Lattice& lattice, std::uint32_t n, const Space& cell, Space* result);

} // namespace tessor
