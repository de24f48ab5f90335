// Equal elements of two packed blocks, counted by typed loops.
#pragma once

#include "values/space.h"

namespace tessor {

/// True if the loops below can compare two values: both packed, with kinds that their blocks tell.
bool comparable_blocks(const Space& left, const Space& right);

struct Alike {
    std::uint64_t types = 0;  ///< pairs of one type
    std::uint64_t values = 0; ///< pairs equal in type and value
    std::uint64_t reals = 0;  ///< pairs of reals that were compared
};

/// Compares the first n elements.
Alike alike(const Space& left, const Space& right, std::uint32_t n);

/// Whether all of the first n are equal. `reals` are counted up to the first pair that differs.
bool all_alike(const Space& left, const Space& right, std::uint32_t n, std::uint64_t& reals);

} // namespace tessor
