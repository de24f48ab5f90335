// The rows of bench_operators: sentences over named arrays, and the plain loops beside them.
#pragma once

#include <cstddef>
#include <vector>

namespace bench {

inline constexpr std::size_t length =
    9'000'000; ///< elements of each array; matrices of 3000 by 3000

struct Row {
    const char* sentence;
    void (*loop)();
    double target;       ///< the most it may take of the loop's time; 0: only shown
    const char* numpy;   ///< the same in NumPy; null: nothing comparable
    double numpy_target; ///< 0: only shown, where its results differ in their bits
};

std::vector<Row> rows();

} // namespace bench
