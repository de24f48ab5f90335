// Making a dyadic verb from its element operation.
//
// An operation is a record with
//     static constexpr Rules rules;
//     apply(l, r)          overloads on value types; pairs without one are refused
//     flops(l, r, result)  the flops of one element; for a result of two kinds they depend on
//                          nothing but its kind
// and where it needs them
//     tolerance            a member that gets the comparison tolerance
//     look(l, r, Looks)    form and marks of the result, for pairs that differ from usual_look
//     keeps_left(l, r)     the result is one of the operands: which one
#pragma once

#include "scalar/compare.h"
#include "scalar/loops.h"
#include "values/shared.h"

#include <array>

namespace tessor {

/// form and marks of the operands; over_right: the result is written over the right one.
struct Looks {
    Look left;
    Look right;
    bool over_right;
};

constexpr Look passing(Look look) {
    return {look.form, static_cast<std::uint16_t>(look.marks & passing_marks)};
}

/// What results look like unless the verb says otherwise: truth values boolean, degrees logical, a
/// complex result as its complex operand, the left one of two; all others plain numbers.
template <class L, class R, class Out>
constexpr Look usual_look(const Looks& looks) {
    if constexpr (std::same_as<Out, Truth> || std::same_as<Out, Bit>)
        return {form::boolean, 0};
    else if constexpr (std::same_as<Out, Degree> || std::same_as<Out, Certainty>)
        return {form::logical, 0};
    else if constexpr (std::same_as<Out, Complex>)
        return passing(std::same_as<L, Complex> ? looks.left : looks.right);
    else
        return {form::number, 0};
}

template <class Op, class L, class R>
concept Applies = requires(const Op op, L l, R r) {
    op.apply(l, r);
};

/// The kernel of one pair of value types.
template <class Op, class L, class R>
struct Pair {
    using Out = decltype(std::declval<const Op&>().apply(std::declval<L>(), std::declval<R>()));
    static constexpr bool selects = requires(const Op op, L l, R r) { op.keeps_left(l, r); };

    static Look look_of(const Looks& looks) {
        if constexpr (requires { Op::look(L{}, R{}, looks); })
            return Op::look(L{}, R{}, looks);
        else
            return usual_look<L, R, Out>(looks);
    }

    static bool look(Look left, Look right, bool over_right, Look& result) {
        if constexpr (selects) {
            result = passing(left);
            return left == right;
        } else {
            result = look_of({left, right, over_right});
            return true;
        }
    }

    // A loop of its own for each case of single operands where it can be vector code.
    template <bool wide, bool left_single, bool right_single>
    static void shaped(const Op& op, const Stretch& s, void* room, Tally& tally) {
        const auto* left = static_cast<const typename Stored<L>::Item*>(s.left);
        const auto* right = static_cast<const typename Stored<R>::Item*>(s.right);
        const L first_left = Stored<L>::load(left, 0);
        const R first_right = Stored<R>::load(right, 0);
        const auto apply = [=](std::size_t i, std::uint32_t& flops) {
            const L l = left_single ? first_left : Stored<L>::load(left, i);
            const R r = right_single ? first_right : Stored<R>::load(right, i);
            const Out result = op.apply(l, r);
            if constexpr (!Stored<Out>::two_kinds)
                flops += static_cast<std::uint32_t>(op.flops(l, r, result));
            return result;
        };
        run_loop<true, wide, Out>(s.n, room, tally, apply);
    }
    template <bool wide>
    static void stepped(const Op& op, const Stretch& s, void* room, Tally& tally) {
        const auto* left = static_cast<const typename Stored<L>::Item*>(s.left);
        const auto* right = static_cast<const typename Stored<R>::Item*>(s.right);
        const std::size_t left_step = s.left_single ? 0 : 1;
        const std::size_t right_step = s.right_single ? 0 : 1;
        const auto apply = [=](std::size_t i, std::uint32_t& flops) {
            const L l = Stored<L>::load(left, i * left_step);
            const R r = Stored<R>::load(right, i * right_step);
            const Out result = op.apply(l, r);
            if constexpr (!Stored<Out>::two_kinds)
                flops += static_cast<std::uint32_t>(op.flops(l, r, result));
            return result;
        };
        run_loop<false, wide, Out>(s.n, room, tally, apply);
    }

    template <bool wide>
    static void run(const void* record, const Stretch& s, void* room, Tally& tally) {
        const Op& op = *static_cast<const Op*>(record);
        if constexpr (!vector_pair<L, R>)
            stepped<wide>(op, s, room, tally);
        else if (s.right_single)
            shaped<wide, false, true>(op, s, room, tally);
        else if (s.left_single)
            shaped<wide, true, false>(op, s, room, tally);
        else
            shaped<wide, false, false>(op, s, room, tally);
    }

    static constexpr int kind_flops(bool integer) {
        return Op::flops(L{}, R{}, Stored<Out>::sample(integer));
    }

    static int element(const void* record, const Element& left, const Element& right,
                       bool over_right, Element& result) {
        const Op& op = *static_cast<const Op*>(record);
        const L l = Stored<L>::get(left);
        const R r = Stored<R>::get(right);
        const Out out = op.apply(l, r);
        if (const int number = fault_of(out))
            return number;
        op_flops += static_cast<double>(op.flops(l, r, out));
        Stored<Out>::put(result, out);
        const Looks looks{{left.form, left.marks}, {right.form, right.marks}, over_right};
        Look found;
        if constexpr (selects)
            found = passing(op.keeps_left(l, r) ? looks.left : looks.right);
        else
            found = look_of(looks);
        result.form = found.form;
        result.marks = found.marks;
        return 0;
    }

    static constexpr Kernel kernel = make_kernel<Pair, Out>();
};

template <class Op, class L, class R>
constexpr const Kernel* pair_kernel() {
    if constexpr (Applies<Op, L, R>)
        return &Pair<Op, L, R>::kernel;
    else
        return nullptr;
}

template <class Op, class L>
constexpr void fill_row(const Kernel* (&row)[rows]) {
    row[tag::ascii] = pair_kernel<Op, L, Character>();
    row[tag::integer] = pair_kernel<Op, L, std::int32_t>();
    row[tag::real] = pair_kernel<Op, L, double>();
    row[tag::complex] = pair_kernel<Op, L, Complex>();
    row[tag::quaternion] = pair_kernel<Op, L, Quaternion>();
    row[tag::octonion] = pair_kernel<Op, L, Octonion>();
    row[truth_row] = pair_kernel<Op, L, Bit>();
    row[degree_row] = pair_kernel<Op, L, Certainty>();
}

template <class Op>
constexpr DyadicVerb dyadic_verb(VerbFunction verb) {
    DyadicVerb made{Op::rules, {}, verb, sizeof(Op)};
    static_assert(std::is_trivially_copyable_v<Op> && sizeof(Op) <= most_op_bytes);
    fill_row<Op, Character>(made.kernels[tag::ascii]);
    fill_row<Op, std::int32_t>(made.kernels[tag::integer]);
    fill_row<Op, double>(made.kernels[tag::real]);
    fill_row<Op, Complex>(made.kernels[tag::complex]);
    fill_row<Op, Quaternion>(made.kernels[tag::quaternion]);
    fill_row<Op, Octonion>(made.kernels[tag::octonion]);
    fill_row<Op, Bit>(made.kernels[truth_row]);
    fill_row<Op, Certainty>(made.kernels[degree_row]);
    return made;
}

// Two scalars in place: no loop, no block.

/// What a result in place is made of.
struct InPlace {
    std::int32_t tag;
    std::uint64_t value; ///< last word of the record
};

inline InPlace in_place_of(std::int32_t value) {
    return {tag::integer, word_of(static_cast<std::uint32_t>(value), 0)};
}
inline InPlace in_place_of(double value) {
    return {tag::real, std::bit_cast<std::uint64_t>(value)};
}
inline InPlace in_place_of(Truth value) {
    return in_place_of(std::int32_t{value.value});
}
inline InPlace in_place_of(Bit value) {
    return in_place_of(std::int32_t{value.value});
}
inline InPlace in_place_of(Degree value) {
    return in_place_of(value.value);
}
inline InPlace in_place_of(const Promoted& value) {
    return value.fits ? in_place_of(value.whole) : in_place_of(value.value);
}
inline InPlace in_place_of(Quotient value) {
    return Stored<Quotient>::fits(value) ? in_place_of(static_cast<std::int32_t>(value.value))
                                         : in_place_of(value.value);
}
// Neither of these lives in place.
inline InPlace in_place_of(Fault) {
    return {tag::none, 0};
}
template <int N>
InPlace in_place_of(const Hyper<N>&) {
    return {tag::none, 0};
}
template <class Usual, class Other>
InPlace in_place_of(const Either<Usual, Other>& value) {
    return value.is_usual ? in_place_of(value.usual) : in_place_of(value.other);
}

/// Writes a result over a scalar in place, whose type bits that aren't kinds stay.
inline void put_in_place(Space& space, const InPlace& result, Look look, std::uint32_t more) {
    const std::uint32_t type = (space.type & ~0x407f40u) | more | kind_bit(result.tag);
    put_word(space, 0, word_of(0, type));
    put_word(space, 3, look_word(look.form, look.marks, result.tag));
    put_word(space, 4, result.value);
}

template <RealLike T>
inline constexpr std::int32_t value_tag = std::same_as<T, double> ? tag::real : tag::integer;

inline std::int32_t value_in_place(const Space& space, std::int32_t) {
    return space.integer;
}
inline double value_in_place(const Space& space, double) {
    return space.real;
}

/// The result over the left of two numbers in place. Returns its flops; -1 if it is none that lives
/// in place, with nothing done.
template <class L, class R, class Op>
[[gnu::always_inline]] inline int scalar_pair(const Op& op, Space& left, const Space& right) {
    const L l = value_in_place(left, L{});
    const R r = value_in_place(right, R{});
    const auto result = op.apply(l, r);
    const Looks looks{{left.form, left.marks}, {right.form, right.marks}, false};
    const Look look = Pair<Op, L, R>::look_of(looks);
    const InPlace made = in_place_of(result);
    if (made.tag == tag::none)
        return -1;
    put_in_place(left, made, look, right.type & ISPROBABLE);
    return static_cast<int>(op.flops(l, r, result));
}

inline bool integers_in_place(const Space& left, const Space& right) {
    return (left.type & right.type & ISINPLACE) && left.tag == tag::integer
           && right.tag == tag::integer;
}
inline bool numbers_in_place(const Space& left, const Space& right, std::uint32_t refused) {
    return (left.type & right.type & ISINPLACE) && !((left.type | right.type) & refused)
           && left.tag >= tag::integer && right.tag >= tag::integer;
}

/// The same by the tags of the operands.
template <class Op>
int scalar_flops(const Op& op, Space& left, const Space& right) {
    if (left.tag == tag::real)
        return right.tag == tag::real ? scalar_pair<double, double>(op, left, right)
                                      : scalar_pair<double, std::int32_t>(op, left, right);
    return right.tag == tag::real ? scalar_pair<std::int32_t, double>(op, left, right)
                                  : scalar_pair<std::int32_t, std::int32_t>(op, left, right);
}

/// Runs the verb on two numbers in place; false if the operands or the result are anything else.
template <class Op>
bool scalar_road(const Op& op, Space** top, signed char mode) {
    Space* left = *top - 1;
    if (!numbers_in_place(*left, **top, Op::rules.refused))
        return false;
    const int flops = scalar_flops(op, *left, **top);
    if (flops < 0)
        return false;
    op_flops = (mode < 0 ? 0.0 : 1.0) + flops;
    *top = left;
    count_operations(1);
    return true;
}

/// The whole of a dyadic verb.
template <class Op, VerbFunction verb>
void dyadic(Space** top, const Space* cell, Space* quads, signed char mode) {
    static constexpr DyadicVerb table = dyadic_verb<Op>(verb);
    Op op;
    if constexpr (requires { op.tolerance; }) {
        if (!integers_in_place((*top)[-1], **top)) // which are compared exactly
            op.tolerance = comparison_tolerance(quads);
    }
    if (!scalar_road(op, top, mode))
        run_dyadic(table, &op, top, cell, quads, mode);
}

/// Both are plain numbers with this tag.
inline bool plain_pair(const Space& left, const Space& right, std::int32_t tag) {
    return get_word(left, 0) == plain_word(tag) && get_word(right, 0) == plain_word(tag);
}

/// scalar_pair for two plain numbers of one type: the left one's type mostly is the result's.
template <class T, class Op>
[[gnu::always_inline]] inline int plain_flops(const Op& op, Space& left, const Space& right) {
    const T l = value_in_place(left, T{});
    const T r = value_in_place(right, T{});
    const auto result = op.apply(l, r);
    const Looks looks{{left.form, left.marks}, {right.form, right.marks}, false};
    const Look look = Pair<Op, T, T>::look_of(looks);
    const InPlace made = in_place_of(result);
    if (made.tag == tag::none)
        return -1;
    if (made.tag != value_tag<T>)
        put_word(left, 0, plain_word(made.tag));
    put_word(left, 3, look_word(look.form, look.marks, made.tag));
    put_word(left, 4, made.value);
    return static_cast<int>(op.flops(l, r, result));
}

/// What dyadic_in_place returns: the flops with the one of the verb itself.
inline long with_own_flop(int flops) {
    return flops < 0 ? -1 : 1 + flops;
}

/// The whole of a dyadic verb on two numbers in place; see verbs.h.
template <class Op>
long dyadic_in_place(Space* left, const Space* right, Space* quads) {
    Op op;
    if (plain_pair(*left, *right, tag::integer)) [[likely]]
        return with_own_flop(plain_flops<std::int32_t>(op, *left, *right));
    if (!numbers_in_place(*left, *right, Op::rules.refused))
        return -1;
    if constexpr (requires { op.tolerance; }) {
        if (!integers_in_place(*left, *right))
            op.tolerance = comparison_tolerance(quads);
    }
    if (plain_pair(*left, *right, tag::real))
        return with_own_flop(plain_flops<double>(op, *left, *right));
    return with_own_flop(scalar_flops(op, *left, *right));
}

} // namespace tessor
