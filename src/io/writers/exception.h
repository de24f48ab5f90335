// Numbered reports, and the two ways in which a run ends early.
//
// exception() reports and returns: an instruction of the machine then ends its own activation. A
// verb calls fail(), which reports and throws ErrorJump; the innermost recovery point (a depth-0
// activation, or fill) catches it. Standard output is flushed before anything goes to the error
// stream.
#pragma once

#include "values/space.h"

#include <array>
#include <cstddef>

namespace tessor {

/// Thrown to the innermost recovery point.
struct ErrorJump {
    int value; ///< -1, or -1000 - signal
};

/// Reports a number: the text, and the cell at fault if one is given. `top` is the address of the
/// top pointer, or null: after an interrupt its value is shown too. Number 999 sets endprocess and
/// throws ErrorJump; number 0 prints the greeting; all others return.
void exception(int number, Space* const* top, const Space* cell);

/// Numbers that a worker thread has to report: the main thread prints them when it waits for it.
struct HeldReports {
    std::array<int, 4> numbers{};
    int count = 0;
    void add(int number) {
        if (count < static_cast<int>(numbers.size()))
            numbers[static_cast<std::size_t>(count++)] = number;
    }
};
/// Where exception() puts the numbers of this thread; null: it prints them.
extern constinit thread_local HeldReports* held_reports;

/// exception() without top and cell, then ErrorJump. Number 27 above all.
[[noreturn]] void exceptionjump(int number);

/// exception(), then ErrorJump.
[[noreturn]] void fail(int number, Space* const* top, const Space* cell);

/// Reports a signal (interrupt, quit, floating-point, bus, segmentation, any other) and throws
/// ErrorJump with -1000 - signal. The third memory fault ends the process.
[[noreturn]] void signalexception(int signal);

/// The report of signalexception alone, for a handler that leaves by a non-local jump.
void report_signal(int signal);

/// Ends a worker's slice of a job that is given up.
struct GivenUp {};

/// Takes a noted signal at a safe point: calls signalexception if there is one. Workers leave
/// signals to the main thread, and throw GivenUp once it has given their job up.
void take_signals();

/// Notes a signal for the next safe point. Async-signal-safe.
void note_signal(int signal);

/// Drops interrupts that were noted. The handler must note none meanwhile.
void forget_interrupts();

} // namespace tessor
