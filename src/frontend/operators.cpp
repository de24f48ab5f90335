// Spellings to cells.
#include "frontend/cells.h"
#include "frontend/definitions.h"
#include "io/writers/exception.h"
#include "values/refderef.h"
#include "values/shared.h"
#include "values/text.h"

namespace tessor {

namespace {

// A spelling that the cell before grows by, with a blank between.
void grow_spelling(Space& cell, std::string_view text) {
    const std::string_view old = cell.name ? cell.name : "";
    BlockHandle joined(stringcat(old, " "));
    char* grown = stringcat(joined.as<char>(), text);
    release_block(cell.name);
    cell.name = grown;
}

// A constant that goes on the stack in front of the verb and that no printed program shows.
Space hidden_constant(const Meaning& meaning) {
    Space cell;
    if (meaning.act == Act::selector)
        make_integer(cell, static_cast<std::int32_t>(meaning.argument), form::constant,
                     mark::hidden);
    else
        make_real(cell, meaning.argument, form::constant, mark::hidden);
    return cell;
}

void compile_with_operand(Scanner& s, const Meaning& meaning, char* spelling) {
    bool built_in;
    Space cells[2] = {hidden_constant(meaning)};
    cells[1] = oper(s, spelling, meaning.operation, meaning.suboperation, built_in);
    emit(s, cells);
}

// The second of two instructions has no spelling of its own.
void compile_pair(Scanner& s, const Meaning& meaning, char* spelling, int second) {
    bool built_in;
    Space cells[2] = {oper(s, spelling, meaning.operation, meaning.suboperation, built_in),
                      operator_cell(empty_spelling(), second)};
    emit(s, std::span(cells, built_in ? 2 : 1));
}

void compile_plain(Scanner& s, const Meaning& meaning, char* spelling) {
    bool built_in;
    emit(s, oper(s, spelling, meaning.operation, meaning.suboperation, built_in));
    if (!built_in)
        return;
    mark_function(s, meaning.marks);
    if (meaning.act == Act::target)
        pop_target(s);
}

void compile_derived(Scanner& s, const Meaning& meaning, const Word& word) {
    Space* before = cell_before(s);
    if (!before || before->rank != kind::OPERATOR) {
        exception(static_cast<int>(meaning.argument), nullptr, before);
        if (before) {
            dereferencepoint(before);
            --level(s).count;
        }
        return;
    }
    grow_spelling(*before, word.view());
    before->suboperation = static_cast<std::uint16_t>(before->operation);
    before->operation = meaning.operation;
}

void compile_conditional(Scanner& s, const Meaning& meaning, const Word& word) {
    const bool yes = meaning.act == Act::if_yes;
    Space* before = cell_before(s);
    if (!before)
        return;
    if (before->rank == kind::FUNCTION) {
        Space cell =
            operator_cell(yes ? text_of(word) : nullptr, meaning.operation, kind::FUNCTION);
        cell.type = ISFUNCTION;
        emit(s, cell);
        return;
    }
    if (before->rank == kind::OPERATOR) {
        grow_spelling(*before, word.view());
        before->elements = before->suboperation;
        before->suboperation = static_cast<std::uint16_t>(before->operation);
        before->operation = meaning.operation;
    }
    before->type |= yes ? CONDITIONAL | YES : CONDITIONAL;
}

// True if the user has given the spelling a meaning, and it counts. Otherwise :: is used up.
bool overridden(Scanner& s, const Word& word) {
    if (!s.tessor_op && checkmeaning(level(s).table, word.text))
        return true;
    s.tessor_op = false;
    return false;
}

void open_modifier(Scanner& s, const Meaning& meaning, const Word& word) {
    if (overridden(s, word)) {
        compile_plain(s, meaning, text_of(word));
        return;
    }
    s.modifier = &word;
    s.mode = ScanMode::modifier;
}

void open_comment(Scanner& s, const Meaning& meaning, const Word& word) {
    if (overridden(s, word))
        compile_plain(s, meaning, text_of(word));
    else
        s.mode = ScanMode::comment;
}

void compile_run(Scanner& s, const Meaning& meaning, const Word& word) {
    if (overridden(s, word))
        return;
    if (stepping)
        stepping = false;
    else
        emit(s, operator_cell(text_of(word), meaning.operation));
}

void break_off(Scanner& s, const Word& word) {
    if (overridden(s, word))
        return;
    stepping = false;
    throw ErrorJump{-1};
}

void end_batch(Scanner& s) {
    if (peek(s.input, 0) == '\n')
        use(s.input, 1);
    close_all(s);
    s.over = true;
}

} // namespace

void compile_spelling(Scanner& s, const WordMatch& match) {
    const Word& word = *match.word;
    const Meaning& meaning = meaning_of(word);
    char* spelling = spelling_as_typed(s, match);
    use(s.input, match.text_length);
    switch (meaning.act) {
    case Act::plain:
    case Act::target: compile_plain(s, meaning, spelling); break;
    case Act::selector:
    case Act::exponent: compile_with_operand(s, meaning, spelling); break;
    case Act::root: compile_pair(s, meaning, spelling, op::POWER); break;
    case Act::yield_to: compile_pair(s, meaning, spelling, op::RETURN); break;
    case Act::derived: compile_derived(s, meaning, word); break;
    case Act::if_yes:
    case Act::if_no: compile_conditional(s, meaning, word); break;
    case Act::modifier: open_modifier(s, meaning, word); break;
    case Act::run_on: compile_run(s, meaning, word); break;
    case Act::break_off: break_off(s, word); break;
    case Act::built_in: s.tessor_op = true; break;
    case Act::end_batch: end_batch(s); break;
    case Act::open: open_definition(s, spelling, static_cast<int>(meaning.argument), 0); break;
    case Act::close: close_definition(s, spelling); break;
    case Act::address: s.mode = ScanMode::address; break;
    case Act::comment: open_comment(s, meaning, word); break;
    }
}

void scan_modifier(Scanner& s) {
    const int byte = peek(s.input, 0);
    if (is_blank(byte)) {
        use(s.input, 1);
        return;
    }
    if (byte == '\n') {
        echo(s);
        return;
    }
    const Word* modifier = s.modifier;
    s.mode = ScanMode::code;
    s.modifier = nullptr;
    std::size_t length = 0;
    constexpr std::string_view mask = "MASK";
    while (length < mask.size() && peek(s.input, length) == mask[length])
        ++length;
    if (!modifier || length < mask.size() || !is_boundary(peek(s.input, length))) {
        exception(982, nullptr, nullptr);
        use(s.input, 1);
        return;
    }
    use(s.input, length);
    const BlockHandle first(stringcat(modifier->view(), " "));
    emit(s, operator_cell(stringcat(first.as<char>(), mask), op::MASK,
                          meaning_of(*modifier).operation));
}

void scan_comment(Scanner& s) {
    std::size_t length = 0;
    for (int byte = peek(s.input, 0); byte != '"' && byte != 0xbc; byte = peek(s.input, ++length)) {
        if (byte == input_end) {
            std::fwrite(s.input.at, 1, length, stdout);
            use(s.input, length);
            return;
        }
    }
    char* text = stringdup(bytes(s.input, 0, length));
    use(s.input, length + 1);
    s.mode = ScanMode::code;
    emit(s, operator_cell(text, op::NOOP, op::CONTEXT));
}

bool line_end_ends(const Scanner& s) {
    return s.flag == LineEnd::ends || (s.flag == LineEnd::inspects && stepping);
}

} // namespace tessor
