// Results of the scalar verbs at their edges, and what stays when they fail.
#include "scalar_test.h"

#include <limits>

namespace tessor::scalar_test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Space integers(const std::vector<std::int32_t>& values) {
    Elements elements;
    for (const std::int32_t v : values)
        elements.push_back(integer(v));
    return vector(elements);
}
Space reals(const std::vector<double>& values) {
    Elements elements;
    for (const double v : values)
        elements.push_back(real(v));
    return vector(elements);
}
Space text(const char* bytes) {
    Space space;
    make_text(space, bytes, std::strlen(bytes));
    return space;
}
// A shape of ones.
Space matrix_of_one(const Element& e) {
    Space space = vector({e});
    release_block(space.shape_pointer);
    std::int32_t* shape = new_shape(2);
    shape[0] = shape[1] = 1;
    space.shape_pointer = shape;
    space.rank = 2;
    space.type = (space.type & ~ISVECTOR) | ISARRAY;
    return space;
}
// A value that something else holds too, until the test ends.
class Scalar : public testing::Test {
protected:
    Space shared(const Space& space) {
        referencepoint(&space);
        held_.push_back(space);
        return space;
    }
    void TearDown() override {
        for (Space& space : held_)
            dereferencepoint(&space);
    }

private:
    std::vector<Space> held_;
};

TEST_F(Scalar, Integers) {
    const Space edges = integers({INT32_MAX, 1, -INT32_MAX});
    EXPECT_EQ(run(add, {edges, integers({1, 2, -1})}).brief(), "2147483648r 3 -2147483648r");
    EXPECT_EQ(run(subtract, {integers({INT32_MAX}), integers({-1})}).brief(), "-2147483648");
    EXPECT_EQ(run(multiply, {integers({65536, 46340}), integers({65536, 46340})}).brief(),
              "4294967296r 2147395600");
    EXPECT_EQ(
        run(divide, {integers({7, 6, -6, 0, 0, 1, 0}), integers({2, 3, 3, 5, 0, 0, -5})}).brief(),
        "3.5r 2 -2r 0 -nanr infr 0");
    EXPECT_EQ(
        run(residue, {integers({-1, -7, 7, 7, INT32_MIN}), integers({3, 3, -3, 0, -1})}).brief(),
        "-1 -1 -2 7 0");
    EXPECT_EQ(run(residue, {integers({-7, 7}), reals({0, 3})}).brief(), "-7 1r");
    EXPECT_EQ(run(minimum, {integers({1, 5}), reals({2, 3})}).brief(), "1r 3r");
    EXPECT_EQ(run(negative, {integers({INT32_MIN, 3})}).brief(), "-2147483648 -3");
    EXPECT_EQ(run(multiply, {vector({integer(2, form::boolean, mark::r)}),
                             vector({integer(3, form::binary, mark::r | mark::degrees)})})
                  .brief(),
              "6/8/20");
}

TEST_F(Scalar, Reals) {
    EXPECT_EQ(run(multiply, {reals({0, -3, infinity}), reals({infinity, 0, nan})}).brief(),
              "0r 0r nanr");
    EXPECT_EQ(run(divide, {reals({nan, 1}), reals({nan, 0})}).brief(), "1r infr");
    EXPECT_EQ(run(residue, {reals({-7, 7}), scalar(integer(3))}).brief(), "2r 1r");
    EXPECT_EQ(run(less, {reals({1, 1, nan}), reals({1 + 4e-16, 1 + 1e-14, 1})}).brief(),
              "0/1 1/1 0/1");
    EXPECT_EQ(run(notgreater, {reals({nan, 2}), reals({1, 1})}).brief(), "1/1 0/1");
    EXPECT_EQ(run(equivalent,
                  {reals({nan, infinity, -infinity, 2}), reals({nan, -infinity, infinity, 3})})
                  .brief(),
              "1r/2 1r/2 0r/2 0r/2");
    EXPECT_EQ(run(equivalent, {reals({1}), reals({1 + 4.44089209850062616e-16})}).brief(),
              "0.99999999999999956r/2");
    EXPECT_EQ(run(notequivalent, {reals({nan, 1, 1}), reals({nan, 1, 2})}).brief(),
              "0r/2 0r/2 1r/2");
    EXPECT_EQ(run(identical, {reals({nan, infinity, -infinity}), reals({nan, -infinity, infinity})})
                  .brief(),
              "1/1 1/1 0/1");
    EXPECT_EQ(run(identical, {scalar(integer(2)), scalar(real(2))}).brief(), "1/1");
}

TEST_F(Scalar, Hypercomplex) {
    const Element c = hyper({3, 4}, form::cartesian);
    EXPECT_EQ(run(equivalent, {vector({c, hyper({-3, 4})}), reals({5, -5})}).brief(), "1r/2 1r/2");
    EXPECT_EQ(run(identical, {vector({c}), scalar(real(5))}).brief(), "0/1");
    EXPECT_EQ(run(multiply, {vector({hyper({0, infinity})}), vector({hyper({1, 1})})}).brief(),
              "-inf,inf");
    EXPECT_EQ(run(multiply, {scalar(hyper({0, 1, 0, 0})), scalar(hyper({0, 0, 1, 0}))}).brief(),
              "0,0,0,1");
    EXPECT_EQ(run(divide, {scalar(real(25)), scalar(c)}).brief(), "3,-4/10");
    EXPECT_EQ(run(subtract, {scalar(real(1)), scalar(c)}).brief(), "-2,-4/10");
    EXPECT_EQ(run(residue, {scalar(hyper({7, 5})), scalar(real(3))}).brief(), "1,-1");
    EXPECT_EQ(run(maximum, {vector({c, hyper({1, 1}, form::polar)}), scalar(real(5))}).brief(),
              "5r 5r");
    EXPECT_EQ(run(minimum, {scalar(real(9)), scalar(hyper({1, 0, 0, 2}))}).brief(), "1,0,0,2");
    EXPECT_EQ(run(conjugate, {vector({c, hyper({1, 2, 0, 4}, form::logical)})}).brief(),
              "3,-4/10 1,-2,-0,-4");
    EXPECT_EQ(run(negative, {vector({hyper({1, 2}, form::number_polar, mark::r)})}).brief(),
              "-1,-2/8/100");
}

// The sum of two complex numbers looks like the operand that it is written over.
TEST_F(Scalar, TheOverwrittenOperandDecides) {
    const auto left = [] { return vector({hyper({1, 2}, form::cartesian)}); };
    const auto right = [] { return vector({hyper({1, 2}, form::polar)}); };
    const auto sum = [](const Space& l, const Space& r, signed char mode = 0) {
        return run(add, {l, r}, mode).brief();
    };
    EXPECT_EQ(sum(left(), right()), "2,4/40"); // both single: the right one first
    EXPECT_EQ(sum(left(), shared(right())), "2,4/10");
    EXPECT_EQ(sum(left(), right(), 1), "2,4/10");
    const Space two = vector({hyper({1, 2}, form::cartesian), hyper({1, 2}, form::cartesian)});
    const Space other = vector({hyper({1, 2}, form::polar), hyper({1, 2}, form::polar)});
    EXPECT_EQ(sum(shared(two), other), "2,4/40 2,4/40");
    // Two operands on the stack that share a block which nobody else holds.
    const Space twice = reals({1, 2});
    referencepoint(&twice);
    EXPECT_EQ(run(add, {twice, twice}).values[0].data_pointer, twice.data_pointer);
}

TEST_F(Scalar, Characters) {
    EXPECT_EQ(run(multiply, {text("abc"), integers({1, 0, 1})}).brief(), "'a' ' ' 'c'");
    EXPECT_EQ(run(minimum, {text("az"), text("bb")}).brief(), "'a' 'b'");
    EXPECT_EQ(run(less, {text("az"), text("bb")}).brief(), "1/1 0/1");
    EXPECT_EQ(run(negative, {vector({character('a', form::binary)})}).values[0].type
                  & element_kinds,
              HASASCII);
    EXPECT_EQ(run(negative, {text("ab")}).brief(), "!164 | 'a' 'b'");
    EXPECT_EQ(run(conjugate, {text("ab")}).brief(), "!994 | 'a' 'b'");
}

TEST_F(Scalar, Shapes) {
    const Element one = integer(1);
    EXPECT_EQ(frame_of(run(add, {matrix_of_one(one), integers({1, 2, 3})}).values[0]),
              "rank 1 type 40400 depth 1 n 3 of 3");
    EXPECT_EQ(frame_of(run(add, {matrix_of_one(one), scalar(one)}).values[0]),
              "rank 2 type a0400 depth 1 n 1 of 1 1");
    EXPECT_EQ(frame_of(run(add, {scalar(one), matrix_of_one(one)}).values[0]),
              "rank 1 type 60400 depth 1 n 1 of 1");
    EXPECT_EQ(run(add, {integers({1, 2, 3}), integers({1, 2})}).brief(), "!17 | 1 2 3 | 1 2");
    EXPECT_EQ(run(add, {matrix_of_one(one), text("ab")}).brief(), "!17 | 1 | 'a' 'b'");
    Space empty;
    make_empty(empty);
    EXPECT_EQ(run(add, {empty, scalar(one)}).values[0].elements, 0u);
    make_empty(empty);
    EXPECT_EQ(run(negative, {empty}).whole(),
              "flops 0.000000 operations 0.000000 \n rank 1 type 240000 depth 0 n 0 of 0");
}

TEST_F(Scalar, Nested) {
    const auto inner = [] { return nested(integers({2, 3})); };
    EXPECT_EQ(run(add, {vector({integer(1), inner()}), integers({10, 20})}).brief(), "11 (22 23)");
    EXPECT_EQ(run(subtract, {scalar(integer(5)), vector({inner(), integer(1)})}).brief(),
              "(3 2) 4");
    EXPECT_EQ(run(negative, {vector({inner(), real(1)})}).brief(), "(-2 -3) -1r");
    // What was done before the failure is in the overwritten operand; what was pushed stays.
    EXPECT_EQ(
        run(add, {vector({integer(1), inner()}), vector({integer(2), nested(text("ab"))})}).brief(),
        "!17 | 1 (2 3) | 3 ('a' 'b') | 2 3 | 'a' 'b'");
    EXPECT_EQ(run(multiply, {text("abc"), integers({0, 1, 5})}).brief(),
              "!149 | ' ' 'b' 'c' | 0 1 5");
    EXPECT_EQ(run(multiply, {shared(text("abc")), shared(integers({0, 1, 5}))}).brief(),
              "!149 | 'a' 'b' 'c' | 0 1 5");
}

TEST_F(Scalar, PairsWithoutAnOperation) {
    const auto number = [](Verb verb, const Element& l, const Element& r) {
        return run(verb, {vector({l}), vector({r})}).number;
    };
    const Element o = hyper({1, 2, 3, 4, 5, 6, 7, 8});
    const Element q = hyper({1, 2, 3, 4});
    Element wide = character('a');
    wide.tag = tag::unicode;
    EXPECT_EQ(number(less, character('a'), integer(1)), 162);
    EXPECT_EQ(number(multiply, character('a'), real(1)), 162);
    EXPECT_EQ(number(maximum, character('a'), q), 162);
    EXPECT_EQ(number(less, wide, character('a')), 994);
    EXPECT_EQ(number(residue, q, integer(0)), 994);
    EXPECT_EQ(number(maximum, integer(1), q), 994);
    EXPECT_EQ(number(minimum, integer(1), o), 994);
    EXPECT_EQ(number(notequivalent, integer(1), o), 994);
}

} // namespace
} // namespace tessor::scalar_test
