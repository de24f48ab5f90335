#include "array/system_values.h"

#include "frontend/symtab.h"
#include "values/array.h"

#include <cmath>

namespace tessor {

std::int32_t index_origin(const Space* quads_block) {
    const Space& space = quads_block[quad_io];
    if (!has_data(space))
        return 1;
    const Element element = element_at(space, 0);
    if (element.tag == tag::integer)
        return element.integer;
    const double x = element.tag == tag::real ? element.c[0] : 1.0;
    return std::fabs(x) <= 2147483647.0 ? static_cast<std::int32_t>(x) : 1;
}

bool near_integer(double x, double tolerance, double& whole) {
    const double below = std::floor(x);
    if (below == std::ceil(x - tolerance)) {
        whole = below;
        return true;
    }
    const double above = std::ceil(x);
    whole = above;
    return above == std::floor(x + tolerance);
}

} // namespace tessor
