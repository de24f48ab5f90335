#include "array/alike.h"

#include "io/writers/exception.h"
#include "scalar/compare.h"
#include "scalar/simd.h"
#include "values/array.h"
#include "values/shared.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace tessor {

namespace {

#ifdef TESSOR_TIGHT
constexpr std::uint32_t stretch = 7;
constexpr std::uint32_t lookout = 14;
#else
constexpr std::uint32_t stretch = 1024;
constexpr std::uint32_t lookout = 64 * stretch; ///< elements between two looks at noted signals
#endif

// A block's items from one on; what a byte stands for is a number of its block's tag.
struct Items {
    const void* block;
    Storage storage;
    std::int32_t tag;
};

Items items_of(const Space& space) {
    const Storage storage = storage_of(space.data_pointer);
    return {space.data_pointer, storage, storage_tag(storage)};
}

// Counts in lanes as wide as the items. A lane of a byte can't count further than 255.
template <class L, class R>
using Lane = std::conditional_t<
    sizeof(L) == 8 || sizeof(R) == 8, std::uint64_t,
    std::conditional_t<sizeof(L) == 4 || sizeof(R) == 4, std::uint32_t, std::uint8_t>>;

template <class L, class R>
[[gnu::always_inline]] inline bool equal(L l, R r) {
    if constexpr (std::is_same_v<L, double> || std::is_same_v<R, double>)
        return no_distance(static_cast<double>(l), static_cast<double>(r));
    else
        return l == r;
}

template <class L, class R, int width>
[[gnu::always_inline]] inline std::uint64_t count_equal(const L* l, const R* r, std::uint32_t n) {
    constexpr std::uint32_t run = sizeof(Lane<L, R>) == 1 ? 192 : 1u << 20;
    std::uint64_t count = 0;
    for (std::uint32_t from = 0; from < n; from += run) {
        const std::uint32_t end = std::min(n - from, run);
        Lane<L, R> lane = 0;
        for (std::uint32_t i = 0; i < end; ++i) {
            bool same = true;
            for (int c = 0; c < width; ++c)
                same &= equal(l[i * width + c], r[i * width + c]);
            lane = static_cast<Lane<L, R>>(lane + same);
        }
        count += lane;
        l += std::size_t{end} * width;
        r += std::size_t{end} * width;
    }
    return count;
}

template <class L, class R, int width>
std::uint64_t equal_items(const void* left, const void* right, std::uint32_t from,
                          std::uint32_t n) {
    const L* l = static_cast<const L*>(left) + std::size_t{from} * width;
    const R* r = static_cast<const R*>(right) + std::size_t{from} * width;
    std::uint64_t count = 0;
    std::uint64_t* out = &count;
    run_simd([=]() __attribute__((always_inline)) { *out = count_equal<L, R, width>(l, r, n); });
    return count;
}

using Count = std::uint64_t (*)(const void* left, const void* right, std::uint32_t from,
                                std::uint32_t n);

template <class Plain>
Count count_of_pair(bool left_bytes, bool right_bytes) {
    using Byte = std::uint8_t;
    if (left_bytes)
        return right_bytes ? equal_items<Byte, Byte, 1> : equal_items<Byte, Plain, 1>;
    return right_bytes ? equal_items<Plain, Byte, 1> : equal_items<Plain, Plain, 1>;
}

Count count_of_items(const Items& left, const Items& right) {
    switch (left.tag) {
    case tag::ascii: return equal_items<std::uint8_t, std::uint8_t, 1>;
    case tag::integer:
        return count_of_pair<std::int32_t>(left.storage == Storage::truth,
                                           right.storage == Storage::truth);
    case tag::real:
        return count_of_pair<double>(left.storage == Storage::degree,
                                     right.storage == Storage::degree);
    case tag::complex: return equal_items<double, double, 2>;
    case tag::quaternion: return equal_items<double, double, 4>;
    default: return equal_items<double, double, 8>;
    }
}

// The same bits are the same values.
bool same_bits(const Items& left, const Items& right, std::uint32_t from, std::uint32_t n) {
    const std::size_t size = item_size(left.storage);
    return left.storage == right.storage
           && std::memcmp(static_cast<const char*>(left.block) + from * size,
                          static_cast<const char*>(right.block) + from * size, n * size)
                  == 0;
}

// The first of n pairs that differs; one of them does.
std::uint32_t first_difference(Count count, const Items& left, const Items& right,
                               std::uint32_t from, std::uint32_t n) {
    while (n > 1) {
        const std::uint32_t half = n / 2;
        const bool behind = count(left.block, right.block, from, half) == half;
        from += behind ? half : 0;
        n = behind ? n - half : half;
    }
    return from;
}

bool is_packed(const Space& space) {
    return !(space.type & ISINPLACE) && space.rank >= 0 && space.data_pointer
           && storage_tag(storage_of(space.data_pointer)) != tag::none;
}

} // namespace

bool comparable_blocks(const Space& left, const Space& right) {
    return is_packed(left) && is_packed(right);
}

Alike alike(const Space& left, const Space& right, std::uint32_t n) {
    const Items l = items_of(left);
    const Items r = items_of(right);
    if (l.tag != r.tag)
        return {};
    const Count count = count_of_items(l, r);
    std::uint64_t values = 0;
    for (std::uint32_t from = 0; from < n; from += std::min(lookout, n - from)) {
        if (signal_noted())
            take_signals();
        values += count(l.block, r.block, from, std::min(lookout, n - from));
    }
    return {n, values, n * static_cast<std::uint64_t>(components_of(l.tag))};
}

bool all_alike(const Space& left, const Space& right, std::uint32_t n, std::uint64_t& reals) {
    const Items l = items_of(left);
    const Items r = items_of(right);
    if (l.tag != r.tag)
        return n == 0;
    const auto width = static_cast<std::uint64_t>(components_of(l.tag));
    const Count count = count_of_items(l, r);
    for (std::uint32_t from = 0; from < n;) {
        if (signal_noted())
            take_signals();
        const std::uint32_t part = std::min(stretch, n - from);
        if (!same_bits(l, r, from, part) && count(l.block, r.block, from, part) != part) {
            reals = (first_difference(count, l, r, from, part) + 1) * width;
            return false;
        }
        from += part;
    }
    reals = n * width;
    return true;
}

} // namespace tessor
