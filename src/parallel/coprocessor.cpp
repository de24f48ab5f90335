#include "parallel/coprocessor.h"

#include "io/writers/exception.h"
#include "values/block.h"
#include "values/native_stack.h"
#include "values/shared.h"
#include "values/timing.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <memory>
#include <new>
#include <pthread.h>
#include <semaphore.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace tessor {

std::uint32_t processors = 1;
std::uint32_t cpus = 1;
std::uint32_t thrds = 1;
std::int32_t MIN_PARALLEL = elements_per_stream;

constinit thread_local std::uint32_t stream_index = 0;
std::vector<ThreadRecord> from_coprocessor(1);
Job* job_under_way = nullptr;

namespace {

struct Freed {
    void operator()(void* memory) const { std::free(memory); }
};

// What a worker and the main thread share, beside the job.
struct Worker {
    sem_t coprocess;   ///< a job is there
    sem_t mainprocess; ///< the slice is finished
    pthread_t thread;
    std::uint32_t index;
    std::unique_ptr<Space[], Freed> operands; ///< its value stack; pages come as they are touched
    HeldReports reports;                      ///< of its slice
    bool gave_up = false;                     ///< its slice
    double op_flops = 0;                      ///< of its slice
    double total_flops = 0;                   ///< since the start
};
std::deque<Worker> workers;     // number 0 is stream 1
Job* to_coprocessors = nullptr; // null ends the workers
constexpr int out_of_storage = 27;

// A wait that is over soon isn't worth a sleep, if there is a processor to wait on.
constexpr int patience = 4000;
int spins = 0;

void pause() {
#if defined(__x86_64__)
    __builtin_ia32_pause();
#endif
}

void take(sem_t& semaphore) {
    for (int i = spins; i > 0; --i) {
        if (sem_trywait(&semaphore) == 0)
            return;
        pause();
    }
    while (sem_wait(&semaphore) != 0) {
    }
}

// Goes on waiting behind a signal, like any system call: so it is done in rounds.
bool take_in_a_round(sem_t& semaphore) {
    constexpr long round = 5'000'000;
    constexpr long second = 1'000'000'000;
    timespec until;
    clock_gettime(CLOCK_REALTIME, &until);
    until.tv_nsec += round;
    if (until.tv_nsec >= second) {
        until.tv_nsec -= second;
        ++until.tv_sec;
    }
    return sem_timedwait(&semaphore, &until) == 0;
}

// What a signal interrupts isn't worth waiting for.
void await(Worker& worker) {
    for (int i = spins; i > 0; --i) {
        if (sem_trywait(&worker.mainprocess) == 0)
            return;
        pause();
    }
    while (!take_in_a_round(worker.mainprocess)) {
        if (signal_noted())
            give_up_job();
    }
}

void run_slice(Worker& worker, Job& job) {
    op_flops = 0;
    worker.gave_up = false;
    try {
        job.run(job, worker.index);
    } catch (const ErrorJump&) {
        // What it is about is among the reports.
    } catch (const GivenUp&) {
        worker.gave_up = true;
    } catch (const OutOfStorage&) {
        worker.reports.add(out_of_storage);
    } catch (const std::bad_alloc&) {
        worker.reports.add(out_of_storage);
    }
    worker.op_flops = op_flops;
    worker.total_flops = total_flops;
}

void vector_coprocessor(Worker& worker) {
    for (;;) {
        take(worker.coprocess);
        Job* job = to_coprocessors;
        if (job)
            run_slice(worker, *job);
        sem_post(&worker.mainprocess);
        if (!job)
            return;
    }
}

void* vector_coprocessor_thread(void* given) {
    Worker& worker = *static_cast<Worker*>(given);
    stream_index = worker.index;
    held_reports = &worker.reports;
    measure_native_stack();
    stacktop = worker.operands.get() + worker_cells - 2;
    vector_coprocessor(worker);
    return nullptr;
}

// Signals are the main thread's.
class NoSignals {
public:
    NoSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &old_);
    }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &old_, nullptr); }

private:
    sigset_t old_;
};

// As much native stack as the main thread has, where the system gives it.
bool start_thread(Worker& worker) {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
        return false;
    pthread_attr_setstacksize(&attributes, native_stack_size());
    const auto with = [&worker](const pthread_attr_t* given) {
        return pthread_create(&worker.thread, given, vector_coprocessor_thread, &worker) == 0;
    };
    const bool started = with(&attributes) || with(nullptr);
    pthread_attr_destroy(&attributes);
    return started;
}

bool start(Worker& worker) {
    worker.operands.reset(static_cast<Space*>(std::calloc(worker_cells, sizeof(Space))));
    if (!worker.operands)
        return false;
    if (sem_init(&worker.coprocess, 0, 0) != 0 || sem_init(&worker.mainprocess, 0, 0) != 0)
        return false;
    return start_thread(worker);
}

// Whose flops those of a job are: a reduction and a mask call a verb under their own cell.
std::size_t instruction_of(const Space& cell) {
    switch (cell.operation) {
    case op::REDUCE:
    case op::REDUCELASTAXIS: return cell.suboperation;
    case op::MASK: return op::MULTIPLY;
    default: return static_cast<std::size_t>(cell.operation);
    }
}

// Waits for every worker of the job. True: one of them has reported or given up.
bool collect_slices(Job& job) {
    bool failed = false;
    double flops = 0;
    job.given_up = false;
    for (std::uint32_t i = job.streams - 1; i > 0; --i) {
        Worker& worker = workers[i - 1];
        await(worker);
        from_coprocessor[i] = {worker.op_flops, worker.total_flops, true};
        flops += worker.op_flops;
        failed |= worker.reports.count != 0;
        job.given_up |= worker.gave_up;
    }
    attention.fetch_and(~std::uint32_t{attend::give_up});
    if (opstime && job.cell.rank == kind::OPERATOR)
        InstructionTiming[instruction_of(job.cell)].flops += flops;
    std::fflush(stdout);
    return failed || job.given_up;
}

void print_reports(const Job& job) {
    for (std::uint32_t i = job.streams - 1; i > 0; --i) {
        HeldReports& reports = workers[i - 1].reports;
        const int count = std::exchange(reports.count, 0);
        for (int k = 0; k < count; ++k)
            exception(reports.numbers[k], nullptr, &job.cell);
    }
}

// Waits for the job under way, prints what workers reported, and joins. False: some slice isn't
// whole.
bool finish_job() {
    Job& job = *job_under_way;
    bool failed = collect_slices(job);
    job_under_way = nullptr;
    counts_shared = false;
    print_reports(job);
    try {
        if (job.collect)
            job.collect(job);
    } catch (const OutOfStorage&) {
        exception(out_of_storage, nullptr, nullptr);
        failed = true;
    }
    return !failed;
}

// Room that a pool leaves to the main thread when it takes all else: less than what an allocator
// reserves for a thread, so that no worker gets it.
class Reserve {
public:
    Reserve() = default;
    Reserve(const Reserve&) = delete;
    Reserve& operator=(const Reserve&) = delete;
    ~Reserve() {
        if (pages_ != MAP_FAILED)
            munmap(pages_, size);
    }

private:
    static constexpr std::size_t size = std::size_t{32} << 20;
    void* pages_ = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
};

// Makes worker i, and its record. False: there is no room for it.
bool add_worker(std::uint32_t i) {
    try {
        from_coprocessor.reserve(std::size_t{i} + 1);
        workers.emplace_back().index = i;
    } catch (const std::bad_alloc&) {
        return false;
    }
    if (!start(workers.back())) {
        workers.pop_back();
        return false;
    }
    from_coprocessor.emplace_back();
    return true;
}

} // namespace

void start_coprocessors(std::uint32_t streams) {
    from_coprocessor.assign(1, {});
    spins = sysconf(_SC_NPROCESSORS_ONLN) >= static_cast<long>(streams) ? patience : 0;
    const NoSignals none;
    const Reserve for_main_thread;
    for (std::uint32_t i = 1; i < streams && add_worker(i); ++i) {
    }
    processors = cpus = static_cast<std::uint32_t>(workers.size()) + 1;
}

void stop_coprocessors() {
    settle_coprocessors();
    to_coprocessors = nullptr;
    for (Worker& worker : workers)
        sem_post(&worker.coprocess);
    for (Worker& worker : workers) {
        pthread_join(worker.thread, nullptr);
        sem_destroy(&worker.coprocess);
        sem_destroy(&worker.mainprocess);
    }
    workers.clear();
    processors = cpus = 1;
}

void publish(Job& job) {
    job.streams = processors;
    job_under_way = to_coprocessors = &job;
    counts_shared = true;
    for (std::uint32_t i = job.streams - 1; i > 0; --i) {
        from_coprocessor[i].collected = false;
        sem_post(&workers[i - 1].coprocess);
    }
}

void give_up_job() noexcept {
    attention.fetch_or(attend::give_up);
}

void collect_job() {
    if (finish_job())
        return;
    take_signals();
    throw ErrorJump{-1};
}

void settle_job() noexcept {
    try {
        finish_job();
    } catch (...) {
        // Whoever settles is leaving anyway.
        job_under_way = nullptr;
        counts_shared = false;
    }
}

} // namespace tessor
