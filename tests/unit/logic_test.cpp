// Draws of the logic verbs: which elements draw, in which order, and what the value then tells.
#include "scalar/contradict.h"
#include "scalar/random.h"
#include "scalar_test.h"

namespace tessor::scalar_test {
namespace {

// From seed 1 the draws are 0.0000225, 0.085, 0.601, 0.891, 0.968, 0.190, ...
std::string drawn(Verb verb, const Space& operand, std::uint32_t extra_type = 0) {
    prngs_seed = 1;
    Space probable = operand;
    probable.type |= extra_type;
    const auto result = run(verb, {probable});
    std::string text = result.brief();
    if (!result.values.empty() && result.values[0].type & ISPROBABLE)
        text += " probable";
    return text;
}

// The seed after n draws.
std::int32_t after(int n) {
    std::int32_t seed = 1;
    while (n-- > 0)
        PRNGS(&seed);
    return seed;
}

TEST(LogicDraws, BooleanDrawsForHalvesOnly) {
    EXPECT_EQ(drawn(boolean, vector({real(0.4), real(0.6), real(1.5)})), "0/1 1/1 1/1");
    EXPECT_EQ(prngs_seed, 1);
    EXPECT_EQ(drawn(boolean, vector({real(0.5), real(0.5), real(0), real(0.5), real(0.5)})),
              "1/1 1/1 0/1 0/1 0/1 probable");
    EXPECT_EQ(prngs_seed, after(4));
    EXPECT_EQ(drawn(boolean, scalar(real(0.5))), "1/1 probable");
    // What has the form of a truth value stays as it is.
    EXPECT_EQ(drawn(boolean, vector({real(0.5, form::boolean)})), "0.5r/1");
}

TEST(LogicDraws, BooleanMarksComponentsFromTheFirstDrawOn) {
    const Elements all = {hyper({0.5, 3}), hyper({0.2, 0.6}), hyper({0.2, 0.5})};
    EXPECT_EQ(drawn(boolean, vector(all)), "1,1/1/1 0,1/1/1 0,1/1/1 probable");
    EXPECT_EQ(drawn(boolean, vector({all[1], all[0]})), "0,1/1 1,1/1/1 probable");
    EXPECT_EQ(drawn(boolean, vector({all[1], all[1]})), "0,1/1 0,1/1");
    EXPECT_EQ(drawn(boolean, vector({all[1], all[2]}), ISPROBABLE), "0,1/1/1 0,1/1/1 probable");
    // A subarray is a value of its own.
    EXPECT_EQ(drawn(boolean, vector({nested(vector({real(0.5), real(1)})), real(0.7)})),
              "(1/1 1/1) 1/1");
}

TEST(LogicDraws, ProbablyDrawsBetweenZeroAndOne) {
    const Elements all = {real(0),   real(0.1), real(1),    real(0.1),
                          real(0.5), real(0.9), integer(5), character(' ')};
    EXPECT_EQ(drawn(probably, vector(all)), "0/1/1 1/1/1 1/1/1 1/1/1 0/1/1 1/1/1 1/1 0/1");
    EXPECT_EQ(prngs_seed, after(4));
    EXPECT_EQ(drawn(probably, vector({hyper({0.1, 2, 0.01, -1}), hyper({0.5, 0.5, 0, 0})})),
              "1,1,0,0/1/1 0,0,0,0/1/1");
    const auto counted = run(probably, {vector({real(0.5), real(2), hyper({0.5, 1})})});
    EXPECT_EQ(counted.flops, 3 + 1 + 4);
}

TEST(LogicDraws, BooleanOfManyInStretches) {
    Elements few(10000, real(0.9));
    for (std::size_t i = 0; i < few.size(); i += 997)
        few[i] = real(0.5);
    Elements alike(few.size(), hyper({0.1, 0.9}));
    alike[9000] = hyper({0.5, 0.5});
    for (const Elements& elements : {few, alike}) {
        Space general = vector(elements);
        own_elements(general);
        const std::string expected = drawn(boolean, general);
        const std::int32_t seed = prngs_seed;
        EXPECT_EQ(drawn(boolean, vector(elements)), expected);
        EXPECT_EQ(prngs_seed, seed);
    }
}

TEST(Logic, FlopsAreCountedByPairsOfDegrees) {
    EXPECT_EQ(run(and_, {scalar(integer(1)), scalar(integer(1))}).flops, 1);
    EXPECT_EQ(run(and_, {scalar(integer(1)), scalar(real(1))}).flops, 1 + 3);
    EXPECT_EQ(run(or_, {vector({hyper({1, 1}), hyper({1, 1})}), scalar(hyper({1, 2, 3, 4}))}).flops,
              1 + 12);
    EXPECT_EQ(run(contradiction, {scalar(hyper({1, 2, 3, 4}))}).flops, 11);
}

TEST(Logic, ContradictionLeavesOutLastNaNs) {
    const double nan = __builtin_nan("");
    const double octonion[8] = {1, 1, 1, 1, 1, nan, nan, nan};
    const double quaternion[4] = {1, 0.5, 0, nan};
    op_flops = 0;
    EXPECT_EQ(contradict_o(octonion), 1);
    EXPECT_EQ(contradict_q(quaternion), 0);
    EXPECT_EQ(op_flops, 12 + 8);
    EXPECT_EQ(run(contradiction, {scalar(hyper({2, 2}, form::boolean))}).brief(), "3r/1");
}

} // namespace
} // namespace tessor::scalar_test
