#include "engine/machine.h"

#include "engine/calls.h"
#include "engine/control.h"
#include "engine/names.h"
#include "engine/short_road.h"
#include "engine/signals.h"
#include "engine/timing.h"
#include "io/writers/dump.h"
#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "values/array.h"
#include "values/native_stack.h"
#include "values/refderef.h"
#include "values/shared.h"
#include "values/timing.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>
#include <utility>

namespace tessor {

Space stack[stack_cells];
Space* sp = stack;
constinit thread_local Space* stacktop = stack + 16583;
Bodies bodies[instruction_count];
Quick quick_verbs[instruction_count];
Activation* current = nullptr;

namespace {

constexpr auto classes = [] {
    std::array<std::uint8_t, instruction_count> result{};
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = instruction_table[i].instruction_class;
    return result;
}();

// Where the top stands after a jump has abandoned activations; null when it has abandoned none.
Space* abandoned_top = nullptr;

enum class Prepared { run, skip, failed };

bool is_operator(const Space& value) {
    return value.rank == kind::OPERATOR;
}

// The result of a scalar verb with an empty operand is the other one.
bool drop_empty_operand(Activation& run) {
    Space* top = run.top;
    if (top->type & ISEMPTY) {
        pop(run);
        return true;
    }
    if (top[-1].type & ISEMPTY) {
        dereferencepoint(top - 1);
        top[-1] = *top;
        --run.top;
        return true;
    }
    return false;
}

// Class preparation: the operands that the class demands are there.
Prepared prepare(Activation& run, int instruction_class) {
    if (instruction_class > 31)
        return Prepared::run;
    const int demanded = instruction_class >> 3;
    if (run.top < run.floor + (demanded - 1)) {
        failed(run, 800);
        return Prepared::failed;
    }
    op_flops = 0;
    switch (instruction_class) {
    case 10:
        if (is_operator(*run.top)) {
            failed(run, 200);
            return Prepared::failed;
        }
        break;
    case 18:
        if (is_operator(*run.top) || is_operator(run.top[-1])) {
            failed(run, 200);
            return Prepared::failed;
        }
        if ((run.top->type | run.top[-1].type) & ISEMPTY)
            return drop_empty_operand(run) ? Prepared::skip : Prepared::run;
        break;
    default: break;
    }
    return Prepared::run;
}

Next run_behaviour(Activation& run, int operation) {
    switch (instruction_table[static_cast<std::size_t>(operation)].behaviour) {
    case Behaviour::skip: return Next::advance;
    case Behaviour::r994: return failed(run, 994);
    default: return failed(run, 993);
    }
}

Next run_instruction(Activation& run, int operation) {
    const Bodies& instruction = bodies[operation];
    switch (prepare(run, classes[static_cast<std::size_t>(operation)])) {
    case Prepared::failed: return Next::failed;
    case Prepared::skip: return Next::advance;
    case Prepared::run: break;
    }
    if (instruction.verb) {
        instruction.verb(&run.top, run.now, run.quads, 0);
        return Next::advance;
    }
    if (instruction.body)
        return instruction.body(run);
    return run_behaviour(run, operation);
}

// IF_YES or IF_NO behind a function: the value on top is run, or goes.
Next run_or_drop(Activation& run, bool runs) {
    if (run.top < run.floor)
        return runs ? failed(run, 800) : Next::advance;
    if (!runs) {
        pop(run);
        return Next::advance;
    }
    if (run.top->rank == kind::FUNCTION)
        return call(run);
    const Body execute = bodies[op::EXECUTE].body;
    return execute ? execute(run) : failed(run, 993);
}

// IF_YES or IF_NO folded on an instruction or behind a function.
Next run_conditional(Activation& run) {
    const bool yes = run.now->operation == op::IF_YES;
    if (run.check < 0)
        return failed(run, yes ? 147 : 148);
    const bool holds = (run.check == 1) == yes;
    if (static_cast<std::int16_t>(run.now->suboperation) == kind::FUNCTION)
        return run_or_drop(run, holds);
    if (!holds)
        return Next::advance;
    run.opened = *run.now;
    run.opened.operation = static_cast<std::int16_t>(run.now->suboperation);
    run.opened.suboperation = static_cast<std::uint16_t>(run.now->elements);
    run.now = &run.opened;
    return Next::again;
}

Next run_operator(Activation& run) {
    const int operation = run.now->operation;
    flopos = 0;
    if (operation == op::IF_YES || operation == op::IF_NO)
        return run_conditional(run);
    return run_instruction(run, operation);
}

// A cell that stands under no condition: a plain copy.
Next push_literal(Activation& run, const Space& cell) {
    if (!room(run))
        return Next::failed;
    copy_words(run.top[1], cell);
    referencepoint(++run.top);
    return Next::advance;
}

Next push_conditional(Activation& run, const Space& cell) {
    if (!room(run))
        return Next::failed;
    push_copy(run, cell);
    return Next::advance;
}

Next push_function(Activation& run) {
    if (!room(run))
        return Next::failed;
    push_copy(run, *run.now);
    if (run.now->type & ISOPERATOR)
        return call(run);
    return Next::advance;
}

Next unusable(const char* text) {
    std::fflush(stdout);
    std::fputs(text, stderr);
    std::fflush(stderr);
    return Next::failed;
}

// A name that was bound when it was compiled and holds a plain value needs no more than a copy.
Next push_named(Activation& run) {
    const Space& cell = *run.now;
    const Space* value = cell.target;
    if (cell.suboperation != op::SGIG || !value || run.top > stacktop)
        return push_variable(run);
    if (value->rank < 0)
        return runs_by_name(*value) ? call_named(run, *value) : push_variable(run);
    push_copy(run, *value);
    return Next::advance;
}

Next run_other(Activation& run) {
    switch (run.now->rank) {
    case kind::LABEL: return push_label(run);
    case kind::VARIABLE: return push_named(run);
    case kind::FUNCTION: return push_function(run);
    case kind::ADDRESS: return push_address(run);
    case kind::LOCAL_ADDRESS: return push_local_address(run);
    case kind::LOCAL_VARIABLE: return push_local(run);
    case kind::UNUSED: return unusable(" Unused type:");
    case kind::INVALID: return unusable(" Unusable symbol:");
    default: return push_conditional(run, *run.now);
    }
}

// A cell of another kind than OPERATOR that stands under the flag of CHECK.
bool skipped(Activation& run, bool& failure) {
    const std::uint32_t type = run.now->type;
    const bool yes = (type & YES) != 0;
    if (run.check < 0) {
        failed(run, yes ? 147 : 148);
        failure = true;
        return true;
    }
    return run.check == (yes ? 0 : 1);
}

// Instructions that touch nothing but their operands, or leave the rest to the cells that they run.
constexpr auto local_instructions = [] {
    std::array<bool, instruction_count> result{};
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = classes[i] == 10 || classes[i] == 18;
    for (const op::Instruction i : {op::IF_YES, op::IF_NO, op::CHECK, op::IF, op::JUMP, op::LOOP,
                                    op::EXECUTE, op::RETURN, op::FUNCTIONEND, op::NOOP, op::TIME})
        result[i] = true;
    return result;
}();

// Whether a cell may run while workers make a value: it must not see, move, copy or release it.
// Values are pushed on top of it and names hold others, so only instructions can touch it.
bool runs_beside_job(const Activation& run, const Space& cell) {
    if (cell.rank != kind::OPERATOR)
        return true;
    const auto operation = static_cast<std::size_t>(cell.operation);
    const int demanded = std::max(classes[operation] >> 3 & 3, 1);
    const Space* lowest = run.top - (demanded - 1);
    return local_instructions[operation] && job_under_way->result < lowest;
}

Next run_cell(Activation& run, const Space& cell) {
    if (job_under_way && !runs_beside_job(run, cell)) [[unlikely]]
        wait_for_coprocessors();
    if (cell.rank == kind::OPERATOR)
        return run_operator(run);
    if (cell.type & CONDITIONAL) {
        bool failure = false;
        if (skipped(run, failure))
            return failure ? Next::failed : Next::advance;
        return cell.rank >= 0 ? push_conditional(run, cell) : run_other(run);
    }
    return cell.rank >= 0 ? push_literal(run, cell) : run_other(run);
}

// A line that is typed at an inspection prompt may report the sentence so far.
void settle_counts(Activation& run) {
    run.count->settle(0);
    for (Activation* caller = run.outer; caller; caller = caller->outer)
        if (caller->count)
            caller->count->settle(1);
}

// Everything that seldom stands before a cell. What a person takes isn't the cell's time.
void attend_to(Activation& run) {
    take_signals();
    if (run.trace || run.step || Trace || Step) {
        wait_for_coprocessors();
        if (run.step || Step)
            settle_counts(run);
        inspect(run);
        if (opstime)
            read_clock();
    }
}

// An instruction that leaves its cell makes no entry, nor does one that is opened up. The clock is
// read once more, so that the next cell isn't charged with the entry.
Next run_timed(Activation& run) {
    const Space& cell = *run.now;
    const int operation = cell.rank == kind::OPERATOR ? cell.operation : -1;
    begin_cell();
    const Next next = run_cell(run, cell);
    if (next == Next::again)
        return next;
    if (next == Next::advance && operation >= 0)
        enter_timing(operation);
    read_clock();
    return next;
}

Next run_attended(Activation& run) {
    attend_to(run);
    return opstime ? run_timed(run) : run_cell(run, *run.now);
}

// The cycle. True: the list ended normally.
[[gnu::always_inline]] inline bool cycle(Activation& run) {
    CellCount count(run);
    for (;;) {
        if (attention.load(std::memory_order_relaxed) == 0) [[likely]] {
            if (run.now == run.cell && short_road(run, count))
                return true;
        }
        Space* const cell = run.cell;
        if (is_end(*cell)) {
            count.end();
            return true;
        }
        run.cell_top = run.top;
        const bool calm = attention.load(std::memory_order_relaxed) == 0;
        switch (calm ? run_cell(run, *run.now) : run_attended(run)) {
        case Next::advance: run.cell = cell + 1; break;
        case Next::jumped: count.jump(cell, run.cell); break;
        case Next::again: count.again(); continue;
        case Next::end: return true;
        case Next::failed: return false;
        }
        run.now = run.cell;
    }
}

void show_top(const Activation& run) {
    if (run.top >= run.floor)
        dump(stdout, "\n\n", *run.top);
    else
        std::fputs("\n-\n", stdout);
}

void discard_bad_top(Activation& run) {
    std::fputs("\n-- - Discarding the bad TOS value...\n", stdout);
    const std::uint32_t ascii = run.top->type & HASASCII;
    dereferencepoint(run.top);
    A_Problem = 0;
    make_empty(*run.top, ascii);
}

// Ending a run early, after a report.
void leave_early(Activation& run) {
    if (PrintOut) {
        PrintOut = false;
        return;
    }
    if (endprocess || run.depth > 0)
        return;
    if (A_Problem == 1 && run.top >= run.floor)
        discard_bad_top(run);
}

// After a jump the stack is this activation's again: its top where it stood when the cell under way
// began, or higher by what a verb of its own had pushed. `live` is the top of the innermost
// activation. Values above are released; cells that had been popped are empty vectors.
void restore_stack(Activation& run, Space* live, bool own) {
    Space* top = own ? std::max(run.cell_top, live) : run.cell_top;
    while (live > top)
        dereferencepoint(live--);
    while (live < top)
        make_empty(*++live);
    run.top = top;
}

void leave_after_jump(Activation& run, Space* live, bool own) {
    settle_coprocessors();
    restore_stack(run, live, own);
    if (!endprocess && PrintOut) {
        PrintOut = false;
        return;
    }
    if (!endprocess)
        std::fputs("\nException processing:...", stdout);
    leave_early(run);
}

void leave_after_throw(Activation& run) {
    Space* live = std::exchange(abandoned_top, nullptr);
    leave_after_jump(run, live ? live : run.top, live == nullptr);
}

void leave_out_of_storage(Activation& run) {
    exception(27, nullptr, nullptr);
    leave_after_throw(run);
}

void run_to_end(Activation& run) {
    begin_sentence();
    const bool ended = cycle(run);
    run.cell_top = run.top;
    wait_for_coprocessors();
    if (signal_noted())
        take_signals();
    if (ended) {
        report_sentence();
        show_top(run);
    } else {
        leave_early(run);
    }
}

// A fresh run is a recovery point, for failures that are thrown and for faults of the process's
// own.
Space* run_fresh(Activation& run) {
    if (!run.outer && !Trace && !Step)
        attention.fetch_and(~std::uint32_t{attend::trace});
    FaultPoint point;
    if (sigsetjmp(point.context, 0) == 0) {
        point.arm();
        try {
            run_to_end(run);
        } catch (const ErrorJump&) {
            leave_after_throw(run);
        } catch (const OutOfStorage&) {
            leave_out_of_storage(run);
        } catch (const std::bad_alloc&) {
            leave_out_of_storage(run);
        }
    } else {
        frames_lost = true;
        const bool own = current == &run;
        current = &run;
        abandoned_top = nullptr;
        leave_after_jump(run, point.top, own);
    }
    run.left = true;
    return run.top;
}

// Program buffers that wait to be used again, linked through their first cells.
Space* free_buffers = nullptr;

} // namespace

void abandon(Activation& run) noexcept {
    if (abandoned_top)
        run.top = abandoned_top;
    close_locals(run);
    abandoned_top = run.top;
}

Space* run_nested(Activation& run) {
    const ActivationStart start = opstime ? begin_activation() : ActivationStart{};
    if (!cycle(run)) {
        run.stopped = true;
        leave_early(run);
    }
    if (opstime)
        end_activation(start);
    run.left = true;
    return run.top;
}

void restart(Activation& run, Space* base, Space* floor, Space* top) {
    run.now = run.cell = run.first;
    run.base = base;
    run.floor = floor;
    run.cell_top = run.top = top;
    if (run.table != run.entry) {
        drop(run.table);
        run.table = hold(run.entry);
    }
    run.check = -1;
    run.trace = run.step = run.left = run.stopped = false;
}

Space* machine(Space* first, MeaningTable* table, Space* base, Space* floor, Space* top,
               Space* quads_block, int depth) {
    Activation run(first, table, base, floor, top, quads_block, depth);
    return depth == 0 ? run_fresh(run) : run_nested(run);
}

bool no_room(Activation& run) {
    failed(run, 806);
    return false;
}

Next failed(Activation& run, int number) {
    wait_for_coprocessors();
    exception(number, &run.top, run.now);
    return Next::failed;
}

Held::~Held() {
    dereferencepoint(&value_);
}

void clear_cells(Space* cells) {
    cleanup(cells);
    cells->type = 0;
}

const Space* spare_buffers() {
    return free_buffers;
}

CellBuffer::CellBuffer() {
    if (free_buffers) {
        cells_ = free_buffers;
        free_buffers = cells_->target;
    } else {
        cells_ = static_cast<Space*>(allocate_items(cells_per_buffer + 1, sizeof(Space)));
    }
    cells_->type = 0;
}

CellBuffer::~CellBuffer() {
    cleanup(cells_);
    cells_->target = free_buffers;
    free_buffers = cells_;
}

} // namespace tessor
