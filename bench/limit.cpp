#include "limit.h"

#include <cmath>

namespace bench {

namespace {

struct Add {
    template <class T>
    static T of(T a, T b) {
        return static_cast<T>(a + b);
    }
};
struct Subtract {
    template <class T>
    static T of(T a, T b) {
        return static_cast<T>(a - b);
    }
};
struct Multiply {
    template <class T>
    static T of(T a, T b) {
        return static_cast<T>(a * b);
    }
};
struct Divide {
    template <class T>
    static double of(T a, T b) {
        return static_cast<double>(a) / static_cast<double>(b);
    }
};
struct Less {
    template <class T>
    static std::uint8_t of(T a, T b) {
        return a < b;
    }
};
struct Equal {
    template <class T>
    static std::uint8_t of(T a, T b) {
        return a == b;
    }
};
struct Minimum {
    template <class T>
    static T of(T a, T b) {
        return a < b ? a : b;
    }
};
struct Maximum {
    template <class T>
    static T of(T a, T b) {
        return a > b ? a : b;
    }
};

// Integers are true above 0; reals are limited to degrees from 0 to 1.
inline std::uint8_t truth(std::int32_t x) {
    return x > 0;
}
inline std::uint8_t truth(std::uint8_t x) {
    return x;
}
inline double truth(double x) {
    return x < 0 ? 0 : x <= 1 ? x : 1;
}
struct Conjunction {
    template <class T>
    static auto of(T a, T b) {
        return Minimum::of(truth(a), truth(b));
    }
};
struct Disjunction {
    template <class T>
    static auto of(T a, T b) {
        return Maximum::of(truth(a), truth(b));
    }
};
struct Negation {
    template <class T>
    static auto of(T a, T) {
        return static_cast<decltype(truth(a))>(1 - truth(a));
    }
};
struct Square {
    static double of(double a, double) { return a * a; }
};
struct Root {
    static double of(double, double b) { return std::sqrt(b); }
};
struct Power {
    static double of(double, double b) { return std::pow(b, 1.5); }
};
struct Logarithm {
    static double of(double, double b) { return std::log(b) / std::log(10.0); }
};

template <class F, class T>
using Result = decltype(F::of(T{}, T{}));

template <class F, class T>
void vectors(const void* left, const void* right, void* result, std::size_t n) {
    const T* __restrict a = static_cast<const T*>(left);
    const T* __restrict b = static_cast<const T*>(right);
    auto* __restrict r = static_cast<Result<F, T>*>(result);
    for (std::size_t i = 0; i < n; ++i)
        r[i] = F::of(a[i], b[i]);
}

template <class F, class T>
void with_scalar(const void* left, const void* right, void* result, std::size_t n) {
    const T* __restrict a = static_cast<const T*>(left);
    const T b = *static_cast<const T*>(right);
    auto* __restrict r = static_cast<Result<F, T>*>(result);
    for (std::size_t i = 0; i < n; ++i)
        r[i] = F::of(a[i], b);
}

template <class F, class T>
void alone(const void* left, const void* right, void* result, std::size_t n) {
    const T* __restrict a = static_cast<const T*>(left);
    const T* __restrict b = static_cast<const T*>(right);
    auto* __restrict r = static_cast<Result<F, T>*>(result);
    for (std::size_t i = 0; i < n; ++i)
        r[i] = F::of(a[i], b[i]);
}

void complex_product(const double* a, const double* b, double* __restrict r) {
    const double real = a[0] * b[0] - a[1] * b[1];
    r[1] = a[0] * b[1] + a[1] * b[0];
    r[0] = real;
}

void complex_vectors(const void* left, const void* right, void* result, std::size_t n) {
    const double* __restrict a = static_cast<const double*>(left);
    const double* __restrict b = static_cast<const double*>(right);
    double* __restrict r = static_cast<double*>(result);
    for (std::size_t i = 0; i < n; ++i)
        complex_product(a + 2 * i, b + 2 * i, r + 2 * i);
}

void complex_scalar(const void* left, const void* right, void* result, std::size_t n) {
    const double* __restrict a = static_cast<const double*>(left);
    const double b[2] = {static_cast<const double*>(right)[0],
                         static_cast<const double*>(right)[1]};
    double* __restrict r = static_cast<double*>(result);
    for (std::size_t i = 0; i < n; ++i)
        complex_product(a + 2 * i, b, r + 2 * i);
}

template <class F, class T>
Limit pick(bool scalar) {
    return {scalar ? with_scalar<F, T> : vectors<F, T>, sizeof(Result<F, T>)};
}

template <class T>
Limit pick_verb(const Work& work) {
    switch (work.verb) {
    case Verb::add: return pick<Add, T>(work.scalar);
    case Verb::subtract: return pick<Subtract, T>(work.scalar);
    case Verb::multiply: return pick<Multiply, T>(work.scalar);
    case Verb::divide: return pick<Divide, T>(work.scalar);
    case Verb::less: return pick<Less, T>(work.scalar);
    case Verb::equal: return pick<Equal, T>(work.scalar);
    case Verb::minimum: return pick<Minimum, T>(work.scalar);
    case Verb::maximum: return pick<Maximum, T>(work.scalar);
    case Verb::conjunction: return pick<Conjunction, T>(work.scalar);
    case Verb::disjunction: return pick<Disjunction, T>(work.scalar);
    case Verb::negation: return {alone<Negation, T>, sizeof(Result<Negation, T>)};
    case Verb::square: return {alone<Square, T>, sizeof(double)};
    case Verb::root: return {alone<Root, T>, sizeof(double)};
    case Verb::power: return {alone<Power, T>, sizeof(double)};
    case Verb::logarithm: break;
    }
    return {alone<Logarithm, T>, sizeof(double)};
}

} // namespace

Limit limit_of(const Work& work) {
    if (work.type == Type::complex128)
        return {work.scalar ? complex_scalar : complex_vectors, 2 * sizeof(double)};
    if (work.type == Type::truth)
        return pick_verb<std::uint8_t>(work);
    return work.type == Type::int32 ? pick_verb<std::int32_t>(work) : pick_verb<double>(work);
}

} // namespace bench
