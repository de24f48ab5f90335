#include "frontend/fill.h"

#include "frontend/cells.h"
#include "frontend/definitions.h"
#include "frontend/literals.h"
#include "frontend/names.h"
#include "io/writers/exception.h"
#include "values/refderef.h"

#include <new>

namespace tessor {

namespace {

constexpr int quote_opens = 2;

Scanner scanner;

// What a token of code can be. Of two that take as many bytes, the one that stands first here.
enum class Token { number, bits, quoted_bits, constant, spelling, header, prefixed, local, name };

// The candidates for the next token; the longest wins.
struct Candidates {
    Token winner = Token::name;
    std::size_t longest = 0;
    BitsMatch bits;
    WordMatch spelling;
    HeaderMatch header;
    PrefixedMatch prefixed;

    void offer(Token token, std::size_t length) {
        if (length > longest) {
            winner = token;
            longest = length;
        }
    }
};

void find_bits(Scanner& s, int first, Candidates& found) {
    const bool quoted = first == '`';
    found.bits = quoted ? match_quoted_bits(s.input, 1) : match_bits(s.input, 0);
    found.offer(quoted ? Token::quoted_bits : Token::bits, found.bits.length);
}

void find_words(Scanner& s, int first, Candidates& found) {
    found.spelling = find_spelling(s.input, reads_across_lines(s));
    found.offer(Token::spelling, found.spelling.length);
    if (first == 'A' || first == 'V') {
        found.header = match_header(s);
        found.offer(Token::header, found.header.length);
    }
    found.prefixed = match_prefixed(s.input);
    found.offer(Token::prefixed, found.prefixed.length);
    if (first == '&')
        found.offer(Token::local, match_local(s.input));
}

void compile_word(Scanner& s, const Candidates& found) {
    switch (found.winner) {
    case Token::bits: compile_bits(s, found.bits); break;
    case Token::quoted_bits: compile_quoted_bits(s, found.bits); break;
    case Token::spelling: compile_spelling(s, found.spelling); break;
    case Token::header: compile_header(s, found.header); break;
    case Token::prefixed: compile_prefixed(s, found.prefixed); break;
    case Token::local: compile_local(s); break;
    default: begin_name(s); break;
    }
}

// A token whose first byte may begin a number or a constant as well as a word.
void scan_literal_or_word(Scanner& s, int first) {
    Candidates found;
    const ElementMatch number = match_numeric(s.input, Place::code);
    found.offer(Token::number, number.length);
    if (first == '0')
        find_bits(s, first, found);
    ConstantMatch constant;
    if (begins_constant(first)) {
        constant = find_constant(s.input, Place::code);
        found.offer(Token::constant, constant.length);
    }
    if (!is_digit(first))
        find_words(s, first, found);
    if (found.winner == Token::number)
        compile_number(s, number);
    else if (found.winner == Token::constant)
        compile_constant(s, constant);
    else
        compile_word(s, found);
}

void scan_word(Scanner& s, int first) {
    Candidates found;
    if (first == '`')
        find_bits(s, first, found);
    find_words(s, first, found);
    compile_word(s, found);
}

void scan_line_end(Scanner& s) {
    use(s.input, 1);
    if (!line_end_ends(s))
        return;
    close_all(s);
    if (s.flag == LineEnd::inspects)
        emit(s, operator_cell(line_end_spelling(), op::ENDPROCESS));
    s.over = true;
}

// The end of the input, in whatever mode it comes, is an instruction of its own.
void end_of_input(Scanner& s) {
    drop_literals(s);
    close_all(s);
    s.tessor_op = false;
    emit(s, operator_cell(empty_spelling(), op::ENDPROCESS));
    s.over = true;
}

void scan_mode(Scanner& s) {
    switch (s.mode) {
    case ScanMode::code: scan_code(s); break;
    case ScanMode::address: scan_address(s); break;
    case ScanMode::vector: scan_vector(s); break;
    case ScanMode::shape:
    case ScanMode::nested_shape: scan_shape(s); break;
    case ScanMode::text: scan_text(s); break;
    case ScanMode::comment: scan_comment(s); break;
    case ScanMode::modifier: scan_modifier(s); break;
    case ScanMode::name:
    case ScanMode::address_name: scan_name(s); break;
    }
}

void scan_batch(Scanner& s) {
    while (!s.over) {
        const bool name = s.mode == ScanMode::name || s.mode == ScanMode::address_name;
        if (!name && peek(s.input, 0) == input_end)
            end_of_input(s);
        else
            scan_mode(s);
    }
}

// A literal mode that an earlier batch left goes on with a literal of its own.
void resume_literal(Scanner& s) {
    drop_literals(s);
    if (s.mode == ScanMode::nested_shape)
        s.mode = ScanMode::shape;
    if (s.mode == ScanMode::vector || s.mode == ScanMode::text)
        s.literals.emplace_back();
}

void start_batch(Scanner& s, Space* cells, MeaningTable* table, LineEnd mode) {
    s.flag = mode;
    s.over = false;
    s.varsp = 0;
    s.varstack[0] = 0;
    Level top;
    top.cells = cells;
    top.room = cells_per_buffer;
    top.entry = top.table = table;
    s.returnstack.assign(1, top);
    resume_literal(s);
}

// Gives up all that the batch has made so far.
void abandon_batch(Scanner& s) noexcept {
    while (!s.returnstack.empty()) {
        Level& at = level(s);
        leave_table(at);
        at.cells[at.count] = Space{};
        if (in_definition(s)) {
            dereferencepoint(&at.function);
        } else {
            cleanup(at.cells);
            at.cells[0] = Space{};
        }
        s.returnstack.pop_back();
    }
    drop_literals(s);
}

int finish_batch(Scanner& s) {
    Level& at = level(s);
    at.cells[at.count] = Space{};
    leave_table(at);
    const auto n = static_cast<int>(at.count) + 1;
    s.returnstack.clear();
    drop_literals(s); // a line end may leave one open
    return n;
}

// All that may run out of storage, the start included.
int compile(Scanner& s, Space* cells, MeaningTable* table, std::FILE* stream, const char* text,
            LineEnd mode) {
    try {
        restart(s.input, stream, text);
        start_batch(s, cells, table, mode);
        scan_batch(s);
        return finish_batch(s);
    } catch (const ErrorJump&) {
        abandon_batch(s);
    } catch (const OutOfStorage&) {
        abandon_batch(s);
        exception(27, nullptr, nullptr);
    } catch (const std::bad_alloc&) {
        abandon_batch(s);
        exception(27, nullptr, nullptr);
    }
    return 0;
}

} // namespace

void scan_code(Scanner& s) {
    const int first = peek(s.input, 0);
    switch (first) {
    case ' ':
    case '\t':
    case '\r': use(s.input, 1); return;
    case '\n': scan_line_end(s); return;
    case '\'':
        use(s.input, 1);
        open_literal(s, ScanMode::text, false);
        return;
    case '(':
        use(s.input, 1);
        open_literal(s, ScanMode::vector, false);
        return;
    case quote_opens: compile_quoted(s); return;
    case '`':
        if (peek(s.input, 1) != '(')
            break;
        use(s.input, 2);
        open_literal(s, ScanMode::vector, true);
        return;
    default: break;
    }
    if (compile_plain_integer(s, first))
        return;
    if (begins_number(first) || begins_constant(first))
        scan_literal_or_word(s, first);
    else
        scan_word(s, first);
}

int fill(Space* cells, MeaningTable* table, std::FILE* stream, const char** text, LineEnd mode) {
    Scanner& s = scanner;
    const int n = compile(s, cells, table, stream, text ? *text : nullptr, mode);
    if (text)
        *text = reinterpret_cast<const char*>(s.input.at + s.input.ready);
    if (s.input.ended)
        release_look_ahead(s.input);
    return n;
}

void reset_scanner() {
    drop_literals(scanner);
    scanner = {};
}

} // namespace tessor
