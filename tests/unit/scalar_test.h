// Values made by hand, in every layout, and what a program can observe of a verb's run on them.
#pragma once

#include "engine/machine.h"
#include "io/writers/exception.h"
#include "scalar/verbs.h"
#include "values/array.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tessor::scalar_test {

using Elements = std::vector<Element>;

inline Element integer(std::int32_t v, std::uint16_t form = form::number, std::uint16_t marks = 0) {
    return integer_element(v, form, marks);
}
inline Element real(double v, std::uint16_t form = form::number, std::uint16_t marks = 0) {
    return real_element(v, form, marks);
}
inline Element character(char c, std::uint16_t form = form::text) {
    return character_element(static_cast<std::uint8_t>(c), form);
}
/// A complex number, a quaternion or an octonion, by the number of components.
inline Element hyper(const std::vector<double>& c, std::uint16_t form = form::number,
                     std::uint16_t marks = 0) {
    Element e = real(0, form, marks);
    e.tag = c.size() == 2 ? tag::complex : c.size() == 4 ? tag::quaternion : tag::octonion;
    std::copy(c.begin(), c.end(), e.c);
    return e;
}
inline Element nested(const Space& inner) {
    Element e;
    e.tag = tag::subarray;
    e.subarray = enclose(inner);
    return e;
}

inline std::uint32_t kinds_of(const Elements& elements) {
    std::uint32_t kinds = 0;
    for (const Element& e : elements)
        kinds |= kind_bit(e.tag);
    return kinds | (several(kinds & simple_kinds) ? COMPLEXED : 0u);
}

inline Space over(void* block, const Elements& elements) {
    Space space;
    make_vector(space, static_cast<std::uint32_t>(elements.size()), block, kinds_of(elements));
    return space;
}

/// A vector of elements of any kinds.
inline Space vector(const Elements& elements) {
    ArrayBuilder builder(elements.size());
    for (const Element& e : elements)
        builder.add(e);
    return over(builder.finish(), elements);
}

/// A vector of elements of one look, in a packed storage.
inline Space packed(const Elements& elements, Storage storage) {
    const Element& first = elements.front();
    const std::size_t item = item_size(storage);
    void* block = allocate_items(elements.size(), item, encode({storage, first.form, first.marks}));
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const Element& e = elements[i];
        void* to = static_cast<char*>(block) + i * item;
        const double value = e.tag == tag::integer ? e.integer : e.c[0];
        if (item == 1)
            *static_cast<std::uint8_t*>(to) =
                e.tag == tag::ascii ? e.character : static_cast<std::uint8_t>(value);
        else if (storage == Storage::integer)
            std::memcpy(to, &e.integer, item);
        else
            std::memcpy(to, item == sizeof value ? &value : e.c, item);
    }
    return over(block, elements);
}

inline Space scalar(const Element& element) {
    Space space;
    make_scalar(space, element);
    return space;
}

inline std::string text_of(const Space& space);

/// An element as a person would write it, with form and marks where they aren't the usual ones.
inline std::string text_of(const Element& e) {
    if (e.tag == tag::subarray)
        return "(" + text_of(*e.subarray) + ")";
    char text[64];
    std::string all;
    if (e.tag == tag::ascii)
        all = std::string("'") + static_cast<char>(e.character) + "'";
    if (e.tag == tag::integer)
        all = std::to_string(e.integer);
    for (int i = 0; i < components_of(e.tag); ++i) {
        std::snprintf(text, sizeof text, "%s%.17g", i ? "," : "", e.c[i]);
        all += text;
    }
    if (e.tag == tag::real)
        all += "r";
    if (e.form != (e.tag == tag::ascii ? 0 : form::number) || e.marks) {
        std::snprintf(text, sizeof text, e.marks ? "/%x/%x" : "/%x", e.form, e.marks);
        all += text;
    }
    return all;
}

/// The elements of a value.
inline std::string text_of(const Space& space) {
    std::string all;
    for (std::uint32_t i = 0; i < space.elements; ++i)
        all += (i ? " " : "") + text_of(element_at(space, i));
    return all;
}

/// All the rest of it.
inline std::string frame_of(const Space& space) {
    char text[96];
    std::snprintf(text, sizeof text, "rank %d type %x depth %d n %u", space.rank, type_of(space),
                  space.depth, space.elements);
    std::string all = text;
    for (std::int32_t axis = 0; axis < space.rank; ++axis)
        all += (axis ? " " : " of ") + std::to_string(extent(space, axis));
    return all;
}

/// What a run of a verb left behind. The operands are used up.
struct Run {
    int number = 0; ///< reported; 0: none
    std::vector<Space> values;
    double flops = 0;
    double counted = 0;

    Run() = default;
    Run(Run&& other) = default;
    ~Run() {
        for (Space& value : values)
            dereferencepoint(&value);
    }

    /// The number reported, and the values, from the lowest up.
    std::string brief() const {
        std::string all = number ? "!" + std::to_string(number) : "";
        for (const Space& value : values)
            all += (all.empty() ? "" : " | ") + text_of(value);
        return all;
    }
    /// The same with everything that can be observed.
    std::string whole() const {
        std::string all = "flops " + std::to_string(flops) + " operations "
                          + std::to_string(counted) + " " + brief();
        for (const Space& value : values)
            all += "\n " + frame_of(value);
        return all;
    }
};

/// The error stream while a verb runs, in memory: a file for each of many thousand runs takes long.
class ErrorText {
public:
    ErrorText() : stream_(fmemopen(text_, sizeof text_, "w")) { std::swap(stderr, stream_); }
    ErrorText(const ErrorText&) = delete;
    ErrorText& operator=(const ErrorText&) = delete;
    ~ErrorText() { restore(); }

    /// The number with which the report began; 0 if there was none.
    int number() {
        restore();
        return std::atoi(text_ + 1);
    }

private:
    void restore() {
        if (!stream_)
            return;
        std::swap(stderr, stream_);
        std::fclose(stream_);
        stream_ = nullptr;
    }

    char text_[512] = {};
    std::FILE* stream_;
};

/// Runs a verb on operands that lie on the value stack.
inline Run run(Verb verb, const std::vector<Space>& operands, signed char mode = 0) {
    std::copy(operands.begin(), operands.end(), stack + 1);
    Space* top = stack + operands.size();
    Space system_values[8] = {};
    make_real(system_values[quad_ct], 1e-15, form::logical);
    const double before = operations;
    op_flops = flopos = 0;
    Run result;
    ErrorText report;
    try {
        verb(&top, nullptr, system_values, mode);
        result.flops = flopos;
    } catch (const ErrorJump&) {
        result.number = report.number();
    }
    result.counted = operations - before;
    result.values.assign(stack + 1, top + 1);
    return result;
}

} // namespace tessor::scalar_test
