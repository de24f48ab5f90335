// The numbered reports, the debugging aids, and numbers as text.
#include "io/writers/dump.h"
#include "io/writers/exception.h"
#include "io/writers/numbers.h"
#include "values/array.h"
#include "values/instructions.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <bit>
#include <csignal>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace tessor {
namespace {

TEST(Numbers, AreWhatPrintfWrites) {
    std::mt19937_64 bits(7);
    char expected[64];
    const auto check = [&](double value) {
        for (const int digits : {display_digits, source_digits}) {
            char text[number_room];
            const std::string got(text, number_text(text, value, digits));
            std::snprintf(expected, sizeof expected, "%.*g", digits, value);
            ASSERT_EQ(got, expected);
        }
    };
    for (int n = 0; n < 20000; ++n) {
        check(std::bit_cast<double>(bits()));
        check(std::bit_cast<double>(bits() & 0x800fffffffffffff));
        check(static_cast<double>(static_cast<std::int64_t>(bits()) >> (n % 60)));
    }
    for (const double value : {0.0, -0.0, 999999999.0, 1e9, -1e10, 99999999995.0, 1e17})
        check(value);
}

TEST(Reports, NumbersAndTheirCells) {
    Space cell{};
    cell.rank = kind::OPERATOR;
    cell.type = ISOPERATOR;
    cell.operation = op::ADD;
    Space value;
    make_integer(value, 7);
    Space* top = &value;
    testing::internal::CaptureStderr();
    exception(17, &top, &cell);
    A_Problem = 1;
    exception(85, &top, nullptr);
    A_Problem = 0;
    exception(5000, nullptr, nullptr);
    exception(27, &top, &cell);
    EXPECT_EQ(A_Problem, 1);
    exception(0, nullptr, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "\n17 - dyadic function arguments are not conformable.\n\n"
              "Instruction:\n . OPERATOR:\t\tADD"
              "\n85 - right value to circular function must be integer -7 thru 7.\n\n"
              "Top of stack:\n 7"
              "\n--- Good bye. (999) ---\n\n"
              "\n27 - out of main storage.\n"
              "\n--- Hello. (0) ---");
    EXPECT_THROW(exception(999, nullptr, nullptr), ErrorJump);
    EXPECT_TRUE(endprocess);
    endprocess = stepping = false;
    A_Problem = 0;
}

TEST(Aids, TypesAndRecords) {
    testing::internal::CaptureStdout();
    detail_type("x", CONDITIONAL | YES | HASREAL | ISOPERATOR);
    type(0);
    ArrayBuilder builder;
    builder.add_integer(1);
    builder.add_integer(2);
    Space pair;
    make_vector(pair, 2, builder.finish(), HASINTEGER);
    at(pair);
    dereferencepoint(&pair);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              " x HASREAL CONDITIONAL YES ISOPERATOR\n  END\n  HASINTEGER ISVECTOR\n"
              "ARRAY depth 1, elements 2  shape: [ 2 ]refr(data_pointer) 1, refr(shape_pointer) 1"
              "\n ( 1 2 )");
}

TEST(Reports, SignalsAreTakenOneAtATime) {
    note_signal(SIGBUS);
    note_signal(SIGQUIT);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const auto taken = [] {
        try {
            take_signals();
        } catch (const ErrorJump& jump) {
            return jump.value;
        }
        return 0;
    };
    EXPECT_EQ(taken(), -1000 - SIGQUIT);
    EXPECT_EQ(taken(), -1000 - SIGBUS);
    EXPECT_EQ(taken(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n** User interrupt. **\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "\nSEGMENTATION VIOLATION\n");
    EXPECT_EQ(violations, 1);
    violations = 0;
    A_Problem = 0;
}

TEST(Reports, TheThirdMemoryFaultEndsTheProcess) {
    const auto three = [] {
        for (int fault = 0; fault < 3; ++fault)
            report_signal(SIGSEGV);
    };
    EXPECT_EXIT(three(), testing::ExitedWithCode((-1000 - SIGSEGV) & 0xff),
                "\n--- SERIOUS INTERNAL ERROR ---\n--- PROCESSING STOPPED --- \n");
}

} // namespace
} // namespace tessor
