#include "frontend/names.h"

#include "frontend/cells.h"
#include "frontend/constants.h"
#include "frontend/definitions.h"
#include "frontend/numbers.h"
#include "frontend/spellings.h"
#include "io/writers/exception.h"
#include "values/refderef.h"
#include "values/text.h"

#include <algorithm>
#include <limits>

namespace tessor {

namespace {

constexpr int quote_opens = 2;
constexpr int quote_closes = 3;

bool is_prefix(int byte) {
    return byte == '_' || byte == '$' || byte == '.' || byte == '%';
}

bool addressing(const Scanner& s) {
    return s.mode == ScanMode::address || s.mode == ScanMode::address_name;
}

// The name's bucket in a table, made if it isn't there; null for an empty name.
Bucket* bucket_of(HashTable* hash, const std::string& name) {
    if (Bucket* found = checkhash(hash, name.c_str()))
        return found;
    return enter(hash, stringdup(name));
}

void emit_name(Scanner& s, Space cell) {
    s.mode = ScanMode::code;
    emit(s, cell);
}

// A cell whose pending left-hand side is remembered while a definition is open.
void emit_target(Scanner& s, Space cell, bool global) {
    s.mode = ScanMode::code;
    if (emit(s, cell) && in_definition(s))
        push_target(s, global, *cell_before(s));
}

void compile_plain_name(Scanner& s, const std::string& name) {
    const bool address = addressing(s);
    s.mode = ScanMode::code; // first: a name without storage is used up, or input would never end
    MeaningTable* table = level(s).table;
    const Bucket* bucket = bucket_of(base_hash(table), name);
    if (!bucket)
        return;
    mark_function(s, GLOBAL);
    if (address)
        emit_target(s,
                    name_cell(kind::ADDRESS, ISADDRESS | ISOPERATOR, op::SGIG, table->base,
                              bucket->name, bucket->value),
                    true);
    else
        emit_name(s, name_cell(kind::VARIABLE, ISVARIABLE | ISOPERATOR, op::SGIG, table,
                               bucket->name, bucket->value));
}

// A name of a late class: the text isn't entered anywhere yet.
Space late_cell(Scanner& s, const std::string& name, int addressing_class, Space* target) {
    const BlockHandle text(stringdup(name));
    if (addressing(s))
        return name_cell(kind::ADDRESS, ISADDRESS, addressing_class, level(s).table,
                         text.as<char>(), target);
    return name_cell(kind::VARIABLE, ISVARIABLE, addressing_class, level(s).table, text.as<char>(),
                     target);
}

// _A: found on the chain when it runs, else global.
void compile_saig(Scanner& s, const std::string& name) {
    const Bucket* found = in_definition(s) ? checkmeaning(level(s).table, name.c_str()) : nullptr;
    if (!found)
        mark_function(s, GLOBAL);
    const bool address = addressing(s);
    Space* target = found && address ? found->value : nullptr;
    emit_target(s, late_cell(s, name, op::SAIG, target), !found && !address);
}

// $A: found on the chain when it runs, else the function's own.
void compile_sail(Scanner& s, const std::string& name) {
    if (!in_definition(s)) {
        emit_name(s, late_cell(s, name, op::SAIL, nullptr));
        return;
    }
    const Bucket* found = checkmeaning(level(s).table, name.c_str());
    if (found) {
        emit_target(s, late_cell(s, name, op::SAIL, found->value), false);
        return;
    }
    own_table(s);
    const bool address = addressing(s);
    const Space cell = late_cell(s, name, op::SAIL, nullptr);
    if (address) {
        emit_name(s, cell);
        return;
    }
    mark_function(s, GLOBAL);
    emit_target(s, cell, true);
}

// .A: the function's own.
void compile_slil(Scanner& s, const std::string& name) {
    MeaningTable* table = own_table(s);
    const Bucket* bucket = bucket_of(hash_of(table), name);
    if (addressing(s))
        emit_target(
            s, name_cell(kind::ADDRESS, ISADDRESS, op::SLIL, table, bucket->name, bucket->value),
            false);
    else
        emit_name(
            s, name_cell(kind::VARIABLE, ISVARIABLE, op::SLIL, table, bucket->name, bucket->value));
}

// A label's value is the number of the cell behind its own, counted from 1. A reference keeps the
// table, without which the value would be gone when the batch runs.
void compile_label(Scanner& s, const std::string& name) {
    MeaningTable* table = own_table(s);
    const Bucket* bucket = bucket_of(hash_of(table), name);
    if (addressing(s)) {
        emit_name(s, name_cell(kind::LABEL, ISADDRESS, 0, table, bucket->name, bucket->value));
        return;
    }
    const auto position = static_cast<std::int32_t>(level(s).count) + 2;
    count_up(bucket->name);
    Space cell = operator_cell(bucket->name, op::NOOP);
    cell.elements = static_cast<std::uint32_t>(name.size());
    if (!emit(s, cell))
        return;
    dereferencepoint(bucket->value);
    make_integer(*bucket->value, position);
}

void compile_class(Scanner& s, char prefix, std::string& name) {
    switch (prefix) {
    case '_': compile_saig(s, name); break;
    case '$': compile_sail(s, name); break;
    case '.': compile_slil(s, name); break;
    default: compile_label(s, name.insert(0, 1, '%')); break;
    }
}

Space local_cell(bool address, std::int32_t slot) {
    void* block = allocate_block(sizeof slot, encode({Storage::integer, form::number, 0}));
    *static_cast<std::int32_t*>(block) = slot;
    Space cell{};
    cell.rank = address ? kind::LOCAL_ADDRESS : kind::LOCAL_VARIABLE;
    cell.type = ISLOCAL | (address ? ISADDRESS : ISVARIABLE);
    cell.elements = 1;
    cell.data_pointer = block;
    return cell;
}

void check_local(std::int32_t number, int funcvars, const Space& cell) {
    if (funcvars < 1)
        exception(151, nullptr, &cell);
    else if (number < 1)
        exception(150, nullptr, &cell);
    else if (number > funcvars)
        exception(152, nullptr, &cell);
}

} // namespace

PrefixedMatch match_prefixed(Input& input) {
    const int prefix = peek(input, 0);
    if (!is_prefix(prefix) || !is_name_letter(peek(input, 1)))
        return {};
    std::size_t length = 2;
    while (is_word_byte(peek(input, length)))
        ++length;
    return {length, static_cast<char>(prefix)};
}

std::size_t match_local(Input& input) {
    const IntegerMatch number = match_integer(input, 1);
    return number.length ? number.length + 1 : 0;
}

void compile_prefixed(Scanner& s, const PrefixedMatch& match) {
    std::string name(bytes(s.input, 1, match.length - 1));
    use(s.input, match.length);
    compile_class(s, match.prefix, name);
}

void compile_local(Scanner& s) {
    const IntegerMatch number = match_integer(s.input, 1);
    use(s.input, number.length + 1);
    const bool address = addressing(s);
    constexpr std::int32_t lowest = -std::numeric_limits<std::int32_t>::max();
    const Space cell = local_cell(address, std::max(number.value, lowest) - 1);
    s.mode = ScanMode::code;
    if (!emit(s, cell))
        return;
    check_local(number.value, level(s).funcvars, *cell_before(s));
    if (address && in_definition(s))
        push_target(s, false, *cell_before(s));
}

void compile_quoted(Scanner& s) {
    use(s.input, 1);
    std::string name;
    for (int byte = next(s.input); byte != quote_closes && byte != input_end; byte = next(s.input))
        name.push_back(static_cast<char>(byte));
    if (name.size() > 1 && is_prefix(name[0])) {
        const char prefix = name[0];
        name.erase(0, 1);
        compile_class(s, prefix, name);
    } else {
        compile_plain_name(s, name);
    }
}

void begin_name(Scanner& s) {
    s.operat.assign(1, static_cast<char>(next(s.input)));
    s.mode = addressing(s) ? ScanMode::address_name : ScanMode::name;
}

void scan_name(Scanner& s) {
    for (;;) {
        const int byte = peek(s.input, 0);
        switch (byte) {
        case '!':
            if (addressing(s))
                break;
            [[fallthrough]];
        case input_end:
        case ' ':
        case '\t':
        case '\r':
        case '\n':
        case '.':
        case ';': compile_plain_name(s, s.operat); return;
        case '"':
        case '(':
        case ')':
        case '|': echo(s); continue;
        default: break;
        }
        s.operat.push_back(static_cast<char>(byte));
        use(s.input, 1);
    }
}

void scan_address(Scanner& s) {
    Input& input = s.input;
    const int byte = peek(input, 0);
    if (is_blank(byte)) {
        use(input, 1);
    } else if (byte == '\n') {
        echo(s);
    } else if (byte == quote_opens) {
        compile_quoted(s);
    } else if (byte == '&' && match_local(input)) {
        compile_local(s);
    } else if (const PrefixedMatch match = match_prefixed(input); match.length) {
        compile_prefixed(s, match);
    } else {
        begin_name(s);
    }
}

bool reads_as_word(const char* name) {
    const std::string text = std::string(name) + ' ';
    Input input;
    restart(input, nullptr, text.c_str());
    return find_spelling(input, false).length || find_constant(input, Place::code).length
           || match_numeric(input, Place::code).length;
}

} // namespace tessor
