#include "shell/console.h"

#include "engine/machine.h"
#include "engine/seeding.h"
#include "engine/signals.h"
#include "frontend/symtab.h"
#include "instrument/recount.h"
#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "shell/dispatch.h"
#include "shell/options.h"
#include "shell/version.h"
#include "values/block.h"
#include "values/live.h"
#include "values/messages.h"
#include "values/native_stack.h"
#include "values/refderef.h"
#include "values/shared.h"
#include "values/timing.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace tessor {

namespace {

// Text comes and goes in pieces of this size; what is shown is flushed where a person, or a
// program at the other end of the pipe, waits for it.
constexpr std::size_t stream_buffer = 1 << 16;
char input_buffer[stream_buffer];
char output_buffer[stream_buffer];

void buffer_streams() {
    std::setvbuf(stdin, input_buffer, _IOFBF, sizeof input_buffer);
    std::setvbuf(stdout, output_buffer, isatty(STDOUT_FILENO) ? _IOLBF : _IOFBF,
                 sizeof output_buffer);
}

// The streams that the options ask for.
struct Pool {
    std::int32_t streams = 1; ///< the main thread included
    std::int32_t thrds = 1;
};

Pool size_pool(const Options& options) {
    Pool pool;
    if (options.processors != 0) {
        constexpr std::uint64_t most = 0x7fffffff;
        const std::uint64_t asked = std::uint64_t{options.processors} * options.thrds + 1;
        pool.streams = static_cast<std::int32_t>(std::min(asked, most));
        pool.thrds = static_cast<std::int32_t>(options.thrds);
    }
    return pool;
}

void raise_limit(decltype(RLIMIT_DATA) resource) {
    rlimit limit;
    if (getrlimit(resource, &limit) != 0) {
        std::fflush(stdout);
        std::fprintf(stderr, "Cannot set limits: %s\n", std::strerror(errno));
        return;
    }
    if (limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(resource, &limit);
    }
}

constexpr double default_physmem = 16777216.0;

double physical_memory() {
    const double bytes =
        static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
    return bytes > 0 ? bytes : default_physmem;
}

// `together` is the number of threads that share the work.
void report_clock(std::int32_t together) {
    if (!processor_performance)
        return;
    if (together > 1)
        std::printf("\nCumulative clock: %lld MHz", static_cast<long long>(MHz) * together);
    else
        std::printf(", Clock: %d MHz", MHz);
}

void report_pool(const Pool& pool, double physmem) {
    if (pool.streams == 1)
        std::fputs("Single processor", stdout);
    else
        std::printf("Processors: %d, Threads: %d", (pool.streams - 1) / pool.thrds, pool.streams);
    report_clock(pool.streams);
    std::fputs("\n\n", stdout);
    if (physmem != default_physmem) {
        const double mebibytes =
            physmem >= 2147483647.0 ? 2047.9999990463257 : physmem / (1024.0 * 1024.0);
        std::printf("Available memory: %g MiB\n", mebibytes);
    }
    std::putchar('\n');
}

// The threshold is what was asked for, also if fewer threads could be started.
void start_streams(const Pool& pool, bool quiet) {
    thrds = static_cast<std::uint32_t>(pool.thrds);
    MIN_PARALLEL =
        static_cast<std::int32_t>(std::int64_t{pool.streams} * elements_per_stream & 0x7fffffff);
    if (pool.streams == 1)
        return;
    start_coprocessors(static_cast<std::uint32_t>(pool.streams));
    if (processors < static_cast<std::uint32_t>(pool.streams) && !quiet)
        std::printf(", Succeeded to start %u threads.", processors);
}

// Everything between the options and the first prompt. Returns the clock at the start.
double start(const Options& options) {
    if (!options.quiet)
        print_banner();
    const Pool pool = size_pool(options);
    raise_limit(RLIMIT_DATA);
    raise_limit(RLIMIT_STACK);
    measure_native_stack();
    const double physmem = physical_memory();
    if (!options.quiet)
        report_pool(pool, physmem);
    const double starttime = read_clock();
    fill_dispatch();
    start_symbols();
    sp = stack;
    A_Problem = 0;
    install_signals();
    if (!options.quiet)
        exception(0, nullptr, nullptr);
    start_streams(pool, options.quiet);
    seed_streams(seed_by_clock, Space{});
    verbs = 0;
    if (opstime)
        attention.fetch_or(attend::timing);
    return starttime;
}

void prompt() {
    std::printf("\n\nTessor [%ld]> ", static_cast<long>(sp - stack));
    std::fflush(stdout);
}

void read_execute_loop(bool quiet) {
    while (!endprocess) {
        if (!quiet)
            prompt();
        read_and_run();
        std::fflush(stdout);
        verbs += operators;
        if constexpr (verifies)
            recount_now_and_then();
    }
}

void release_everything() {
    while (sp > stack)
        dereferencepoint(sp--);
    hashwipe(memory);
}

void report_spent(double spent) {
    const auto seconds = static_cast<long>(spent);
    const auto hours = static_cast<int>(seconds / 3600);
    const auto minutes = static_cast<int>(seconds / 60 % 60);
    const auto microseconds = static_cast<int>((spent - static_cast<double>(seconds)) * 1e6);
    std::printf("--- Spent: %.2d:%.2d:%.2d.%.06d ---\n\n", hours, minutes,
                static_cast<int>(seconds % 60), microseconds);
}

double seconds_of(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1000000;
}

// The flops of each thread, if there were several.
std::vector<double> flops_of_threads(std::uint32_t streams) {
    std::vector<double> flops;
    if (streams > 1) {
        for (const ThreadRecord& thread : from_coprocessor)
            flops.push_back(thread.total_flops);
        flops[0] = total_flops;
    }
    return flops;
}

void report_instructions(ReportParts parts, std::uint32_t streams) {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    parts.cycles = processor_performance;
    parts.MHz = MHz;
    const std::vector<double> flops = flops_of_threads(streams);
    report_timings(
        stdout,
        {InstructionTiming, flops, verbs, seconds_of(usage.ru_utime), seconds_of(usage.ru_stime)},
        parts);
}

void end(const Options& options, double starttime) {
    const std::uint32_t streams = processors;
    stop_coprocessors();
    if (!options.quiet && opstime)
        report_instructions(options.report, streams);
    if (!options.quiet)
        std::printf("\n%s\n", errors(999));
    std::putchar('\n');
    release_everything();
    report_spent(std::max(read_clock() - starttime, 0.0));
    std::fflush(stdout);
}

} // namespace

void read_and_run() {
    CellBuffer buffer;
    fill_prompted(buffer.cells(), variables, LineEnd::blank);
    stacktop = stack + stack_cells - 2;
    operations = 0;
    operators = 0;
    sp = machine(buffer.cells(), variables, stack + 1, stack + 1, sp, quads, 0);
}

int console(int argc, char** argv) {
    buffer_streams();
    Options options;
    if (const auto code = read_options(argc, argv, options))
        return *code;
    try {
        const double starttime = start(options);
        read_execute_loop(options.quiet);
        end(options, starttime);
    } catch (const OutOfStorage&) {
        std::fflush(stdout);
        std::fprintf(stderr, "\n%s\n", errors(27));
        return 1;
    }
    return 0;
}

} // namespace tessor
