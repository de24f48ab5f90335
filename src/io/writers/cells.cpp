// Instructions, names and functions as text.
#include "io/writers/writer.h"

#include "values/array.h"
#include "values/instructions.h"
#include "values/refderef.h"

#include <algorithm>
#include <cstring>

namespace tessor {

namespace {

constexpr auto behind_function = static_cast<std::uint16_t>(kind::FUNCTION);
constexpr std::uint16_t comment = op::CONTEXT;

// What an addressing class shows in front of a name.
struct ClassText {
    std::string_view prefix;  ///< as it is typed
    std::string_view heading; ///< in the inspection form
};

ClassText class_text(const Space& cell) {
    const bool everywhere = (cell.type & ISOPERATOR) != 0;
    switch (cell.suboperation) {
    case op::SGIG: return {"", everywhere ? " . GLOBAL" : " ."};
    case op::SAIG: return {"_", everywhere ? " . SAIG . GLOBAL" : " . SAIG ."};
    case op::SAIL: return {"$", " . SAIL"};
    case op::SLIL: return {".", " . LOCAL"};
    default: return {"", ""};
    }
}

std::string_view name_of(const Space& cell) {
    return cell.name ? std::string_view(cell.name) : std::string_view();
}

bool begins_word(char byte) {
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte == '_';
}

// A plain name that the scanner would not read as one piece, or not as a name: it came from a
// quoted name and goes back as one. Behind @ an exclamation mark is part of a name.
bool needs_quotes(std::string_view name, bool address) {
    constexpr std::string_view ends = " \t\r\n.;\"()|\x02";
    constexpr std::string_view others = "'`@:+-*/^v0123456789";
    constexpr std::string_view digits = "-\xaf"
                                        "0123456789";
    if (name.size() > 1 && name[0] == '&' && digits.find(name[1]) != digits.npos)
        return true;
    if (others.find(name[0]) != name.npos || name.find_first_of(ends) != name.npos)
        return true;
    return !address && name.find('!', 1) != name.npos;
}

// True if the scanner takes the bare name for one of a class, or only a part of it for the name.
bool misread_bare(std::string_view name) {
    constexpr std::string_view ends = " \t\r\n.;\"()|";
    return (name.size() > 1 && begins_word(name[1])) || name.find_first_of(ends, 1) != name.npos;
}

// Behind a prefix only a word can go without quotes.
bool is_word(std::string_view name) {
    constexpr auto goes_on = [](char byte) {
        return begins_word(byte) || (byte >= '0' && byte <= '9');
    };
    return !name.empty() && begins_word(name[0]) && std::all_of(name.begin(), name.end(), goes_on);
}

// No quotes can stand around a name that holds the byte that closes them.
void write_quoted(Writer& out, std::string_view prefix, std::string_view name, bool quotes) {
    quotes = quotes && name.find('\x03') == name.npos;
    if (quotes)
        out.put('\x02');
    out.put(prefix);
    out.put(name);
    if (quotes)
        out.put('\x03');
}

// A label, the % included.
void write_label_name(Writer& out, std::string_view name) {
    write_quoted(out, "", name, !name.empty() && !is_word(name.substr(1)));
}

void write_name(Writer& out, const Space& cell, std::string_view prefix, Style style) {
    const std::string_view name = name_of(cell);
    const bool address = cell.rank == kind::ADDRESS;
    const Vocabulary* words = address ? nullptr : out.vocabulary();
    const bool source = style == Style::source && !name.empty();
    if (!prefix.empty()) {
        write_quoted(out, prefix, name, source && !is_word(name));
        return;
    }
    const bool may_misread = cell.suboperation == op::SGIG || out.vocabulary();
    write_quoted(out, "", name,
                 source && (!has_prefix(name) || name.size() == 1) && may_misread
                     && (needs_quotes(name, address) || (words && words->hides_name(cell))));
}

void write_variable(Writer& out, const Space& cell, Place place) {
    const ClassText text = class_text(cell);
    if (place.style == Style::display) {
        out.put(text.heading);
        out.put(" VARIABLE:\t");
    } else {
        out.put('\n');
        write_indent(out, place.level);
    }
    if (!text.prefix.empty())
        out.put(' ');
    write_name(out, cell, text.prefix, place.style);
}

void write_address(Writer& out, const Space& cell, Place place) {
    const ClassText text = class_text(cell);
    if (place.style == Style::display) {
        out.put(text.heading);
        out.put(" ADDRESS:\t");
    } else {
        if (out.vocabulary() && text.prefix.empty() && is_key(name_of(cell))) {
            write_key(out, name_of(cell));
            return;
        }
        out.put(" @");
    }
    write_name(out, cell, text.prefix, place.style);
}

void write_label(Writer& out, const Space& cell, Place place) {
    if (place.style == Style::display) {
        out.put(" . LABEL:\t\t");
    } else {
        out.put('\n');
        write_indent(out, place.level);
        out.put(" @");
        write_label_name(out, name_of(cell));
        return;
    }
    out.put(name_of(cell));
}

void write_local(Writer& out, const Space& cell, std::string_view text) {
    out.put(text);
    write_integer(out, element_at(cell, 0).integer + 1);
}

bool is_derived(int operation) {
    return operation == op::OUTERPRODUCT
           || (operation >= op::SCAN && operation <= op::REDUCENWISELASTAXIS);
}

bool is_conditional(const Space& cell) {
    return (cell.operation == op::IF_YES || cell.operation == op::IF_NO)
           && cell.suboperation != behind_function;
}

std::string_view modified_name(const Space& cell) {
    return instruction_name(static_cast<std::int16_t>(cell.suboperation));
}

std::string_view spelling_of(const Space& cell) {
    return cell.name ? name_of(cell) : instruction_name(cell.operation);
}

void inspect_operator(Writer& out, const Space& cell) {
    constexpr std::string_view heading = " . OPERATOR:\t\t";
    if (cell.operation == op::NOOP && cell.suboperation == comment && cell.name) {
        out.put(" . COMMENT:\t\t");
        out.put(name_of(cell));
        return;
    }
    if (is_conditional(cell) && cell.elements != 0) {
        out.put(heading);
        out.put(instruction_name(static_cast<int>(cell.elements)));
        out.put(' ');
        out.put(modified_name(cell));
    } else if (is_conditional(cell) || is_derived(cell.operation)) {
        out.put(heading);
        out.put(modified_name(cell));
    }
    out.put(heading);
    out.put(spelling_of(cell));
    if (cell.operation == op::PRINT)
        out.put('\n');
}

// A word that stands for the instruction although it has been given another meaning.
bool hides_meaning(const Writer& out, const Space& cell) {
    const bool behind = cell.suboperation == behind_function
                        && (cell.operation == op::IF_YES || cell.operation == op::IF_NO);
    if (!out.vocabulary() || behind || cell.operation == op::NOOP
        || cell.operation == op::FUNCTIONEND)
        return false;
    const std::string_view word = spelling_of(cell);
    return out.vocabulary()->hides(word) || out.vocabulary()->hides(word.substr(0, word.find(' ')));
}

// Jumps, checks, labels and comments end their line, so that a program falls into lines where its
// control flow turns.
void write_operator(Writer& out, const Space& cell, int level) {
    if (cell.operation == op::NOOP && cell.suboperation == comment && cell.name) {
        write_word(out, "\"");
        out.put(name_of(cell));
        out.put("\"\n");
        return;
    }
    if (is_conditional(cell) && !cell.name) {
        if (cell.elements != 0)
            write_spelling(out, instruction_name(static_cast<int>(cell.elements)), false);
        write_spelling(out, modified_name(cell), false);
        return;
    }
    if (cell.operation == op::NOOP && spelling_of(cell).starts_with('%')) {
        out.put(' ');
        write_label_name(out, spelling_of(cell));
    } else {
        write_spelling(out, spelling_of(cell), hides_meaning(out, cell));
    }
    if (cell.operation == op::JUMP || cell.operation == op::CHECK) {
        out.put('\n');
        write_indent(out, level);
    } else if (cell.operation == op::NOOP && cell.name) {
        out.put('\n');
    }
}

void write_header(Writer& out, const Space& function) {
    if (function.arguments < 0) {
        out.put(' ');
        out.put(function.name ? name_of(function) : ":");
        return;
    }
    if (function.locals != 0) {
        out.put(" VARS ");
        write_integer(out, function.locals);
    }
    switch (function.arguments) {
    case 0: out.put(" NILADIC"); return;
    case 1: out.put(" MONADIC"); return;
    case 2: out.put(" DYADIC"); return;
    case 3: out.put(" TRIADIC"); return;
    default: break;
    }
    out.put(" ARGS ");
    write_integer(out, function.arguments);
    out.put(" FUNCTION");
}

void write_function(Writer& out, const Space& function, int level) {
    out.put('\n');
    write_indent(out, level);
    write_header(out, function);
    if (function.arguments >= 0) {
        out.put('\n');
        write_indent(out, level + 1);
    }
    if (function.body) {
        for (const Space* cell = function.body + 1; cell->type != 0; ++cell)
            write_value(out, *cell, {level + 1, Style::source, false});
    }
    if (function.type & ISOPERATOR)
        write_word(out, "OPERATOR");
    out.put('\n');
    write_indent(out, level);
}

} // namespace

bool has_prefix(std::string_view name) {
    constexpr std::string_view prefixes = "_.$%";
    return !name.empty() && prefixes.find(name[0]) != prefixes.npos;
}

bool is_key(std::string_view name) {
    return has_prefix(name) ? misread_bare(name) : name.find('\x03') != name.npos;
}

void write_key(Writer& out, std::string_view name) {
    struct Key : Space {
        ~Key() { dereferencepoint(this); }
    } key;
    make_text(key, name.data(), name.size());
    write_value(out, key, {0, Style::source, true});
    write_word(out, "AT");
}

// Only a cell that stands for itself is labelled; inside a value it looks as it was typed.
void write_cell(Writer& out, const Space& cell, Place place) {
    if (place.level > 0 && place.style == Style::display)
        place.style = Style::source;
    const bool display = place.style == Style::display;
    switch (cell.rank) {
    case kind::LOCAL_VARIABLE:
        write_local(out, cell, display ? " . STACK VARIABLE:\t&" : " &");
        return;
    case kind::LOCAL_ADDRESS:
        write_local(out, cell, display ? " . STACK ADDRESS:\t&" : " @&");
        return;
    case kind::ADDRESS: write_address(out, cell, place); return;
    case kind::OPERATOR:
        if (display)
            inspect_operator(out, cell);
        else
            write_operator(out, cell, place.level);
        return;
    case kind::FUNCTION: write_function(out, cell, place.level); return;
    case kind::VARIABLE: write_variable(out, cell, place); return;
    case kind::LABEL: write_label(out, cell, place); return;
    case kind::UNUSED: out.put(" . Unused name!\n"); return;
    case kind::INVALID: out.put(" . Unused symbol!\n"); return;
    default: return;
    }
}

} // namespace tessor
