#include "shell/dispatch.h"

#include "array/reshape.h"
#include "engine/branches.h"
#include "engine/calls.h"
#include "engine/collect.h"
#include "engine/contexts.h"
#include "engine/control.h"
#include "engine/execute.h"
#include "engine/keys.h"
#include "engine/loops.h"
#include "engine/machine.h"
#include "engine/memo.h"
#include "engine/names.h"
#include "engine/stack.h"
#include "engine/streams.h"
#include "engine/terminal.h"
#include "engine/yield.h"
#include "io/assemble.h"
#include "io/editing.h"
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
    {op::COLLECT, collect},
    {op::DIP, dip},
    {op::DEEP, dip},
    // functions and names
    {op::RETURN, do_return},
    {op::FUNCTIONEND, do_return},
    {op::OPERATOR, make_operator},
    {op::ASSIGN, assign},
    {op::SET, set},
    {op::FORGET, forget},
    {op::GET, get},
    {op::DO, do_},
    {op::AT, at},
    {op::CONTEXT, change_context},
    {op::WIPE, wipe},
    {op::VARIABLES, list_variables},
    {op::FUNCTIONS, list_functions},
    // control
    {op::EXECUTE, execute},
    {op::CHECK, check},
    {op::IF, if_},
    {op::JUMP, jump},
    {op::LOOP, loop},
    {op::RESULT, result},
    {op::REEVALUATE, reevaluate},
    {op::YIELD, yield},
    {op::YIELDTO, yield_to},
    // the run itself
    {op::NOOP, noop},
    {op::TRACE, trace},
    {op::STEP, step},
    {op::RUN, run_on},
    {op::ENDPROCESS, end_process},
    // terminal, clock, editor, threads
    {op::INPUT, input},
    {op::QUOTEDIN, quotedin},
    {op::TIME, time},
    {op::SLEEP, sleep},
    {op::WAIT, wait},
    {op::PARALLEL, parallel},
    {op::SERIAL, serial},
    {op::EDIT, edit},
    {op::STREAMEDIT, streamedit},
    // functions as text
    {op::ASSEMBLE, assemble},
    {op::DISASSEMBLE, disassemble},
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
    for (const VerbRow& row : verb_rows) {
        bodies[row.instruction].verb = row.verb;
        bodies[row.instruction].dyadic = instruction_table[row.instruction].instruction_class == 18;
    }
}

} // namespace tessor
