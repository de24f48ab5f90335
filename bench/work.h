// The work that is measured: one verb on two arrays, on an array and a scalar, or on one array.
#pragma once

#include <cstddef>
#include <cstdint>

namespace bench {

enum class Type { int32, float64, complex128, truth };
enum class Verb {
    add,
    subtract,
    multiply,
    divide,
    less,
    equal,
    minimum,
    maximum,
    conjunction,
    disjunction,
    negation, ///< of the left operand, and so on
    square,
    root, ///< of the right operand, which isn't negative, and so on
    power,
    logarithm,
};

constexpr bool of_one(Verb verb) {
    return verb >= Verb::negation;
}

struct Work {
    Type type;
    Verb verb;
    std::size_t n;
    bool scalar; ///< the right operand is a scalar
};

constexpr std::size_t type_size(Type type) {
    switch (type) {
    case Type::int32: return 4;
    case Type::float64: return 8;
    case Type::complex128: return 16;
    case Type::truth: break;
    }
    return 1;
}

/// Values of the operands: small enough that no integer result leaves 32 bits, and never 0 on the
/// right.
constexpr std::int32_t left_value(std::size_t i) {
    return static_cast<std::int32_t>(i * 7919 % 2003) - 1001;
}
constexpr std::int32_t right_value(std::size_t i) {
    return static_cast<std::int32_t>(i * 104729 % 1009) + 1;
}
inline constexpr std::int32_t scalar_value = 7;

/// Writes the operand as a plain array; reals are halves, complex numbers have two equal parts.
/// Truth values are bytes.
inline void fill_operand(void* data, Type type, std::size_t n, std::int32_t (*value)(std::size_t)) {
    for (std::size_t i = 0; i < n; ++i) {
        if (type == Type::int32) {
            static_cast<std::int32_t*>(data)[i] = value(i);
        } else if (type == Type::float64) {
            static_cast<double*>(data)[i] = value(i) + 0.5;
        } else if (type == Type::truth) {
            static_cast<std::uint8_t*>(data)[i] = value(i) % 2 != 0;
        } else {
            double* pair = static_cast<double*>(data) + 2 * i;
            pair[0] = pair[1] = value(i) + 0.5;
        }
    }
}

/// Nanoseconds for one execution.
using Nanoseconds = double;

} // namespace bench
