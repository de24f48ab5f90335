// Values in every layout, for the tests of what reads and writes them.
#pragma once

#include "values/array.h"
#include "values/refderef.h"
#include "values/text.h"

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <vector>

namespace tessor {

struct Sample {
    const char* name;
    Storage storage;
    std::uint32_t kinds;
};

inline const Sample samples[] = {
    {"elements", Storage::elements, HASINTEGER | HASOCTONION | STRUCTURED | COMPLEXED},
    {"character", Storage::character, HASASCII},
    {"integer", Storage::integer, HASINTEGER},
    {"real", Storage::real, HASREAL},
    {"complex", Storage::complex, HASCOMPLEX},
    {"quaternion", Storage::quaternion, HASQUATERNION},
    {"octonion", Storage::octonion, HASOCTONION},
    {"truth", Storage::truth, HASINTEGER},
    {"degree", Storage::degree, HASREAL},
    {"quotient", Storage::quotient, HASINTEGER | HASREAL | COMPLEXED},
    {"promoted", Storage::promoted, HASINTEGER | HASREAL | COMPLEXED},
};

inline void PrintTo(const Sample& sample, std::ostream* out) {
    *out << sample.name;
}

// Element i of a general block: a named integer, an octonion, or a text inside the array.
inline Element mixed_element(std::uint32_t i) {
    Element element;
    switch (i % 3) {
    case 0:
        element = integer_element(static_cast<std::int32_t>(i), form::constant, mark::named);
        element.name = stringdup("#N");
        break;
    case 1:
        element.tag = tag::octonion;
        for (int c = 0; c < 8; ++c)
            element.c[c] = i + c / 8.0;
        break;
    default: {
        Space text;
        make_text(text, "abc", 3);
        element.tag = tag::subarray;
        element.subarray = enclose(text);
    }
    }
    return element;
}

// A vector of n elements that differ from their neighbours.
inline Space sample_vector(const Sample& sample, std::uint32_t n) {
    const Layout layout{sample.storage, form::cartesian, mark::degrees};
    const std::size_t item = item_size(sample.storage);
    void* block = allocate_items(n, item, sample.storage == Storage::elements ? 0 : encode(layout));
    for (std::uint32_t i = 0; i < n; ++i) {
        const double number = i % 2 ? 3e9 + i + 0.5 : i;
        switch (item) {
        case 1: static_cast<std::uint8_t*>(block)[i] = i % 2; break;
        case 4: static_cast<std::int32_t*>(block)[i] = static_cast<std::int32_t>(i) - 2; break;
        case sizeof(DataElement):
            store(static_cast<DataElement*>(block)[i], mixed_element(i));
            break;
        default: std::fill_n(static_cast<double*>(block) + i * item / 8, item / 8, number);
        }
    }
    Space space;
    make_vector(space, n, block, sample.kinds);
    return space;
}

// The same element: subarrays are shared, everything else is told by its value.
inline bool same(const Element& a, const Element& b) {
    if (a.tag != b.tag || a.form != b.form || a.marks != b.marks || a.name != b.name)
        return false;
    const int width = components_of(a.tag);
    if (width > 0)
        return std::equal(a.c, a.c + width, b.c);
    return a.tag == tag::integer ? a.integer == b.integer
           : a.tag == tag::ascii ? a.character == b.character
                                 : a.subarray == b.subarray;
}

inline std::vector<Element> elements_of(const Space& space) {
    std::vector<Element> all;
    for (std::uint32_t i = 0; i < space.elements; ++i)
        all.push_back(element_at(space, i));
    return all;
}

inline bool same(const std::vector<Element>& a, const std::vector<Element>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Element& x, const Element& y) { return same(x, y); });
}

// Integers as a packed vector.
inline Space integers(const std::vector<std::int32_t>& values) {
    ArrayBuilder builder;
    for (const std::int32_t value : values)
        builder.add_integer(value);
    Space space;
    make_vector(space, static_cast<std::uint32_t>(values.size()), builder.finish(), HASINTEGER);
    return space;
}

} // namespace tessor
