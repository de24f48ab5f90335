// The algebra of complex numbers, quaternions and octonions, and their polar form.
//
// A number is a row of 1, 2, 4 or 8 doubles. All three families follow one rule of multiplication:
// pairs over the Hamilton quaternions, of which the narrower numbers are a part. A polar form is
// the modulus and then the angles, as many components as the cartesian form has. Destination and
// source of a conversion may be the same. Flops are added to the counter that is handed in.
#pragma once

namespace tessor {

/// Modulus and angles of a, b (, c, d or e2 to e7).
void polarcomplex(double* to, const double* from, double& flops);
void polarquat(double* to, const double* from, double& flops);
void polarocto(double* to, const double* from, double& flops);

/// The components that a modulus and angles stand for.
void cartesiancomplex(double* to, const double* from, double& flops);
void cartesianquat(double* to, const double* from, double& flops);
void cartesianocto(double* to, const double* from, double& flops);

/// The sign of the first component that isn't 0: -1, 0 or 1.
int csgnquat(const double* from, double& flops);
int csgnocto(const double* from, double& flops);

/// The angle of a component x beside what is left over, y.
double angle_of(double y, double x);

/// Small enough to have no angle to speak of.
inline bool near_zero(double x) {
    return x + 1.0 == 1.0;
}

/// A sine or cosine; what is below 1e-15 in magnitude, and a NaN, is taken as 0.
inline double snap(double x) {
    return 1e-15 <= (x < 0 ? -x : x) ? x : 0.0;
}

/// Conversions by the number of components, 2, 4 or 8.
template <int N>
inline void polar(double* to, const double* from, double& flops) {
    if constexpr (N == 2)
        polarcomplex(to, from, flops);
    else if constexpr (N == 4)
        polarquat(to, from, flops);
    else
        polarocto(to, from, flops);
}
template <int N>
inline void cartesian(double* to, const double* from, double& flops) {
    if constexpr (N == 2)
        cartesiancomplex(to, from, flops);
    else if constexpr (N == 4)
        cartesianquat(to, from, flops);
    else
        cartesianocto(to, from, flops);
}

/// The first component stays, the signs of all others are flipped: -0.0 can appear.
template <int N>
inline void conjugate(double* out, const double* from) {
    out[0] = from[0];
    for (int i = 1; i < N; ++i)
        out[i] = -from[i];
}

/// Sum of the squares.
template <int N>
inline double norm(const double* from) {
    double sum = from[0] * from[0];
    for (int i = 1; i < N; ++i)
        sum += from[i] * from[i];
    return sum;
}

/// Conjugate by norm. Zero gives infinities and NaNs.
template <int N>
inline void inverse(double* out, const double* from) {
    const double divisor = norm<N>(from);
    conjugate<N>(out, from);
    for (int i = 0; i < N; ++i)
        out[i] /= divisor;
}

// Signs of the products of the units 1, i, j, k; the product of units a and b is unit a ^ b.
inline constexpr bool hamilton_minus[4][4] = {{false, false, false, false},
                                              {false, true, false, true},
                                              {false, true, true, false},
                                              {false, false, true, true}};

/// Component K of a Hamilton product, from the terms of the left component I on.
template <int L, int R, int K, int I = 0, bool First = true>
inline double hamilton_component(const double* l, const double* r, double before = 0) {
    constexpr int J = I ^ K;
    if constexpr (I == L) {
        return before;
    } else if constexpr (J >= R) {
        return hamilton_component<L, R, K, I + 1, First>(l, r, before);
    } else {
        const double term = l[I] * r[J];
        double sum = 0;
        if constexpr (First)
            sum = hamilton_minus[I][J] ? -term : term;
        else
            sum = hamilton_minus[I][J] ? before - term : before + term;
        return hamilton_component<L, R, K, I + 1, false>(l, r, sum);
    }
}

/// Hamilton product of numbers of up to four components; what lies beyond L or R is zero, and no
/// term is computed for it. Each sum goes by the component of the left operand. `out` has two
/// components if neither operand has more, else four, and is none of the operands.
template <int L, int R>
inline void hamilton(double* out, const double* l, const double* r) {
    out[0] = hamilton_component<L, R, 0>(l, r);
    out[1] = hamilton_component<L, R, 1>(l, r);
    if constexpr (L > 2 || R > 2) {
        out[2] = hamilton_component<L, R, 2>(l, r);
        out[3] = hamilton_component<L, R, 3>(l, r);
    }
}

/// Product of two quaternions; a last component that is exactly 0 takes no part, so that it makes
/// no NaN beside an infinity.
inline void quaternion_product(double* out, const double* l, const double* r) {
    if (l[3] == 0) {
        if (r[3] == 0)
            hamilton<3, 3>(out, l, r);
        else
            hamilton<3, 4>(out, l, r);
    } else if (r[3] == 0) {
        hamilton<4, 3>(out, l, r);
    } else {
        hamilton<4, 4>(out, l, r);
    }
}

/// Product, left by right, of numbers of 1, 2, 4 or 8 components: the pairs (p, q) of an octonion
/// multiply as (p, q)(r, s) = (pr - s*q, sp + qr*). Terms that are zero by the width of an operand
/// aren't computed. `out` has the components of the wider operand and is none of the operands.
template <int L, int R>
inline void product(double* out, const double* l, const double* r) {
    if constexpr (L == 1) {
        for (int i = 0; i < R; ++i)
            out[i] = l[0] * r[i];
    } else if constexpr (R == 1) {
        for (int i = 0; i < L; ++i)
            out[i] = l[i] * r[0];
    } else if constexpr (L == 4 && R == 4) {
        quaternion_product(out, l, r);
    } else if constexpr (L <= 4 && R <= 4) {
        hamilton<L, R>(out, l, r);
    } else if constexpr (L <= 4) {
        hamilton<L, 4>(out, l, r);
        hamilton<4, L>(out + 4, r + 4, l);
    } else if constexpr (R <= 4) {
        double conjugated[R];
        conjugate<R>(conjugated, r);
        hamilton<4, R>(out, l, r);
        hamilton<4, R>(out + 4, l + 4, conjugated);
    } else {
        double conjugated[4];
        double part[4];
        conjugate<4>(conjugated, r + 4);
        hamilton<4, 4>(out, l, r);
        hamilton<4, 4>(part, conjugated, l + 4);
        for (int i = 0; i < 4; ++i)
            out[i] -= part[i];
        conjugate<4>(conjugated, r);
        hamilton<4, 4>(out + 4, r + 4, l);
        hamilton<4, 4>(part, l + 4, conjugated);
        for (int i = 0; i < 4; ++i)
            out[4 + i] += part[i];
    }
}

/// Flops of such a product. The operands count only for two quaternions.
template <int L, int R>
inline double product_flops(const double* l, const double* r) {
    constexpr int narrow = L < R ? L : R;
    constexpr int wide = L < R ? R : L;
    if constexpr (narrow == 1)
        return wide;
    else if constexpr (narrow == 2)
        return wide == 2 ? 6 : wide == 4 ? 12 : 26;
    else if constexpr (wide == 4)
        return l[3] == 0 && r[3] == 0 ? 14 : l[3] == 0 || r[3] == 0 ? 20 : 28;
    else
        return narrow == 4 ? 56 : 120;
}

} // namespace tessor
