#include "scalar/tolerance.h"

#include "scalar/compare.h"
#include "values/refderef.h"
#include "values/text.h"

namespace tessor {

namespace {

double limited(double x) {
    return x > 1 ? 1.0 : x >= 0 ? x : 0.0;
}

bool is_settled(const Space& ct) {
    if ((ct.type & ~ISINPLACE) != (ISSCALAR | HASREAL) || ct.rank != 0 || !has_data(ct))
        return false;
    const Element element = element_at(ct, 0);
    return element.tag == tag::real && element.form == form::logical
           && element.c[0] == limited(element.c[0]);
}

// With a name of its own, if it has one.
Element settled_element(const Space& ct) {
    Element old;
    if (ct.rank >= 0 && ct.elements != 0 && has_data(ct))
        old = element_at(ct, 0);
    Element made = real_element(default_tolerance, form::logical, old.marks);
    if (old.tag == tag::integer) {
        made.c[0] = old.integer > 0;
    } else if (old.tag == tag::real || old.tag == tag::octonion) {
        made.c[0] = limited(old.c[0]);
    } else {
        made.marks = mark::named;
        old.name = nullptr;
    }
    if (made.named())
        made.name = stringdup(old.name ? old.name : "#CT");
    return made;
}

} // namespace

double repaired_tolerance(Space* quads) {
    Space& ct = quads[tolerance_quad];
    if (is_settled(ct))
        return element_at(ct, 0).c[0];
    const Element element = settled_element(ct);
    Space settled;
    try {
        make_scalar(settled, element);
    } catch (...) {
        if (element.name)
            release_block(element.name);
        throw;
    }
    dereferencepoint(&ct);
    ct = settled;
    return element.c[0];
}

} // namespace tessor
