// Comparisons in every pair of layouts, and the rule of directories.
#include "array/match.h"
#include "io/opening.h"
#include "samples.h"

#include <gtest/gtest.h>

namespace tessor {
namespace {

class EveryLayoutMatched : public testing::TestWithParam<Sample> {};

// What the loops over packed blocks find must be what the walk over elements finds.
TEST_P(EveryLayoutMatched, AsItsElementsAre) {
    PermanentBlock<MeaningTable> link;
    Activation run(nullptr, &link.value, stack + 1, stack + 1, stack, nullptr, 1);
    for (const Sample& sample : samples)
        for (const std::uint32_t n : {1u, 5u, 300u}) {
            Space left = sample_vector(GetParam(), 300);
            Space right = sample_vector(sample, n);
            Space loose_left = left;
            Space loose_right = right;
            referencepoint(&loose_left);
            referencepoint(&loose_right);
            own_elements(loose_left);
            own_elements(loose_right);
            const Score packed = match(run, left, right);
            const Score loose = match(run, loose_left, loose_right);
            EXPECT_EQ(packed.total, loose.total) << sample.name;
            EXPECT_EQ(packed.score, loose.score) << sample.name;
            EXPECT_EQ(exactmatch(run, left, right), exactmatch(run, loose_left, loose_right))
                << sample.name;
            EXPECT_TRUE(exactmatch(run, left, loose_left));
            EXPECT_TRUE(exactmatch(run, left, left));
            for (Space* space : {&left, &right, &loose_left, &loose_right})
                dereferencepoint(space);
        }
    run.left = true;
}

INSTANTIATE_TEST_SUITE_P(All, EveryLayoutMatched, testing::ValuesIn(samples),
                         [](const auto& sample) { return sample.param.name; });

TEST(Directories, StayInside) {
    for (const char* inside : {"", "a", "a/../b", "a/b/../../c", "..", "a/..", "a/../..", ".x/y",
                               "...", ".../a", "..a/b", "a//../b", "a/./../b", "a/"})
        EXPECT_TRUE(checkpath(inside)) << inside;
    for (const char* outside : {"/", "/a", "//a", "../b", "../", "a/../../b", ".x/../b", "./../b",
                                "a/.b/../../c", "a//../../b", ".../../b"})
        EXPECT_FALSE(checkpath(outside)) << outside;
}

} // namespace
} // namespace tessor
