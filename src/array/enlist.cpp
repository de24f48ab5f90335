#include "array/enlist.h"

#include "array/walk.h"
#include "values/refderef.h"
#include "values/reshape.h"
#include "values/shared.h"

#include <limits>

namespace tessor {

namespace {

constexpr std::uint64_t most_leaves = std::numeric_limits<std::int32_t>::max();

// The general elements of a value, among which subarrays can be; null if there are none.
const DataElement* general_elements(const Space& space) {
    if ((space.type & ISINPLACE) || space.rank < 0 || !space.data_pointer
        || storage_of(space.data_pointer) != Storage::elements)
        return nullptr;
    return static_cast<const DataElement*>(space.data_pointer);
}

void set_leaves(Space& result, ArrayBuilder& leaves) {
    const std::uint32_t n = leaves.size();
    if (n == 0) {
        make_empty(result);
        result.depth = 1;
        return;
    }
    const std::uint32_t kinds = leaves.kinds();
    make_vector(result, n, leaves.finish(), kinds);
    if (several(kinds & element_kinds))
        result.type |= COMPLEXED;
}

} // namespace

std::uint64_t enlist1(Activation& run, const Space& space, std::uint64_t count) {
    const DataElement* elements = general_elements(space);
    if (!elements)
        return count;
    enter_level(run);
    for (std::uint32_t i = 0; i < space.elements; ++i) {
        if (elements[i].tag != tag::subarray)
            continue;
        const Space& inner = *elements[i].subarray;
        count = enlist1(run, inner, count + inner.elements) - 1;
        // Arrays that are shared many times over have more leaves than their blocks have room for.
        if (count > 2 * most_leaves)
            throw OutOfStorage{};
    }
    return count;
}

void enlist2(Activation& run, ArrayBuilder& leaves, const Space& space) {
    if (space.type & ISINPLACE) {
        leaves.add(element_at(space, 0));
        return;
    }
    const DataElement* elements = general_elements(space);
    if (!elements) {
        if (space.elements != 0)
            leaves.add_copies(space.data_pointer, space.elements);
        return;
    }
    enter_level(run);
    for (std::uint32_t i = 0; i < space.elements; ++i) {
        if (elements[i].tag == tag::subarray)
            enlist2(run, leaves, *elements[i].subarray);
        else
            leaves.add_copies(elements, 1, i);
    }
}

Next enlist(Activation& run) {
    Space& top = *run.top;
    if (top.rank < 0 || !(top.type & STRUCTURED)) {
        ravel(top);
        return Next::advance;
    }
    const std::uint64_t n = enlist1(run, top, top.elements);
    if (n > most_leaves)
        throw OutOfStorage{};
    ArrayBuilder leaves(n);
    enlist2(run, leaves, top);
    Space result;
    set_leaves(result, leaves);
    dereferencepoint(&top);
    top = result;
    operations += static_cast<double>(n);
    return Next::advance;
}

} // namespace tessor
