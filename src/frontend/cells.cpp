#include "frontend/cells.h"

#include "io/writers/exception.h"
#include "values/refderef.h"
#include "values/text.h"

#include <cstring>

namespace tessor {

namespace {

// Makes a body larger, header and all. The level of the batch itself has all its room from the
// start.
void grow_body(Level& at) {
    const std::uint32_t room = std::min(at.room * 2, static_cast<std::uint32_t>(cells_per_buffer));
    auto* body = static_cast<Space*>(
        Reallocate(at.cells - 1, (1 + std::size_t{room} + closing_cells) * sizeof(Space)));
    body->body = body;
    at.function.body = body;
    at.cells = body + 1;
    at.room = room;
}

} // namespace

bool emit(Scanner& s, Space cell) {
    return emit(s, std::span(&cell, 1));
}

bool emit(Scanner& s, std::span<Space> cells) {
    Level& at = level(s);
    const std::size_t left = cells_per_buffer - at.count;
    if (cells.size() > left) {
        exception(807, nullptr, &cells[left]);
        for (Space& cell : cells)
            dereferencepoint(&cell);
        return false;
    }
    try {
        if (at.count + cells.size() > at.room)
            grow_body(at);
    } catch (...) {
        for (Space& cell : cells)
            dereferencepoint(&cell);
        throw;
    }
    for (const Space& cell : cells)
        at.cells[at.count++] = cell;
    return true;
}

Space* cell_before(Scanner& s) {
    Level& at = level(s);
    return at.count == 0 ? nullptr : at.cells + at.count - 1;
}

Space operator_cell(char* spelling, int operation, int suboperation) {
    Space cell{};
    cell.rank = kind::OPERATOR;
    cell.type = ISOPERATOR;
    cell.name = spelling;
    cell.operation = static_cast<std::int16_t>(operation);
    cell.suboperation = static_cast<std::uint16_t>(suboperation);
    return cell;
}

Space name_cell(std::int32_t rank, std::uint32_t type, int suboperation, MeaningTable* table,
                char* name, Space* target) {
    Space cell{};
    cell.rank = rank;
    cell.type = type;
    cell.depth = 1;
    cell.suboperation = static_cast<std::uint16_t>(suboperation);
    cell.elements = static_cast<std::uint32_t>(std::strlen(name));
    cell.table = table;
    cell.name = name;
    cell.target = target;
    referencepoint(&cell);
    return cell;
}

Space oper(Scanner& s, char* spelling, int operation, int suboperation, bool& built_in) {
    MeaningTable* table = level(s).table;
    const Bucket* meant = s.tessor_op ? nullptr : checkmeaning(table, spelling);
    built_in = !meant;
    if (built_in) {
        s.tessor_op = false;
        return operator_cell(spelling, operation, suboperation);
    }
    release_block(spelling);
    return name_cell(kind::VARIABLE, ISVARIABLE | ISOPERATOR, 0, table, meant->name, meant->value);
}

char* spelling_as_typed(Scanner& s, const WordMatch& match) {
    if (!match.word->has_gap)
        return text_of(*match.word);
    return stringdup(bytes(s.input, 0, match.text_length));
}

void push_target(Scanner& s, bool global, const Space& cell) {
    if (s.varsp == s.varstack.size()) {
        exception(808, nullptr, &cell);
        return;
    }
    s.varstack[s.varsp++] = global ? 1 : 0;
}

void pop_target(Scanner& s) {
    if (s.varsp > 0 && s.varstack[--s.varsp] != 0)
        mark_function(s, GLOBALCHANGE);
}

void mark_function(Scanner& s, std::uint32_t bits) {
    if (in_definition(s))
        level(s).function.type |= bits;
}

void complain(const char* text) {
    std::fflush(stdout);
    std::fputs(text, stderr);
    std::fflush(stderr);
}

} // namespace tessor
