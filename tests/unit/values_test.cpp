// Blocks, counts and elements below what a session shows.
#include "samples.h"

#include <cstring>
#include <gtest/gtest.h>

namespace tessor {
namespace {

class EveryLayout : public testing::TestWithParam<Sample> {
protected:
    void SetUp() override {
        space_ = sample_vector(GetParam(), 7);
        before_ = elements_of(space_);
    }
    void TearDown() override { dereferencepoint(&space_); }

    Space space_;
    std::vector<Element> before_;
};

TEST_P(EveryLayout, GoesThroughDataElements) {
    for (const Element& element : before_) {
        DataElement slot;
        store(slot, element);
        EXPECT_TRUE(same(unpack(slot), element));
        if (element.tag == tag::octonion)
            release_block(slot.octonion);
    }
    EXPECT_EQ(first_tag(space_), before_[0].tag);
}

TEST_P(EveryLayout, OwnElementsLeaveOtherHoldersAlone) {
    Space copy = space_;
    referencepoint(&copy);
    DataElement* slots = own_elements(copy);
    EXPECT_EQ(refr(slots), 1);
    EXPECT_EQ(refr(space_.data_pointer), 1);
    EXPECT_EQ(storage_of(slots), Storage::elements);
    EXPECT_TRUE(same(elements_of(copy), before_));
    EXPECT_EQ(own_elements(copy), slots);
    dereferencepoint(&copy);
    EXPECT_TRUE(same(elements_of(space_), before_));
}

TEST_P(EveryLayout, WidensToWhatLoopsKnow) {
    Space copy = space_;
    referencepoint(&copy);
    widen(copy);
    EXPECT_LE(storage_of(copy.data_pointer), Storage::octonion);
    EXPECT_TRUE(same(elements_of(copy), before_));
    dereferencepoint(&copy);
    EXPECT_EQ(refr(space_.data_pointer), 1);
}

TEST_P(EveryLayout, BuildersTakeCopies) {
    ArrayBuilder builder;
    builder.add_copies(space_.data_pointer, 3);
    builder.add_copies(space_.data_pointer, 7);
    ASSERT_EQ(builder.size(), 10u);
    EXPECT_EQ(builder.kinds(), GetParam().kinds & ~COMPLEXED);
    Space all;
    make_vector(all, 10, builder.finish(), GetParam().kinds);
    std::vector<Element> expected(before_.begin(), before_.begin() + 3);
    expected.insert(expected.end(), before_.begin(), before_.end());
    EXPECT_TRUE(same(elements_of(all), expected));
    dereferencepoint(&all);
    EXPECT_TRUE(same(elements_of(space_), before_));
}

INSTANTIATE_TEST_SUITE_P(Values, EveryLayout, testing::ValuesIn(samples),
                         [](const auto& tested) { return tested.param.name; });

TEST(Scalars, LiveInTheirSpaceUnlessTheyHoldMore) {
    Element named = integer_element(5, form::number, mark::named);
    named.name = stringdup("#FIVE");
    Element complex;
    complex.tag = tag::complex;
    complex.c[1] = 2.5;
    const Element elements[] = {integer_element(-7, form::boolean, mark::probable),
                                real_element(0.25, form::logical), character_element(0xff), named,
                                complex};
    for (const Element& element : elements) {
        Space space;
        make_scalar(space, element);
        EXPECT_EQ((space.type & ISINPLACE) != 0, !element.name && element.tag != tag::complex);
        EXPECT_EQ(type_of(space), ISSCALAR | kind_bit(element.tag));
        EXPECT_EQ(space.rank, 0);
        EXPECT_TRUE(same(element_at(space, 0), element));
        own_elements(space);
        EXPECT_EQ(space.type & ISINPLACE, 0u);
        EXPECT_TRUE(same(element_at(space, 0), element));
        dereferencepoint(&space);
    }
}

TEST(ArrayBuilder, IsPackedUntilAnElementDiffers) {
    const Element one = integer_element(1);
    const std::pair<Element, bool> others[] = {
        {integer_element(2), true},
        {integer_element(2, form::boolean), false},
        {integer_element(2, form::number, mark::probable), false},
        {real_element(2), false},
        {character_element('c'), false},
    };
    for (const auto& [other, packed] : others) {
        ArrayBuilder builder(3);
        builder.add(one);
        builder.add(other);
        builder.add(one);
        EXPECT_EQ(builder.kinds(), HASINTEGER | kind_bit(other.tag));
        void* block = builder.finish();
        EXPECT_EQ(storage_of(block) != Storage::elements, packed);
        EXPECT_TRUE(same(element_of(block, 1), other));
        EXPECT_TRUE(same(element_of(block, 2), one));
        release_data(block, 3);
        EXPECT_EQ(builder.finish(), nullptr);
    }
}

TEST(ArrayBuilder, GivesBackWhatItWasGiven) {
    Element text = mixed_element(2);
    const Element named = mixed_element(0);
    for (int i = 0; i < 3; ++i) {
        ArrayBuilder builder;
        builder.add_integer(1);
        count_up(text.subarray);
        builder.add(text);
        count_up(named.name);
        builder.add(named);
        ArrayBuilder other(std::move(builder));
        EXPECT_EQ(refr(text.subarray), 2);
        EXPECT_EQ(builder.size(), 0u);
    }
    EXPECT_EQ(refr(named.name), 1);
    EXPECT_EQ(refr(text.subarray), 1);
    release_block(named.name);
    release_enclosed(text.subarray);
}

TEST(Counts, OfSharedParts) {
    const Element text = mixed_element(2);
    count_up(text.subarray);
    Space a;
    Space b;
    make_scalar(a, text);
    make_scalar(b, text);
    Space copy = a;
    referencepoint(&copy);
    EXPECT_EQ(refr(a.data_pointer), 2);
    EXPECT_EQ(refr(text.subarray), 2);
    dereferencepoint(&a);
    dereferencepoint(&a);
    EXPECT_EQ(refr(text.subarray), 2);
    dereferencepoint(&copy);
    EXPECT_EQ(refr(text.subarray), 1);
    dereferencepoint(&b);
}

TEST(Counts, PermanentBlocksStay) {
    Space empty;
    make_empty(empty);
    EXPECT_EQ(refr(empty.shape_pointer), -1);
    Space copy = empty;
    referencepoint(&copy);
    dereferencepoint(&copy);
    EXPECT_EQ(refr(empty.shape_pointer), -1);
}

TEST(Counts, OfCellsInAFunction) {
    char* name = stringdup("ADD");
    auto* body = static_cast<Space*>(allocate_items(4, sizeof(Space)));
    std::fill_n(body, 4, Space{});
    Space function{};
    function.rank = kind::FUNCTION;
    function.type = ISFUNCTION;
    function.body = body;
    function.elements = 3;
    body[0] = function;
    body[1].rank = body[2].rank = kind::OPERATOR;
    body[1].type = body[2].type = ISOPERATOR;
    body[1].name = name;
    Space copy = function;
    copy.body = copyfun(function);
    EXPECT_EQ(copy.body->body, copy.body);
    EXPECT_EQ(refr(name), 2);
    referencepoint(&copy);
    dereferencepoint(&function);
    EXPECT_EQ(refr(name), 1);
    EXPECT_EQ(refr(copy.body), 2);
    release_body(copy.body);
    dereferencepoint(&copy);
}

TEST(Nesting, OfAMillionLevelsComesAndGoes) {
    Space value;
    make_integer(value, 1);
    for (int level = 0; level < 1000000; ++level) {
        Element element;
        element.tag = tag::subarray;
        element.subarray = enclose(value);
        make_scalar(value, element);
    }
    dereferencepoint(&value);
    EXPECT_EQ(value.data_pointer, nullptr);
}

TEST(Reallocate, KeepsContentsCountAndLayout) {
    const std::size_t sizes[] = {0, 1, 100, 1024, 1025, 70000, 1 << 20, 5 << 20};
    for (const std::size_t from : sizes)
        for (const std::size_t to : sizes)
            for (const bool shared : {false, true}) {
                void* block = allocate_block(from, 42);
                std::memset(block, 'x', from);
                if (shared)
                    count_up(block);
                auto* bytes = static_cast<char*>(Reallocate(block, to));
                EXPECT_EQ(refr(bytes), 1);
                EXPECT_EQ(header_of(bytes).layout, 42u);
                EXPECT_GE(block_capacity(bytes), to);
                const auto kept = static_cast<std::ptrdiff_t>(std::min(from, to));
                EXPECT_EQ(std::count(bytes, bytes + kept, 'x'), kept) << from << " to " << to;
                std::memset(bytes, 'y', to);
                if (shared) {
                    EXPECT_NE(block, bytes);
                    EXPECT_EQ(refr(block), 2);
                    free_block(block);
                }
                free_block(bytes);
            }
}

TEST(Blocks, BeyondTheMachineAreRefused) {
    EXPECT_THROW(allocate_block(std::size_t{1} << 60), OutOfStorage);
    EXPECT_THROW(allocate_items(0xffffffffu, std::size_t{1} << 30), OutOfStorage);
}

TEST(Blocks, LargeOnesAreUsedAgain) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "each block is by itself here";
#endif
    // The data may begin elsewhere in the first page.
    const auto page_of = [](const void* block) {
        return (reinterpret_cast<std::uintptr_t>(block) - 1) / 4096;
    };
    void* first = allocate_block(8 << 20);
    free_block(first);
    void* second = allocate_block(6 << 20);
    EXPECT_EQ(page_of(first), page_of(second));
    free_block(second);
}

} // namespace
} // namespace tessor
