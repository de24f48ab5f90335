// The division of a count of elements between streams.
#pragma once

#include <cstdint>

namespace tessor {

/// The last element of a stream's slice. Where each stream would get more than MIN_PARALLEL
/// elements and there are at least three, the main thread gets MIN_PARALLEL - 1 and is soon free;
/// otherwise all get about the same. The last stream gets what is left.
std::uint32_t UPPER(std::uint32_t count, std::uint32_t streams, std::uint32_t index);

/// The first element of a stream's slice: behind the one before. It may be beyond UPPER, or equal
/// to the count, where there is nothing left.
std::uint32_t LOWER(std::uint32_t count, std::uint32_t streams, std::uint32_t index);

/// Elements first to end - 1; none if first is end.
struct Slice {
    std::uint32_t first;
    std::uint32_t end;
};
inline Slice slice_of(std::uint32_t count, std::uint32_t streams, std::uint32_t index) {
    return {LOWER(count, streams, index), UPPER(count, streams, index) + 1};
}

} // namespace tessor
