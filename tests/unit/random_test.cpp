#include "scalar/random.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace tessor {
namespace {

std::int32_t seeded(std::int32_t value, int thread_index = 0) {
    std::int32_t seed = 0;
    SEED_PRNGS(thread_index, &seed, value);
    return seed;
}

TEST(Random, StepsLikeTheMinimalStandardGenerator) {
    std::int32_t seed = seeded(1);
    EXPECT_EQ(PRNGS(&seed), 48271);
    EXPECT_EQ(PRNGS(&seed), 182605794);
    EXPECT_EQ(PRNGS(&seed), 1291394886);
    EXPECT_EQ(seed, 1291394886);
    seed = seeded(0);
    EXPECT_EQ(PRNGS(&seed), 115541394);
}

TEST(Random, AgreesWithTheProductModuloTheModulus) {
    std::int32_t seed = seeded(987654321);
    std::uint64_t expected = 987654321;
    for (int i = 0; i < 100000; ++i) {
        expected = expected * 48271 % 2147483647;
        ASSERT_EQ(static_cast<std::uint64_t>(PRNGS(&seed)), expected);
    }
}

TEST(Random, DrawsRowsAsOneByOne) {
    std::vector<std::int32_t> row(5000);
    for (const std::int32_t start : {1, 0, 2147483646, -7})
        for (const std::uint32_t n : {0u, 1u, 31u, 32u, 33u, 64u, 100u, 5000u}) {
            std::int32_t seed = start;
            std::int32_t row_seed = start;
            PRNGS_row(&row_seed, row.data(), n);
            for (std::uint32_t i = 0; i < n; ++i)
                ASSERT_EQ(row[i], PRNGS(&seed)) << start << " at " << i;
            EXPECT_EQ(row_seed, seed);
        }
}

TEST(Random, SeedsEachThreadApart) {
    EXPECT_EQ(seeded(5), 5);
    EXPECT_EQ(seeded(5, 3), 5 + 3 * 22925);
    EXPECT_EQ(seeded(0), 123456789);
    EXPECT_EQ(seeded(2147483647), 0);
    EXPECT_GT(seeded(-1), 0);
}

TEST(Random, StaysAtTheModulusFromZeroOn) {
    std::int32_t seed = seeded(2147483647);
    EXPECT_EQ(PRNGS(&seed), 2147483647);
    EXPECT_EQ(PRNGS(&seed), 2147483647);
    EXPECT_TRUE(draw(1.0, &seed));
    EXPECT_FALSE(draw(0.5, &seed));
}

TEST(Random, TakesAnySeedWithoutLeavingItsRange) {
    for (std::int32_t seed : {-2147483647 - 1, -2147483647, -1, 44488, -44488, 2147483646}) {
        const std::int32_t value = PRNGS(&seed);
        EXPECT_GE(value, 1);
    }
}

TEST(Random, DrawsADegreeAsOftenAsItSays) {
    std::int32_t seed = seeded(42);
    int yes = 0;
    for (int i = 0; i < 100000; ++i) {
        yes += draw(0.25, &seed) ? 1 : 0;
        ASSERT_TRUE(draw(1.0, &seed));
        ASSERT_FALSE(draw(0.0, &seed));
    }
    EXPECT_NEAR(yes, 25000, 500);
}

} // namespace
} // namespace tessor
