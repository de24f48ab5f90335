#include "array/structure.h"
#include "array/system_values.h"
#include "io/writers/exception.h"
#include "scalar/compare.h"
#include "scalar/random.h"
#include "values/array.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <cmath>
#include <unordered_set>
#include <utility>
#include <vector>

namespace tessor {

namespace {

constexpr double modulus = 2147483647.0;
constexpr double furthest = 9e18; ///< what an origin that takes the modulus away gives is no number
constexpr std::int32_t widest_table = 1 << 29; ///< ranges up to this get a bit for each number

bool is_single(const Space& value) {
    return value.rank >= 0 && (value.type & (ISSCALAR | ISONEELEMENT)) && has_data(value);
}

bool whole(const Element& element, double tolerance, std::int32_t& value) {
    double x = element.tag == tag::integer ? element.integer : element.c[0];
    if (element.tag != tag::integer && element.tag != tag::real)
        return false;
    double near = 0;
    if (!(x >= 0) || !near_integer(x, tolerance, near) || !(near <= modulus))
        return false;
    value = static_cast<std::int32_t>(near);
    return true;
}

// Reads count and range. Returns 0, or the number to report.
int read(const Space& count, const Space& range, double tolerance, std::int32_t& n,
         std::int32_t& below) {
    if (!is_single(count) || !is_single(range))
        return 42;
    const Element c = element_at(count, 0);
    const Element r = element_at(range, 0);
    if (c.tag == tag::integer && r.tag == tag::integer && c.integer >= 0 && r.integer >= 0) {
        n = c.integer;
        below = r.integer;
    } else if (r.tag == tag::real) {
        if (!whole(r, tolerance, below) || !whole(c, tolerance, n))
            return 42;
    } else {
        return 144;
    }
    return n > below ? 43 : 0;
}

// The numbers that have been dealt.
class Dealt {
public:
    Dealt(std::int32_t range, std::int32_t origin) : origin_(origin) {
        if (range <= widest_table)
            table_.resize(static_cast<std::size_t>(range) + 2);
    }
    /// False if the number was there.
    bool add(std::int64_t number) {
        const std::int64_t at = number - origin_;
        if (at < 0 || at >= static_cast<std::int64_t>(table_.size()))
            return others_.insert(number).second;
        const bool is_new = !table_[static_cast<std::size_t>(at)];
        table_[static_cast<std::size_t>(at)] = true;
        return is_new;
    }

private:
    std::int64_t origin_;
    std::vector<bool> table_;
    std::unordered_set<std::int64_t> others_;
};

std::int64_t drawn(std::int32_t range, std::int32_t origin) {
    const auto u = static_cast<std::uint32_t>(PRNGS(&prngs_seed));
    const double part = static_cast<double>(u) * range / (origin + modulus);
    return origin + (std::fabs(part) < furthest ? static_cast<std::int64_t>(part) : 0);
}

BlockHandle dealt(std::int32_t n, std::int32_t range, std::int32_t origin) {
    const auto count = static_cast<std::uint32_t>(n);
    BlockHandle block(
        allocate_items(count, sizeof(std::int32_t), encode({Storage::integer, form::number, 0})));
    auto* items = block.as<std::int32_t>();
    Dealt before(n == 1 ? 0 : range, origin);
    std::uint32_t draws = 0;
    for (std::uint32_t i = 0; i < count;) {
        if (++draws % 4096 == 0 && signal_noted())
            take_signals();
        const std::int64_t number = drawn(range, origin);
        if (n == 1 || before.add(number))
            items[i++] = static_cast<std::int32_t>(number);
    }
    return block;
}

} // namespace

Next deal(Activation& run) {
    std::swap(run.top[-1], *run.top);
    std::int32_t n = 0;
    std::int32_t range = 0;
    if (const int number = read(run.top[-1], *run.top, comparison_tolerance(run.quads), n, range))
        return failed(run, number);
    Space hand;
    if (n == 0) {
        make_empty(hand);
        hand.depth = 1;
    } else {
        void* block = dealt(n, range, index_origin(run.quads)).release();
        make_vector(hand, static_cast<std::uint32_t>(n), block, HASINTEGER);
    }
    hand.type |= ISPROBABLE;
    pop(run);
    dereferencepoint(run.top);
    *run.top = hand;
    operations += hand.elements;
    return Next::advance;
}

} // namespace tessor
