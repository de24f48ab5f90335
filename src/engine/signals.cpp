#include "engine/signals.h"

#include "engine/machine.h"
#include "io/writers/exception.h"
#include "values/shared.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>

namespace tessor {

bool frames_lost = false;

namespace {

FaultPoint* fault_point = nullptr;

volatile std::sig_atomic_t reading = 0;
volatile std::sig_atomic_t waiting = 0;

// Breaks off a read that goes on behind the signal which it was to be broken off for, or that began
// just when the signal came.
timer_t waker;

bool is_interrupt(int signal) {
    return signal == SIGINT || signal == SIGQUIT;
}

// Raised by an instruction of this process, not sent to it.
bool is_own_fault(int signal, const siginfo_t* info) {
    return (signal == SIGSEGV || signal == SIGBUS || signal == SIGFPE) && info->si_code > 0;
}

void set_waker() {
    constexpr itimerspec soon{{0, 0}, {0, 2'000'000}};
    timer_settime(waker, 0, &soon, nullptr);
}

void wake(int) {
    const int error = errno;
    if (waiting && signal_noted())
        set_waker();
    errno = error;
}

void take_default(int signal) {
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    raise(signal);
}

void handle(int signal, siginfo_t* info, void*) {
    if (is_own_fault(signal, info)) {
        report_signal(signal);
        if (!fault_point)
            take_default(signal);
        fault_point->top = current ? current->top : nullptr;
        siglongjmp(fault_point->context, 1);
    }
    if (reading && is_interrupt(signal))
        return;
    if (reading && signal == SIGBUS)
        take_default(signal);
    const int error = errno;
    note_signal(signal);
    if (waiting)
        set_waker();
    errno = error;
}

void install(int signal) {
    struct sigaction action {};
    action.sa_sigaction = handle;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER | SA_RESTART;
    sigaction(signal, &action, nullptr);
}

void install_waker() {
    struct sigaction action {};
    action.sa_handler = wake;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_ONSTACK;
    sigaction(SIGALRM, &action, nullptr);
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGALRM;
    timer_create(CLOCK_MONOTONIC, &event, &waker);
}

// fill's own recovery from a fault: what it had made so far is lost to the process, not to the
// user.
int fill_guarded(Space* cells, MeaningTable* table, std::FILE* stream, const char** text,
                 LineEnd mode) {
    FaultPoint point;
    if (sigsetjmp(point.context, 0) == 0) {
        point.arm();
        return fill(cells, table, stream, text, mode);
    }
    cells->type = 0;
    return 0;
}

class Reading {
public:
    Reading() { reading = 1; }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;
    ~Reading() { reading = 0; }

private:
    Waiting waits_;
};

} // namespace

Waiting::Waiting() {
    waiting = 1;
    if (signal_noted())
        set_waker();
}

Waiting::~Waiting() {
    waiting = 0;
}

FaultPoint::FaultPoint() : outer(fault_point) {}

FaultPoint::~FaultPoint() {
    fault_point = outer;
}

void FaultPoint::arm() {
    fault_point = this;
}

void install_signals() {
    static std::array<char, 65536> signal_stack;
    stack_t alternate{};
    alternate.ss_sp = signal_stack.data();
    alternate.ss_size = signal_stack.size();
    sigaltstack(&alternate, nullptr);
    for (const int signal : {SIGINT, SIGQUIT, SIGFPE, SIGBUS, SIGSEGV})
        install(signal);
    install_waker();
}

int fill_prompted(Space* cells, MeaningTable* table, LineEnd mode) {
    const Reading now;
    forget_interrupts();
    return fill_guarded(cells, table, stdin, nullptr, mode);
}

int fill_reading(Space* cells, MeaningTable* table, std::FILE* stream, const char** text,
                 LineEnd mode) {
    const Reading now;
    return fill_guarded(cells, table, stream, text, mode);
}

} // namespace tessor
