// Every dyadic verb on every pair of kinds gives the same in every layout of the same data.
#include "scalar/random.h"
#include "scalar_test.h"
#include "shell/dispatch.h"

#include <limits>

namespace tessor::scalar_test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

struct NamedVerb {
    const char* name;
    Verb verb;
};
constexpr NamedVerb dyadic_verbs[] = {
    {"add", add},
    {"subtract", subtract},
    {"multiply", multiply},
    {"divide", divide},
    {"residue", residue},
    {"minimum", minimum},
    {"maximum", maximum},
    {"power", power},
    {"logarithm", logarithm},
    {"binomial", binomial},
    {"circular", circular},
    {"less", less},
    {"notgreater", notgreater},
    {"equivalent", equivalent},
    {"notless", notless},
    {"greater", greater},
    {"notequivalent", notequivalent},
    {"identical", identical},
    {"notidentical", notidentical},
    {"and", and_},
    {"strongor", strongor},
};

// One kind of element with the packed storage to try it in.
struct Data {
    const char* name;
    Storage storage;
    Elements elements;
};

// Enough elements for vector loops with a rest, from a few that matter.
Elements many(const Elements& few, std::size_t n = 45) {
    Elements elements;
    for (std::size_t i = 0; i < n; ++i)
        elements.push_back(few[i % few.size()]);
    return elements;
}

const Data all_data[] = {
    {"characters", Storage::character, many({character('a'), character('b'), character(' ')})},
    {"binary characters", Storage::character,
     many({character('a', form::binary), character('\x81', form::binary)})},
    {"bits", Storage::truth,
     many({integer(1, form::boolean), integer(0, form::boolean), integer(1, form::boolean)})},
    {"function numbers", Storage::integer,
     many({integer(1), integer(-7), integer(0), integer(-3), integer(4), integer(7)})},
    {"integers", Storage::integer,
     many({integer(3), integer(-7), integer(0), integer(12), integer(4)})},
    {"large integers", Storage::integer,
     many({integer(INT32_MAX), integer(INT32_MIN), integer(-1), integer(0), integer(46341),
           integer(2), integer(-65536)})},
    {"degrees", Storage::degree, many({real(1, form::logical), real(0, form::logical)})},
    {"reals", Storage::real,
     many({real(1.5), real(-0.0), real(infinity), real(2), real(-7), real(nan), real(-infinity)})},
    {"near reals", Storage::real, many({real(1), real(1 + 4e-16), real(0.3), real(0.1 + 0.2)})},
    {"quotients", Storage::quotient, many({integer(3), real(-2), real(0.5), integer(0)})},
    {"promoted", Storage::promoted, many({integer(-3), real(4294967296.0), integer(7)})},
    {"complexes", Storage::complex,
     many({hyper({3, 4}, form::cartesian), hyper({-2, 0}, form::cartesian),
           hyper({0, infinity}, form::cartesian), hyper({0, 0}, form::cartesian),
           hyper({nan, 1}, form::cartesian)})},
    {"polar complexes", Storage::complex,
     many({hyper({1, 2}, form::polar, mark::degrees),
           hyper({-1, 0.5}, form::polar, mark::degrees)})},
    {"quaternions", Storage::quaternion,
     many({hyper({1, 2, 3, 4}), hyper({-1, 0.5, 2, 0}), hyper({5, 0, 0, 0})})},
    {"octonions", Storage::octonion,
     many({hyper({1, 2, 3, 4, 5, 6, 7, 8}), hyper({0, 0, -1, 0, 2, 0, 0, 0})})},
};

// Hypercomplex numbers whose form says that their components are degrees, or may come of a draw.
const Data data_of_degrees[] = {
    {"truths of complexes", Storage::complex,
     many({hyper({0.5, 1}, form::logical, mark::r), hyper({3, -0.5}, form::logical, mark::r)})},
    {"truths of quaternions", Storage::quaternion,
     many({hyper({1, 0, 2, 0.5}, form::boolean), hyper({0.25, 1, 0, nan}, form::boolean)})},
    {"halves", Storage::complex, many({hyper({0.5, 0.25}), hyper({0.75, 0.5})})},
};

enum class Shape { array, one, scalar };

// An operand in its packed form, or in general elements; held elsewhere too, or not.
Space operand(const Data& data, Shape shape, bool general_layout, bool held) {
    Space space;
    if (shape == Shape::array)
        space = packed(data.elements, data.storage);
    else if (shape == Shape::one)
        space = packed({data.elements[1]}, tag_storage(data.elements[1].tag));
    else
        space = scalar(data.elements[0]);
    if (general_layout)
        own_elements(space);
    if (held)
        referencepoint(&space);
    return space;
}

struct Case {
    Shape left;
    Shape right;
};
constexpr Case cases[] = {{Shape::array, Shape::array},  {Shape::array, Shape::scalar},
                          {Shape::scalar, Shape::array}, {Shape::array, Shape::one},
                          {Shape::scalar, Shape::one},   {Shape::scalar, Shape::scalar},
                          {Shape::one, Shape::scalar}};

// Gives up the count of another holder.
void let_go(Space space, bool held) {
    if (held)
        dereferencepoint(&space);
}

std::string outcome(Verb verb, const Data& l, const Data& r, const Case& c, int layouts,
                    bool held) {
    const Space left = operand(l, c.left, layouts & 1, held);
    const Space right = operand(r, c.right, layouts & 2, held);
    const Run result = run(verb, {left, right});
    let_go(left, held);
    let_go(right, held);
    return result.whole();
}

TEST(ScalarLayouts, DyadicVerbsSeeNoLayout) {
    for (const NamedVerb& v : dyadic_verbs)
        for (const Data& l : all_data)
            for (const Data& r : all_data)
                for (const Case& c : cases)
                    for (const bool held : {false, true}) {
                        const std::string expected = outcome(v.verb, l, r, c, 3, held);
                        for (int layouts = 0; layouts < 3; ++layouts)
                            ASSERT_EQ(outcome(v.verb, l, r, c, layouts, held), expected)
                                << v.name << " of " << l.name << " and " << r.name << ", shapes "
                                << static_cast<int>(c.left) << static_cast<int>(c.right)
                                << ", layouts " << layouts << (held ? ", held" : "");
                    }
}

// A misfit far behind the first stretches is met on the way, in place or not.
TEST(ScalarLayouts, KindsThatChangeOnTheWay) {
    const std::size_t n = 10000;
    Elements integers = many({integer(6), integer(-3), integer(40)}, n);
    Elements others = many({integer(2), integer(3), integer(1)}, n);
    integers[9000] = integer(INT32_MAX);
    others[9000] = integer(1000);
    Elements reals = many({real(1), real(2), real(nan)}, n);
    Elements nears = reals;
    nears[9500] = real(1 + 4e-16);
    reals[9500] = real(1);
    const Data whole[] = {{"integers", Storage::integer, integers},
                          {"integers", Storage::integer, others},
                          {"reals", Storage::real, reals},
                          {"reals", Storage::real, nears}};
    const Case both = {Shape::array, Shape::array};
    for (const bool held : {false, true}) {
        for (const Verb verb : {add, multiply, divide, residue})
            EXPECT_EQ(outcome(verb, whole[0], whole[1], both, 0, held),
                      outcome(verb, whole[0], whole[1], both, 3, held));
        for (const Verb verb : {equivalent, notequivalent, residue})
            EXPECT_EQ(outcome(verb, whole[2], whole[3], both, 0, held),
                      outcome(verb, whole[2], whole[3], both, 3, held));
        EXPECT_EQ(outcome(residue, whole[0], whole[2], both, 0, held),
                  outcome(residue, whole[0], whole[2], both, 3, held));
    }
}

TEST(ScalarLayouts, MonadicVerbsSeeNoLayout) {
    std::vector<Data> every(std::begin(all_data), std::end(all_data));
    every.insert(every.end(), std::begin(data_of_degrees), std::end(data_of_degrees));
    for (const Data& data : every)
        for (const Verb verb :
             {conjugate,  negative,  roll,          Random,    factorial,   not_,       boolean,
              logical,    probably,  contradiction, isboolean, islogical,   signum,     direction,
              reciprocal, magnitude, binary,        number,    polar,       deg,        rad,
              cartesian,  floor,     ceiling,       truncate,  exponential, naturallog, pitimes,
              isbinary,   isnumber,  iscartesian,   ispolar})
            for (const Shape shape : {Shape::array, Shape::one, Shape::scalar})
                for (const bool held : {false, true}) {
                    std::string results[2];
                    for (const bool general_layout : {false, true}) {
                        const Space space = operand(data, shape, general_layout, held);
                        prngs_seed = 1;
                        results[general_layout] = run(verb, {space}).whole();
                        let_go(space, held);
                    }
                    EXPECT_EQ(results[0], results[1]) << data.name;
                }
}

// A verb on numbers in place, if it takes them; what it counts is left to its caller.
std::string outcome_in_place(const Quick& quick, Space left, Space right) {
    Space system_values[8] = {};
    make_real(system_values[quad_ct], 1e-15, form::logical);
    Run result;
    const long flops = quick.verb(&left, quick.pops ? &right : nullptr, system_values);
    dereferencepoint(&right);
    result.flops = static_cast<double>(flops);
    result.counted = 1;
    result.values = {left};
    return flops < 0 ? "" : result.whole();
}

Space general_scalar(const Element& element) {
    Space space = scalar(element);
    own_elements(space);
    return space;
}

TEST(ScalarLayouts, VerbsInPlaceDoAndCountTheSame) {
    fill_dispatch();
    int taken = 0;
    for (int i = 0; i < instruction_count; ++i) {
        const Quick& quick = quick_verbs[i];
        for (const Data& l : all_data)
            for (const Data& r : all_data)
                for (std::size_t k = 0; quick.verb && k < 49; ++k) {
                    const Element& left = l.elements[k % 7];
                    const Element& right = r.elements[k / 7];
                    const std::string found = outcome_in_place(quick, scalar(left), scalar(right));
                    if (found.empty())
                        continue;
                    std::vector<Space> operands = {general_scalar(left)};
                    if (quick.pops)
                        operands.push_back(general_scalar(right));
                    ASSERT_EQ(found, run(bodies[i].verb, operands).whole())
                        << instruction_name(i) << " of " << l.name << " and " << r.name;
                    ++taken;
                }
    }
    EXPECT_GT(taken, 10000);
}

} // namespace
} // namespace tessor::scalar_test
