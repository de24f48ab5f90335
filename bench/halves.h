// Plain loops that one thread runs, or two, each on half of the elements.
#pragma once

#include <cstddef>
#include <vector>

namespace bench {

struct HalvedRow {
    const char* sentence; ///< over the arrays A and B
    void (*loop)(const double* a, const double* b, double* result, std::size_t n);
};

std::vector<HalvedRow> halved_rows();

/// Makes the arrays of the plain loops.
void prepare_plain(std::size_t n);
/// Nanoseconds for one execution, by one thread or by two.
double plain_time(const HalvedRow& row, std::size_t n, int times, bool halved);

} // namespace bench
