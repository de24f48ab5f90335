#include "io/ascii.h"

#include "array/walk.h"
#include "io/kinds.h"
#include "scalar/compare.h"
#include "scalar/simd.h"
#include "values/array.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <algorithm>
#include <cmath>

namespace tessor {

namespace {

#ifdef TESSOR_TIGHT
constexpr std::uint32_t stretch = 7;
#else
constexpr std::uint32_t stretch = 4096;
#endif

constexpr std::uint16_t keeps_nothing = mark::named | mark::hidden;

// Items to the bytes that they stand for; false if one stands for none. `tolerance` is for reals.
template <class T>
[[gnu::always_inline]] inline bool bytes_of(const T* items, std::uint8_t* bytes, std::uint32_t n,
                                            double tolerance) {
    int misfits = 0;
    for (std::uint32_t i = 0; i < n; ++i) {
        const T item = items[i];
        bool fits = (item >= T{0}) & (item <= static_cast<T>(255));
        T held = fits ? item : T{0};
        if constexpr (std::is_same_v<T, double>)
            fits &= std::fabs(std::floor(held) - held) < tolerance;
        misfits |= !fits;
        bytes[i] = static_cast<std::uint8_t>(static_cast<std::int32_t>(held));
    }
    return misfits == 0;
}

// A block of characters in place of one of numbers that are all bytes; null if one isn't.
template <class T>
void* packed_characters(const void* block, std::uint32_t n, double tolerance) {
    const T* items = static_cast<const T*>(block);
    BlockHandle made(allocate_block(n, encode({Storage::character, form::text, 0})));
    auto* bytes = made.as<std::uint8_t>();
    bool all = true;
    bool* out = &all;
    for (std::uint32_t from = 0; from < n; from += std::min(stretch, n - from)) {
        if (signal_noted())
            take_signals();
        const std::uint32_t part = std::min(stretch, n - from);
        run_simd([=]() __attribute__((always_inline)) {
            *out = bytes_of(items + from, bytes + from, part, tolerance);
        });
        if (!all)
            return nullptr;
    }
    return made.release();
}

void* packed_integers(const void* block, std::uint32_t n) {
    const Layout layout = layout_of(block);
    void* made = allocate_items(n, sizeof(std::int32_t),
                                encode({Storage::integer, form::number, layout.marks}));
    const auto* bytes = static_cast<const std::uint8_t*>(block);
    auto* integers = static_cast<std::int32_t*>(made);
    run_simd([=]() __attribute__((always_inline)) {
        for (std::uint32_t i = 0; i < n; ++i)
            integers[i] = bytes[i];
    });
    return made;
}

// One of the two conversions: of an element, and of a packed block as a whole.
struct Conversion {
    Activation& run;
    bool to_characters;
    double tolerance;

    bool convert(Element& element) const;
    void* whole(const Space& value) const;
    bool leaves(Storage storage) const;
};

bool Conversion::convert(Element& element) const {
    if (!to_characters) {
        if (element.tag != tag::ascii)
            return false;
        const auto marks = static_cast<std::uint16_t>(element.marks & ~keeps_nothing);
        element = integer_element(element.character, form::number, marks);
        return true;
    }
    std::uint8_t byte = 0;
    if (element.tag == tag::integer) {
        const std::int32_t item = element.integer;
        if (!bytes_of(&item, &byte, 1, tolerance))
            return false;
    } else if (element.tag != tag::real || !bytes_of(element.c, &byte, 1, tolerance)) {
        return false;
    }
    element = character_element(byte);
    return true;
}

// True if no item of such a block changes.
bool Conversion::leaves(Storage storage) const {
    switch (storage) {
    case Storage::elements: return false;
    case Storage::character: return to_characters;
    case Storage::complex:
    case Storage::quaternion:
    case Storage::octonion: return true;
    default: return !to_characters;
    }
}

void* Conversion::whole(const Space& value) const {
    const void* block = value.data_pointer;
    const std::uint32_t n = value.elements;
    switch (storage_of(block)) {
    case Storage::character: return packed_integers(block, n);
    case Storage::integer: return packed_characters<std::int32_t>(block, n, tolerance);
    case Storage::truth: return packed_characters<std::uint8_t>(block, n, tolerance);
    case Storage::real: return packed_characters<double>(block, n, tolerance);
    default: return nullptr;
    }
}

// Kinds that elements had before they were converted, and kinds that are left.
struct Change {
    std::uint32_t gone = 0;
    std::uint32_t left = 0;
    std::uint32_t came = 0;
};

void set_kinds(Space& value, const Change& change) {
    value.type = (value.type & ~change.gone) | change.left | change.came;
    settle_kinds(value);
}

void convert_value(const Conversion& conversion, Space& value);

void convert_element(const Conversion& conversion, ArrayBuilder& builder, Space& value,
                     std::uint32_t i, Change& change) {
    Element element = element_of(value.data_pointer, i);
    if (element.tag == tag::subarray) {
        Converted inner(*element.subarray);
        convert_value(conversion, inner.value());
        raise_depth(value, inner.value().depth);
        inner.enclose_in(builder, element.form,
                         static_cast<std::uint16_t>(element.marks & ~keeps_nothing));
        change.came |= STRUCTURED;
        return;
    }
    const std::uint32_t kind = kind_bit(element.tag);
    if (conversion.convert(element)) {
        change.gone |= kind;
        change.came |= kind_bit(element.tag);
        builder.add(element);
        return;
    }
    if (element.tag >= tag::ascii && element.tag <= tag::real)
        change.left |= kind;
    add_unnamed(builder, value.data_pointer, i);
}

void convert_elements(const Conversion& conversion, Space& value) {
    enter_level(conversion.run);
    ArrayBuilder builder(value.elements);
    Change change;
    const std::int16_t depth = value.depth;
    try {
        for (std::uint32_t i = 0; i < value.elements; ++i)
            convert_element(conversion, builder, value, i, change);
    } catch (...) {
        value.depth = depth;
        throw;
    }
    replace_data(value, builder.finish());
    set_kinds(value, change);
}

void convert_scalar_in_place(const Conversion& conversion, Space& value) {
    Element element = element_at(value, 0);
    const std::uint32_t kind = kind_bit(element.tag);
    if (!conversion.convert(element))
        return;
    const std::uint32_t kept = value.type & ~kind;
    make_scalar(value, element);
    value.type |= kept;
}

void convert_value(const Conversion& conversion, Space& value) {
    if (value.rank < 0)
        return;
    operations += value.elements;
    if (value.type & ISINPLACE) {
        convert_scalar_in_place(conversion, value);
        return;
    }
    if (value.elements == 0 || !value.data_pointer)
        return;
    const Storage storage = storage_of(value.data_pointer);
    if (conversion.leaves(storage)) {
        settle_kinds(value);
        return;
    }
    if (void* made = conversion.whole(value)) {
        const std::uint32_t kind = kind_bit(storage_tag(storage));
        replace_data(value, made);
        set_kinds(value, {kind, 0, conversion.to_characters ? HASASCII : HASINTEGER});
        return;
    }
    convert_elements(conversion, value);
}

} // namespace

Next enascii(Activation& run) {
    convert_value({run, true, comparison_tolerance(run.quads)}, *run.top);
    return Next::advance;
}

Next deascii(Activation& run) {
    convert_value({run, false, 0}, *run.top);
    return Next::advance;
}

} // namespace tessor
