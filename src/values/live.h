// What checked builds (TESSOR_VERIFY) keep of every block of the heap: a list of the live ones, and
// refusals on demand. Nothing of this is called in any other build.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessor {

#ifdef TESSOR_VERIFY
inline constexpr bool verifies = true;
#else
inline constexpr bool verifies = false;
#endif

/// Stands in front of what every block has in front.
struct alignas(16) LiveBlock {
    LiveBlock* before;
    LiveBlock* after;
    std::int32_t found; ///< references met by the recount under way
};

/// Bytes in front of a block's data: capacity and header, and in all behind the entry in the list.
inline constexpr std::size_t prefix_bytes = 16;
inline constexpr std::size_t ahead_of_data = prefix_bytes + (verifies ? sizeof(LiveBlock) : 0);

/// The entry of a block that came from allocate_block, and the block of an entry.
inline LiveBlock& live_block(const void* block) {
    char* data = static_cast<char*>(const_cast<void*>(block));
    return *reinterpret_cast<LiveBlock*>(data - ahead_of_data);
}
inline const void* data_of(const LiveBlock& live) {
    return reinterpret_cast<const char*>(&live) + ahead_of_data;
}

/// Enters a block in the list, or takes it out. Any thread may.
void enter_live(LiveBlock& block) noexcept;
void leave_live(LiveBlock& block) noexcept;

/// The list, for the main thread while no other is at work, and its length.
LiveBlock* first_live();
std::size_t live_blocks();

/// How many more allocations of this thread succeed before one fails; below 0: all.
extern constinit thread_local std::int64_t allocations_left;
/// Those that have failed so far.
extern std::int64_t refusals;
/// Whether every allocation behind the one that failed is to fail too.
extern bool storage_stays_short;

/// Counts an allocation; true if it is to fail.
inline bool refuses_storage() {
    if (allocations_left < 0)
        return false;
    if (allocations_left > 0) {
        --allocations_left;
        return false;
    }
    if (!storage_stays_short)
        allocations_left = -1;
    ++refusals;
    return true;
}

} // namespace tessor
