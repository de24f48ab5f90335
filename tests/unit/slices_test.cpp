#include "parallel/coprocessor.h"
#include "parallel/slices.h"

#include <gtest/gtest.h>

namespace tessor {
namespace {

class Slices : public testing::Test {
protected:
    void TearDown() override { MIN_PARALLEL = 1001; }
};

TEST_F(Slices, LargeCountsLeaveTheMainThreadFree) {
    MIN_PARALLEL = 5005;
    const std::uint32_t uppers[] = {5003, 28752, 52501, 76250, 99999};
    for (std::uint32_t i = 0; i < 5; ++i)
        EXPECT_EQ(UPPER(100000, 5, i), uppers[i]);
    EXPECT_EQ(LOWER(100000, 5, 1), 5004u);
}

TEST_F(Slices, OthersAreEven) {
    MIN_PARALLEL = 5005;
    EXPECT_EQ(UPPER(6000, 5, 0), 1199u);
    EXPECT_EQ(LOWER(6000, 5, 4), 4800u);
    EXPECT_EQ(UPPER(100000, 2, 0), 49999u);
}

TEST_F(Slices, EveryElementIsInOneSlice) {
    for (const std::int32_t least : {-5, 1, 7, 1001, 5005})
        for (std::uint32_t streams = 2; streams < 14; ++streams)
            for (std::uint32_t count = streams; count < 9000; count += 1 + count / 7) {
                MIN_PARALLEL = least;
                std::uint32_t next = 0;
                for (std::uint32_t i = 0; i < streams; ++i) {
                    const Slice slice = slice_of(count, streams, i);
                    EXPECT_EQ(slice.first, next);
                    EXPECT_LE(slice.first, slice.end);
                    next = slice.end;
                }
                EXPECT_EQ(next, count);
            }
}

} // namespace
} // namespace tessor
