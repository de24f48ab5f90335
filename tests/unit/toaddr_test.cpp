#include "engine/toaddr.h"

#include "values/array.h"
#include "values/block.h"
#include "values/instructions.h"
#include "values/native_stack.h"
#include "values/refderef.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace tessor {
namespace {

std::string form_of(const Space& value, int nested = 0) {
    const BlockHandle key(TOAddr(value, nested));
    return key ? key.as<char>() : "(too deep)";
}

std::string form_of(double value) {
    Space space;
    make_real(space, value);
    return form_of(space);
}

template <void (*Write)(KeyText&, double)>
std::string written(double value) {
    KeyText text;
    Write(text, value);
    return std::string(text.view());
}

// The number that a text of rtox stands for.
double read_back(const std::string& text) {
    const std::size_t colon = text.find(':');
    double exponent = 0;
    double place = 1;
    std::size_t at = text[0] == '-' ? 1 : 0;
    for (const double sign = at ? -1 : 1; at < colon; ++at, place *= 16)
        exponent += sign * place * (text[at] - '@');
    at = colon + 1;
    const bool negative = text[at] == '-';
    double value = 0;
    place = 1;
    for (at += negative ? 1 : 0; at < text.size(); ++at, place /= 16)
        value += place * (text[at] - '@');
    value = std::scalbn(value, static_cast<int>(exponent));
    return negative ? -value : value;
}

TEST(TextForm, WholeRealsHaveTheTextOfTheInteger) {
    for (const std::int32_t value : {0, 1, -1, 16, 255, -256, 2147483647, -2147483647 - 1}) {
        Space space;
        make_integer(space, value);
        EXPECT_EQ(form_of(space), form_of(static_cast<double>(value)));
    }
    EXPECT_EQ(form_of(-0.0), "`\\)`");
    EXPECT_EQ(form_of(4294967296.0), "`\\@@@@@@@@A)`");
    EXPECT_EQ(form_of(0x1p64), "`\\" + std::string(16, '@') + "A)`");
    EXPECT_EQ(form_of(-0x1p1000), "`\\-" + std::string(250, '@') + "A)`");
}

TEST(TextForm, RealsKeepEveryBit) {
    double value = 1.0 / 3;
    for (int i = 0; i < 2000; ++i) {
        EXPECT_EQ(read_back(written<rtox>(value)), value);
        EXPECT_EQ(read_back(written<rtox>(-value)), -value);
        value *= i % 2 == 0 ? 1.37 : 0.31;
        if (value < 1e-290)
            value = 0.7e300;
    }
    for (const double edge : {std::numeric_limits<double>::min(), 0x1.fffffffffffffp-1, 5e-324,
                              0x1.0000000000001p0, 0x1.fffffffffffffp51})
        EXPECT_EQ(read_back(written<rtox>(edge)), edge);
}

TEST(TextForm, ComponentsAreShorterThanReals) {
    EXPECT_EQ(written<realtox>(NAN), "X");
    EXPECT_EQ(written<realtox>(INFINITY), "");
    EXPECT_EQ(written<realtox>(-INFINITY), "-");
    EXPECT_EQ(written<realtox>(-17.0), "-AA");
    EXPECT_EQ(written<realtox>(2147483646.0), "NOOOOOOG");
    EXPECT_EQ(written<realtox>(2147483647.0), "NA:AOOOOOOOL");
}

TEST(TextForm, ATextInsideAValueIsQuoted) {
    Space text;
    make_text(text, "ab", 2);
    EXPECT_EQ(form_of(text), "ab");
    EXPECT_EQ(form_of(text, 1), "'ab'");
    dereferencepoint(&text);
}

TEST(TextForm, UnicodeIsHexadecimal) {
    ArrayBuilder builder;
    Element element;
    element.tag = tag::unicode;
    element.unicode = 0x3b1;
    builder.add(element);
    element.unicode = 0;
    builder.add(element);
    Space value;
    make_vector(value, 2, builder.finish(), HASUNICODE);
    EXPECT_EQ(form_of(value), "('3B1''0')");
    dereferencepoint(&value);
}

TEST(TextForm, ConditionalValuesSayWhen) {
    Space value;
    make_integer(value, 1);
    value.type |= CONDITIONAL;
    EXPECT_EQ(form_of(value), "`\\A)`?n");
    value.type |= YES;
    EXPECT_EQ(form_of(value), "`\\A)`?y");
}

TEST(TextForm, OtherKindsOfCell) {
    Space cell{};
    cell.rank = kind::UNUSED;
    EXPECT_EQ(form_of(cell), "X");
    cell.rank = kind::INVALID;
    EXPECT_EQ(form_of(cell), "Y");
    cell.rank = kind::ADDRESS;
    EXPECT_EQ(form_of(cell), "@ ");
    cell.rank = kind::OPERATOR;
    cell.operation = op::MASK;
    const std::string plain = form_of(cell);
    cell.suboperation = op::WRAP;
    EXPECT_EQ(form_of(cell), std::string(instruction_table[op::WRAP].code) + plain);
    cell.operation = op::NOOP;
    EXPECT_EQ(form_of(cell), "");
}

TEST(TextForm, TooDeepForTheNativeStackIsNoText) {
    native_stack_floor = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) - (1u << 20);
    Space value;
    make_integer(value, 1);
    constexpr int levels = 50000;
    for (int i = 0; i < levels; ++i) {
        ArrayBuilder builder(1);
        Element element;
        element.tag = tag::subarray;
        element.subarray = enclose(value);
        builder.add(element);
        make_vector(value, 1, builder.finish(), STRUCTURED | ISSTRUCTURE);
    }
    EXPECT_EQ(TOAddr(value, 0), nullptr);
    measure_native_stack();
    dereferencepoint(&value);
}

} // namespace
} // namespace tessor
