// The guard at the door of every recursion on the native stack.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessor {

/// Lowest address that a recursion of this thread may reach; set by measure_native_stack.
extern constinit thread_local std::uintptr_t native_stack_floor;

/// Bytes for a thread on which recursions may go as deep as on the main one.
std::size_t native_stack_size();

/// Reads the stack limit of this thread and leaves a reserve for what runs without a guard of its
/// own. Call it once on each thread.
void measure_native_stack();

/// What a recursion that may end in a report leaves to the report, whose writers are guarded too.
inline constexpr std::size_t for_report = std::size_t{64} << 10;

/// True while there is enough native stack to go one level deeper, with so many bytes to spare;
/// false is number 806.
inline bool stack_guard(std::size_t spare = 0) {
    char here;
    return reinterpret_cast<std::uintptr_t>(&here) > native_stack_floor + spare;
}

} // namespace tessor
