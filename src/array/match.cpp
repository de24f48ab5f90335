#include "array/match.h"

#include "array/alike.h"
#include "array/walk.h"
#include "scalar/compare.h"
#include "scalar/frame.h"
#include "values/array.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <algorithm>

namespace tessor {

namespace {

// Tells the kinds of cells from the tags of elements.
constexpr std::int32_t above_all_ranks = 1 << 30;

// One element of a value, as far as it is compared: whatever isn't a simple element or a subarray
// has a tag alone.
struct Item {
    std::int32_t tag = tag::none;
    std::int32_t whole = 0;
    const Space* inner = nullptr;
    const double* components = nullptr;
    double own[8]; ///< components that don't stand in memory as such
};

void read_slot(Item& item, const DataElement& slot) {
    item.tag = slot.tag;
    switch (slot.tag) {
    case tag::subarray: item.inner = slot.subarray; break;
    case tag::ascii: item.whole = slot.character; break;
    case tag::integer: item.whole = slot.integer; break;
    case tag::real: item.components = &slot.real; break;
    case tag::complex: item.components = slot.complex; break;
    case tag::quaternion: item.components = slot.quaternion; break;
    case tag::octonion: item.components = slot.octonion; break;
    default: break;
    }
}

// Elements of a function are its cells, each of a kind and without a value.
void read_item(Item& item, const Space& space, std::uint32_t i) {
    if (space.rank < 0) {
        if (space.rank == kind::FUNCTION)
            item.tag = space.body[i].rank - above_all_ranks;
        return;
    }
    if (!(space.type & ISINPLACE) && storage_of(space.data_pointer) == Storage::elements) {
        read_slot(item, static_cast<const DataElement*>(space.data_pointer)[i]);
        return;
    }
    const Element element = element_at(space, i);
    item.tag = element.tag;
    if (element.tag == tag::ascii)
        item.whole = element.character;
    else if (element.tag == tag::integer)
        item.whole = element.integer;
    std::copy_n(element.c, components_of(element.tag), item.own);
    item.components = item.own;
}

// Two items of one tag. What has neither a number nor a character as its value is never equal.
bool same_value(const Item& l, const Item& r) {
    if (l.tag == tag::ascii || l.tag == tag::integer)
        return l.whole == r.whole;
    const int width = components_of(l.tag);
    bool same = width > 0;
    for (int c = 0; c < width; ++c)
        same &= no_distance(l.components[c], r.components[c]);
    op_flops += width;
    return same;
}

void score_pair(Activation& run, const Item& l, const Item& r, Score& result) {
    if (l.inner && r.inner) {
        const Score inner = match(run, *l.inner, *r.inner);
        result.total += inner.total - 2;
        result.score += inner.score;
    } else if (l.inner || r.inner) {
        result.total += 2 * std::uint64_t{(l.inner ? l.inner : r.inner)->elements};
    } else if (l.tag == r.tag && l.tag != tag::none) {
        result.score += 1u + same_value(l, r);
    }
}

std::uint32_t equal_extents(const Space& left, const Space& right) {
    std::uint32_t equal = 0;
    for (std::int32_t axis = 0; axis < std::min(left.rank, right.rank); ++axis)
        equal += extent(left, axis) == extent(right, axis);
    return equal;
}

bool same_frame(const Space& left, const Space& right) {
    return left.elements == right.elements && left.depth == right.depth && left.rank == right.rank
           && equal_extents(left, right) == static_cast<std::uint32_t>(std::max(left.rank, 0));
}

double likeness(Activation& run, const Space& left, const Space& right) {
    op_flops = 1;
    const Score points = match(run, left, right);
    const std::uint64_t pairs = points.total / 2;
    operations += static_cast<double>(pairs);
    const std::uint64_t won = points.score + (left.rank == right.rank) + (left.depth == right.depth)
                              + equal_extents(left, right);
    const auto axes = static_cast<std::uint64_t>(std::max({left.rank, right.rank, 0}));
    return static_cast<double>(won) / static_cast<double>(points.total + axes + 2);
}

bool is_same(Activation& run, const Space& left, const Space& right) {
    op_flops = 0;
    const bool same = same_frame(left, right) && exactmatch(run, left, right);
    operations += std::max(left.elements, right.elements);
    return same;
}

} // namespace

Score match(Activation& run, const Space& left, const Space& right) {
    Score result{2 * std::uint64_t{std::max(left.elements, right.elements)}, 0};
    const std::uint32_t n = std::min(left.elements, right.elements);
    if (n == 0)
        return result;
    enter_level(run);
    if (comparable_blocks(left, right)) {
        const Alike found = alike(left, right, n);
        op_flops += static_cast<double>(found.reals);
        result.score = found.types + found.values;
        return result;
    }
    for (std::uint32_t i = 0; i < n; ++i) {
        Item l;
        Item r;
        read_item(l, left, i);
        read_item(r, right, i);
        score_pair(run, l, r, result);
    }
    return result;
}

bool exactmatch(Activation& run, const Space& left, const Space& right) {
    const std::uint32_t n = left.elements;
    if (n != right.elements)
        return false;
    if (n == 0)
        return true;
    enter_level(run);
    if (comparable_blocks(left, right)) {
        std::uint64_t reals = 0;
        const bool same = all_alike(left, right, n, reals);
        op_flops += static_cast<double>(reals);
        return same;
    }
    for (std::uint32_t i = 0; i < n; ++i) {
        Item l;
        Item r;
        read_item(l, left, i);
        read_item(r, right, i);
        if (l.tag != r.tag)
            return false;
        if (l.inner ? !exactmatch(run, *l.inner, *r.inner) : !same_value(l, r))
            return false;
    }
    return true;
}

Next match_values(Activation& run) {
    Space* left = run.top - 1;
    Space result;
    if (run.now->suboperation == op::EXACT)
        make_integer(result, is_same(run, *left, *run.top), form::boolean);
    else
        make_real(result, likeness(run, *left, *run.top), form::logical);
    count_operations(0);
    pop(run);
    dereferencepoint(left);
    *left = result;
    return Next::advance;
}

} // namespace tessor
