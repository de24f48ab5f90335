#include "session.h"

#include "engine/machine.h"
#include "engine/seeding.h"
#include "engine/signals.h"
#include "frontend/fill.h"
#include "frontend/symtab.h"
#include "instrument/recount.h"
#include "io/writers/exception.h"
#include "shell/console.h"
#include "shell/dispatch.h"
#include "values/live.h"
#include "values/native_stack.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/time.h>

namespace tessor::fuzz {

namespace {

constexpr op::Instruction leaving[] = {
    op::READ,      op::WRITE, op::APPEND,     op::TEXTREAD, op::TEXTWRITE, op::TEXTAPPEND,
    op::OPEN,      op::CLOSE, op::REWIND,     op::SAVE,     op::LOAD,      op::REMEMBER,
    op::DUMPSTACK, op::EDIT,  op::STREAMEDIT, op::SLEEP,
};

Bodies kept_bodies[instruction_count];
std::array<Space, 7> kept_quads;

volatile std::sig_atomic_t interrupts = 0;
constexpr int most_interrupts = 4;

void interrupt(int) {
    interrupts = interrupts + 1;
    note_signal(SIGINT);
}

// Faults are the sanitizers' to report.
void leave_faults_alone() {
    for (const int signal : {SIGQUIT, SIGFPE, SIGBUS, SIGSEGV, SIGALRM, SIGINT})
        std::signal(signal, SIG_DFL);
}

// Time of this process, so that a busy machine doesn't matter.
void set_budget(bool on) {
    const timeval piece{0, on ? 100'000 : 0};
    const itimerval timer{piece, piece};
    setitimer(ITIMER_VIRTUAL, &timer, nullptr);
}

} // namespace

void start_session() {
    if (!std::freopen("/dev/null", "w", stdout))
        std::abort();
    stderr = std::fopen("/dev/null", "w"); // sanitizers write to the descriptor
    measure_native_stack();
    fill_dispatch();
    start_symbols();
    install_signals();
    leave_faults_alone();
    std::signal(SIGVTALRM, interrupt);
    std::copy(std::begin(bodies), std::end(bodies), kept_bodies);
    for (const op::Instruction instruction : leaving)
        bodies[instruction] = {};
    std::copy_n(quads, kept_quads.size(), kept_quads.begin());
    for (const int i : {quad_io, quad_ct})
        referencepoint(&quads[i]);
    forget_everything();
}

void run_patiently(std::string_view text) {
    const std::string_view given = text.empty() ? "\n" : text;
    std::FILE* console_input = stdin;
    stdin = fmemopen(const_cast<char*>(given.data()), given.size(), "r");
    interrupts = 0;
    while (!endprocess && interrupts < most_interrupts)
        read_and_run();
    endprocess = false;
    std::fclose(stdin);
    stdin = console_input;
    check_counts();
}

void check_counts() {
    if constexpr (verifies)
        recount(std::array{kept_quads[quad_io], kept_quads[quad_ct]});
}

bool run_program(std::string_view text) {
    set_budget(true);
    run_patiently(text);
    set_budget(false);
    return interrupts == 0;
}

void finish_sentence() {
    reset_scanner();
    Trace = Step = stepping = PrintOut = endprocess = false;
    A_Problem = 0;
    attention = 0;
    forget_interrupts();
}

void forget_everything() {
    while (sp > stack)
        dereferencepoint(sp--);
    hashwipe(memory);
    for (const int i : {quad_io, quad_ct}) {
        Space old = quads[i];
        quads[i] = kept_quads[static_cast<std::size_t>(i)];
        referencepoint(&quads[i]);
        dereferencepoint(&old);
    }
    finish_sentence();
    seed_streams(1, Space{});
}

Allowed::Allowed(std::initializer_list<op::Instruction> instructions)
    : instructions_(instructions) {
    for (const op::Instruction instruction : instructions_)
        bodies[instruction] = kept_bodies[instruction];
}

Allowed::~Allowed() {
    for (const op::Instruction instruction : instructions_)
        bodies[instruction] = {};
}

void report_difference(std::string_view what, std::string_view one, std::string_view other) {
    std::FILE* report = fdopen(2, "w");
    std::fprintf(report, "%.*s\n--- first\n%.*s\n--- then\n%.*s\n", static_cast<int>(what.size()),
                 what.data(), static_cast<int>(one.size()), one.data(),
                 static_cast<int>(other.size()), other.data());
    std::fflush(report);
    std::abort();
}

} // namespace tessor::fuzz
