// Flags and counters that the whole system shares. All belong to the main thread, but for the
// attention word, which signal handlers set, and for what each thread has of its own.
#pragma once

#include <atomic>
#include <cstdint>

namespace tessor {

struct Space;
/// A push is refused when the top is above it. The main thread's is the engine's.
extern constinit thread_local Space* stacktop;

extern bool Trace;       ///< trace lines in every activation
extern bool Step;        ///< inspection prompt at every cell of every activation
extern bool stepping;    ///< tracing is in force; set by every exception with a number above 0
extern bool endprocess;  ///< the read-execute loop is to end
extern bool PrintOut;    ///< a writer is at work
extern int A_Problem;    ///< 1: the depth-0 activation is to throw the top value away
extern short violations; ///< memory faults since the start

extern double operators; ///< cells executed in this sentence
extern double verbs;     ///< sum of operators over all sentences

// Each thread counts for itself.
extern constinit thread_local double operations;  ///< element operations in this sentence
extern constinit thread_local double flopos;      ///< floating-point operations of the current cell
extern constinit thread_local double op_flops;    ///< those of the instruction under way
extern constinit thread_local double total_flops; ///< and since the start

// What the command line asked for.
extern bool timing;                ///< elapsed time after each sentence
extern bool performance;           ///< rates after each sentence
extern bool processor_performance; ///< rates per MHz after each sentence
extern std::int32_t MHz;           ///< processor clock for these
extern bool opstime;               ///< every instruction is timed
extern bool constraindirectories;  ///< file names stay in the working directory

/// Bits of the attention word, tested once per cell for everything that is rare.
namespace attend {
enum : std::uint32_t {
    interrupt = 1, ///< SIGINT or SIGQUIT came
    fault = 2,     ///< SIGFPE, SIGBUS, SIGSEGV or another came from outside
    trace = 4,     ///< an activation may be traced or stepped
    timing = 8,    ///< a clock reading per cell
    give_up = 16,  ///< workers are to leave the job under way
};
}
extern std::atomic<std::uint32_t> attention;

/// Signals noted and not yet taken, or a job that is given up.
inline bool signal_noted() {
    constexpr std::uint32_t bits = attend::interrupt | attend::fault | attend::give_up;
    return (attention.load(std::memory_order_relaxed) & bits) != 0;
}

} // namespace tessor
