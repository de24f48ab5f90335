// POWER, FACTORIAL and the gamma function beside the C library and the identities that they obey.
#include "scalar/factor.h"
#include "scalar_test.h"

#include <cmath>
#include <complex>
#include <limits>
#include <random>

namespace tessor::scalar_test {
namespace {

// Bases of every size: full ones, short ones and the odd ends.
std::vector<double> bases() {
    std::mt19937_64 draws(7);
    std::vector<double> values = {0,       -0.0,    1,        2,      1e-320,         1e-160,
                                  1.5e154, 1.4e155, INFINITY, 0x1p50, 0x1.0000001p-50};
    for (int i = 0; i < 20000; ++i) {
        const auto fraction = 1 + static_cast<double>(draws() >> 12) * 0x1p-52;
        values.push_back(std::ldexp(fraction, static_cast<int>(draws() % 140) - 70));
        values.push_back(static_cast<double>(draws() % 100000) / 64);
    }
    return values;
}

TEST(Power, OneExponentGivesWhatTheLibraryGives) {
    // The compiler must not see the exponents.
    for (volatile const double e : {2.0, 0.5, 3.0, -1.0, 0.25, 1.0 / 3}) {
        Elements elements;
        for (const double x : bases())
            elements.push_back(real(std::floor(e) == e ? -x : x));
        const scalar_test::Run made =
            run(power, {packed(elements, Storage::real), scalar(real(e))});
        ASSERT_EQ(made.number, 0);
        for (std::uint32_t i = 0; i < elements.size(); ++i) {
            const double x = elements[i].c[0];
            const double expected = e == 0.5       ? std::sqrt(x)
                                    : e == 1.0 / 3 ? std::cbrt(x)
                                                   : std::pow(x, e);
            ASSERT_EQ(std::bit_cast<std::uint64_t>(element_at(made.values[0], i).c[0]),
                      std::bit_cast<std::uint64_t>(expected))
                << x << " to the power " << e;
        }
    }
}

std::uint32_t kinds_left(const Elements& left, const Element& right) {
    return run(power, {vector(left), scalar(right)}).values[0].type & (numeric_kinds | COMPLEXED);
}

TEST(Power, KindsOfComplexPowers) {
    const Element flat = hyper({3, 0});
    const Element full = hyper({1, 2});
    EXPECT_EQ(kinds_left({flat, flat}, integer(2)), HASREAL);
    EXPECT_EQ(kinds_left({full, full}, integer(2)), HASCOMPLEX);
    EXPECT_EQ(kinds_left({flat, full}, real(2)), HASREAL | HASCOMPLEX | COMPLEXED);
    EXPECT_EQ(kinds_left({real(4), flat}, hyper({2, 0})), HASREAL);
    EXPECT_EQ(kinds_left({real(-1), real(-4)}, real(0.5)), HASCOMPLEX);
    // Minus infinity to a power below 0 has no imaginary part, but comes from reals.
    EXPECT_EQ(kinds_left({real(-INFINITY)}, real(-0.5)), HASCOMPLEX);
}

TEST(Power, MarksOfTheBase) {
    const Element marked = integer(3, form::binary, mark::probable | mark::r);
    EXPECT_EQ(run(power, {scalar(marked), scalar(integer(2))}).brief(), "9r/8/1");
    EXPECT_EQ(run(power, {scalar(marked), scalar(real(2))}).brief(), "9r/8/1");
    EXPECT_EQ(run(power, {scalar(real(3, form::binary, mark::probable)), scalar(real(2))}).brief(),
              "9r");
    EXPECT_EQ(
        run(power, {scalar(hyper({3, 0}, form::polar, mark::degrees)), scalar(real(0))}).brief(),
        "1,0");
}

TEST(Power, Flops) {
    const auto flops = [](const Element& l, const Element& r) {
        return run(power, {vector({l, l}), scalar(r)}).flops - 1;
    };
    EXPECT_EQ(flops(integer(2), integer(30)), 0);
    EXPECT_EQ(flops(integer(2), integer(31)), 2);
    EXPECT_EQ(flops(real(2), integer(3)), 2);
    EXPECT_EQ(flops(real(-2), real(0.5)), 18);
    EXPECT_EQ(flops(hyper({1, 1}), real(0.5)), 28);
    EXPECT_EQ(flops(real(2), hyper({1, 1})), 16);
    EXPECT_EQ(flops(hyper({1, 1}), hyper({1, 1})), 36);
}

TEST(Factor, RunsFromTheFactorialOfWholeNumbersToTheGammaFunction) {
    for (double x = -20.37; x < 170; x += 0.3125)
        EXPECT_NEAR(static_cast<double>(factor<long double>(x).value / std::tgamma(x + 1)), 1,
                    2e-14)
            << x;
    EXPECT_EQ(factor(20.0L).value, 2432902008176640000.0L);
    EXPECT_EQ(factor(1e9).value, INFINITY);
    EXPECT_EQ(factor(-1e9 - 0.5).value, 0);
    EXPECT_TRUE(std::isnan(factor<double>(NAN).value));
    for (const double pole : {-1.0, -7.0, -1e300, -static_cast<double>(INFINITY)})
        EXPECT_EQ(factor(pole).number, 36);
}

TEST(Factor, BinomialsBeyondTheRangeOfTheirParts) {
    EXPECT_EQ(binom(1800, 1802).value, 1801.0L * 901);
    EXPECT_EQ(binom(1e9, -3).value, 1000000001.0L * 500000001);
    EXPECT_EQ(binom(1e9 + 1, -2).value, -1e9L - 2);
    EXPECT_EQ(binom(1e9, 2e9).value, INFINITY);
    EXPECT_EQ(binom(-3, -1).value, 1);
    EXPECT_EQ(binom(2.5, 0.5).number, 36);
}

using Z = std::complex<double>;

Z gamma_of(const Z& z) {
    const Checked<Complex> made = gammax({{z.real(), z.imag()}}, 1e-15);
    EXPECT_EQ(made.number, 0);
    return {made.value.c[0], made.value.c[1]};
}

TEST(Gamma, RecurrenceReflectionAndDuplication) {
    const double pi = std::acos(-1.0);
    for (double x = -9.8; x < 12; x += 0.61)
        for (double y = -15.3; y < 16; y += 0.77) {
            const Z z(x, y);
            const Z value = gamma_of(z);
            EXPECT_LT(std::abs(gamma_of(z + 1.0) / (z * value) - 1.0), 1e-12) << z;
            EXPECT_LT(std::abs(value * gamma_of(1.0 - z) * std::sin(pi * z) / pi - 1.0), 1e-12)
                << z;
            const Z doubled = std::pow(Z(2), 1.0 - 2.0 * z) * std::sqrt(pi) * gamma_of(2.0 * z);
            EXPECT_LT(std::abs(value * gamma_of(z + 0.5) / doubled - 1.0), 1e-12) << z;
            EXPECT_EQ(gamma_of(std::conj(z)), std::conj(value)) << z;
        }
}

TEST(Gamma, Poles) {
    EXPECT_EQ(gammax({{-2, 1e-16}}, 1e-20).number, 0);
    EXPECT_EQ(gammax({{0, 1e-16}}, 1e-16).number, 130);
    EXPECT_EQ(gammax({{0, 0}}, 0).number, 130);
    EXPECT_EQ(gammax({{-3, 0}}, 1e-15).number, 36);
    EXPECT_EQ(gammax({{NAN, 1}}, 1e-15).number, 0);
}

} // namespace
} // namespace tessor::scalar_test
