// The pool: worker threads that share the work on large arrays with the main thread.
//
// There is no queue. One job at a time is published; each worker is woken by a semaphore of its
// own, works on its slice, and posts a second one. The main thread works on the first slice, and
// goes on with the program. It waits for the others before anything touches what is being made
// (engine/machine), before the next job and at the end of a sentence; the job's owner then joins
// the slices. The pool knows no verbs: a job carries the functions that it consists of.
//
// What a thread has to itself is thread-local: counters, random seed, free blocks, limits of its
// stacks. While a job is under way counts are changed atomically, and workers print nothing: what
// they report is held and printed at the wait.
#pragma once

#include "values/space.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessor {

extern std::uint32_t processors; ///< streams in use, the main thread included
extern std::uint32_t cpus;       ///< streams started: the ceiling of PARALLEL
extern std::uint32_t thrds;      ///< threads per processor
/// Elements for each stream that make sharing worth while.
#ifdef TESSOR_TIGHT
inline constexpr std::int32_t elements_per_stream = 1;
#else
inline constexpr std::int32_t elements_per_stream = 1001;
#endif
/// Element count above which work is shared.
extern std::int32_t MIN_PARALLEL;

/// Cells of a worker's own value stack, which recursions use; the top but two is its stacktop. As
/// many as the main thread has, so that nesting fails on a worker no sooner.
inline constexpr std::ptrdiff_t worker_cells = 16585;

/// The stream that this thread is: 0 on the main thread.
extern constinit thread_local std::uint32_t stream_index;

/// Work for all streams. It belongs to who publishes it, and must live until it is collected.
struct Job {
    /// The work of one stream but the first, on its thread. Throws ErrorJump or OutOfStorage.
    void (*run)(Job& job, std::uint32_t stream) = nullptr;
    /// On the main thread, when all streams have ended; null: nothing is to be done then. If it
    /// throws OutOfStorage, or the job was given up, the value in the making is whole nevertheless,
    /// such as an empty vector.
    void (*collect)(Job& job) = nullptr;
    Space cell{};              ///< the instruction, for reports
    std::uint32_t streams = 1; ///< that share the work
    std::uint32_t count = 0;   ///< elements of the whole
    /// The stack cell of the value in the making; null if there is none.
    const Space* result = nullptr;
    bool given_up = false; ///< some worker has left it early
};

/// What the main thread knows of a stream.
struct ThreadRecord {
    double op_flops = 0;    ///< of its last slice
    double total_flops = 0; ///< since the start
    bool collected = true;  ///< nothing is outstanding
};
/// One for each stream started; number 0 is the main thread, whose counters are its own.
extern std::vector<ThreadRecord> from_coprocessor;

/// The job under way; null if there is none. The main thread's.
extern Job* job_under_way;

/// Whether n elements are to be shared between the streams in use.
inline bool parallel_worthy(std::uint32_t n) {
    return processors > 1 && n >= processors && static_cast<std::int32_t>(n) > MIN_PARALLEL;
}

/// Starts streams - 1 workers. If one can't start, the pool is smaller.
void start_coprocessors(std::uint32_t streams);
/// Ends all workers and joins them.
void stop_coprocessors();

/// Hands a job to the workers. The job before must have been collected.
void publish(Job& job);

/// Waits for the job under way, joins its slices and prints what workers reported.
void collect_job(); ///< ErrorJump if a slice failed
void settle_job() noexcept;

/// Tells the workers to leave the job under way, of which nothing is wanted any more. It has to be
/// waited for nevertheless.
void give_up_job() noexcept;

/// Blocks until no worker has an outstanding slice. If a slice failed, its report is printed here,
/// and the sentence ends: throws ErrorJump. So does a signal that comes meanwhile: the job is given
/// up then.
inline void wait_for_coprocessors() {
    if (job_under_way) [[unlikely]]
        collect_job();
}
/// The same where a failure is under way already: throws nothing.
inline void settle_coprocessors() noexcept {
    if (job_under_way) [[unlikely]]
        settle_job();
}

} // namespace tessor
