#include "shell/dispatch.h"

#include "array/each.h"
#include "array/enlist.h"
#include "array/interval.h"
#include "array/mask.h"
#include "array/match.h"
#include "array/reduce.h"
#include "array/reshape.h"
#include "array/structure.h"
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
#include "engine/seeding.h"
#include "engine/stack.h"
#include "engine/streams.h"
#include "engine/terminal.h"
#include "engine/yield.h"
#include "io/ascii.h"
#include "io/assemble.h"
#include "io/capsulate.h"
#include "io/editing.h"
#include "io/file_values.h"
#include "io/files.h"
#include "io/output.h"
#include "io/saving.h"
#include "scalar/verbs.h"

namespace tessor {

namespace {

// A verb whose results may differ from run to run, whatever it draws: its operand tells so even if
// the verb fails.
template <Verb verb>
Next drawing(Activation& run) {
    run.top->type |= ISPROBABLE;
    verb(&run.top, run.now, run.quads, 0);
    return Next::advance;
}

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
    // verbs that draw
    {op::PROBABLY, drawing<probably>},
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
    // the generator
    {op::SEED, seed},
    {op::RANDOMISE, randomise},
    // functions as text
    {op::ASSEMBLE, assemble},
    {op::DISASSEMBLE, disassemble},
    // frames of values
    {op::RAVEL, ravel_body},
    {op::ENCLOSE, enclose_body},
    {op::DISCLOSE, disclose},
    {op::FIRST, first},
    {op::REST, rest},
    {op::MIRROR, reverse},
    {op::REVERSE, reverse},
    {op::TRANSPOSE, transpose},
    {op::CATENATE, catenate},
    {op::COMPRESS, compress},
    {op::COMPRESSLASTAXIS, compresslastaxis},
    {op::REPLICATE, replicate},
    {op::DEAL, deal},
    {op::INTERVAL, interval},
    {op::REDUCE, reduce},
    {op::REDUCELASTAXIS, reducelastaxis},
    {op::RESHAPE, reshape},
    {op::SHAPE, shape},
    {op::RANK, rank},
    {op::DEPTH, depth},
    // functions on arrays
    {op::MASK, mask},
    {op::EACH, each},
    {op::ENLIST, enlist},
    {op::MATCH, match_values},
    // output
    {op::OUTPUT, output},
    {op::PRINT, output},
    // files
    {op::READ, do_read},
    {op::TEXTREAD, textread},
    {op::WRITE, do_write},
    {op::APPEND, append},
    {op::TEXTWRITE, textwrite},
    {op::TEXTAPPEND, textappend},
    {op::OPEN, do_open},
    {op::CLOSE, do_close},
    {op::REWIND, do_rewind},
    // saved workspaces
    {op::SAVE, save},
    {op::LOAD, load},
    {op::DUMPSTACK, do_dumpstack},
    {op::REMEMBER, do_remember},
    // kinds of elements
    {op::ENASCII, enascii},
    {op::ENCAPSULATE, encapsulate},
    {op::DEASCII, deascii},
    {op::DECAPSULATE, decapsulate},
    {op::GROUP, group},
};

struct VerbRow {
    op::Instruction instruction;
    Verb verb;
    VerbInPlace in_place = nullptr;
};

constexpr VerbRow verb_rows[] = {
    {op::CONJUGATE, conjugate},
    {op::NEGATIVE, negative},
    {op::SIGNUM, signum},
    {op::DIRECTION, direction},
    {op::RECIPROCAL, reciprocal},
    {op::MAGNITUDE, magnitude},
    {op::BINARY, binary},
    {op::NUMBER, number},
    {op::POLAR, polar},
    {op::DEG, deg},
    {op::RAD, rad},
    {op::CARTESIAN, cartesian},
    {op::FLOOR, floor},
    {op::CEILING, ceiling},
    {op::TRUNCATE, truncate},
    {op::EXPONENTIAL, exponential},
    {op::NATURALLOG, naturallog},
    {op::PITIMES, pitimes},
    {op::FACTORIAL, factorial},
    {op::NOT, not_},
    {op::BOOLEAN, boolean},
    {op::LOGICAL, logical},
    {op::CONTRADICTION, contradiction},
    {op::ISBOOLEAN, isboolean},
    {op::ISLOGICAL, islogical},
    {op::ISBINARY, isbinary},
    {op::ISNUMBER, isnumber},
    {op::ISCARTESIAN, iscartesian},
    {op::ISPOLAR, ispolar},
    {op::ROLL, roll},
    {op::RANDOM, Random},
    {op::POW2, pow2},
    {op::POWE, powe},
    {op::POW10, pow10},
    {op::LD, ld},
    {op::LOG10, log10},
    {op::ADD, add, add_in_place},
    {op::SUBTRACT, subtract, subtract_in_place},
    {op::MULTIPLY, multiply, multiply_in_place},
    {op::DIVIDE, divide, divide_in_place},
    {op::RESIDUE, residue, residue_in_place},
    {op::MINIMUM, minimum, minimum_in_place},
    {op::MAXIMUM, maximum, maximum_in_place},
    {op::POWER, power, power_in_place},
    {op::LOGARITHM, logarithm, logarithm_in_place},
    {op::CIRCULAR, circular, circular_in_place},
    {op::BINOMIAL, binomial, binomial_in_place},
    {op::AND, and_, and_in_place},
    {op::OR, or_, or_in_place},
    {op::NAND, nand, nand_in_place},
    {op::NOR, nor, nor_in_place},
    {op::STRONGAND, strongand, strongand_in_place},
    {op::STRONGOR, strongor, strongor_in_place},
    {op::STRONGNAND, strongnand, strongnand_in_place},
    {op::STRONGNOR, strongnor, strongnor_in_place},
    {op::IDENTICAL, identical, identical_in_place},
    {op::NOTIDENTICAL, notidentical, notidentical_in_place},
    {op::LESS, less, less_in_place},
    {op::NOTGREATER, notgreater, notgreater_in_place},
    {op::EQUIVALENT, equivalent, equivalent_in_place},
    {op::NOTLESS, notless, notless_in_place},
    {op::GREATER, greater, greater_in_place},
    {op::NOTEQUIVALENT, notequivalent, notequivalent_in_place},
};

} // namespace

void fill_dispatch() {
    start_files();
    for (const BodyRow& row : body_rows)
        bodies[row.instruction].body = row.body;
    for (const VerbRow& row : verb_rows) {
        const bool dyadic = instruction_table[row.instruction].instruction_class == 18;
        bodies[row.instruction].verb = row.verb;
        quick_verbs[row.instruction] = {row.in_place, dyadic ? 1 : 0};
    }
}

} // namespace tessor
