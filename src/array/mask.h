// A function on the weighted neighbourhood of every element.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// MASK: data, mask, function of one argument. At every position of the data the mask is laid over
/// its neighbourhood, and the function gets the products, in the mask's shape; its results have
/// the data's shape. Beyond the border the neighbours are integers 0; with WRAP in the cell's
/// suboperation those of the opposite side, with REFLECT the mirror image within. 983 to 987; 994
/// for two elements that have no product, and for cells.
Next mask(Activation& run);

} // namespace tessor
