// Operators and functions on one array: Tessor, a plain loop and NumPy on the same work, in turns,
// in one run. Each row is a sentence, a loop compiled for this very processor, and an expression.
//
//   bench_operators INTERPRETER SCRIPT [ROUNDS [NAME]]
#include "clock.h"
#include "loops.h"
#include "numpy_side.h"
#include "tessor_side.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace bench {

namespace {

int missed = 0;

void print_ratio(const char* against, const Spread& ratio, double target) {
    if (target == 0) {
        std::printf("  %s x%.2f", against, ratio.median);
        return;
    }
    const bool met = ratio.median <= target;
    missed += !met;
    std::printf("  %s x%.2f (%.2f-%.2f) <= %.2f %s", against, ratio.median, ratio.least, ratio.most,
                target, met ? "ok" : "MISSED");
}

void measure(const Row& row, NumPy& numpy, int rounds) {
    Sentence(std::string("CLEAR ") + row.sentence + " DISCARD .").run();
    Sentence sentence(std::string(row.sentence) + " DISCARD .");
    const int n = std::max(1, static_cast<int>(30e6 / sentence.time(1)));
    std::vector<double> times, to_loop, to_numpy;
    for (int round = 0; round < rounds; ++round) {
        const double tessor = sentence.time(n);
        const Nanoseconds began = now();
        for (int i = 0; i < n; ++i)
            row.loop();
        const double loop = (now() - began) / n;
        times.push_back(tessor / 1e6);
        to_loop.push_back(tessor / loop);
        if (row.numpy)
            to_numpy.push_back(tessor / numpy.evaluate(row.numpy, n));
    }
    std::printf("%-28s %8.3f ms", row.sentence, spread_of(times).median);
    print_ratio("loop", spread_of(to_loop), row.target);
    if (row.numpy)
        print_ratio("NumPy", spread_of(to_numpy), row.numpy_target);
    std::putchar('\n');
    std::fflush(stdout);
}

} // namespace

} // namespace bench

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: bench_operators INTERPRETER SCRIPT [ROUNDS [NAME]]\n", stderr);
        return 1;
    }
    const int rounds = argc > 3 ? std::max(std::atoi(argv[3]), 1) : 7;
    bench::NumPy numpy(argv[1], argv[2]);
    bench::start_tessor();
    bench::bind_array("INTS", bench::Type::int32, bench::length, true);
    bench::bind_array("REALS", bench::Type::float64, bench::length, true);
    bench::bind_array("DICE", bench::Type::int32, bench::length, false);
    bench::bind_array("HALF", bench::Type::truth, bench::length, true);
    bench::Sentence("REALS (3000 3000) RESHAPE @MATRIX SET INTS (3000 3000) RESHAPE @WHOLE SET .")
        .run();
    bench::Sentence("REALS (2 4500000) RESHAPE @PAIRS SET .").run();
    bench::Sentence("REALS 1e-3 MULTIPLY @SMALL SET SMALL MAGNITUDE @POSITIVE SET .").run();
    for (const bench::Row& row : bench::rows())
        if (argc < 5 || std::strstr(row.sentence, argv[4]))
            bench::measure(row, numpy, rounds);
    std::printf("targets missed: %d\n", bench::missed);
    return 0;
}
