// What RESHAPE does to blocks and counts; what it prints is in the transcripts.
#include "samples.h"
#include "values/reshape.h"

#include <cstring>
#include <gtest/gtest.h>

namespace tessor {
namespace {

class EveryLayoutReshaped : public testing::TestWithParam<Sample> {};

TEST_P(EveryLayoutReshaped, RepeatsOrCutsInBlockOrder) {
    const std::vector<std::int32_t> shapes[] = {{1}, {2}, {5}, {13}, {2, 2}, {3, 1, 5}, {1, 1}};
    for (const auto& shape : shapes)
        for (const bool shared : {false, true}) {
            Space left = sample_vector(GetParam(), 5);
            const std::vector<Element> before = elements_of(left);
            Space other = left;
            referencepoint(&other);
            if (!shared)
                dereferencepoint(&other);
            Space right = integers(shape);
            void* extents = right.data_pointer;
            ASSERT_EQ(reshape_data(&left, &right), 0);
            std::uint32_t count = 1;
            for (const std::int32_t e : shape)
                count *= static_cast<std::uint32_t>(e);
            EXPECT_EQ(left.shape_pointer, extents);
            EXPECT_EQ(left.rank, static_cast<std::int32_t>(shape.size()));
            EXPECT_EQ(type_of(left), GetParam().kinds | (shape.size() < 2 ? ISVECTOR : ISARRAY)
                                         | (count == 1 ? ISONEELEMENT : 0u));
            EXPECT_EQ(left.last_index, static_cast<std::int32_t>(count) - 1);
            std::vector<Element> expected;
            for (std::uint32_t i = 0; i < count; ++i)
                expected.push_back(before[i % 5]);
            EXPECT_TRUE(same(elements_of(left), expected));
            EXPECT_EQ(left.data_pointer == other.data_pointer, shared && count == 5);
            dereferencepoint(&left);
            if (shared) {
                EXPECT_EQ(refr(other.data_pointer), 1);
                EXPECT_TRUE(same(elements_of(other), before));
                dereferencepoint(&other);
            }
        }
}

TEST_P(EveryLayoutReshaped, TakesZeroesAndNothing) {
    Space left = sample_vector(GetParam(), 5);
    const std::vector<Element> before = elements_of(left);
    Space other = left;
    referencepoint(&other);
    Space nothing;
    make_empty(nothing);
    ASSERT_EQ(reshape_data(&left, &nothing), 0);
    EXPECT_TRUE(same(elements_of(left), before));
    EXPECT_EQ(refr(left.data_pointer), 1);
    EXPECT_EQ(refr(other.data_pointer), 1);
    Space right = integers({65536, 65536, 0});
    ASSERT_EQ(reshape_data(&left, &right), 0);
    EXPECT_EQ(type_of(left), ISEMPTY | ISARRAY);
    EXPECT_EQ(left.data_pointer, nullptr);
    EXPECT_EQ(extent(left, 1), 65536);
    EXPECT_EQ(left.depth, 1);
    dereferencepoint(&left);
    dereferencepoint(&other);
}

INSTANTIATE_TEST_SUITE_P(Values, EveryLayoutReshaped, testing::ValuesIn(samples),
                         [](const auto& tested) { return tested.param.name; });

Space vector_of(const std::vector<Element>& elements) {
    ArrayBuilder builder;
    for (const Element& element : elements)
        builder.add(element);
    const std::uint32_t kinds = builder.kinds();
    Space space;
    make_vector(space, static_cast<std::uint32_t>(elements.size()), builder.finish(), kinds);
    return space;
}

Element with_components(std::int32_t tag, std::vector<double> components) {
    Element element;
    element.tag = tag;
    std::copy(components.begin(), components.end(), element.c);
    return element;
}

TEST(ReshapeOfScalars, MakesVectors) {
    Space left;
    make_integer(left, 7, form::boolean, mark::probable);
    Space right;
    make_integer(right, 3);
    ASSERT_EQ(reshape_data(&left, &right), 0);
    EXPECT_EQ(type_of(left), ISVECTOR | HASINTEGER);
    EXPECT_EQ(left.type & ISINPLACE, 0u);
    EXPECT_TRUE(same(element_at(left, 2), integer_element(7, form::boolean, mark::probable)));
    dereferencepoint(&left);
}

TEST(ReshapeByNumbers, TakesWholeOnesOfAnyKind) {
    Element named = integer_element(2, form::boolean, mark::named);
    named.name = stringdup("#TWO");
    count_up(named.name);
    Space other = vector_of({real_element(2), named, with_components(tag::complex, {2, 0}),
                             with_components(tag::quaternion, {2, 1, -1, 0}),
                             with_components(tag::octonion, {1})});
    const std::vector<Element> before = elements_of(other);
    Space right = other;
    referencepoint(&right);
    Space left;
    make_real(left, 0.5);
    ASSERT_EQ(reshape_data(&left, &right), 0);
    EXPECT_EQ(left.elements, 16u);
    EXPECT_EQ(left.rank, 5);
    EXPECT_EQ(extent(left, 3), 2);
    EXPECT_TRUE(same(elements_of(other), before));
    EXPECT_EQ(refr(named.name), 3);
    dereferencepoint(&left);
    dereferencepoint(&other);
    EXPECT_EQ(refr(named.name), 1);
    release_block(named.name);
}

TEST(ReshapeFailures, LeaveBothOperands) {
    const Element half = real_element(0.5);
    const Element letter = character_element('a');
    const Element file = with_components(tag::file, {});
    Space square = integers({2, 2, 2, 2});
    Space two = integers({2, 2});
    ASSERT_EQ(reshape_data(&square, &two), 0);
    Space empty;
    make_empty(empty);
    const Space numbers = integers({1, 2});
    const Space lone_file = vector_of({file});
    Space mixed = vector_of({letter, letter, file});
    mixed.type |= COMPLEXED;
    const struct {
        const Space& left;
        Space right;
        int number;
    } rows[] = {
        {numbers, square, 10},
        {empty, integers({1}), 11},
        {numbers, integers({2, -1}), 113},
        {numbers, vector_of({integer_element(0), half}), 113},
        {numbers, vector_of({real_element(3e9)}), 113},
        {numbers, vector_of({with_components(tag::complex, {2, 1})}), 113},
        {numbers, integers({65536, 65536}), 146},
        {numbers, vector_of({mixed_element(2)}), 1101},
        {numbers, vector_of({half, letter}), 1102},
        {mixed, integers({4}), 994},
        {lone_file, integers({4}), 991},
    };
    for (const auto& row : rows) {
        Space left = row.left;
        Space right = row.right;
        EXPECT_EQ(reshape_data(&left, &right), row.number);
        EXPECT_EQ(std::memcmp(&left, &row.left, sizeof left), 0) << row.number;
        EXPECT_EQ(std::memcmp(&right, &row.right, sizeof right), 0) << row.number;
        dereferencepoint(&right);
    }
    Space first_two = mixed;
    Space right = integers({2});
    EXPECT_EQ(reshape_data(&first_two, &right), 0) << "no file has to be copied";
    for (Space kept : {first_two, numbers, lone_file})
        dereferencepoint(&kept);
}

} // namespace
} // namespace tessor
