#include "io/writers/elements.h"

#include "io/writers/numbers.h"
#include "values/hypercomplex.h"
#include "values/shared.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tessor {

namespace {

constexpr std::string_view component_letters = "ijklmno";
constexpr std::string_view angle_letters = "pqrstuv";
constexpr double pi = 3.141592653589793;

// Constants that the scanner knows outside array literals only.
constexpr std::array<std::string_view, 6> outside_arrays = {"#1_SQRT2", "#LOGE2",  "#LOGe2",
                                                            "#LOGE10",  "#LOGe10", "#END"};

void write_number(Writer& out, double value, Style style) {
    if (style == Style::source && std::isnan(value)) {
        out.put("nan"); // the scanner takes no sign in front of one
        return;
    }
    const int digits = style == Style::display ? display_digits : source_digits;
    out.advance(number_text(out.room(number_room), value, digits));
}

void write_character(Writer& out, const Element& element, Place place, bool& joined) {
    const char byte = static_cast<char>(element.character);
    if (place.style == Style::display) {
        if (!joined)
            out.put(' ');
        out.put(byte);
        joined = true;
        return;
    }
    // In a literal of several kinds bits are an integer, so a character keeps its kind by a quote;
    // only the byte that ends all input can't be written so.
    const bool bits = place.style == Style::quoted && element.form == form::binary;
    if (bits || byte == 0) {
        out.put(" 0#");
        write_bits(out, element.character, 8);
        return;
    }
    out.put(" '");
    out.put(byte);
    if (byte == '\'')
        out.put(byte);
    out.put('\'');
}

void write_unicode(Writer& out, const Element& element, Place place, bool& joined) {
    const bool display = place.style == Style::display;
    if (!display || !joined)
        out.put(' ');
    if (!display)
        out.put('\'');
    write_hexadecimal(out, element.unicode);
    if (!display)
        out.put('\'');
    joined = display;
}

void write_whole(Writer& out, std::int32_t value) {
    out.put(' ');
    write_integer(out, value);
}

void write_integer_element(Writer& out, const Element& element, Style style) {
    if (element.form == form::boolean) {
        out.put(element.integer != 0 ? " T" : " F");
    } else if (element.form == form::binary && style != Style::display) {
        out.put(" 0#");
        write_bits(out, static_cast<std::uint32_t>(element.integer), 32);
    } else {
        write_whole(out, element.integer);
    }
}

void to_polar(double* c, int width, double& flops) {
    if (width == 2)
        polarcomplex(c, c, flops);
    else if (width == 4)
        polarquat(c, c, flops);
    else
        polarocto(c, c, flops);
}

void from_polar(double* c, int width, double& flops) {
    if (width == 2)
        cartesiancomplex(c, c, flops);
    else if (width == 4)
        cartesianquat(c, c, flops);
    else
        cartesianocto(c, c, flops);
}

// True if modulus and angles lead back to the components. They don't where an angle is that of a
// component alone, not of its share in the modulus, or where angles that are left out make it a
// number of a smaller family.
bool polar_reads_back(const Element& element, int width) {
    double flops = 0;
    double c[8];
    std::copy_n(element.c, width, c);
    to_polar(c, width, flops);
    const double near = c[0] * 1e-12;
    int read = width;
    while (read > 2 && std::all_of(c + read / 2, c + read, [](double angle) { return angle == 0; }))
        read /= 2;
    from_polar(c, read, flops);
    bool same = true;
    for (int i = 0; i < width; ++i)
        same &= std::fabs(c[i] - element.c[i]) <= near;
    return same;
}

void write_hypercomplex(Writer& out, const Element& element, Place place) {
    const int width = components_of(element.tag);
    const bool source = place.style == Style::source;
    const bool polar = element.form == form::polar
                       && !(source && (place.item || !polar_reads_back(element, width)));
    double c[8];
    std::copy_n(element.c, width, c);
    if (polar)
        to_polar(c, width, op_flops);
    int last = width - 1;
    while (last > 0 && c[last] == 0)
        --last;
    const bool degrees = polar && (element.marks & mark::degrees) && last > 0;
    const bool hash = place.style != Style::display && element.form == form::number;
    const bool r = (element.marks & mark::r) != 0;
    // A prefix in front of a single number would make a name of it.
    if (hash || (r && place.style != Style::display))
        last = std::max(last, 1);
    out.put(' ');
    if (hash)
        out.put('#');
    if (degrees)
        out.put('d');
    if (r)
        out.put('r');
    write_number(out, c[0], place.style);
    const std::string_view letters = polar ? angle_letters : component_letters;
    for (int i = 1; i <= last; ++i) {
        out.put(letters[static_cast<std::size_t>(i - 1)]);
        write_number(out, degrees ? c[i] / pi * 180.0 : c[i], place.style);
    }
}

} // namespace

void write_bits(Writer& out, std::uint32_t value, int bits) {
    char* at = out.room(32);
    for (int i = bits - 1; i >= 0; --i)
        *at++ = value >> i & 1 ? '1' : '0';
    out.advance(at);
}

void write_hexadecimal(Writer& out, std::uint16_t value) {
    char* at = out.room(8);
    out.advance(at + std::snprintf(at, 8, "%X", value));
}

bool write_constant_name(Writer& out, const Element& element, Place place) {
    if (!element.named())
        return false;
    const char* name = element.tag == tag::file ? element.other->path : element.name;
    if (!name)
        return false;
    if (place.item && place.style == Style::source
        && std::find(outside_arrays.begin(), outside_arrays.end(), name) != outside_arrays.end())
        return false;
    out.put(' ');
    out.put(name);
    return true;
}

void write_element(Writer& out, const Element& element, Place place, bool whole_as_integer,
                   bool& joined) {
    if (element.tag == tag::ascii) {
        write_character(out, element, place, joined);
        return;
    }
    if (element.tag == tag::unicode) {
        write_unicode(out, element, place, joined);
        return;
    }
    joined = false;
    switch (element.tag) {
    case tag::integer:
        if (!write_constant_name(out, element, place))
            write_integer_element(out, element, place.style);
        return;
    case tag::real:
        if (write_constant_name(out, element, place))
            return;
        if (whole_as_integer && prints_whole(element.c[0])) {
            write_whole(out, static_cast<std::int32_t>(element.c[0]));
        } else {
            out.put(' ');
            write_number(out, element.c[0], place.style);
        }
        return;
    case tag::complex:
        if (write_constant_name(out, element, place))
            return;
        [[fallthrough]];
    case tag::quaternion:
    case tag::octonion: write_hypercomplex(out, element, place); return;
    default: out.put(" ???"); return;
    }
}

} // namespace tessor
