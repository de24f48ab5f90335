// Conversions at their edges, and the algebra of pairs.
#include "values/hypercomplex.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace tessor {
namespace {

constexpr double pi = 3.141592653589793;
using Complex = std::array<double, 2>;
using Quaternion = std::array<double, 4>;
using Octonion = std::array<double, 8>;

// A conversion in place: what it makes, and the flops that it counts.
template <std::size_t N>
std::array<double, N> converted(void (*conversion)(double*, const double*, double&),
                                std::array<double, N> number, double flops) {
    double counted = 0;
    conversion(number.data(), number.data(), counted);
    EXPECT_EQ(counted, flops);
    return number;
}

TEST(Hypercomplex, AnglesOfComplexNumbers) {
    EXPECT_EQ(converted<2>(polarcomplex, {-2, 0}, 6), (Complex{2, pi}));
    EXPECT_EQ(converted<2>(polarcomplex, {-2, 1e-17}, 6), (Complex{2, pi}));
    EXPECT_EQ(converted<2>(polarcomplex, {2, 0}, 6), (Complex{2, 0}));
    EXPECT_EQ(converted<2>(polarcomplex, {0, 0}, 6), (Complex{0, 0}));
    EXPECT_EQ(converted<2>(cartesiancomplex, {1, pi}, 4), (Complex{-1, 0}));
    EXPECT_EQ(converted<2>(cartesiancomplex, {2, pi / 2}, 4), (Complex{0, 2}));
    EXPECT_EQ(converted<2>(cartesiancomplex, {2, std::nan("")}, 4), (Complex{0, 0}));
}

TEST(Hypercomplex, QuaternionsTakeTheArcOfTheComponent) {
    const Quaternion flat = converted<4>(polarquat, {0.6, 0.0, 0.8, 0.0}, 9);
    EXPECT_EQ(flat, (Quaternion{1, 0, std::asin(0.8), 0}));
    EXPECT_TRUE(std::isnan(converted<4>(polarquat, {1, 0, 0, 2}, 18)[3]));
    EXPECT_EQ(converted<4>(polarquat, {3, 4, 0, 0.5}, 22)[2], std::atan2(4.0, 3.0));
    EXPECT_EQ(converted<4>(cartesianquat, {2, 0, pi / 2, 0}, 10), (Quaternion{0, 0, 2, 0}));
    EXPECT_EQ(converted<4>(cartesianquat, {2, 0, 0, pi / 2}, 16), (Quaternion{0, 0, 0, 2}));
}

TEST(Hypercomplex, OctonionsHaveAsManyAnglesAsTheyNeed) {
    const Octonion four = {1, 2, 3, 4, 5, 0, 0, 0};
    const Octonion polar = converted<8>(polarocto, four, 10 + 18 + 14 + 10 + 2);
    EXPECT_EQ(polar[5] == 0 && polar[6] == 0 && polar[7] == 0, true);
    const Octonion back = converted<8>(cartesianocto, polar, 25);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_NEAR(back[i], four[i], 1e-14);
    const Octonion seven = {1, -1, 2, -2, 3, -3, 4, -4};
    double flops = 0;
    double there[8];
    polarocto(there, seven.data(), flops);
    const double before = flops;
    cartesianocto(there, there, flops);
    EXPECT_EQ(flops - before, 50);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_NEAR(there[i], seven[i], 1e-14);
}

TEST(Hypercomplex, SignOfTheFirstComponentThatIsNotZero) {
    const Octonion numbers[] = {{0, 0, -3}, {2}, {}, {std::nan("")}};
    const int signs[] = {-1, 1, 0, 1};
    const double flops[] = {5, 2, 16, 2};
    for (int i = 0; i < 4; ++i) {
        double counted = 0;
        EXPECT_EQ(csgnocto(numbers[i].data(), counted), signs[i]);
        EXPECT_EQ(counted, flops[i]);
    }
    double counted = 0;
    EXPECT_EQ(csgnquat(numbers[2].data(), counted), 0);
    EXPECT_EQ(counted, 8);
}

// Row by column: the unit of the product, negative with its sign.
constexpr int table[8][8] = {
    {1, 2, 3, 4, 5, 6, 7, 8},     {2, -1, 4, -3, 6, -5, -8, 7}, {3, -4, -1, 2, 7, 8, -5, -6},
    {4, 3, -2, -1, 8, -7, 6, -5}, {5, -6, -7, -8, -1, 2, 3, 4}, {6, 5, -8, 7, -2, -1, -4, 3},
    {7, 8, 5, -6, -3, 4, -1, -2}, {8, -7, 6, 5, -4, -3, 2, -1},
};

// Products of units in the widths given, against the table.
template <int L, int R>
void expect_table() {
    constexpr int width = L > R ? L : R;
    for (int i = 0; i < L; ++i) {
        for (int j = 0; j < R; ++j) {
            double l[L] = {};
            double r[R] = {};
            double out[width];
            l[i] = r[j] = 1;
            product<L, R>(out, l, r);
            const int unit = table[i][j];
            for (int k = 0; k < width; ++k)
                EXPECT_EQ(out[k], std::abs(unit) == k + 1 ? (unit < 0 ? -1 : 1) : 0)
                    << L << 'x' << R << ": e" << i << " e" << j << " at " << k;
        }
    }
}

TEST(Hypercomplex, ProductsOfUnitsInAllWidths) {
    expect_table<1, 4>(), expect_table<1, 8>(), expect_table<2, 1>(), expect_table<8, 1>();
    expect_table<2, 2>(), expect_table<2, 4>(), expect_table<2, 8>(), expect_table<4, 2>();
    expect_table<4, 4>(), expect_table<4, 8>(), expect_table<8, 2>(), expect_table<8, 4>();
    expect_table<8, 8>();
}

TEST(Hypercomplex, GroupingMattersAndZerosTakeNoPart) {
    const Octonion e1 = {0, 1}, e2 = {0, 0, 1}, e4 = {0, 0, 0, 0, 1};
    Octonion part, left, right;
    product<8, 8>(part.data(), e1.data(), e2.data());
    product<8, 8>(left.data(), part.data(), e4.data());
    product<8, 8>(part.data(), e2.data(), e4.data());
    product<8, 8>(right.data(), e1.data(), part.data());
    EXPECT_EQ(left[7], 1);
    EXPECT_EQ(right[7], -1);
    const double infinity = std::numeric_limits<double>::infinity();
    const Quaternion l = {infinity, 1, 2, 0}, r = {1, 1, 1, 0};
    Quaternion out;
    product<4, 4>(out.data(), l.data(), r.data());
    EXPECT_EQ(out[0], infinity);
    EXPECT_FALSE(std::isnan(out[3]));
    EXPECT_EQ((product_flops<4, 4>(l.data(), r.data())), 14);
    EXPECT_EQ((product_flops<2, 8>(nullptr, nullptr)), 26);
}

TEST(Hypercomplex, InverseIsConjugateByNorm) {
    const Quaternion x = {1, 2, 3, 4};
    Quaternion inverted, one;
    inverse<4>(inverted.data(), x.data());
    product<4, 4>(one.data(), x.data(), inverted.data());
    EXPECT_NEAR(one[0], 1, 1e-15);
    EXPECT_EQ(norm<4>(x.data()), 30);
    Complex flipped;
    conjugate<2>(flipped.data(), Complex{1, 0}.data());
    EXPECT_TRUE(std::signbit(flipped[1]));
}

} // namespace
} // namespace tessor
