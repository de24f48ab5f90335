#include "shell/dispatch.h"

#include "array/reshape.h"
#include "engine/calls.h"
#include "engine/control.h"
#include "engine/machine.h"
#include "engine/names.h"
#include "engine/stack.h"
#include "io/output.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

struct BodyRow {
    op::Instruction instruction;
    Body body;
};

constexpr BodyRow body_rows[] = {
    // stack
    {op::CLEAR, clear},
    {op::DISCARD, discard},
    {op::RIGHT, right},
    {op::SWAP, swap},
    {op::DUPLICATE, duplicate},
    {op::MARK, push_mark},
    {op::COUNTSTACK, countstack},
    {op::COUNTTOMARK, counttomark},
    {op::CLEARTOMARK, cleartomark},
    // functions and names
    {op::RETURN, do_return},
    {op::FUNCTIONEND, do_return},
    {op::OPERATOR, make_operator},
    {op::ASSIGN, assign},
    {op::SET, set},
    // the run itself
    {op::NOOP, noop},
    {op::TRACE, trace},
    {op::STEP, step},
    {op::RUN, run_on},
    {op::ENDPROCESS, end_process},
    // frames of values
    {op::RESHAPE, reshape},
    {op::SHAPE, shape},
    {op::RANK, rank},
    {op::DEPTH, depth},
    // output
    {op::OUTPUT, output},
    {op::PRINT, output},
};

struct VerbRow {
    op::Instruction instruction;
    Verb verb;
};

constexpr VerbRow verb_rows[] = {
    {op::CONJUGATE, conjugate},
    {op::NEGATIVE, negative},
    {op::ADD, add},
    {op::SUBTRACT, subtract},
    {op::MULTIPLY, multiply},
    {op::DIVIDE, divide},
    {op::RESIDUE, residue},
    {op::MINIMUM, minimum},
    {op::MAXIMUM, maximum},
    {op::IDENTICAL, identical},
    {op::NOTIDENTICAL, notidentical},
    {op::LESS, less},
    {op::NOTGREATER, notgreater},
    {op::EQUIVALENT, equivalent},
    {op::NOTLESS, notless},
    {op::GREATER, greater},
    {op::NOTEQUIVALENT, notequivalent},
};

} // namespace

void fill_dispatch() {
    for (const BodyRow& row : body_rows)
        bodies[row.instruction].body = row.body;
    for (const VerbRow& row : verb_rows)
        bodies[row.instruction].verb = row.verb;
}

} // namespace tessor
