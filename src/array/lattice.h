// Lattices of numbers: each component of an element walks from its start by its step.
#pragma once

#include "engine/machine.h"

#include <array>
#include <cstdint>

namespace tessor {

struct Lattice {
    std::int32_t tag = 0;   ///< of the elements, real to octonion
    std::uint16_t form = 0; ///< of the elements
    int axes = 1;           ///< components that walk; the others are 0
    bool polar = false;     ///< what walks are modulus and angles
    std::array<double, 8> start{};
    std::array<double, 8> step{};
    std::array<std::uint32_t, 8> count{};
    std::uint32_t elements = 0; ///< product of the counts
};

/// A packed block with all elements of a lattice that has some. Large ones are shared with the
/// workers, who are still at it when this returns: `result` is the cell that is to hold the block.
void* fill_lattice(const Lattice& lattice, const Space* result, const Space& cell);

} // namespace tessor
