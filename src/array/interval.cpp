#include "array/interval.h"

#include "array/lattice.h"
#include "array/system_values.h"
#include "io/writers/exception.h"
#include "scalar/compare.h"
#include "values/hypercomplex.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tessor {

namespace {

constexpr std::uint32_t hypercomplex_kinds = HASCOMPLEX | HASQUATERNION | HASOCTONION;
constexpr double most_elements = 2147483647.0;

struct Argument {
    Activation& run;
    std::array<Element, 3> elements;
    std::size_t n;

    const Space& space() const { return *run.top; }
    std::int32_t tag() const { return elements[0].tag; }
    [[noreturn]] void refuse(int number) const { fail(number, &run.top, run.now); }
};

// The integer that an integer is, or a real that is near one and fits.
std::optional<double> integer_near(const Element& element, double tolerance) {
    if (element.tag == tag::integer)
        return element.integer;
    double whole = 0;
    if (!(std::fabs(element.c[0]) <= largest_integer)
        || !near_integer(element.c[0], tolerance, whole))
        return std::nullopt;
    return whole;
}

// From `from` to `to` in steps that have the right sign. The count can be NaN.
struct Run {
    double from;
    double to;
    double step;

    bool ends() const { return from > to ? step < 0 : step > 0; }
    double count() const { return std::fabs(std::trunc((to - from) / step)) + 1; }
};

Run unit_run(double from, double to) {
    return {from, to, from > to ? -1.0 : 1.0};
}

std::uint32_t checked_count(const Argument& a, double count) {
    if (!(count <= most_elements))
        a.refuse(146);
    return static_cast<std::uint32_t>(count);
}

Lattice vector_of(const Argument& a, std::int32_t tag, const Run& run) {
    Lattice lattice;
    lattice.tag = tag;
    if (tag == tag::ascii)
        lattice.form = form::text;
    lattice.axes[0] = {run.from, run.step, checked_count(a, run.count())};
    return lattice;
}

// Up from the index origin, or down from its opposite, as many as the magnitude of x says.
Axis counted_axis(const Argument& a, double x) {
    const std::int64_t origin = index_origin(a.run.quads); // 0 has no sign
    const double count = std::fabs(std::trunc(x));
    if (x < 0)
        return {static_cast<double>(-origin), -1, checked_count(a, count)};
    return {static_cast<double>(origin), 1, checked_count(a, count)};
}

Lattice counted_vector(const Argument& a, double count) {
    Lattice lattice;
    lattice.axes[0] = counted_axis(a, count);
    return lattice;
}

Lattice characters(const Argument& a) {
    if (a.n == 3)
        a.refuse(155);
    if (a.n == 2) {
        if ((a.space().type & COMPLEXED) || a.elements[1].tag != tag::ascii)
            a.refuse(156);
        return vector_of(a, tag::ascii, unit_run(a.elements[0].character, a.elements[1].character));
    }
    constexpr std::uint8_t blank = ' ';
    if (a.elements[0].character < blank)
        a.refuse(158);
    return vector_of(a, tag::ascii, unit_run(blank, a.elements[0].character));
}

double real_of(const Element& element) {
    return element.tag == tag::integer ? element.integer : element.c[0];
}

// Integers up to the first end that isn't near one.
Lattice numbers(const Argument& a) {
    const double tolerance = comparison_tolerance(a.run.quads);
    std::array<double, 3> ends{};
    bool whole = true;
    for (std::size_t i = 0; i < a.n; ++i) {
        const Element& element = a.elements[i];
        if (i == 1 && (a.space().type & hypercomplex_kinds))
            a.refuse(157);
        if (element.tag != tag::integer && element.tag != tag::real)
            a.refuse(142);
        const std::optional<double> integer =
            whole ? integer_near(element, tolerance) : std::nullopt;
        whole = integer.has_value();
        ends[i] = integer.value_or(real_of(element));
        if (!whole && a.n == 1)
            a.refuse(153);
    }
    if (a.n == 1)
        return counted_vector(a, ends[0]);
    const Run run = a.n == 2 ? unit_run(ends[0], ends[1]) : Run{ends[0], ends[1], ends[2]};
    if (!run.ends())
        a.refuse(158);
    return vector_of(a, whole ? tag::integer : tag::real, run);
}

void to_polar(Element& element, double& flops) {
    switch (element.tag) {
    case tag::complex: polarcomplex(element.c, element.c, flops); return;
    case tag::quaternion: polarquat(element.c, element.c, flops); return;
    default: polarocto(element.c, element.c, flops); return;
    }
}

// One polar end makes all of them polar. What is polar by its form counts no flops.
bool take_to_polar(Argument& a) {
    bool polar = false;
    for (std::size_t i = 0; i < a.n; ++i)
        polar |= a.elements[i].form == form::polar;
    for (std::size_t i = 0; polar && i < a.n; ++i) {
        double uncounted = 0;
        to_polar(a.elements[i], a.elements[i].form == form::polar ? uncounted : op_flops);
    }
    return polar;
}

// Components up to the last that isn't 0 in every element; at least one.
int kept_components(const Argument& a) {
    int kept = components_of(a.tag());
    const auto zero = [&](int c) {
        return std::all_of(a.elements.begin(), a.elements.begin() + static_cast<long>(a.n),
                           [c](const Element& element) { return element.c[c] == 0; });
    };
    while (kept > 1 && zero(kept - 1))
        --kept;
    return kept;
}

Lattice empty_lattice(int kept, bool polar, std::uint16_t form) {
    Lattice lattice;
    lattice.tag = kept > 4 ? tag::octonion : kept > 2 ? tag::quaternion : tag::complex;
    lattice.form = form;
    lattice.polar = polar;
    lattice.rank = kept;
    return lattice;
}

void check_size(const Argument& a, const Lattice& lattice) {
    if (!(lattice.size() <= most_elements))
        a.refuse(146);
}

// A count for each component.
Lattice counted_lattice(Argument& a) {
    const bool polar = take_to_polar(a);
    const double tolerance = comparison_tolerance(a.run.quads);
    Element& element = a.elements[0];
    for (int c = 0; c < components_of(a.tag()); ++c) {
        if (!(std::fabs(element.c[c]) < largest_integer))
            a.refuse(153);
        double whole = 0;
        if (near_integer(element.c[c], tolerance, whole))
            element.c[c] = whole;
    }
    const int kept = kept_components(a);
    if (kept == 1)
        return counted_vector(a, std::trunc(element.c[0]));
    Lattice lattice = empty_lattice(kept, polar, element.form);
    for (int c = 0; c < kept; ++c)
        lattice.axes[static_cast<std::size_t>(c)] = counted_axis(a, element.c[c]);
    check_size(a, lattice);
    return lattice;
}

// Ends on the real line stand on the stack as reals from now on.
void rewrite_as_reals(Argument& a) {
    Space& top = *a.run.top;
    ArrayBuilder reals(a.n);
    for (std::size_t i = 0; i < a.n; ++i) {
        a.elements[i] = real_element(a.elements[i].c[0]);
        reals.add(a.elements[i]);
    }
    release_data(top.data_pointer, top.elements);
    top.data_pointer = reals.finish();
    top.type = (top.type & ~hypercomplex_kinds) | HASREAL;
}

Lattice stepped_lattice(Argument& a) {
    for (std::size_t i = 1; i < a.n; ++i)
        if ((a.space().type & COMPLEXED) || a.elements[i].tag != a.tag())
            a.refuse(157);
    const bool polar = take_to_polar(a);
    const int kept = kept_components(a);
    if (kept == 1) {
        rewrite_as_reals(a);
        return numbers(a);
    }
    Lattice lattice = empty_lattice(kept, polar, polar ? form::polar : form::cartesian);
    std::array<Run, most_axes> runs;
    for (int c = 0; c < kept; ++c) {
        const double from = a.elements[0].c[c];
        const double to = a.elements[1].c[c];
        Run& run = runs[static_cast<std::size_t>(c)];
        run = a.n == 2 ? unit_run(from, to) : Run{from, to, a.elements[2].c[c]};
        if (!run.ends())
            a.refuse(158);
    }
    for (std::size_t c = 0; c < static_cast<std::size_t>(kept); ++c)
        lattice.axes[c] = {runs[c].from, runs[c].step, checked_count(a, runs[c].count())};
    check_size(a, lattice);
    return lattice;
}

Lattice lattice_for(Argument& a) {
    switch (a.tag()) {
    case tag::ascii: return characters(a);
    case tag::integer:
    case tag::real: return numbers(a);
    case tag::complex:
    case tag::quaternion:
    case tag::octonion: return a.n == 1 ? counted_lattice(a) : stepped_lattice(a);
    default: a.refuse(142);
    }
}

// An empty vector keeps rank and shape of the argument.
void empty_result(Space& top, BlockHandle shape, const Lattice& lattice) {
    if (lattice.rank == 1) {
        if (!(top.type & ISINPLACE))
            release_data(top.data_pointer, top.elements);
    } else {
        dereferencepoint(&top);
        top.rank = lattice.rank;
        top.shape_pointer = shape.release();
    }
    top.type = (lattice.rank == 1 ? ISVECTOR : ISARRAY) | ISEMPTY;
    top.depth = 1;
    top.second = 0;
    top.elements = 0;
    top.first_index = 0;
    top.last_index = 0;
    top.data_pointer = nullptr;
}

BlockHandle shape_of(const Lattice& lattice) {
    std::int32_t* extents = new_shape(lattice.rank);
    for (int i = 0; i < lattice.rank; ++i)
        extents[i] = static_cast<std::int32_t>(lattice.axes[static_cast<std::size_t>(i)].count);
    return BlockHandle(extents);
}

void put_result(Activation& run, Lattice& lattice) {
    Space& top = *run.top;
    const auto n = static_cast<std::uint32_t>(lattice.size());
    BlockHandle shape = shape_of(lattice);
    if (n == 0) {
        empty_result(top, std::move(shape), lattice);
    } else {
        if (n == 1 && lattice.tag != tag::ascii)
            lattice.form = form::number;
        void* block = filled(lattice, n, *run.now, &top);
        dereferencepoint(&top);
        Space made{};
        made.rank = lattice.rank;
        made.type = (lattice.rank == 1 ? ISVECTOR : ISARRAY) | kind_bit(lattice.tag)
                    | (n == 1 ? ISONEELEMENT : 0u);
        made.shape_pointer = shape.release();
        made.depth = 1;
        made.elements = n;
        made.last_index = static_cast<std::int32_t>(n - 1);
        made.data_pointer = block;
        top = made;
    }
    flopos = op_flops;
    total_flops += op_flops;
    operations += n;
}

} // namespace

Next interval(Activation& run) {
    Space& top = *run.top;
    if (top.type & ISEMPTY) {
        dereferencepoint(&top);
        make_integer(top, 0);
        operations += 1;
        return Next::advance;
    }
    Argument argument{run, {}, top.elements};
    if (argument.n > 3 || (top.type & STRUCTURED))
        argument.refuse(154);
    if (top.rank < 0 || argument.n == 0 || !has_data(top))
        argument.refuse(142);
    for (std::uint32_t i = 0; i < argument.n; ++i)
        argument.elements[i] = element_at(top, i);
    Lattice lattice = lattice_for(argument);
    put_result(run, lattice);
    return Next::advance;
}

} // namespace tessor
