#include "loops.h"

#include "work.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace bench {

namespace {

constexpr std::size_t side = 3000;

template <class T>
T* array(std::size_t n = length) {
    return static_cast<T*>(std::aligned_alloc(1 << 21, (n * sizeof(T) | ((1 << 21) - 1)) + 1));
}

template <class T>
T* filled(Type type, std::int32_t (*value)(std::size_t) = left_value) {
    T* items = array<T>();
    fill_operand(items, type, length, value);
    return items;
}

struct Arrays {
    std::int32_t* ints = filled<std::int32_t>(Type::int32);
    std::int32_t* dice = filled<std::int32_t>(Type::int32, right_value);
    double* reals = filled<double>(Type::float64);
    std::uint8_t* half = filled<std::uint8_t>(Type::truth);
    double* small = array<double>();
    double* positive = array<double>();
    std::int32_t* whole = array<std::int32_t>(3 * length);
    double* real = array<double>(3 * length);
    Arrays() {
        for (std::size_t i = 0; i < length; ++i) {
            small[i] = reals[i] * 1e-3;
            positive[i] = std::fabs(small[i]);
        }
        std::memset(static_cast<void*>(whole), 1, 3 * length * sizeof *whole);
        std::memset(static_cast<void*>(real), 1, 3 * length * sizeof *real);
    }
};

const Arrays& arrays() {
    static const Arrays all;
    return all;
}

volatile double sink;

template <class T, class R, class F>
void each(const T* from, R* to, F f) {
    for (std::size_t i = 0; i < length; ++i)
        to[i] = f(from[i]);
    asm volatile("" : : "r"(to) : "memory");
}

void negative_ints() {
    each(arrays().ints, arrays().whole, [](std::int32_t x) { return -x; });
}
void negative_reals() {
    each(arrays().reals, arrays().real, [](double x) { return -x; });
}
void magnitude() {
    each(arrays().reals, arrays().real, [](double x) { return std::fabs(x); });
}
void floor_reals() {
    each(arrays().reals, arrays().whole,
         [](double x) { return static_cast<std::int32_t>(std::floor(x)); });
}
void exponential() {
    each(arrays().small, arrays().real, [](double x) { return std::exp(x); });
}
void logarithm() {
    each(arrays().positive, arrays().real, [](double x) { return std::log(x); });
}
void sine() {
    each(arrays().small, arrays().real, [](double x) { return std::sin(x); });
}
void cosine() {
    each(arrays().small, arrays().real, [](double x) { return std::cos(x); });
}

// The generator, a draw at a time.
std::int32_t seed = 123456789;
std::int32_t draw() {
    const std::int32_t t = 48271 * (seed % 44488) - 3399 * (seed / 44488);
    return seed = t > 0 ? t : t + 2147483647;
}
void random_reals() {
    each(arrays().reals, arrays().real, [](double x) { return draw() / 2147483647.0 * x; });
}
void roll_ints() {
    each(arrays().dice, arrays().whole, [](std::int32_t x) {
        return static_cast<std::int32_t>(static_cast<double>(draw()) * x / 2147483647.0)
               + (x > 0 ? 1 : -1);
    });
}

void interval_ints() {
    std::int32_t* to = arrays().whole;
    for (std::size_t i = 0; i < length; ++i)
        to[i] = static_cast<std::int32_t>(i + 1);
    asm volatile("" : : "r"(to) : "memory");
}
void interval_reals() {
    double* to = arrays().real;
    double x = 0.5;
    for (std::size_t i = 0; i < length; ++i, x += 1.0)
        to[i] = x;
    asm volatile("" : : "r"(to) : "memory");
}
void sum_ints() {
    const std::int32_t* from = arrays().ints;
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < length; ++i)
        sum += from[i];
    sink = static_cast<double>(sum);
}
void sum_reals() {
    const double* from = arrays().reals;
    double sum = 0;
    for (std::size_t i = 0; i < length; ++i)
        sum += from[i];
    sink = sum;
}
void sum_runs() {
    const double* from = arrays().reals;
    double* to = arrays().real;
    for (std::size_t j = 0; j < side; ++j) {
        double sum = 0;
        for (std::size_t i = 0; i < side; ++i)
            sum += from[j * side + i];
        to[j] = sum;
    }
    asm volatile("" : : "r"(to) : "memory");
}
template <class T>
void add_columns(const T* __restrict from) {
    double* __restrict to = arrays().real;
    std::fill_n(to, side, 0.0);
    for (std::size_t i = 0; i < side; ++i)
        for (std::size_t j = 0; j < side; ++j)
            to[j] += from[i * side + j];
    asm volatile("" : : "r"(to) : "memory");
}
void sum_columns() {
    add_columns(arrays().reals);
}
void sum_int_columns() {
    add_columns(arrays().ints);
}
void sum_int_runs() {
    const std::int32_t* from = arrays().ints;
    double* to = arrays().real;
    for (std::size_t j = 0; j < side; ++j) {
        std::int64_t sum = 0;
        for (std::size_t i = 0; i < side; ++i)
            sum += from[j * side + i];
        to[j] = static_cast<double>(sum);
    }
    asm volatile("" : : "r"(to) : "memory");
}
void sum_pairs() {
    const double* __restrict from = arrays().reals;
    double* __restrict to = arrays().real;
    for (std::size_t j = 0; j < length / 2; ++j)
        to[j] = from[2 * j] + from[2 * j + 1];
    asm volatile("" : : "r"(to) : "memory");
}
void sum_two_columns() {
    const double* from = arrays().reals;
    double left = 0;
    double right = 0;
    for (std::size_t j = 0; j < length / 2; ++j) {
        left += from[2 * j];
        right += from[2 * j + 1];
    }
    sink = left + right;
}
void interval_tenths() {
    double* to = arrays().real;
    double x = 0;
    for (std::size_t i = 0; i < length; ++i, x += 0.1)
        to[i] = x;
    asm volatile("" : : "r"(to) : "memory");
}
void least_real() {
    const double* from = arrays().reals;
    double least = from[0];
    for (std::size_t i = 0; i < length; ++i)
        least = from[i] < least ? from[i] : least;
    sink = least;
}
void all_true() {
    const std::uint8_t* from = arrays().half;
    std::uint8_t least = 1;
    for (std::size_t i = 0; i < length; ++i)
        least = std::min(least, from[i]);
    sink = least;
}
void least_int() {
    const std::int32_t* from = arrays().ints;
    std::int32_t least = from[0];
    for (std::size_t i = 0; i < length; ++i)
        least = std::min(least, from[i]);
    sink = least;
}
void reverse_reals() {
    const double* from = arrays().reals;
    double* to = arrays().real;
    for (std::size_t i = 0; i < length; ++i)
        to[i] = from[length - 1 - i];
    asm volatile("" : : "r"(to) : "memory");
}
void twice() {
    std::memcpy(arrays().real, arrays().reals, length * sizeof(double));
    std::memcpy(arrays().real + length, arrays().reals, length * sizeof(double));
    asm volatile("" : : "r"(arrays().real) : "memory");
}
void turn() {
    constexpr std::size_t tile = 16;
    const double* from = arrays().reals;
    double* to = arrays().real;
    for (std::size_t c = 0; c < side; c += tile)
        for (std::size_t r = 0; r < side; r += tile)
            for (std::size_t i = r; i < std::min(r + tile, side); ++i)
                for (std::size_t j = c; j < std::min(c + tile, side); ++j)
                    to[i * side + j] = from[j * side + i];
    asm volatile("" : : "r"(to) : "memory");
}
void compress_reals() {
    const double* __restrict from = arrays().reals;
    const std::uint8_t* __restrict half = arrays().half;
    double* __restrict to = arrays().real;
    for (std::size_t i = 0; i < length; ++i) {
        *to = from[i];
        to += half[i];
    }
    asm volatile("" : : "r"(to) : "memory");
}

} // namespace

std::vector<Row> rows() {
    arrays();
    return {
        {"INTS NEGATIVE", negative_ints, 1.3, "-INTS", 1.0},
        {"REALS NEGATIVE", negative_reals, 1.3, "-REALS", 1.0},
        {"REALS MAGNITUDE", magnitude, 1.3, "numpy.abs(REALS)", 1.0},
        {"REALS FLOOR", floor_reals, 1.3, "numpy.floor(REALS).astype(numpy.int32)", 1.0},
        {"SMALL EXP", exponential, 1.05, "numpy.exp(SMALL)", 0},
        {"POSITIVE LN", logarithm, 1.05, "numpy.log(POSITIVE)", 0},
        {"SMALL SIN", sine, 1.05, "numpy.sin(SMALL)", 0},
        {"SMALL COS", cosine, 1.05, "numpy.cos(SMALL)", 0},
        {"REALS RANDOM", random_reals, 0.5, "numpy.random.random(REALS.size) * REALS", 1.0},
        {"DICE ROLL", roll_ints, 0.5, nullptr, 0},
        {"9000000 INTERVAL", interval_ints, 1.3, "numpy.arange(1, 9000001, dtype=numpy.int32)",
         1.0},
        {"0.5 9e6 , INTERVAL", interval_reals, 1.3, "numpy.arange(0.5, 9000000.0)", 0},
        {"0 899999.9 0.1 , , INTERVAL", interval_tenths, 1.3, "numpy.arange(0, 899999.95, 0.1)", 0},
        {"INTS SUM", sum_ints, 1.3, "INTS.sum()", 1.0},
        {"REALS SUM", sum_reals, 1.05, "REALS.sum()", 0},
        {"MATRIX SUM", sum_runs, 1.3, "MATRIX.sum(1)", 0},
        {"MATRIX SUMROWS", sum_columns, 1.3, "MATRIX.sum(0)", 1.0},
        {"WHOLE SUM", sum_int_runs, 1.3, "WHOLE.sum(1)", 1.0},
        {"WHOLE SUMROWS", sum_int_columns, 1.3, "WHOLE.sum(0)", 1.0},
        {"PAIRS SUM", sum_pairs, 1.3, "PAIRS.sum(1)", 1.0},
        {"PAIRS SUMROWS", sum_two_columns, 1.3, "PAIRS.sum(0)", 1.0},
        {"INTS SMALLEST", least_int, 1.3, "INTS.min()", 1.0},
        {"REALS SMALLEST", least_real, 1.3, "REALS.min()", 0},
        {"HALF ALL", all_true, 1.3, "HALF.all()", 0},
        {"REALS REVERSE", reverse_reals, 1.3, "REALS[::-1].copy()", 1.0},
        {"REALS 18000000 RESHAPE", twice, 1.3, "numpy.resize(REALS, 18000000)", 1.0},
        {"REALS 2 REPLICATE", twice, 1.3, "numpy.tile(REALS, 2)", 1.0},
        {"REALS REALS CATENATE", twice, 1.3, "numpy.concatenate((REALS, REALS))", 1.0},
        {"MATRIX TRANSPOSE", turn, 1.5, "numpy.ascontiguousarray(MATRIX.T)", 1.0},
        {"REALS HALF COMPRESS", compress_reals, 2.0, "REALS[HALF]", 1.0},
    };
}

} // namespace bench
