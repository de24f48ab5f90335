#include "io/capsulate.h"

#include "array/walk.h"
#include "io/kinds.h"
#include "values/array.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <algorithm>
#include <cmath>

namespace tessor {

namespace {

// Elements alone decide: kind bits can promise a real where a complex number stands.
bool holds_reals(const Space& value) {
    for (std::uint32_t i = 0; i < value.elements; ++i) {
        const std::int32_t tag = element_at(value, i).tag;
        if (tag != tag::integer && tag != tag::real)
            return false;
    }
    return true;
}

// The number of 2 to 8 components.
Element packed_number(const Space& value) {
    constexpr std::int32_t tags[] = {tag::complex,  tag::quaternion, tag::quaternion, tag::octonion,
                                     tag::octonion, tag::octonion,   tag::octonion};
    Element number;
    number.tag = tags[value.elements - 2];
    for (std::uint32_t i = 0; i < value.elements; ++i) {
        const Element part = element_at(value, i);
        number.c[i] = part.tag == tag::real ? part.c[0] : part.integer;
    }
    return number;
}

bool is_whole_real(const Element& element) {
    return element.tag == tag::real && element.c[0] == std::floor(element.c[0])
           && std::fabs(element.c[0]) <= 2147483647.0;
}

void replace_by_scalar(Space& value, const Element& element) {
    Space scalar;
    make_scalar(scalar, element);
    dereferencepoint(&value);
    value = scalar;
    ++operations;
}

void encapsulate_vector(Space& value) {
    constexpr std::uint32_t others =
        HASASCII | HASUNICODE | HASCOMPLEX | HASQUATERNION | HASOCTONION | HASFILE | HASFUNCTION;
    const bool is_short = value.elements >= 2 && value.elements <= 8;
    if ((value.type & others) || (is_short && !holds_reals(value)))
        return;
    if (is_short) {
        replace_by_scalar(value, packed_number(value));
        return;
    }
    const Element first = element_at(value, 0);
    if (is_whole_real(first))
        replace_by_scalar(value, integer_element(static_cast<std::int32_t>(first.c[0])));
    else
        operations += value.elements;
}

void encapsulate_value(Activation& run, Space& value);

// What the elements of an array have become.
struct Gathered {
    std::uint32_t kinds = 0;
    int deepest = -1; ///< of the subarrays; -1 if there are none

    void take(const Space& inner) {
        kinds |= STRUCTURED | ISSTRUCTURE;
        deepest = std::max<int>(deepest, inner.depth);
    }
};

// A subarray that has become a scalar stands in its array by its element.
void add_encapsulated(Activation& run, ArrayBuilder& builder, const void* block, std::uint32_t i,
                      Gathered& gathered) {
    const Element element = element_of(block, i);
    if (element.tag != tag::subarray) {
        builder.add_copies(block, 1, i);
        gathered.kinds |= kind_bit(element.tag);
        return;
    }
    Converted inner(*element.subarray);
    Space& value = inner.value();
    encapsulate_value(run, value);
    if (value.rank >= 1 || value.rank < 0) {
        gathered.take(value);
        inner.enclose_in(builder, form::number, 0);
        return;
    }
    gathered.kinds |= value.type & (element_kinds | STRUCTURED | ISSTRUCTURE);
    if (value.type & ISINPLACE)
        builder.add(element_at(value, 0));
    else if (value.data_pointer)
        builder.add_copies(value.data_pointer, 1);
    if (value.type & STRUCTURED)
        gathered.deepest = std::max(gathered.deepest, value.depth - 1);
}

void encapsulate_subarrays(Activation& run, Space& value) {
    if (value.type & COMPLEXED) {
        exception(1003, &run.top, run.now);
        return;
    }
    enter_level(run);
    ArrayBuilder builder(value.elements);
    Gathered gathered;
    for (std::uint32_t i = 0; i < value.elements; ++i)
        add_encapsulated(run, builder, value.data_pointer, i, gathered);
    const std::uint32_t old = value.type & ~(element_kinds | STRUCTURED | ISSTRUCTURE);
    replace_data(value, builder.finish());
    value.type = old | gathered.kinds | (value.type & ISINPLACE);
    if (!(value.type & STRUCTURED) && value.rank == 1)
        value.type =
            (value.type & ~ISSCALAR) | ISVECTOR | (value.elements == 1 ? ISONEELEMENT : 0u);
    value.depth = value.rank == 0 && gathered.deepest < 0
                      ? std::int16_t{0}
                      : static_cast<std::int16_t>(std::min(gathered.deepest, 32766) + 1);
    if (value.depth == 0 && value.rank > 0)
        value.depth = 1;
    settle_kinds(value);
    operations += value.elements;
}

void encapsulate_value(Activation& run, Space& value) {
    if (value.rank >= 0 && value.elements == 0)
        return;
    if (value.rank >= 0 && (value.type & STRUCTURED))
        encapsulate_subarrays(run, value);
    else if (value.rank == 1)
        encapsulate_vector(value);
    else
        exception(1004, &run.top, run.now);
}

// Components of a number, without the highest that are 0.
int components_in_use(const Element& number) {
    int used = components_of(number.tag);
    while (used > 1 && number.c[used - 1] == 0)
        --used;
    return used;
}

// The one or more elements of a scalar's vector.
void add_components(ArrayBuilder& builder, const Space& value) {
    const Element element = element_at(value, 0);
    if (element.tag == tag::integer) {
        builder.add_integer(element.integer);
    } else if (components_of(element.tag) > 0) {
        for (int i = 0; i < components_in_use(element); ++i)
            builder.add_real(element.c[i]);
    } else if (value.type & ISINPLACE) {
        builder.add(element);
    } else {
        builder.add_copies(value.data_pointer, 1);
    }
}

void decapsulate_scalar(Space& value) {
    ArrayBuilder builder;
    add_components(builder, value);
    const std::uint32_t n = builder.size();
    const std::uint32_t kinds = builder.kinds();
    Space vector;
    make_vector(vector, n, builder.finish(), kinds);
    dereferencepoint(&value);
    value = vector;
    operations += n;
}

void decapsulate_value(Activation& run, Space& value);

// The depth that the array had counts as well, though one level of nesting is gone.
void unwrap(Activation& run, Space& value) {
    enter_level(run);
    Converted inner(*static_cast<const DataElement*>(value.data_pointer)->subarray);
    decapsulate_value(run, inner.value());
    raise_depth(inner.value(), inner.value().depth);
    std::swap(value, inner.value());
    operations += value.elements;
}

// As a value of its own: a subarray's, or a scalar.
void decapsulate_element(Activation& run, ArrayBuilder& builder, const void* block, std::uint32_t i,
                         Space& value, Gathered& gathered) {
    const Element element = element_of(block, i);
    Converted inner(element.tag == tag::subarray ? *element.subarray : Space{});
    Space& part = inner.value();
    if (element.tag != tag::subarray)
        copy_scalar(part, element);
    decapsulate_value(run, part);
    if (part.rank == 0 && !has_data(part)) {
        builder.add_copies(block, 1, i);
        return;
    }
    gathered.kinds |= STRUCTURED | ISSTRUCTURE;
    raise_depth(value, part.depth);
    inner.enclose_in(builder, form::number, 0);
}

void decapsulate_elements(Activation& run, Space& value) {
    enter_level(run);
    ArrayBuilder builder(value.elements);
    Gathered gathered;
    Space made = value;
    for (std::uint32_t i = 0; i < value.elements; ++i)
        decapsulate_element(run, builder, value.data_pointer, i, made, gathered);
    if (value.elements != 0)
        replace_data(value, builder.finish());
    value.depth = made.depth;
    value.type = (value.type & ~(element_kinds | STRUCTURED)) | gathered.kinds;
    operations += value.elements;
}

bool wraps_one(const Space& value) {
    return (value.type & (ISONEELEMENT | STRUCTURED)) == (ISONEELEMENT | STRUCTURED)
           && value.data_pointer && first_tag(value) == tag::subarray;
}

void decapsulate_value(Activation& run, Space& value) {
    if (value.rank < 0)
        return;
    if (value.rank == 0 && !(value.type & STRUCTURED)) {
        if (has_data(value))
            decapsulate_scalar(value);
    } else if (wraps_one(value)) {
        unwrap(run, value);
    } else {
        decapsulate_elements(run, value);
    }
}

} // namespace

Next encapsulate(Activation& run) {
    encapsulate_value(run, *run.top);
    return Next::advance;
}

Next decapsulate(Activation& run) {
    decapsulate_value(run, *run.top);
    return Next::advance;
}

Next group(Activation& run) {
    fail(994, &run.top, run.now);
}

} // namespace tessor
