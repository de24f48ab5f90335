// Time and the statistics of rounds.
#pragma once

#include "work.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace bench {

inline Nanoseconds now() {
    const auto t = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::nano>(t).count();
}

struct Spread {
    double median;
    double least;
    double most;
};

inline Spread spread_of(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return {values[values.size() / 2], values.front(), values.back()};
}

} // namespace bench
