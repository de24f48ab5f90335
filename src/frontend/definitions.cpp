#include "frontend/definitions.h"

#include "frontend/cells.h"
#include "frontend/numbers.h"
#include "io/writers/exception.h"
#include "values/refderef.h"
#include "values/text.h"

#include <algorithm>

namespace tessor {

namespace {

constexpr std::uint32_t first_room = 13; ///< cells of a fresh body: with its frame a block of 640

// Matches the parts of a header one behind the other.
struct Parts {
    Scanner& s;
    std::size_t at = 0;

    bool word(std::string_view text) {
        for (std::size_t i = 0; i < text.size(); ++i)
            if (peek(s.input, at + i) != text[i])
                return false;
        at += text.size();
        return true;
    }

    void blanks() {
        const bool lines = reads_across_lines(s);
        for (;; ++at) {
            const int byte = peek(s.input, at);
            if (!is_blank(byte) && !(byte == '\n' && lines))
                return;
        }
    }

    bool count(std::int32_t& value) {
        blanks();
        const IntegerMatch match = match_integer(s.input, at);
        at += match.length;
        value = match.value;
        blanks();
        return match.length > 0;
    }

    bool last_word(std::string_view text) { return word(text) && is_boundary(peek(s.input, at)); }
};

bool match_args(Parts& parts, HeaderMatch& header) {
    if (!parts.word("ARGS") || !parts.count(header.arguments))
        return false;
    if (parts.word("VARS") && !parts.count(header.locals))
        return false;
    return parts.last_word("FUNCTION");
}

bool match_vars(Parts& parts, HeaderMatch& header) {
    if (!parts.word("VARS") || !parts.count(header.locals))
        return false;
    if (peek(parts.s.input, parts.at) == 'A')
        return parts.word("ARGS") && parts.count(header.arguments) && parts.last_word("FUNCTION");
    const auto last = [&](std::int32_t arguments, std::string_view text) {
        header.arguments = arguments;
        return parts.last_word(text);
    };
    switch (peek(parts.s.input, parts.at)) {
    case 'M': return last(1, "MONADIC");
    case 'D': return last(2, "DYADIC");
    case 'T': return last(3, "TRIADIC");
    case 'N': break;
    default: return false;
    }
    if (peek(parts.s.input, parts.at + 1) == 'I')
        return last(0, "NILADIC");
    header.neadic_with_locals = true;
    header.locals = 0;
    return last(-1, "NEADIC");
}

Space function_cell(char* header, int arguments, int locals) {
    Space cell{};
    cell.rank = kind::FUNCTION;
    cell.type = ISFUNCTION;
    cell.name = header;
    cell.arguments = static_cast<std::int16_t>(std::clamp(arguments, -32768, 32767));
    cell.locals = static_cast<std::uint16_t>(std::min(locals, 65535));
    return cell;
}

// A body with its header cell, and an end mark at once: it can be released at any time.
Space* new_body(Space& cell) {
    auto* body = static_cast<Space*>(allocate_items(1 + first_room + closing_cells, sizeof(Space)));
    cell.body = body;
    body[0] = cell;
    body[1] = Space{};
    return body;
}

Space closing_cell(Level& at, char* end) {
    Space cell = operator_cell(end, op::FUNCTIONEND);
    cell.table = hold(at.table);
    return cell;
}

// Cuts the body to its n cells and the closing one, and makes header and FUNCTION cell agree on it.
void finish_body(Level& at) {
    const std::uint32_t n = at.count - 1;
    at.cells[n + 1] = Space{};
    Space& function = at.function;
    auto* body =
        static_cast<Space*>(Reallocate(at.cells - 1, (std::size_t{n} + 3) * sizeof(Space)));
    function.body = body;
    function.elements = n + 2;
    body[0] = function;
    body[0].elements = n + 1;
    body[0].yielded = nullptr;
}

} // namespace

HeaderMatch match_header(Scanner& s) {
    HeaderMatch header;
    Parts parts{s};
    const bool args = peek(s.input, 0) == 'A';
    if (!(args ? match_args(parts, header) : match_vars(parts, header)))
        return {};
    header.text_length = parts.at;
    header.length = parts.at + 1;
    return header;
}

void compile_header(Scanner& s, const HeaderMatch& match) {
    if (match.neadic_with_locals)
        complain("Warning, a NEADIC can not have local VARS!");
    std::string text(bytes(s.input, 0, match.text_length));
    fixsign(text);
    use(s.input, match.text_length);
    open_definition(s, stringdup(text), match.arguments, match.locals);
}

void open_definition(Scanner& s, char* header, int arguments, int locals) {
    BlockHandle text(header);
    Level opened;
    opened.function = function_cell(header, arguments, locals);
    opened.cells = new_body(opened.function) + 1;
    BlockHandle body(opened.function.body);
    if (!may_nest(s)) {
        exception(807, nullptr, &opened.function);
        return;
    }
    opened.room = first_room;
    opened.entry = opened.table = level(s).table;
    opened.funcvars = opened.function.locals;
    s.returnstack.push_back(opened);
    text.release();
    body.release();
}

void close_definition(Scanner& s, char* end) {
    BlockHandle text(end);
    if (!in_definition(s)) {
        complain("[Kerlo] error: No FUNCTION pending!\n");
        return;
    }
    Level& at = level(s);
    const Space closing = closing_cell(at, static_cast<char*>(text.release()));
    if (at.count == cells_per_buffer)
        exception(807, nullptr, &closing);
    at.cells[at.count++] = closing;
    finish_body(at);
    leave_table(at);
    const Space function = at.function;
    s.returnstack.pop_back();
    emit(s, function);
}

void close_all(Scanner& s) {
    while (in_definition(s)) {
        complain("\nFUNCTION definition pending, the FUNCTION is forcibly finished.\n");
        close_definition(s, semicolon());
    }
}

MeaningTable* own_table(Scanner& s) {
    Level& at = level(s);
    if (at.table == at.entry)
        at.table = push_new(at.entry, makesmallhashtab);
    return at.table;
}

void leave_table(Level& at) noexcept {
    if (at.table != at.entry)
        drop(popsymtabs(at.table));
    at.table = at.entry;
}

} // namespace tessor
