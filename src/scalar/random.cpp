#include "scalar/random.h"

#include "scalar/simd.h"

#include <algorithm>
#include <ctime>

namespace tessor {

namespace {

constexpr std::int32_t modulus = 2147483647;
constexpr std::int32_t multiplier = 48271;
constexpr std::int32_t quotient = modulus / multiplier;
constexpr std::int32_t remainder = modulus % multiplier;
constexpr std::int32_t default_seed = 123456789;
constexpr std::uint32_t thread_offset = 22925;

// The remainder by the modulus of a product of two numbers up to it, 1 to the modulus.
[[gnu::always_inline]] constexpr std::uint64_t reduced(std::uint64_t product) {
    constexpr std::uint64_t m = modulus;
    const std::uint64_t sum = (product & m) + (product >> 31);
    return sum > m ? sum - m : sum;
}

// Places between values that are computed side by side, and the multiplier of as many steps.
constexpr std::uint32_t lanes = 32;
constexpr std::uint64_t jump = [] {
    std::uint64_t power = 1;
    for (std::uint32_t i = 0; i < lanes; ++i)
        power = reduced(power * multiplier);
    return power;
}();

[[gnu::always_inline]] inline std::int32_t jumped(std::int32_t value) {
    return static_cast<std::int32_t>(reduced(jump * static_cast<std::uint32_t>(value)));
}

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

// Behind the first few values each follows from the one `lanes` places before: that many steps are
// one product. The modulus stands for 0, here as in PRNGS.
void PRNGS_row(std::int32_t* seed, std::int32_t* values, std::uint32_t n) {
    if (n == 0)
        return;
    for (std::uint32_t i = 0; i < std::min(n, lanes); ++i)
        values[i] = PRNGS(seed);
    run_simd([=]() __attribute__((always_inline)) {
        for (std::uint32_t i = lanes; i < n; i += lanes) {
            const std::uint32_t length = std::min(lanes, n - i);
            const std::int32_t* before = values + i - lanes;
            std::int32_t* next = values + i;
#pragma GCC ivdep
            for (std::uint32_t k = 0; k < length; ++k)
                next[k] = jumped(before[k]);
        }
    });
    *seed = values[n - 1];
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
