// The report of timings from given figures: units at every threshold, columns by option.
#include "instrument/report.h"
#include "instrument/scaling.h"

#include <array>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace tessor {
namespace {

std::string written(const std::function<void(std::FILE*)>& write) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* out = open_memstream(&text, &size);
    write(out);
    std::fclose(out);
    std::string result(text, size);
    std::free(text);
    return result;
}

TEST(Scaling, ChangesUnitAtTheThresholds) {
    constexpr Units units{"%.3f G", "%.3f M", "%.3f K", "%.3f"};
    constexpr TimeUnits times{"%.3f n", "%.3f u", "%.3f m", "%.3f"};
    const auto scaled = [&](double x) {
        return written([&](std::FILE* out) { print_scaled(out, units, x); });
    };
    const auto time = [&](double x) {
        return written([&](std::FILE* out) { print_time(out, times, x); });
    };
    const auto cycles = [&](double x) {
        return written([&](std::FILE* out) { print_cycles(out, units, x); });
    };
    EXPECT_EQ(scaled(1e9) + scaled(999999999) + scaled(1e6) + scaled(999999),
              "1.000 G1000.000 M1.000 M999.999 K");
    EXPECT_EQ(scaled(1000) + scaled(999.5) + scaled(0), "1.000 K999.5000.000");
    EXPECT_EQ(time(0.9e-6) + time(1e-6) + time(0.0009) + time(0.001),
              "900.000 n1.000 u900.000 u1.000 m");
    EXPECT_EQ(time(0.5) + time(1) + time(7200), "500.000 m1.0007200.000");
    EXPECT_EQ(cycles(0.0009) + cycles(0.001) + cycles(0.5), "900.0001.000 K500.000 K");
    EXPECT_EQ(cycles(1) + cycles(999) + cycles(1000), "1.000 M999.000 M1.000 G");
}

// Two instructions with figures that leave nothing to rounding.
class Report : public testing::Test {
protected:
    void SetUp() override {
        records[op::PRINT] = {90, 4500, 2, 0};
        records[op::REDUCELASTAXIS] = {10, 60, 20000, 4};
        records[op::ADD] = {0, 0, 0, 3}; // of workers, but never completed
    }

    std::string shown(ReportParts parts, std::span<const double> threads = {}) const {
        const Measured measured{records, threads, 500, 0.25, 0.5};
        return written([&](std::FILE* out) { report_timings(out, measured, parts); });
    }

    std::array<InstructionRecord, instruction_count> records{};
};

const std::string hyphens(80, '-');
const std::string summary = "Summary:\t  5.000 mS   avg, 477.443 mS   sdev, n=20002\n"
                            "\t\t200.020    op/S,     0.040    flop/S,   4.000    fpops\n"
                            "\nRaw timing:\t\n"
                            "\t\t 26.669   Kop/S,     5.333    flop/S\t(proc time)\n"
                            "\tproc:\t  0.750 S (utime:   0.250 S, stime:   0.500 S)\n"
                            "\treal:\t100.000 S\n\n"
                            "\n\tTessor verbs per second:     5.000    v/S,     500    verbs\n";

TEST_F(Report, IsEmptyWithoutEntries) {
    EXPECT_EQ(written([](std::FILE* out) { report_timings(out, {}, {}); }), "");
}

TEST_F(Report, SummaryAlone) {
    EXPECT_EQ(shown({.just_summary = true}),
              "\n\nExecution timing:\n-------------------------------\n" + summary);
}

TEST_F(Report, LinesOfARecord) {
    const std::string head = "\n\nExecution timing per operation:\n\n";
    const std::string print = "PRINT:\t\t  0.022    op/S\t\t\t       1:30.000 m:S,\t  90.000 %t";
    const std::string averages = "\n\t  45.000 S    avg,  15.000 S    sdev,  2.000    ops\n\n";
    const std::string reduce = "REDUCELASTAXIS:\t  2.000   Kop/S\t";
    EXPECT_EQ(shown({}), head + print + averages + reduce
                             + "\t\t  10.000 S,\t  10.000 %t\n\t 500.000  uS  avg,"
                               "  54.770 mS   sdev, 20.000   Kops\n\n"
                             + hyphens + "\n" + summary);
    EXPECT_EQ(shown({.flops = true, .terse_ops = true}),
              head + print + "\n" + reduce
                  + "\t  0.400    flop/S\t  10.000 S,\t  10.000 %t\t  0.200   m.fp/op\n" + hyphens
                  + "\n" + summary);
}

TEST_F(Report, FlopsCyclesAndThreads) {
    const std::array<double, 3> threads{4, 0, 4e9};
    const std::string text = shown({.flops = true, .cycles = true, .MHz = 2000}, threads);
    EXPECT_NE(text.find("\n\t 90.00 Gcy/op      45.000 S    avg,"), text.npos);
    EXPECT_NE(
        text.find("\t  0.400  flop/S\t  10.000 S,\t  10.000 %t\n\t  1.00  Mcy/op    500.000  uS"),
        text.npos);
    EXPECT_NE(text.find(" Kops\n\t  5.00 Gcy/fp      0.200   m.fp/op\t\t        4.000    fpops\n"
                        + hyphens
                        + "\nPer processor (thread) floating point perfomance:\n"
                          "Processor 0:\t\t  0.040    flop/S\t 5000.500  op/fp\n"
                          "Processor 2:\t\t 40.000  Mflop/S\t199.980   Kfp/op\n"
                        + hyphens + "\nSummary:\t 10.00  Mcy/op\t  5.000 mS"),
              text.npos)
        << text;
}

} // namespace
} // namespace tessor
