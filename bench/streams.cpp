// Two streams against one: the speed-up of Tessor's workers beside that of a plain program that
// gives half of the same loop to a second thread, in turns, in one run. Then what the main thread
// does meanwhile: a long verb, and a loop of scalar work that doesn't touch its result, one after
// the other and both at once.
//
//   bench_streams [ROUNDS [beside]]      with the word, only the last
#include "clock.h"
#include "halves.h"
#include "parallel/coprocessor.h"
#include "tessor_side.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
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

std::string loop_of(int turns) {
    return "0 @T SET " + std::to_string(turns) + " MONADIC T + @T SET ; LOOP";
}

void keep_least(double& least, double time) {
    least = std::min(least, time);
}

// The loop takes as long as the verb on one stream: even two processors have then time for both.
// The verb's result is waited for behind it. Shortest times, as anything else that runs takes its
// share.
void measure_beside(int rounds) {
    constexpr int probe = 100'000;
    Sentence verb("A EXP DISCARD .");
    Sentence some(loop_of(probe) + " .");
    double verb_time = 1e18, some_time = 1e18;
    tessor::processors = 1;
    for (int round = 0; round < rounds; ++round) {
        keep_least(verb_time, verb.time(1));
        keep_least(some_time, some.time(1));
    }
    const int turns = static_cast<int>(probe * verb_time / some_time);
    Sentence loop(loop_of(turns) + " .");
    Sentence both("A EXP " + loop_of(turns) + " DISCARD .");
    Sentence begin("A EXP .");
    Sentence drop("DISCARD .");
    double serial = 1e18, shared = 1e18, turning = 1e18, together = 1e18, begun = 1e18;
    for (int round = 0; round < 3 * rounds; ++round) {
        tessor::processors = 1;
        keep_least(serial, verb.time(1));
        tessor::processors = tessor::cpus;
        keep_least(shared, verb.time(1));
        keep_least(turning, loop.time(1));
        keep_least(together, both.time(1));
        keep_least(begun, begin.time(1));
        drop.run();
    }
    const double processors = std::min(std::thread::hardware_concurrency(), tessor::cpus);
    const double possible = std::max({shared, turning, (serial + turning) / processors});
    std::printf("EXP alone %.1f ms, by workers %.1f, a loop %.1f, both %.1f:", serial / 1e6,
                shared / 1e6, turning / 1e6, together / 1e6);
    verdict("of the sum", together / (shared + turning), together < 0.9 * (shared + turning));
    verdict("of what is possible", together / possible, together < 1.2 * possible);
    verdict("EXP left after", begun / shared, begun < 0.1 * shared);
    std::putchar('\n');
}

// One stream against two.
void measure_halves(int rounds) {
    tessor::start_coprocessors(2);
    measure_job(rounds);
    for (const std::size_t n : {std::size_t{1'000'000}, std::size_t{10'000'000}}) {
        tessor::processors = 1;
        bind_array("A", Type::float64, n, true);
        bind_array("B", Type::float64, n, false);
        Sentence("B 1e-3 MULTIPLY @B SET .").run();
        prepare_plain(n);
        for (const HalvedRow& row : halved_rows())
            measure(row, n, rounds);
    }
    tessor::processors = 2;
    tessor::stop_coprocessors();
}

} // namespace

} // namespace bench

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(std::atoi(argv[1]), 1) : 7;
    bench::start_tessor();
    tessor::MIN_PARALLEL = 2002;
    if (argc > 2)
        bench::bind_array("A", bench::Type::float64, 10'000'000, true);
    else
        bench::measure_halves(rounds);
    // With three streams the main thread's slice is small.
    tessor::start_coprocessors(3);
    bench::measure_beside(rounds);
    tessor::stop_coprocessors();
    std::printf("targets missed: %d\n", bench::missed);
    return 0;
}
