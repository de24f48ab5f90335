// The random generator behind every draw, with one seed for each thread.
#pragma once

#include <cstdint>

namespace tessor {

/// The seed of this thread.
extern constinit thread_local std::int32_t prngs_seed;

/// A verb under way on this thread has drawn for a result that isn't always drawn for.
extern constinit thread_local bool drawn;

/// Steps the seed and returns its new value, 1 to 2147483647.
std::int32_t PRNGS(std::int32_t* seed);

/// The next n values, as n steps give them.
void PRNGS_row(std::int32_t* seed, std::int32_t* values, std::uint32_t n);

/// Seeds the stream of a thread: by the value if it is above 0, by the usual constant if it is 0,
/// by the clock if it is below.
void SEED_PRNGS(int thread_index, std::int32_t* seed, std::int32_t value);

/// Decides a degree from 0 to 1 by a draw: 1 is always true, 0 never.
bool draw(double degree, std::int32_t* seed);

} // namespace tessor
