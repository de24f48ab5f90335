#include "engine/control.h"

#include "engine/signals.h"
#include "io/writers/dump.h"
#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "values/shared.h"

#include <cstdio>

namespace tessor {

namespace {

bool everywhere(const Activation& run) {
    return run.now->suboperation == op::REST;
}

void set_everywhere(bool trace_all, bool step_all) {
    Trace = trace_all;
    Step = step_all;
}

// Makes the machine look at the flags before every cell, until the sentence ends.
void start_tracing(Activation& run) {
    stepping = true;
    run.trace = true;
    attention.fetch_or(attend::trace);
}

void show_array(const Space& cell) {
    PrintOut = true;
    disass(stdout, ":\t . SPACE:\t\t", cell, 0, Mode::source);
    PrintOut = false;
}

void show_cell(const Space& cell) {
    if (cell.rank == 0)
        dump(stdout, ":\t . SCALAR:\t\t", cell);
    else if (cell.rank == kind::FUNCTION)
        dump(stdout, ":\t . FUNCTION:\t\t", cell);
    else if (cell.rank < 0)
        dump(stdout, ":\t", cell);
    else
        show_array(cell);
}

void trace_line(const Activation& run) {
    std::printf("\nTrace (%2d:%3ld)", run.depth, static_cast<long>(run.cell - run.first) + 1);
    if (!run.step)
        std::printf(" [%2ld]", run.values());
    show_cell(*run.now);
    const bool reads = run.now->rank == kind::OPERATOR
                       && (run.now->operation == op::INPUT || run.now->operation == op::QUOTEDIN);
    if (reads)
        std::fputs("\n-> ", stdout);
    std::fflush(stdout);
}

// Runs what is typed at the inspection prompt on this activation's frame, until a line ends it or
// the program is told to go on.
void inspection_loop(Activation& run) {
    CellBuffer buffer;
    while (!endprocess && stepping) {
        std::printf("\nInspect [%ld]: ", run.values());
        std::fflush(stdout);
        fill_prompted(buffer.cells(), run.table, LineEnd::inspects);
        if (!stepping) {
            clear_cells(buffer.cells());
            break;
        }
        stepping = false;
        run.top = machine(buffer.cells(), run.table, run.base, run.floor, run.top, run.quads, 0);
        run.cell_top = run.top;
        stepping = true;
        clear_cells(buffer.cells());
    }
    endprocess = false;
}

} // namespace

Next noop(Activation&) {
    operations += 1;
    return Next::advance;
}

Next trace(Activation& run) {
    if (everywhere(run))
        set_everywhere(true, Step);
    start_tracing(run);
    return Next::advance;
}

Next step(Activation& run) {
    if (everywhere(run))
        set_everywhere(true, true);
    run.step = true;
    start_tracing(run);
    return Next::advance;
}

Next run_on(Activation& run) {
    if (everywhere(run))
        set_everywhere(false, false);
    stepping = false;
    run.step = false;
    run.trace = false;
    return Next::advance;
}

Next end_process(Activation& run) {
    if (run.depth > 0)
        return Next::end;
    wait_for_coprocessors();
    exception(999, nullptr, nullptr);
    return Next::end;
}

void inspect(Activation& run) {
    if ((run.trace || Trace) && stepping)
        trace_line(run);
    if (run.step || Step)
        inspection_loop(run);
}

} // namespace tessor
