#include "io/writers/texts.h"

#include "io/writers/elements.h"
#include "io/writers/rows.h"

namespace tessor {

namespace {

void write_quoted_bits(Writer& out, std::uint8_t byte) {
    out.put("`0#");
    write_bits(out, byte, 8);
    out.put('`');
}

// A character or a text without quotes, from a packed block: row by row.
void write_packed_text(Writer& out, const Space& text) {
    const auto* bytes = static_cast<const char*>(text.data_pointer);
    write_each(out, text, true, [&](std::uint32_t i) { out.put(bytes[i]); });
}

void write_plain_text(Writer& out, const Space& text) {
    if (!(text.type & ISINPLACE) && storage_of(text.data_pointer) == Storage::character) {
        write_packed_text(out, text);
        return;
    }
    write_each(out, text, true, [&](std::uint32_t i) {
        const Element element = element_at(text, i);
        if (element.tag == tag::unicode)
            write_hexadecimal(out, element.unicode);
        else
            out.put(static_cast<char>(element.character));
    });
}

// What the scanner takes in no text: a double quote, the byte that ends all input.
bool needs_bits(std::uint8_t byte) {
    return byte == '"' || byte == 0;
}

// A backquote in front of what looks like bits.
bool begins_bits(const Space& text, std::uint32_t i) {
    constexpr std::string_view bits = "01|";
    return text.elements - i > 3 && element_at(text, i + 1).character == '0'
           && element_at(text, i + 2).character == '#'
           && bits.find(static_cast<char>(element_at(text, i + 3).character)) != bits.npos;
}

// What would be taken for something else where it stands: a backquote for the beginning of bits, a
// quote in an array for the end of a character in front of it.
bool needs_bits_at(const Space& text, std::uint32_t i, std::uint8_t byte, bool item) {
    if (byte == '`')
        return begins_bits(text, i);
    return item && i == 1 && byte == '\'';
}

void write_quoted_byte(Writer& out, std::uint8_t byte, bool bits) {
    if (bits)
        write_quoted_bits(out, byte);
    else
        out.put(byte == '\'' ? std::string_view("''")
                             : std::string_view(reinterpret_cast<const char*>(&byte), 1));
}

// A text of one character that isn't written in bits anyway.
bool is_plain_single(const Space& text) {
    if (text.elements != 1)
        return false;
    const Element only = element_at(text, 0);
    return only.form != form::binary && !needs_bits(only.character);
}

void write_quoted_text(Writer& out, const Space& text, Place place) {
    const bool source = place.style == Style::source;
    const bool single = source && place.item && is_plain_single(text);
    const bool all_bits = single && !fits_as_item(text);
    out.put(" '");
    if (single && !all_bits)
        out.put(static_cast<char>(element_at(text, 0).character));
    write_each(out, text, false, [&](std::uint32_t i) {
        const Element element = element_at(text, i);
        const std::uint8_t byte = element.character;
        if (element.tag == tag::unicode)
            write_hexadecimal(out, element.unicode);
        else
            write_quoted_byte(
                out, byte,
                element.form == form::binary || all_bits
                    || (source && (needs_bits(byte) || needs_bits_at(text, i, byte, place.item))));
    });
    out.put('\'');
}

} // namespace

bool holds_text(const Space& space) {
    if (!(space.type & HASASCII) || is_text(space) || !has_data(space))
        return is_text(space);
    std::uint32_t i = 0;
    while (i < space.elements && element_at(space, i).tag == tag::ascii)
        ++i;
    return i == space.elements;
}

// The first byte between two quotes would be an element; a single one is written twice and cut by
// the shape, which a scalar hasn't got.
bool fits_as_item(const Space& text) {
    if (text.elements < 2)
        return !is_plain_single(text)
               || (!(text.type & ISSCALAR) && element_at(text, 0).character != '\'');
    const Element second = element_at(text, 1);
    return second.character != '\'' || second.form == form::binary;
}

void write_shape(Writer& out, const Space& space) {
    out.put(" [");
    for (std::int32_t axis = 0; axis < space.rank; ++axis) {
        out.put(' ');
        write_integer(out, extent(space, axis));
    }
    out.put(" ]");
}

void write_text(Writer& out, const Space& text, Place place) {
    if (place.style == Style::display) {
        if (place.level != 0)
            out.put(' ');
        write_plain_text(out, text);
    } else {
        write_quoted_text(out, text, place);
    }
    // A single quoted character is a scalar without its shape.
    const bool single = place.style == Style::source && text.rank == 1 && text.elements == 1;
    const bool nested = place.level != 0 || place.style != Style::display;
    if (!nested || (text.rank < 2 && !single) || (text.type & ISSCALAR))
        return;
    // In an array the scanner would show the blanks of the shape.
    if (single && place.item)
        out.put(" [1]");
    else
        write_shape(out, text);
}

void write_quoted(Writer& out, const Element& element) {
    out.put(" '");
    write_quoted_byte(out, element.character,
                      element.form == form::binary || needs_bits(element.character));
    out.put('\'');
}

} // namespace tessor
