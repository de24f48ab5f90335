// Two streams against one: the speed-up of Tessor's workers beside that of a plain program that
// gives half of the same loop to a second thread, in turns, in one run. Then what the main thread
// does meanwhile: a long verb, and a loop of scalar work that doesn't touch its result, one after
// the other and both at once.
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

struct Overlap {
    double returns; ///< of the verb's time, until the main thread has it behind it
    double of_sum;
    double of_possible; ///< of the longer one, or of the work shared by all processors
};

Overlap overlap(Sentence& verb, Sentence& loop, Sentence& both) {
    const double processors = std::min(std::thread::hardware_concurrency(), tessor::cpus);
    tessor::processors = 1;
    const double serial = verb.time(1);
    tessor::processors = tessor::cpus;
    const double alone = verb.time(1);
    const double turns = loop.time(1);
    const double together = both.time(1);
    Sentence begun("A EXP .");
    const double returned = begun.time(1);
    Sentence("DISCARD .").run();
    const double least = std::max({alone, turns, (serial + turns) / processors});
    return {returned / alone, together / (alone + turns), together / least};
}

// A loop that takes as long as the verb. The result is behind it, which is where it is waited for.
void measure_overlap(int rounds) {
    constexpr int probe = 100'000;
    Sentence verb("A EXP DISCARD .");
    const int turns =
        static_cast<int>(probe * verb.time(3) / Sentence(loop_of(probe) + " .").time(3));
    Sentence loop(loop_of(turns) + " .");
    Sentence both("A EXP " + loop_of(turns) + " DISCARD .");
    std::vector<double> returns, of_sum, of_possible;
    for (int round = 0; round < rounds; ++round) {
        const Overlap o = overlap(verb, loop, both);
        returns.push_back(o.returns);
        of_sum.push_back(o.of_sum);
        of_possible.push_back(o.of_possible);
    }
    std::printf("A EXP, and a loop beside it, %u streams:", tessor::cpus);
    verdict("of the sum", spread_of(of_sum).median, spread_of(of_sum).median < 0.85);
    verdict("of the possible", spread_of(of_possible).median, spread_of(of_possible).median < 1.2);
    std::printf("  (EXP returns after %.3f of its time)\n", spread_of(returns).median);
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
    tessor::stop_coprocessors();
    // With three streams the main thread's slice is small.
    tessor::start_coprocessors(3);
    bench::measure_overlap(rounds);
    tessor::stop_coprocessors();
    std::printf("targets missed: %d\n", bench::missed);
    return 0;
}
