#include "scalar/compare.h"

namespace tessor {

double general_tolerance(const Space& ct) {
    if (ct.rank < 0 || ct.elements == 0 || !has_data(ct))
        return default_tolerance;
    const Element element = element_at(ct, 0);
    if (element.tag == tag::integer)
        return element.integer;
    return element.tag == tag::real ? element.c[0] : default_tolerance;
}

} // namespace tessor
