#include "values/array.h"

#include "values/refderef.h"

#include <algorithm>
#include <cstring>

namespace tessor {

namespace {

const double* doubles(const void* block) {
    return static_cast<const double*>(block);
}

Element plain(std::int32_t tag, const Layout& layout) {
    Element element;
    element.tag = tag;
    element.form = layout.form;
    element.marks = layout.marks;
    return element;
}

Element plain_components(const void* block, std::uint32_t i, const Layout& layout) {
    const std::int32_t tag = storage_tag(layout.storage);
    Element element = plain(tag, layout);
    const int width = components_of(tag);
    std::copy_n(doubles(block) + std::size_t{i} * static_cast<std::size_t>(width), width,
                element.c);
    return element;
}

// A number whose tag follows from its value.
Element number_of(double value, bool is_integer, const Layout& layout) {
    if (!is_integer) {
        Element element = plain(tag::real, layout);
        element.c[0] = value;
        return element;
    }
    Element element = plain(tag::integer, layout);
    element.integer = static_cast<std::int32_t>(value);
    return element;
}

double* new_payload(const double* components) {
    auto* payload = static_cast<double*>(allocate_block(8 * sizeof(double)));
    std::copy_n(components, 8, payload);
    return payload;
}

bool in_place(const Element& element) {
    return !element.named() && !element.name
           && (element.tag == tag::ascii || element.tag == tag::integer
               || element.tag == tag::real);
}

// The scalar's element in the words that an in-place scalar keeps it in.
void set_in_place(Space& space, const Element& element) {
    space = Space{};
    space.type = ISSCALAR | ISINPLACE | kind_bit(element.tag);
    space.elements = 1;
    space.form = element.form;
    space.marks = element.marks;
    space.tag = element.tag;
    if (element.tag == tag::real)
        space.real = element.c[0];
    else if (element.tag == tag::integer)
        space.integer = element.integer;
    else
        space.character = element.character;
}

// Copies of a block's elements into a DataElement block, each with counts of its own.
DataElement* copied_elements(const void* block, std::uint32_t n) {
    BlockHandle copy(allocate_items(n, sizeof(DataElement)));
    auto* slots = copy.as<DataElement>();
    if (storage_of(block) == Storage::elements) {
        std::memcpy(slots, block, std::size_t{n} * sizeof(DataElement));
        referencedataelems(slots, n);
    } else {
        std::uint32_t done = 0;
        try {
            for (; done < n; ++done)
                store(slots[done], element_of(block, done));
        } catch (...) {
            dereferencedataelems(slots, done);
            throw;
        }
    }
    return static_cast<DataElement*>(copy.release());
}

// The shape of every empty vector.
constinit PermanentBlock<std::int32_t> no_elements{
    sizeof(std::int32_t), {-1, encode({Storage::integer, form::number, 0})}, 0};

template <class T>
void* widened_bytes(const void* block, std::uint32_t n, Storage storage) {
    const Layout layout = layout_of(block);
    void* wide = allocate_items(n, sizeof(T), encode({storage, layout.form, layout.marks}));
    std::copy_n(static_cast<const std::uint8_t*>(block), n, static_cast<T*>(wide));
    return wide;
}

} // namespace

Element integer_element(std::int32_t value, std::uint16_t form, std::uint16_t marks) {
    Element element;
    element.tag = tag::integer;
    element.form = form;
    element.marks = marks;
    element.integer = value;
    return element;
}

Element real_element(double value, std::uint16_t form, std::uint16_t marks) {
    Element element;
    element.tag = tag::real;
    element.form = form;
    element.marks = marks;
    element.c[0] = value;
    return element;
}

Element character_element(std::uint8_t value, std::uint16_t form, std::uint16_t marks) {
    Element element;
    element.tag = tag::ascii;
    element.form = form;
    element.marks = marks;
    element.character = value;
    return element;
}

Element unpack(const DataElement& from) {
    Element element;
    element.tag = from.tag;
    element.form = from.form;
    element.marks = from.marks;
    switch (from.tag) {
    case tag::quaternion: std::copy_n(from.quaternion, 4, element.c); return element;
    case tag::real: element.c[0] = from.real; break;
    case tag::complex: std::copy_n(from.complex, 2, element.c); break;
    case tag::octonion: std::copy_n(from.octonion, 8, element.c); break;
    case tag::integer: element.integer = from.integer; break;
    case tag::ascii: element.character = from.character; break;
    case tag::unicode: element.unicode = from.unicode; break;
    case tag::subarray: element.subarray = from.subarray; break;
    default: element.other = &from; return element;
    }
    element.name = from.name;
    return element;
}

Element element_of(const void* block, std::uint32_t i) {
    const Layout layout = layout_of(block);
    switch (layout.storage) {
    case Storage::elements: return unpack(static_cast<const DataElement*>(block)[i]);
    case Storage::character:
        return character_element(static_cast<const std::uint8_t*>(block)[i], layout.form,
                                 layout.marks);
    case Storage::truth:
        return integer_element(static_cast<const std::uint8_t*>(block)[i], layout.form,
                               layout.marks);
    case Storage::integer:
        return integer_element(static_cast<const std::int32_t*>(block)[i], layout.form,
                               layout.marks);
    case Storage::degree:
        return real_element(static_cast<const std::uint8_t*>(block)[i], layout.form, layout.marks);
    case Storage::real: return real_element(doubles(block)[i], layout.form, layout.marks);
    case Storage::quotient:
        return number_of(doubles(block)[i], quotient_is_integer(doubles(block)[i]), layout);
    case Storage::promoted:
        return number_of(doubles(block)[i], promoted_is_integer(doubles(block)[i]), layout);
    default: return plain_components(block, i, layout);
    }
}

Element element_at(const Space& space, std::uint32_t i) {
    if (!(space.type & ISINPLACE))
        return element_of(space.data_pointer, i);
    switch (space.tag) {
    case tag::integer: return integer_element(space.integer, space.form, space.marks);
    case tag::real: return real_element(space.real, space.form, space.marks);
    default: return character_element(space.character, space.form, space.marks);
    }
}

std::int32_t first_tag(const Space& space) {
    if (space.type & ISINPLACE)
        return space.tag;
    const Storage storage = storage_of(space.data_pointer);
    if (storage == Storage::elements)
        return static_cast<const DataElement*>(space.data_pointer)->tag;
    if (storage == Storage::quotient)
        return quotient_is_integer(*doubles(space.data_pointer)) ? tag::integer : tag::real;
    if (storage == Storage::promoted)
        return promoted_is_integer(*doubles(space.data_pointer)) ? tag::integer : tag::real;
    return storage_tag(storage);
}

std::int32_t* new_shape(std::int32_t rank) {
    return static_cast<std::int32_t*>(allocate_items(static_cast<std::uint64_t>(rank),
                                                     sizeof(std::int32_t),
                                                     encode({Storage::integer, form::number, 0})));
}

void store(DataElement& slot, const Element& element) {
    double* payload = element.tag == tag::octonion ? new_payload(element.c) : nullptr;
    slot = DataElement{};
    slot.tag = element.tag;
    slot.form = element.form;
    slot.marks = element.marks;
    slot.name = element.name;
    switch (element.tag) {
    case tag::quaternion: std::copy_n(element.c, 4, slot.quaternion); break;
    case tag::real: slot.real = element.c[0]; break;
    case tag::complex: std::copy_n(element.c, 2, slot.complex); break;
    case tag::octonion: slot.octonion = payload; break;
    case tag::integer: slot.integer = element.integer; break;
    case tag::ascii: slot.character = element.character; break;
    case tag::unicode: slot.unicode = element.unicode; break;
    case tag::subarray: slot.subarray = element.subarray; break;
    default:
        if (element.other)
            slot = *element.other;
        break;
    }
}

DataElement* own_elements(Space& space) {
    if (space.type & ISINPLACE) {
        const Element element = element_at(space, 0);
        auto* slot = static_cast<DataElement*>(allocate_block(sizeof(DataElement)));
        store(*slot, element);
        space.type &= ~ISINPLACE;
        space.first_index = 0;
        space.last_index = 0;
        space.data_pointer = slot;
        return slot;
    }
    void* block = space.data_pointer;
    if (storage_of(block) == Storage::elements && unshared(block))
        return static_cast<DataElement*>(block);
    DataElement* copy = copied_elements(block, space.elements);
    release_data(block, space.elements);
    space.data_pointer = copy;
    return copy;
}

void widen(Space& space) {
    if ((space.type & ISINPLACE) || space.rank < 0 || !space.data_pointer)
        return;
    void* block = space.data_pointer;
    void* wide = nullptr;
    switch (storage_of(block)) {
    case Storage::truth:
        wide = widened_bytes<std::int32_t>(block, space.elements, Storage::integer);
        break;
    case Storage::degree: wide = widened_bytes<double>(block, space.elements, Storage::real); break;
    case Storage::quotient:
    case Storage::promoted: wide = copied_elements(block, space.elements); break;
    default: return;
    }
    release_block(block);
    space.data_pointer = wide;
}

void make_character(Space& space, std::uint8_t value, std::uint16_t form, std::uint16_t marks) {
    set_in_place(space, character_element(value, form, marks));
}

void make_scalar(Space& space, const Element& element) {
    if (in_place(element)) {
        set_in_place(space, element);
        return;
    }
    ArrayBuilder builder(1);
    builder.add(element);
    space = Space{};
    space.type = ISSCALAR | kind_bit(element.tag);
    space.elements = 1;
    space.data_pointer = builder.finish();
}

void copy_scalar(Space& space, const Element& element) {
    make_scalar(space, element);
    if (element.name)
        count_up(element.name);
    if (element.tag == tag::subarray)
        count_up(element.subarray);
    else if (element.tag < 0 || element.tag > tag::octonion)
        referencedataelems(static_cast<const DataElement*>(space.data_pointer), 1);
}

void settle_scalar(Space& space) {
    const std::int32_t first = first_tag(space);
    if (space.rank != 0 || first < tag::ascii || first > tag::real || first == tag::unicode)
        return;
    const Element element = element_of(space.data_pointer, 0);
    if (element.named())
        return;
    release_data(space.data_pointer, 1);
    space.type |= ISINPLACE;
    space.form = element.form;
    space.marks = element.marks;
    space.tag = element.tag;
    if (element.tag == tag::real)
        space.real = element.c[0];
    else if (element.tag == tag::integer)
        space.integer = element.integer;
    else
        space.character = element.character;
}

void make_empty(Space& space, std::uint32_t extra) noexcept {
    space = Space{};
    space.rank = 1;
    space.type = ISVECTOR | ISEMPTY | extra;
    space.shape_pointer = &no_elements.value;
}

void make_text(Space& space, const char* bytes, std::size_t length) {
    if (length == 0) {
        make_empty(space, HASASCII);
        space.depth = 1;
        return;
    }
    if (length == 1) {
        make_character(space, static_cast<std::uint8_t>(*bytes));
        return;
    }
    void* data = allocate_block(length, encode({Storage::character, form::text, 0}));
    std::memcpy(data, bytes, length);
    make_vector(space, static_cast<std::uint32_t>(length), data, HASASCII);
}

void make_vector(Space& space, std::uint32_t n, void* data, std::uint32_t kinds) {
    std::int32_t* shape;
    try {
        shape = new_shape(1);
    } catch (...) {
        release_data(data, n);
        throw;
    }
    shape[0] = static_cast<std::int32_t>(n);
    space = Space{};
    space.rank = 1;
    space.type = ISVECTOR | kinds | (n == 1 ? ISONEELEMENT : 0u);
    space.shape_pointer = shape;
    space.depth = 1;
    space.elements = n;
    space.last_index = static_cast<std::int32_t>(n - 1);
    space.data_pointer = data;
}

Space* enclose(const Space& space) {
    auto* block = static_cast<Space*>(allocate_block(sizeof(Space)));
    *block = space;
    return block;
}

} // namespace tessor
