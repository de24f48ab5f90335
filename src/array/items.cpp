#include "array/items.h"

#include <algorithm>

namespace tessor {

namespace {

constexpr std::uint32_t recomputed = element_kinds | COMPLEXED | STRUCTURED | ISSTRUCTURE;

} // namespace

std::uint32_t kinds_in(const void* block, std::uint32_t n, std::int16_t& depth) {
    depth = 1;
    const Storage storage = storage_of(block);
    if (const std::int32_t shared = storage_tag(storage); shared != tag::none)
        return kind_bit(shared);
    std::uint32_t kinds = 0;
    for (std::uint32_t i = 0; i < n; ++i) {
        if (storage != Storage::elements) {
            const double value = static_cast<const double*>(block)[i];
            const bool whole = storage == Storage::quotient ? quotient_is_integer(value)
                                                            : promoted_is_integer(value);
            kinds |= whole ? HASINTEGER : HASREAL;
            continue;
        }
        const DataElement& element = static_cast<const DataElement*>(block)[i];
        kinds |= kind_bit(element.tag);
        if (element.tag != tag::subarray)
            continue;
        kinds |= ISSTRUCTURE;
        const Space& inner = *element.subarray;
        const int deep = inner.rank < 0 ? 0 : inner.depth;
        depth = std::max(depth, static_cast<std::int16_t>(std::min(deep + 1, 32767)));
    }
    return several(kinds & (element_kinds | STRUCTURED)) ? kinds | COMPLEXED : kinds;
}

void recompute_kinds(Space& space, bool with_depth) {
    std::int16_t depth = 1;
    const std::uint32_t kinds = kinds_in(space.data_pointer, space.elements, depth);
    space.type = (space.type & ~recomputed) | kinds;
    if (with_depth)
        space.depth = depth;
}

std::uint32_t class_bits(std::int32_t rank, std::uint32_t elements) {
    const std::uint32_t bits = rank == 0 ? ISSCALAR : rank == 1 ? ISVECTOR : ISARRAY;
    if (elements == 0)
        return bits | ISEMPTY;
    return elements == 1 && rank > 0 ? bits | ISONEELEMENT : bits;
}

bool simple_or_nested(const Space& space) {
    if (storage_of(space.data_pointer) != Storage::elements)
        return true;
    const auto* elements = static_cast<const DataElement*>(space.data_pointer);
    return std::all_of(elements, elements + space.elements, [](const DataElement& element) {
        return element.tag >= tag::subarray && element.tag <= tag::octonion;
    });
}

} // namespace tessor
