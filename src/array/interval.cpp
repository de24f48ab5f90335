#include "array/interval.h"

#include "array/lattice.h"
#include "array/system_values.h"
#include "io/writers/exception.h"
#include "scalar/compare.h"
#include "scalar/frame.h"
#include "scalar/simd.h"
#include "values/array.h"
#include "values/hypercomplex.h"
#include "values/refderef.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tessor {

namespace {

constexpr double most_elements = 2147483647.0;
constexpr double largest = 2147483647.0;

struct Ends {
    std::array<Element, 3> e;
    std::uint32_t n = 0;
};

// The argument and what it is read by.
struct Argument {
    Activation& run;
    Space& space;
    Ends ends;
    double tolerance;
    std::int32_t origin;

    [[noreturn]] void refuse(int number) const { fail(number, &run.top, run.now); }
};

std::uint32_t checked_count(const Argument& a, double count) {
    if (!(count <= most_elements))
        a.refuse(146);
    return static_cast<std::uint32_t>(count);
}

// Results. The shape is made first, so that nothing is lost if there is no room for it.

BlockHandle shape_of(std::int32_t rank, const std::uint32_t* extents) {
    BlockHandle shape(new_shape(rank));
    std::copy_n(extents, rank, shape.as<std::int32_t>());
    return shape;
}

void give(Space& space, std::int32_t rank, BlockHandle shape, std::uint32_t kinds,
          std::uint32_t elements, void* block) {
    dereferencepoint(&space);
    space = Space{};
    space.rank = rank;
    space.type = (rank == 1 ? ISVECTOR : ISARRAY) | kinds | (elements == 1 ? ISONEELEMENT : 0u);
    space.shape_pointer = shape.release();
    space.depth = 1;
    space.elements = elements;
    space.last_index = elements == 0 ? 0 : static_cast<std::int32_t>(elements) - 1;
    space.data_pointer = block;
}

void give_vector(Space& space, std::uint32_t n, std::uint32_t kinds, BlockHandle block) {
    BlockHandle shape = shape_of(1, &n);
    give(space, 1, std::move(shape), kinds, n, block.release());
}

void give_empty(Space& space) {
    if (!(space.type & ISINPLACE))
        release_data(space.data_pointer, space.elements);
    space.elements = 0;
    space.data_pointer = nullptr;
    space.first_index = 0;
    space.last_index = 0;
    space.type = ISVECTOR | ISEMPTY;
}

// Characters.

void give_characters(Argument& a, std::uint8_t first, std::uint8_t last) {
    const int step = first <= last ? 1 : -1;
    const auto n = static_cast<std::uint32_t>((last - first) * step + 1);
    BlockHandle block(allocate_block(n, encode({Storage::character, form::text, 0})));
    for (std::uint32_t i = 0; i < n; ++i)
        block.as<std::uint8_t>()[i] = static_cast<std::uint8_t>(first + step * static_cast<int>(i));
    give_vector(a.space, n, HASASCII, std::move(block));
    count_operations(n);
}

void characters(Argument& a) {
    const Ends& ends = a.ends;
    if (ends.n == 3)
        a.refuse(155);
    const std::uint8_t first = ends.e[0].character;
    if (ends.n == 1) {
        if (first <= 0x1f)
            a.refuse(158);
        return give_characters(a, 0x20, first);
    }
    if (ends.e[1].tag != tag::ascii)
        a.refuse(156);
    give_characters(a, first, ends.e[1].character);
}

// Numbers.

void give_integers(Argument& a, std::int64_t from, std::int64_t step, double count) {
    const std::uint32_t n = checked_count(a, count);
    if (n == 0) {
        give_empty(a.space);
        return count_operations(0);
    }
    const std::uint16_t look = n == 1 ? form::number : form::cartesian;
    BlockHandle block(allocate_items(n, sizeof(std::int32_t), encode({Storage::integer, look, 0})));
    auto* items = block.as<std::int32_t>();
    const auto first = static_cast<std::uint32_t>(from);
    const auto by = static_cast<std::uint32_t>(step);
    run_simd([=]() __attribute__((always_inline)) {
        for (std::uint32_t i = 0; i < n; ++i)
            items[i] = static_cast<std::int32_t>(first + i * by);
    });
    give_vector(a.space, n, HASINTEGER, std::move(block));
    count_operations(n);
}

void give_lattice(Argument& a, const Lattice& lattice) {
    BlockHandle shape = shape_of(lattice.axes, lattice.count.data());
    const bool empty = lattice.elements == 0;
    void* block = empty ? nullptr : fill_lattice(lattice, &a.space, *a.run.now);
    give(a.space, lattice.axes, std::move(shape), empty ? ISEMPTY : kind_bit(lattice.tag),
         lattice.elements, block);
    count_operations(lattice.elements);
}

void give_reals(Argument& a, double from, double step, double count) {
    Lattice lattice;
    lattice.tag = tag::real;
    lattice.elements = checked_count(a, count);
    lattice.form = lattice.elements == 1 ? form::number : form::cartesian;
    lattice.start[0] = from;
    lattice.step[0] = step;
    lattice.count[0] = lattice.elements;
    give_lattice(a, lattice);
}

// A number read for the integer mode, or for the real mode once a real has turned up.
struct Mode {
    bool whole = true;
    std::array<double, 3> value{};
};

void read(const Argument& a, Mode& mode, std::uint32_t i) {
    const Element& element = a.ends.e[i];
    double& value = mode.value[i];
    if (element.tag == tag::integer) {
        value = element.integer;
        return;
    }
    value = element.c[0];
    double near = 0;
    if (mode.whole && std::fabs(value) <= largest && near_integer(value, a.tolerance, near))
        value = near;
    else
        mode.whole = false;
}

void count_up_or_down(Argument& a, double c) {
    const std::int64_t origin = a.origin;
    if (c >= 0)
        give_integers(a, origin, 1, c);
    else
        give_integers(a, -origin, -1, -c);
}

bool leads(double from, double to, double step) {
    return !(from > to) ? step > 0 : step < 0;
}

void numbers(Argument& a) {
    const std::uint32_t n = a.ends.n;
    Mode mode;
    read(a, mode, 0);
    if (n == 1) {
        if (!mode.whole)
            a.refuse(153);
        return count_up_or_down(a, mode.value[0]);
    }
    for (std::uint32_t i = 1; i < n; ++i)
        if (components_of(a.ends.e[i].tag) > 1)
            a.refuse(157);
    for (std::uint32_t i = 1; i < n; ++i) {
        if (a.ends.e[i].tag != tag::integer && a.ends.e[i].tag != tag::real)
            a.refuse(142);
        read(a, mode, i);
    }
    const double from = mode.value[0];
    const double to = mode.value[1];
    double step = from > to ? -1.0 : 1.0;
    if (n == 3) {
        step = mode.value[2];
        if (!leads(from, to, step))
            a.refuse(158);
    }
    const double count = std::fabs(std::trunc((to - from) / step)) + 1;
    if (mode.whole)
        give_integers(a, static_cast<std::int64_t>(from), static_cast<std::int64_t>(step), count);
    else
        give_reals(a, from, step, count);
}

// Hypercomplex numbers.

template <int width>
void polar_of(Element& element) {
    polar<width>(element.c, element.c, op_flops);
}

void make_polar(Element& element, int width) {
    if (width == 2)
        polar_of<2>(element);
    else if (width == 4)
        polar_of<4>(element);
    else
        polar_of<8>(element);
}

int kept_components(const Ends& ends, int width) {
    for (int c = width; c > 1; --c)
        for (std::uint32_t i = 0; i < ends.n; ++i)
            if (ends.e[i].c[c - 1] != 0)
                return c;
    return 1;
}

std::int32_t tag_for(int components) {
    return components > 4 ? tag::octonion : components > 2 ? tag::quaternion : tag::complex;
}

// Counts along an axis; the product has to fit.
void settle_counts(const Argument& a, Lattice& lattice, const std::array<double, 8>& counts) {
    double product = 1;
    for (int c = 0; c < lattice.axes; ++c)
        product *= counts[static_cast<std::size_t>(c)];
    if (!(product <= most_elements))
        a.refuse(146);
    lattice.elements = static_cast<std::uint32_t>(product);
    for (std::size_t c = 0; c < static_cast<std::size_t>(lattice.axes); ++c)
        lattice.count[c] = checked_count(a, counts[c]);
    if (lattice.elements == 1)
        lattice.form = form::number;
}

void counted_lattice(Argument& a, int width) {
    Element& count = a.ends.e[0];
    const std::uint16_t look = count.form;
    if (look == form::polar)
        make_polar(count, width);
    for (int c = 0; c < width; ++c) {
        double& x = count.c[c];
        if (!(std::fabs(x) < largest))
            a.refuse(153);
        double near = 0;
        if (near_integer(x, a.tolerance, near))
            x = near;
    }
    Lattice lattice;
    lattice.axes = kept_components(a.ends, width);
    if (lattice.axes == 1)
        return count_up_or_down(a, std::trunc(count.c[0]));
    lattice.tag = tag_for(lattice.axes);
    lattice.form = look;
    lattice.polar = look == form::polar;
    std::array<double, 8> counts{};
    for (std::size_t c = 0; c < static_cast<std::size_t>(lattice.axes); ++c) {
        const bool down = count.c[c] < 0;
        counts[c] = std::fabs(std::trunc(count.c[c]));
        lattice.start[c] = down ? 0.0 - a.origin : a.origin;
        lattice.step[c] = down ? -1.0 : 1.0;
    }
    settle_counts(a, lattice, counts);
    give_lattice(a, lattice);
}

bool any_polar(const Ends& ends) {
    return std::any_of(ends.e.begin(), ends.e.begin() + ends.n,
                       [](const Element& e) { return e.form == form::polar; });
}

void stepped_lattice(Argument& a, int width) {
    Ends& ends = a.ends;
    Lattice lattice;
    lattice.polar = any_polar(ends);
    lattice.form = lattice.polar ? form::polar : form::cartesian;
    if (lattice.polar)
        for (std::uint32_t i = 0; i < ends.n; ++i)
            make_polar(ends.e[i], width);
    lattice.axes = kept_components(ends, width);
    if (lattice.axes == 1) {
        for (std::uint32_t i = 0; i < ends.n; ++i)
            ends.e[i].tag = tag::real;
        return numbers(a);
    }
    lattice.tag = tag_for(lattice.axes);
    std::array<double, 8> counts{};
    bool right = true;
    for (std::size_t c = 0; c < static_cast<std::size_t>(lattice.axes); ++c) {
        const double from = ends.e[0].c[c];
        const double to = ends.e[1].c[c];
        const double step = ends.n == 3 ? ends.e[2].c[c] : from > to ? -1.0 : 1.0;
        right &= leads(from, to, step);
        lattice.start[c] = from;
        lattice.step[c] = step;
        counts[c] = std::fabs(std::trunc((to - from) / step)) + 1;
    }
    if (!right)
        a.refuse(158);
    settle_counts(a, lattice, counts);
    give_lattice(a, lattice);
}

void hypercomplex(Argument& a) {
    const std::int32_t tag = a.ends.e[0].tag;
    const int width = components_of(tag);
    for (std::uint32_t i = 1; i < a.ends.n; ++i)
        if (a.ends.e[i].tag != tag)
            a.refuse(157);
    if (a.ends.n == 1)
        counted_lattice(a, width);
    else
        stepped_lattice(a, width);
}

} // namespace

Next interval(Activation& run) {
    Space& space = *run.top;
    if (space.type & ISEMPTY) {
        dereferencepoint(&space);
        make_integer(space, 0);
        count_operations(1);
        return Next::advance;
    }
    Argument a{run, space, {}, comparison_tolerance(run.quads), index_origin(run.quads)};
    if (space.rank < 0 || !has_data(space))
        a.refuse(142);
    if (space.elements > 3 || (space.type & STRUCTURED))
        a.refuse(154);
    a.ends.n = space.elements;
    for (std::uint32_t i = 0; i < a.ends.n; ++i)
        a.ends.e[i] = element_at(space, i);
    switch (a.ends.e[0].tag) {
    case tag::ascii: characters(a); break;
    case tag::integer:
    case tag::real: numbers(a); break;
    case tag::complex:
    case tag::quaternion:
    case tag::octonion: hypercomplex(a); break;
    default: a.refuse(142);
    }
    return Next::advance;
}

} // namespace tessor
