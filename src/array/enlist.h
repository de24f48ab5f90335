// ENLIST: the leaves of a nested array as one vector.
#pragma once

#include "engine/machine.h"
#include "values/array.h"

namespace tessor {

/// The count, plus for each subarray of the value the number of its leaves less 1, at any depth.
/// More leaves than a vector can have are out of storage (27); too deep a nesting is 806.
std::uint64_t enlist1(Activation& run, const Space& space, std::uint64_t count);

/// Adds copies of the leaves, depth first, each subarray in the place of its element.
void enlist2(Activation& run, ArrayBuilder& leaves, const Space& space);

/// ENLIST: the vector of all leaves. A value without subarrays is ravelled.
Next enlist(Activation& run);

} // namespace tessor
