#include "parallel/slices.h"

#include "parallel/coprocessor.h"

#include <algorithm>

namespace tessor {

std::uint32_t UPPER(std::uint32_t count, std::uint32_t streams, std::uint32_t index) {
    const std::int64_t last = std::int64_t{count} - 1;
    if (index + 1 >= streams)
        return static_cast<std::uint32_t>(last);
    // A share is rounded up from a fraction of three quarters on.
    const double each = static_cast<double>(count) / streams;
    const auto least = static_cast<std::uint32_t>(MIN_PARALLEL);
    const bool large = streams >= 3 && each > least;
    const double rest = large ? static_cast<double>(count - least) / (streams - 1) : each;
    const auto share = static_cast<std::int64_t>(rest + 0.25);
    const std::int64_t first = large ? std::int64_t{least} - 1 : share;
    return static_cast<std::uint32_t>(std::clamp(first + index * share - 1, std::int64_t{0}, last));
}

std::uint32_t LOWER(std::uint32_t count, std::uint32_t streams, std::uint32_t index) {
    return index == 0 ? 0 : UPPER(count, streams, index - 1) + 1;
}

} // namespace tessor
