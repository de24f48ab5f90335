#include "instrument/report.h"

#include "instrument/scaling.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tessor {

namespace {

constexpr Units op_rate{"%7.3lf Gop/S", "%7.3lf  Mop/S", "%7.3lf   Kop/S", "%7.3lf    op/S"};
constexpr Units flop_rate{"%7.3lf Gflop/S", "%7.3lf  Mflop/S", "%7.3lf   Kflop/S",
                          "%7.3lf    flop/S"};
constexpr Units flop_column{"%7.3lf Gflop/S", "%7.3lf Mflop/S", "%7.3lf Kflop/S", "%7.3lf  flop/S"};
constexpr Units terse_flop_column{"\t%7.3lf Gflop/S  ", "\t%7.3lf  Mflop/S ", "\t%7.3lf   Kflop/S",
                                  "\t%7.3lf    flop/S"};
constexpr Units verb_rate{"%7.3lf Gv/S", "%7.3lf  Mv/S", "%7.3lf   Kv/S", "%7.3lf    v/S"};

constexpr Units ops{"%7.3lf Gops", "%7.3lf  Mops", "%7.3lf   Kops", "%7.3lf    ops"};
constexpr Units flop_count{"%7.3lf Gfpops", "%7.3lf  Mfpops", "%7.3lf   Kfpops", "%7.3lf    fpops"};
constexpr Units flop_count_column{"      %7.3lf Gfpops  ", "      %7.3lf  Mfpops ",
                                  "      %7.3lf   Kfpops", "      %7.3lf    fpops"};
constexpr Units flops_per_op{"%7.3lf Gfp/op", "%7.3lf  Mfp/op", "%7.3lf   Kfp/op",
                             " %7.3lf  fp/op"};

constexpr TimeUnits total_time{" %7.3lf   nS,", " %7.3lf  uS,", " %7.3lf mS,", " %7.3lf S,"};
constexpr TimeUnits average_column{" %7.3lf   nS avg,", " %7.3lf  uS  avg,", " %7.3lf mS   avg,",
                                   " %7.3lf S    avg,"};
constexpr TimeUnits average_time{"%7.3lf   nS avg,", "%7.3lf  uS  avg,", "%7.3lf mS   avg,",
                                 "%7.3lf S    avg,"};
constexpr TimeUnits deviation_time{" %7.3lf   nS sdev,", " %7.3lf  uS  sdev,", " %7.3lf mS   sdev,",
                                   " %7.3lf S    sdev,"};

constexpr Units cycles_per_op{"%6.2lf Gcy/op    ", "%6.2lf  Mcy/op   ", "%6.2lf   Kcy/op  ",
                              "%6.2lf     cy/op "};
constexpr Units cycles_per_flop{"%6.2lf Gcy/fp    ", "%6.2lf  Mcy/fp   ", "%6.2lf   Kcy/fp  ",
                                "%6.2lf     cy/fp "};
constexpr Units cycles_in_all{"%6.2lf Gcy/op\t", "%6.2lf  Mcy/op\t", "%6.2lf   Kcy/op\t",
                              "%6.2lf     cy/op\t"};

// Where all durations are the same, rounding may leave a little less than nothing.
double deviation(const InstructionRecord& r) {
    const double average = r.time / r.count;
    return std::sqrt(std::max(r.squared_time / r.count - average * average, 0.0));
}

// One report on its way out.
struct Report {
    std::FILE* out;
    const Measured& measured;
    const ReportParts& parts;
    InstructionRecord all; ///< totals of the records that count
};

InstructionRecord totals(std::span<const InstructionRecord> records) {
    InstructionRecord all;
    for (const InstructionRecord& r : records) {
        if (r.count > 0) {
            all.time += r.time;
            all.squared_time += r.squared_time;
            all.count += r.count;
            all.flops += r.flops;
        }
    }
    return all;
}

void print_hyphens(const Report& to) {
    for (int i = 0; i < 80; ++i)
        std::fputc('-', to.out);
    std::fputc('\n', to.out);
}

void print_total_time(const Report& to, double seconds) {
    if (seconds < 60) {
        print_time(to.out, total_time, seconds);
        return;
    }
    const double minutes = std::floor(seconds / 60);
    std::fprintf(to.out, " %7d:%.3lf m:S,", static_cast<int>(minutes), seconds - minutes * 60);
}

bool shows_flops(const Report& to, const InstructionRecord& r) {
    return to.parts.flops && r.flops != 0;
}

void print_rates(const Report& to, std::size_t number, const InstructionRecord& r) {
    const std::string_view name = instruction_name(static_cast<int>(number));
    std::fprintf(to.out, "%.*s:\t%s", static_cast<int>(name.size()), name.data(),
                 name.size() < 7 ? "\t" : "");
    print_scaled(to.out, op_rate, r.count / r.time);
    std::fputc('\t', to.out);
    if (shows_flops(to, r))
        print_scaled(to.out, to.parts.terse_ops ? terse_flop_column : flop_column,
                     r.flops / r.time);
    else
        std::fputc('\t', to.out);
    std::fputc('\t', to.out);
    print_total_time(to, r.time);
    std::fprintf(to.out, "\t %7.3lf %%t", r.time / to.all.time * 100);
}

void print_averages(const Report& to, const InstructionRecord& r) {
    std::fputs("\n\t", to.out);
    if (to.parts.cycles)
        print_cycles(to.out, cycles_per_op, to.parts.MHz * (r.time / r.count));
    print_time(to.out, average_column, r.time / r.count);
    print_time(to.out, deviation_time, deviation(r));
    print_scaled(to.out, ops, r.count);
    std::fputc('\n', to.out);
}

// Less than one flop for an operation is shown in thousandths and less, by how many operations
// share one; but a few hundredths are readable as they stand.
void print_flops_per_op(const Report& to, const InstructionRecord& r) {
    const double ratio = r.flops / r.count;
    const double inverse = r.count / r.flops;
    if (ratio >= 1 || inverse < 1000)
        std::fprintf(to.out, " %7.3lf  fp/op", ratio);
    else if (inverse >= 1000000000)
        std::fprintf(to.out, "%7.3lf n.fp/op", ratio * 1000000000);
    else if (inverse >= 1000000)
        std::fprintf(to.out, "%7.3lf  u.fp/op", ratio * 1000000);
    else
        std::fprintf(to.out, "%7.3lf   m.fp/op", ratio * 1000);
}

void print_flops(const Report& to, const InstructionRecord& r) {
    std::fputc('\t', to.out);
    if (!to.parts.terse_ops && to.parts.cycles)
        print_cycles(to.out, cycles_per_flop, r.time / r.flops * to.parts.MHz);
    print_flops_per_op(to, r);
    if (!to.parts.terse_ops) {
        std::fputs("\t\t", to.out);
        print_scaled(to.out, flop_count_column, r.flops);
    }
}

void print_records(const Report& to) {
    const auto& records = to.measured.records;
    for (std::size_t number = 1; number < records.size(); ++number) {
        const InstructionRecord& r = records[number];
        if (r.count <= 0)
            continue;
        print_rates(to, number, r);
        if (!to.parts.terse_ops)
            print_averages(to, r);
        if (shows_flops(to, r))
            print_flops(to, r);
        std::fputc('\n', to.out);
    }
}

void print_thread(const Report& to, std::size_t number, double flops) {
    std::fprintf(to.out, "Processor %d:\t\t", static_cast<int>(number));
    print_scaled(to.out, flop_rate, flops / to.all.time);
    std::fputc('\t', to.out);
    if (to.all.count / flops >= 1)
        std::fprintf(to.out, " %7.3lf  op/fp", to.all.count / flops);
    else
        print_scaled(to.out, flops_per_op, flops / to.all.count);
    std::fputc('\n', to.out);
}

void print_threads(const Report& to) {
    std::fputs("Per processor (thread) floating point perfomance:\n", to.out);
    const auto& flops = to.measured.thread_flops;
    if (to.parts.flops)
        for (std::size_t i = 0; i < flops.size(); ++i)
            if (flops[i] > 0)
                print_thread(to, i, flops[i]);
    print_hyphens(to);
}

// Cycles, rates and flops of everything together, in `seconds` of one clock or the other.
void print_cycles_in_all(const Report& to, double seconds) {
    if (to.parts.cycles)
        print_cycles(to.out, cycles_in_all, to.parts.MHz * (seconds / to.all.count));
}

void print_rates_in_all(const Report& to, double seconds) {
    print_scaled(to.out, op_rate, 1 / (seconds / to.all.count));
    std::fputs(",   ", to.out);
    print_scaled(to.out, flop_rate, to.all.flops / seconds);
}

void print_summary(const Report& to) {
    std::fputs("Summary:\t", to.out);
    print_cycles_in_all(to, to.all.time);
    print_time(to.out, average_time, to.all.time / to.all.count);
    print_time(to.out, deviation_time, deviation(to.all));
    std::fprintf(to.out, " n=%.0lf\n\t\t", to.all.count);
    print_rates_in_all(to, to.all.time);
    std::fputs(", ", to.out);
    print_scaled(to.out, flop_count, to.all.flops);
    std::fputc('\n', to.out);
}

void print_verbs(const Report& to) {
    const double verbs = to.measured.verbs;
    const double rate = verbs / to.all.time;
    std::fputs("\n\tTessor verbs per second:   ", to.out);
    if (rate < 1)
        std::fprintf(to.out, "%7.3lf    S/v", 1 / rate);
    else
        print_scaled(to.out, verb_rate, rate);
    std::fputs(", ", to.out);
    if (verbs < 1000)
        std::fprintf(to.out, "%7d    verbs", static_cast<int>(verbs));
    else
        print_scaled(to.out, {"%7.3lf Gverbs", "%7.3lf  Mverbs", "%7.3lf   Kverbs", ""}, verbs);
    std::fputc('\n', to.out);
}

void print_raw_timing(const Report& to) {
    const double process = to.measured.user + to.measured.system;
    std::fputs("\nRaw timing:\t", to.out);
    print_cycles_in_all(to, process);
    std::fputs("\n\t\t", to.out);
    print_rates_in_all(to, process);
    std::fputs("\t(proc time)\n\t", to.out);
    std::fprintf(to.out,
                 "proc:\t%7.3lf S (utime: %7.3lf S, stime: %7.3lf S)\n\treal:\t%7.3lf S\n\n",
                 process, to.measured.user, to.measured.system, to.all.time);
    print_verbs(to);
}

} // namespace

void report_timings(std::FILE* out, const Measured& measured, const ReportParts& parts) {
    const Report to{out, measured, parts, totals(measured.records)};
    if (to.all.count <= 0)
        return;
    std::fputs("\n\nExecution timing", out);
    std::fputs(parts.just_summary ? ":\n-------------------------------\n" : " per operation:\n\n",
               out);
    if (!parts.just_summary) {
        print_records(to);
        print_hyphens(to);
        if (!measured.thread_flops.empty())
            print_threads(to);
    }
    print_summary(to);
    print_raw_timing(to);
}

} // namespace tessor
