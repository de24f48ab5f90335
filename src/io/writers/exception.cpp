#include "io/writers/exception.h"

#include "io/writers/dump.h"
#include "values/messages.h"
#include "values/shared.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace tessor {

namespace {

constexpr int out_of_storage = 27;
constexpr int good_bye = 999;
constexpr short most_violations = 2;

// Signals noted and not yet taken, a bit each; the attention word tells that there are some.
std::atomic<std::uint64_t> noted{0};
static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

bool is_interrupt(int signal) {
    return signal == SIGINT || signal == SIGQUIT;
}

constexpr std::uint64_t bit_of(int signal) {
    return std::uint64_t{1} << (signal & 63);
}

void complain(const char* text) {
    std::fflush(stdout);
    std::fputs(text, stderr);
    std::fflush(stderr);
}

void report_interrupt() {
    std::fputs(PrintOut ? "\n\n** User interrupt. **\n" : "\n** User interrupt. **\n", stdout);
    std::fflush(stdout);
    A_Problem = 1;
}

void report_violation(int signal) {
    complain("\nSEGMENTATION VIOLATION\n");
    if (++violations <= most_violations)
        return;
    complain("\n--- SERIOUS INTERNAL ERROR ---\n--- PROCESSING STOPPED --- \n");
    _exit(-1000 - signal);
}

} // namespace

constinit thread_local HeldReports* held_reports = nullptr;

void exception(int number, Space* const* top, const Space* cell) {
    if (held_reports) {
        held_reports->add(number);
        return;
    }
    if (number == good_bye) {
        endprocess = true;
        throw ErrorJump{-1};
    }
    std::fflush(stdout);
    if (number <= 0) {
        std::fprintf(stderr, "\n%s", errors(-number));
        return;
    }
    stepping = true;
    std::fprintf(stderr, "\n%s\n", errors(number));
    if (number == out_of_storage) {
        A_Problem = 1;
        return;
    }
    std::fputc('\n', stderr);
    if (cell)
        dump(stderr, "Instruction:\n", *cell);
    if (top && A_Problem != 0)
        dump(stderr, "Top of stack:\n", **top);
}

void exceptionjump(int number) {
    fail(number, nullptr, nullptr);
}

void fail(int number, Space* const* top, const Space* cell) {
    exception(number, top, cell);
    throw ErrorJump{-1};
}

void report_signal(int signal) {
    switch (signal) {
    case SIGINT:
    case SIGQUIT: report_interrupt(); return;
    case SIGFPE: complain("\nFloating point exception.\n"); return;
    case SIGBUS:
    case SIGSEGV: report_violation(signal); return;
    default: complain("\nUNKNOWN SIGNAL CAUGHT\n"); return;
    }
}

void signalexception(int signal) {
    report_signal(signal);
    throw ErrorJump{-1000 - signal};
}

// One is reported at a time, an interrupt first; the others wait for the next safe point.
void take_signals() {
    if (held_reports) {
        if (attention.load(std::memory_order_relaxed) & attend::give_up)
            throw GivenUp{};
        return;
    }
    if (!signal_noted())
        return;
    attention.fetch_and(~std::uint32_t{attend::interrupt | attend::fault});
    const std::uint64_t signals = noted.exchange(0);
    int first = 0;
    for (int signal = 63; signal > 0; --signal) {
        if (signals & bit_of(signal))
            first = is_interrupt(first) ? first : signal;
    }
    if (first == 0)
        return;
    for (int signal = 1; signal < 64; ++signal) {
        if (signal != first && (signals & bit_of(signal)))
            note_signal(signal);
    }
    signalexception(first);
}

void note_signal(int signal) {
    noted.fetch_or(bit_of(signal));
    attention.fetch_or(is_interrupt(signal) ? attend::interrupt : attend::fault);
}

void forget_interrupts() {
    noted.fetch_and(~(bit_of(SIGINT) | bit_of(SIGQUIT)));
    attention.fetch_and(~std::uint32_t{attend::interrupt});
}

} // namespace tessor
