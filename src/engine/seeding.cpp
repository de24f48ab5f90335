#include "engine/seeding.h"

#include "engine/stack.h"
#include "parallel/coprocessor.h"
#include "scalar/random.h"
#include "values/array.h"

#include <optional>

namespace tessor {

namespace {

struct Seeding : Job {
    std::int32_t value = 0;
};

void seed_worker(Job& job, std::uint32_t stream) {
    SEED_PRNGS(static_cast<int>(stream), &prngs_seed, static_cast<Seeding&>(job).value);
}

// A real in millionths; of what is too long for 32 bits the low ones.
std::int32_t millionths(double x) {
    const double value = x * 1000000.0;
    constexpr double limit = 9223372036854775808.0;
    if (!(-limit < value && value < limit))
        return 0;
    return static_cast<std::int32_t>(static_cast<std::int64_t>(value));
}

std::optional<std::int32_t> seed_value(const Space& space) {
    const bool single = (space.type & (ISSCALAR | ISONEELEMENT)) != 0;
    if (!single || !(space.type & (HASINTEGER | HASREAL)) || space.rank < 0 || !has_data(space))
        return std::nullopt;
    const Element element = element_at(space, 0);
    if (element.tag == tag::integer)
        return element.integer;
    if (components_of(element.tag) > 0 && (space.type & HASREAL))
        return millionths(element.c[0]);
    return std::nullopt;
}

} // namespace

void seed_streams(std::int32_t value, const Space& cell) {
    wait_for_coprocessors();
    Seeding job;
    job.run = seed_worker;
    job.cell = cell;
    job.value = value;
    if (processors > 1)
        publish(job);
    SEED_PRNGS(0, &prngs_seed, value);
    wait_for_coprocessors();
}

Next seed(Activation& run) {
    const std::optional<std::int32_t> value = seed_value(*run.top);
    if (!value)
        return failed(run, 850);
    seed_streams(*value, *run.now);
    pop(run);
    return Next::advance;
}

Next randomise(Activation& run) {
    seed_streams(seed_by_clock, *run.now);
    return Next::advance;
}

} // namespace tessor
