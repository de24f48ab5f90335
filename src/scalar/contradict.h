// How far the degrees of a many-valued truth are from balance: 0 where they make up half of what
// they could, 1 where all agree.
#pragma once

namespace tessor {

/// Of a complex number, a quaternion and an octonion, by their components, each limited to 0 to 1.
/// NaNs in the last components take no part. Flops are counted in op_flops.
double contradict_c(const double* components);
double contradict_q(const double* components);
double contradict_o(const double* components);

} // namespace tessor
