#include "io/kinds.h"

#include "values/refderef.h"

#include <algorithm>
#include <limits>

namespace tessor {

void settle_kinds(Space& value) {
    if (value.elements < 2)
        return;
    const std::uint32_t kinds = value.type & (element_kinds | STRUCTURED);
    value.type = (value.type & ~COMPLEXED) | (several(kinds) ? COMPLEXED : 0u);
}

void add_unnamed(ArrayBuilder& builder, const void* block, std::uint32_t i) {
    Element element = element_of(block, i);
    if (element.tag < tag::ascii || element.tag > tag::octonion) {
        builder.add_copies(block, 1, i);
        return;
    }
    element.name = nullptr;
    element.marks &= static_cast<std::uint16_t>(~(mark::named | mark::hidden));
    builder.add(element);
}

void raise_depth(Space& value, std::int16_t inner) {
    constexpr int deepest = std::numeric_limits<std::int16_t>::max();
    value.depth =
        static_cast<std::int16_t>(std::clamp<int>(value.depth, inner + (inner < deepest), deepest));
}

void replace_data(Space& value, void* data) {
    if (value.type & ISINPLACE) {
        value.type &= ~ISINPLACE;
        value.first_index = 0;
        value.last_index = 0;
    } else {
        release_data(value.data_pointer, value.elements);
    }
    value.data_pointer = data;
    if (value.rank == 0)
        settle_scalar(value);
}

Converted::Converted(const Space& value) : value_(value) {
    referencepoint(&value_);
}

Converted::~Converted() {
    dereferencepoint(&value_);
}

void Converted::enclose_in(ArrayBuilder& builder, std::uint16_t form, std::uint16_t marks) {
    builder.add_enclosed(value_, form, marks);
    value_ = Space{};
}

} // namespace tessor
