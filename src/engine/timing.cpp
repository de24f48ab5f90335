#include "engine/timing.h"

#include "values/shared.h"
#include "values/timing.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

namespace tessor {

CellStart cell_start;

namespace {

// In whole microseconds, which wrap after 71 minutes.
void print_time(double seconds) {
    const auto wrapped = static_cast<std::uint32_t>(std::llround(seconds * 1000000));
    const unsigned microseconds = wrapped % 1000;
    const unsigned milliseconds = wrapped / 1000 % 1000;
    const unsigned whole = wrapped / 1000000;
    std::printf("\n--> \t\xE4t = %.2u.%.2u %.3umS %.3uuS\n", whole / 60, whole % 60, milliseconds,
                microseconds);
}

void print_performance() {
    std::printf("\n-->\tExecuted %.0f operators, %.0f operations.\n"
                "-->\tPerformance:\t%.2f Tessor operators/sec,\n"
                "\t\t\t%.2f scalar operations/sec.\n",
                operators, operations, operators / duration, operations / duration);
}

} // namespace

bool sentences_timed() {
    return timing || performance || processor_performance;
}

void begin_sentence() {
    if (sentences_timed())
        prevtime = read_clock();
    else if (opstime)
        read_clock();
}

void report_sentence() {
    if (performance || processor_performance) {
        duration = read_clock() - prevtime;
        std::putchar('\n');
    }
    if (performance && operators != 0)
        print_performance();
    if (processor_performance)
        std::printf("\n-->\tProcessor performance: %g Tessor operations per Mhz\n",
                    (operators + operations) / duration / MHz);
    if (timing)
        writetime();
}

void writetime() {
    if (!performance)
        read_clock();
    print_time(tval - prevtime);
    prevtime = read_clock();
}

void begin_cell() {
    cell_start = {tval, operations};
}

void enter_timing(int operation) {
    const double time = read_clock() - cell_start.time;
    const double done = operations - cell_start.operations;
    InstructionRecord& record = InstructionTiming[static_cast<std::size_t>(operation)];
    record.time += time;
    record.squared_time += time * time;
    record.count += done > 0 ? done : 1;
    record.flops += flopos;
}

ActivationStart begin_activation() {
    return {read_clock(), cell_start.time};
}

void end_activation(const ActivationStart& start) {
    duration = read_clock() - start.entry;
    cell_start = {start.cell_time + duration, operations};
    flopos = 0;
}

} // namespace tessor
