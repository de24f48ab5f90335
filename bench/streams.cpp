// Two streams against one: the speed-up of Tessor's workers beside that of a plain program that
// gives half of the same loop to a second thread, in turns, in one run.
//
//   bench_streams [ROUNDS]
#include "clock.h"
#include "halves.h"
#include "parallel/coprocessor.h"
#include "tessor_side.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace bench {

namespace {

int missed = 0;

void verdict(const char* what, double value, bool met) {
    missed += !met;
    std::printf("  %s %.2f %s", what, value, met ? "ok" : "MISSED");
}

void measure(const HalvedRow& row, std::size_t n, int rounds) {
    Sentence sentence(std::string(row.sentence) + " DISCARD .");
    sentence.run();
    const int times = std::max(1, static_cast<int>(40e6 / sentence.time(1)));
    std::vector<double> ours, plain;
    for (int round = 0; round < rounds; ++round) {
        tessor::processors = 1;
        const double serial = sentence.time(times);
        tessor::processors = 2;
        const double shared = sentence.time(times);
        ours.push_back(serial / shared);
        plain.push_back(plain_time(row, n, times, false) / plain_time(row, n, times, true));
    }
    const double speed_up = spread_of(ours).median;
    const double plain_speed_up = spread_of(plain).median;
    std::printf("%-16s %.0e", row.sentence, static_cast<double>(n));
    verdict("speed-up", speed_up, speed_up >= 1.0);
    verdict("of a plain program's", speed_up / plain_speed_up, speed_up >= 0.9 * plain_speed_up);
    std::printf("  (plain %.2f)\n", plain_speed_up);
    std::fflush(stdout);
}

// A job of next to no work: the sum of its publishing, the waking of a worker and the wait.
void measure_job(int rounds) {
    static tessor::Job job;
    job.run = [](tessor::Job&, std::uint32_t) {};
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        constexpr int jobs = 2000;
        const Nanoseconds began = now();
        for (int i = 0; i < jobs; ++i) {
            tessor::publish(job);
            tessor::wait_for_coprocessors();
        }
        times.push_back((now() - began) / jobs / 1000);
    }
    const double median = spread_of(times).median;
    std::printf("a job published and waited for:");
    verdict("microseconds", median, median < 20);
    std::putchar('\n');
}

} // namespace

} // namespace bench

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(std::atoi(argv[1]), 1) : 7;
    bench::start_tessor();
    tessor::start_coprocessors(2);
    tessor::MIN_PARALLEL = 2002;
    bench::measure_job(rounds);
    for (const std::size_t n : {std::size_t{1'000'000}, std::size_t{10'000'000}}) {
        tessor::processors = 1;
        bench::bind_array("A", bench::Type::float64, n, true);
        bench::bind_array("B", bench::Type::float64, n, false);
        bench::Sentence("B 1e-3 MULTIPLY @B SET .").run();
        bench::prepare_plain(n);
        for (const bench::HalvedRow& row : bench::halved_rows())
            bench::measure(row, n, rounds);
    }
    tessor::processors = 2;
    tessor::stop_coprocessors();
    std::printf("targets missed: %d\n", bench::missed);
    return 0;
}
