// MATCH: how alike two values are, and whether they are the same.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// Points that can be won in a comparison, and points won. Two elements alike in type and value win
/// 2, alike in type alone 1.
struct Score {
    std::uint64_t total = 0;
    std::uint64_t score = 0;
};

/// The score of two values of any kinds, subarrays at any depth included. Reals are compared
/// without a tolerance; a NaN equals a NaN. Counts a flop for each pair of reals.
Score match(Activation& run, const Space& left, const Space& right);

/// True if both have as many elements, and all are equal in type and value.
bool exactmatch(Activation& run, const Space& left, const Space& right);

/// MATCH: the part of the points that two values win of each other, points for rank, depth and
/// extents included, as a real from 0 to 1. EXACT MATCH: T or F.
Next match_values(Activation& run);

} // namespace tessor
