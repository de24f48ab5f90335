#include "scalar/random.h"

#include <ctime>

namespace tessor {

namespace {

constexpr std::int32_t modulus = 2147483647;
constexpr std::int32_t multiplier = 48271;
constexpr std::int32_t quotient = modulus / multiplier;
constexpr std::int32_t remainder = modulus % multiplier;
constexpr std::int32_t default_seed = 123456789;
constexpr std::uint32_t thread_offset = 22925;

static_assert(quotient == 44488 && remainder == 3399);

std::int32_t base_value(std::int32_t value) {
    if (value > 0)
        return value % modulus;
    if (value == 0)
        return default_seed;
    return static_cast<std::int32_t>(std::time(nullptr) % modulus);
}

} // namespace

constinit thread_local std::int32_t prngs_seed = default_seed;
constinit thread_local bool drawn = false;

// Schrage's way of stepping: the product never leaves 32 bits.
std::int32_t PRNGS(std::int32_t* seed) {
    const std::int32_t q = *seed / quotient;
    const std::int32_t r = *seed % quotient;
    std::int32_t t = multiplier * r - remainder * q;
    if (t <= 0)
        t += modulus;
    *seed = t;
    return t;
}

void SEED_PRNGS(int thread_index, std::int32_t* seed, std::int32_t value) {
    const auto base = static_cast<std::uint32_t>(base_value(value));
    *seed =
        static_cast<std::int32_t>(base + thread_offset * static_cast<std::uint32_t>(thread_index));
}

bool draw(double degree, std::int32_t* seed) {
    for (;;) {
        const std::int32_t value = PRNGS(seed);
        const double r = static_cast<double>(static_cast<std::uint32_t>(value)) / modulus;
        if (r != degree)
            return degree > r;
        // The generator stays at this value: drawing again would never end.
        if (value == modulus)
            return true;
    }
}

} // namespace tessor
