// Polar literals: from modulus and angles to the cartesian components that all numbers are stored
// by.
#pragma once

#include <cstdint>

namespace tessor {

/// Replaces modulus and angles of a complex number, quaternion or octonion (two, four or eight
/// numbers) by its components. Angles left out are 0.
void polar_to_cartesian(std::int32_t tag, double* components);

} // namespace tessor
