// The pool of worker threads. For now there is one stream, the main thread.
#pragma once

#include <cstdint>

namespace tessor {

extern std::uint32_t processors; ///< streams in use, the main thread included
extern std::uint32_t cpus;       ///< streams started: the ceiling of PARALLEL
extern std::uint32_t thrds;      ///< threads per processor
extern std::int32_t MIN_PARALLEL;

/// Blocks until no worker has an outstanding slice, and merges what they found.
inline void wait_for_coprocessors() {}

} // namespace tessor
