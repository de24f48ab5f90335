#include "io/writers/elements.h"
#include "io/writers/numbers.h"
#include "io/writers/rows.h"
#include "io/writers/texts.h"

namespace tessor {

namespace {

bool is_enclosed(const Space& space) {
    return (space.type & ISSCALAR) && (space.type & STRUCTURED);
}

// A whole real among elements of other kinds is no different from an integer.
bool whole_as_integer(const Space& space) {
    return space.rank == 0 || (space.type & (COMPLEXED | STRUCTURED));
}

void write_condition(Writer& out, const Space& space) {
    if (space.type & CONDITIONAL)
        out.put(space.type & YES ? " IF_YES" : " IF_NO");
}

bool has_brackets(const Space& space, Place place) {
    if (place.style == Style::source)
        return true;
    return space.depth != 0 && (place.level != 0 || place.style != Style::display);
}

bool is_bracketed_list(const Space& space, Place place) {
    return space.rank > 0 && has_data(space) && !(space.type & ISEMPTY) && !is_text(space)
           && !is_enclosed(space) && has_brackets(space, place);
}

// In display a text shows in quotes; any other value stands between two blanks, the first of which
// is that of its bracket if it has one.
void write_subarray(Writer& out, const Space& inner, Place place, bool& joined) {
    Place within{place.level + 1, place.style, true};
    joined = false;
    if (place.style != Style::display) {
        write_value(out, inner, within);
        return;
    }
    if (inner.type & HASASCII) {
        within.style = Style::quoted;
        write_value(out, inner, within);
        joined = true;
        return;
    }
    if (!is_bracketed_list(inner, within))
        out.put(' ');
    write_value(out, inner, within);
    out.put(' ');
}

void write_integers(Writer& out, const Space& space, Place place) {
    const auto* values = static_cast<const std::int32_t*>(space.data_pointer);
    write_each(out, space, place.style == Style::display, [&](std::uint32_t i) {
        char* at = out.room(number_room + 1);
        *at = ' ';
        out.advance(number_text(at + 1, values[i]));
    });
}

void write_reals(Writer& out, const Space& space) {
    const auto* values = static_cast<const double*>(space.data_pointer);
    write_each(out, space, true, [&](std::uint32_t i) {
        char* at = out.room(number_room + 1);
        *at = ' ';
        out.advance(number_text(at + 1, values[i], display_digits));
    });
}

// The elements of an array or an enclosed value. Packed numbers that need no look at each one's
// form have loops of their own.
void write_elements(Writer& out, const Space& space, Place place, bool& joined) {
    if (space.type & ISINPLACE) {
        write_element(out, element_at(space, 0), place, whole_as_integer(space), joined);
        return;
    }
    const Layout layout = layout_of(space.data_pointer);
    const bool display = place.style == Style::display;
    const bool bits = layout.form == form::binary && !display;
    if (layout.storage == Storage::integer && layout.form != form::boolean && !bits) {
        write_integers(out, space, place);
        return;
    }
    if (layout.storage == Storage::real && display && !whole_as_integer(space)) {
        write_reals(out, space);
        return;
    }
    write_each(out, space, display, [&](std::uint32_t i) {
        const Element element = element_at(space, i);
        if (element.tag != tag::subarray)
            write_element(out, element, place, whole_as_integer(space), joined);
        else if (write_constant_name(out, element, place))
            joined = false;
        else
            write_subarray(out, *element.subarray, place, joined);
    });
}

// Whether an array can be written as one literal: no scalar and no enclosed value stands anywhere
// in it as a subarray, no text that would not be read as one, and no character that can't be
// written between two quotes beside elements of other kinds.
bool fits_literal(Writer& out, const Space& space) {
    if (!(space.type & (STRUCTURED | COMPLEXED)) || !has_data(space) || holds_text(space))
        return true;
    guard_depth(out);
    out.listen();
    const Space* before = nullptr; // repeated, it needs no second look
    for (std::uint32_t i = 0; i < space.elements; ++i) {
        const Element element = element_at(space, i);
        if (element.tag == tag::ascii && (element.character == 0 || element.character == '\n'))
            return false;
        if (element.tag != tag::subarray || element.subarray == before)
            continue;
        before = element.subarray;
        const Space& inner = *before;
        const bool fits = holds_text(inner) ? (inner.type & ISEMPTY) || fits_as_item(inner)
                                            : !(inner.type & ISSCALAR) && fits_literal(out, inner);
        if (!fits)
            return false;
    }
    return true;
}

// What stands for itself in a program, and isn't part of a literal or a function.
void count_cells(Writer& out, Place place, int count) {
    if (place.level == 0 && !place.item)
        out.count_cells(count);
}

// What stands for itself in a program until it becomes an element of an array again. Where no value
// of its own is looked at, an empty one shows its kind.
void write_part(Writer& out, const Space& part, Place place) {
    if (part.type & ISEMPTY) {
        count_cells(out, place, 1);
        place.item = true;
    }
    write_value(out, part, place);
}

void write_single(Writer& out, const Element& element, Place place) {
    count_cells(out, place, 1);
    if (element.tag == tag::ascii) {
        write_quoted(out, element);
        return;
    }
    bool joined = false;
    if (!write_constant_name(out, element, place))
        write_element(out, element, place, true, joined);
}

// What ATOM encloses keeps a shape; a scalar has none.
void write_enclosing(Writer& out, Place place, bool scalar) {
    count_cells(out, place, scalar ? 2 : 1);
    write_word(out, "ATOM");
    if (scalar)
        write_word(out, "FIRST");
}

// The array that a literal between backquotes encloses; null if it takes more than a literal.
const Space* plainly_enclosed(Writer& out, const Space& space) {
    if (!is_enclosed(space) || !has_data(space))
        return nullptr;
    const Element only = element_at(space, 0);
    if (only.tag != tag::subarray || space.depth != 0)
        return nullptr;
    const Space& inner = *only.subarray;
    if (inner.rank <= 0 || (inner.type & ISSCALAR) || holds_text(inner))
        return nullptr;
    const bool list = has_data(inner) || inner.rank == 1;
    return list && fits_literal(out, inner) ? &inner : nullptr;
}

// An array that no literal gives: its elements one by one, then collected. Collecting takes a
// scalar for an element, not for a subarray, and enclosing leaves it as it is.
void write_collected(Writer& out, const Space& space, Place place) {
    const bool several_items = space.elements > 1;
    if (several_items) {
        count_cells(out, place, 1);
        write_word(out, "[.");
    }
    bool lone = false;
    write_each(out, space, false, [&](std::uint32_t i) {
        const Element element = element_at(space, i);
        if (element.tag != tag::subarray) {
            write_single(out, element, place);
        } else {
            const Space& inner = *element.subarray;
            write_part(out, inner, place);
            lone = (inner.type & ISSCALAR)
                   && (!several_items || (inner.rank == 0 && !plainly_enclosed(out, inner)));
            if (lone)
                write_enclosing(out, place, true);
        }
    });
    count_cells(out, place, space.rank > 1 ? 3 : 1);
    if (several_items)
        write_word(out, ".]");
    else
        write_word(out, lone ? "RAVEL" : "ENCLOSE");
    if (space.rank > 1) {
        out.put(" (");
        for (std::int32_t axis = 0; axis < space.rank; ++axis) {
            out.put(' ');
            write_integer(out, extent(space, axis));
        }
        out.put(" )");
        write_word(out, "RESHAPE");
    }
}

void write_list(Writer& out, const Space& space, Place place) {
    const bool source = place.style == Style::source;
    if (source && place.level == 0 && !place.item && !fits_literal(out, space)) {
        write_collected(out, space, place);
        return;
    }
    count_cells(out, place, 1);
    if (source && holds_text(space)) {
        write_text(out, space, place);
        return;
    }
    const bool brackets = has_brackets(space, place);
    if (brackets)
        out.put(" (");
    bool joined = false;
    Place within = place;
    within.item = true;
    write_elements(out, space, within, joined);
    if (brackets)
        out.put(joined && place.style == Style::display ? " " : " )");
    const bool nested = place.level != 0 || place.style != Style::display;
    if (nested && space.rank > 1 && !(space.type & ISSCALAR))
        write_shape(out, space);
}

void write_enclosed_source(Writer& out, const Space& space, Place place) {
    if (const Space* inner = plainly_enclosed(out, space)) {
        bool joined = false;
        count_cells(out, place, 1);
        out.put(" `(");
        if (has_data(*inner))
            write_elements(out, *inner, {place.level, place.style, true}, joined);
        out.put(" )`");
        if (inner->rank > 1)
            write_shape(out, *inner);
        return;
    }
    const Element only = element_at(space, 0);
    if (only.tag == tag::subarray)
        write_part(out, *only.subarray, place);
    else
        write_single(out, only, place);
    write_enclosing(out, place, space.rank == 0);
}

void write_enclosed(Writer& out, const Space& space, Place place) {
    if (place.style == Style::source && has_data(space)) {
        write_enclosed_source(out, space, place);
        return;
    }
    out.put(" `(");
    if (has_data(space)) {
        bool joined = false;
        const int level = place.style == Style::display ? -1 : place.level;
        write_elements(out, space, {level, place.style, true}, joined);
    }
    out.put(" )`");
    if (place.style == Style::display)
        write_condition(out, space);
}

// What has been emptied shows as nothing where a person looks at the value itself.
void write_empty(Writer& out, const Space& space, Place place) {
    if (place.item && place.style == Style::source) {
        out.put(space.type & HASASCII ? " ''" : " ()");
    } else if (place.level == 0 && place.style == Style::display) {
        out.put(".\n");
    } else {
        write_indent(out, place.level);
        out.put("#NIL\n");
    }
}

// A hidden constant is part of the word that it stands in front of; one that has a name shows it
// wherever it isn't the value itself that is looked at.
bool is_hidden(const Element& element, Place place) {
    if (!(element.marks & mark::hidden))
        return false;
    return !element.named() || (place.style == Style::display && !place.item);
}

void write_scalar(Writer& out, const Space& space, Place place) {
    if (!has_data(space)) {
        out.put(" ???");
        return;
    }
    const Element element = element_at(space, 0);
    if (is_hidden(element, place) || write_constant_name(out, element, place))
        return;
    bool joined = false;
    if (place.style == Style::source && element.tag == tag::ascii)
        write_quoted(out, element);
    else if (is_text(space))
        write_text(out, space, place);
    else
        write_element(out, element, place, whole_as_integer(space), joined);
}

void write_lone(Writer& out, const Space& space, Place place) {
    count_cells(out, place, 1);
    if (space.type & ISEMPTY)
        write_empty(out, space, place);
    else if (space.rank == 0)
        write_scalar(out, space, place);
    else if (!has_data(space))
        out.put(place.level == 0 && place.style == Style::display ? " ." : " #NIL");
    else
        write_text(out, space, place);
}

void write_data(Writer& out, const Space& space, Place place) {
    const bool empty = (space.type & ISEMPTY) != 0;
    if (!empty && is_enclosed(space))
        write_enclosed(out, space, place);
    else if (empty || space.rank == 0 || !has_data(space) || is_text(space))
        write_lone(out, space, place);
    else
        write_list(out, space, place);
}

} // namespace

void write_value(Writer& out, const Space& space, Place place) {
    guard_depth(out);
    if (space.rank < 0) {
        count_cells(out, place, space.type & ISFUNCTION ? 2 : 1);
        write_cell(out, space, place);
    } else {
        write_data(out, space, place);
    }
    const bool instruction = space.rank == kind::OPERATOR || space.rank == kind::FUNCTION;
    if (place.style == Style::source && !instruction)
        write_condition(out, space);
}

} // namespace tessor
