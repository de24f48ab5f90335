// Making a monadic verb from its element operation.
//
// An operation is a record with
//     static constexpr Rules rules;
//     apply(x)             overloads on value types; tags without one are refused
//     flops(x, result)     the flops of one element, as in dyadic.h
//     look(x, Look)        form and marks of the result
// and where it needs them
//     refuses(x, Look)     the number to report for an element that looks like this; 0: none
//     Other                an operation without state that takes its place for the elements that
//     other(tag, form)     tells
//     unusual_look(x, result, Look)  the look of a result that isn't of the usual type
// A look that depends on the state of the operation belongs to each element.
#pragma once

#include "scalar/dyadic.h"

namespace tessor {

inline constexpr std::uint32_t monadic_counted = numeric_kinds | HASASCII;

/// A form of 4 stays, any other becomes a plain number.
constexpr std::uint16_t keep_binary(std::uint16_t form) {
    return form == form::binary ? form : std::uint16_t{form::number};
}
/// Cartesian and polar stay, any other form becomes a plain number.
constexpr std::uint16_t keep_cartesian(std::uint16_t form) {
    return form == form::cartesian || form == form::polar ? form : std::uint16_t{form::number};
}
/// passing() without the letter r.
constexpr std::uint16_t marks_without_r(std::uint16_t marks) {
    return static_cast<std::uint16_t>(marks & 0x3eff);
}

/// The kernel of one value type.
template <class Op, class T>
struct Single {
    using Out = decltype(std::declval<const Op&>().apply(std::declval<T>()));

    static int refusal(const Look& look) {
        if constexpr (requires { Op::refuses(T{}, look); })
            return Op::refuses(T{}, look);
        else
            return 0;
    }

    static bool look(Look operand, Look, bool, Look& result) {
        if (refusal(operand))
            return false;
        if constexpr (requires { Op::look(T{}, operand); }) {
            result = Op::look(T{}, operand);
            return true;
        }
        return false;
    }

    // One without state isn't read: the record may be that of the operation it stands in for.
    static Op operation(const void* record) {
        if constexpr (std::is_empty_v<Op>)
            return Op{};
        else
            return *static_cast<const Op*>(record);
    }

    template <bool wide>
    static void run(const void* record, const Stretch& s, void* room, Tally& tally) {
        const Op op = operation(record);
        const auto* items = static_cast<const typename Stored<T>::Item*>(s.left);
        const auto apply = [=](std::size_t i, std::uint32_t& flops) {
            const T x = Stored<T>::load(items, i);
            const Out result = op.apply(x);
            if constexpr (!Stored<Out>::two_kinds)
                flops += static_cast<std::uint32_t>(op.flops(x, result));
            return result;
        };
        run_loop<vector_pair<T, T>, wide, Out>(s.n, room, tally, apply);
    }

    static constexpr int kind_flops(bool integer) {
        return Op::flops(T{}, Stored<Out>::sample(integer));
    }

    static Look look_of(const Op& op, const T& x, const Out& out, const Look& operand) {
        if constexpr (requires { op.unusual_look(x, out, operand); })
            if (!out.is_usual)
                return op.unusual_look(x, out, operand);
        return op.look(x, operand);
    }

    static int element(const void* record, const Element& operand, const Element&, bool,
                       Element& result) {
        const Op op = operation(record);
        const Look operand_look{operand.form, operand.marks};
        if (const int number = refusal(operand_look))
            return number;
        const T x = Stored<T>::get(operand);
        const Out out = op.apply(x);
        if (const int number = fault_of(out))
            return number;
        op_flops += static_cast<double>(op.flops(x, out));
        const Look found = look_of(op, x, out, operand_look);
        Stored<Out>::put(result, out);
        result.form = found.form;
        result.marks = found.marks;
        return 0;
    }

    static constexpr Kernel kernel = make_kernel<Single, Out>();
};

template <class Op, class T>
constexpr const Kernel* single_kernel() {
    if constexpr (requires(const Op op, T x) { op.apply(x); })
        return &Single<Op, T>::kernel;
    else
        return nullptr;
}

template <class Op>
constexpr void fill_singles(const Kernel* (&row)[rows]) {
    row[tag::ascii] = single_kernel<Op, Character>();
    row[tag::integer] = single_kernel<Op, std::int32_t>();
    row[tag::real] = single_kernel<Op, double>();
    row[tag::complex] = single_kernel<Op, Complex>();
    row[tag::quaternion] = single_kernel<Op, Quaternion>();
    row[tag::octonion] = single_kernel<Op, Octonion>();
    row[truth_row] = single_kernel<Op, Bit>();
    row[degree_row] = single_kernel<Op, Certainty>();
}

template <class Op>
constexpr MonadicVerb monadic_verb(VerbFunction verb) {
    MonadicVerb made{Op::rules, {}, verb, sizeof(Op), {}, nullptr};
    static_assert(std::is_trivially_copyable_v<Op> && sizeof(Op) <= most_op_bytes);
    fill_singles<Op>(made.kernels);
    if constexpr (requires { typename Op::Other; }) {
        fill_singles<typename Op::Other>(made.others);
        made.other = Op::other;
    }
    return made;
}

/// The result over a number in place. Returns its flops; -1 if it is none that lives in place.
template <class T, class Op>
[[gnu::always_inline]] inline int scalar_single(const Op& op, Space& space) {
    const T x = value_in_place(space, T{});
    const auto result = op.apply(x);
    const Look look = Op::look(x, Look{space.form, space.marks});
    const InPlace made = in_place_of(result);
    if (made.tag == tag::none)
        return -1;
    put_in_place(space, made, look, 0);
    return static_cast<int>(op.flops(x, result));
}

/// The operation on an integer or a real in place.
template <class Op>
[[gnu::always_inline]] inline int scalar_number(const Op& op, Space& space) {
    return space.tag == tag::real ? scalar_single<double>(op, space)
                                  : scalar_single<std::int32_t>(op, space);
}

/// Runs a monadic verb by its table; its operation does a number in place by itself.
template <class Op>
void run_monadic_with(const MonadicVerb& table, const Op& op, Space** top, const Space* cell,
                      Space* quads, signed char mode) {
    Space& operand = **top;
    if (!(operand.type & ISINPLACE) || operand.tag < tag::integer)
        return run_monadic(table, &op, top, cell, quads, mode);
    int flops = 0;
    if constexpr (requires { typename Op::Other; })
        flops = Op::other(operand.tag, operand.form) ? scalar_number(typename Op::Other{}, operand)
                                                     : scalar_number(op, operand);
    else
        flops = scalar_number(op, operand);
    if (flops < 0)
        return run_monadic(table, &op, top, cell, quads, mode);
    op_flops += flops;
    count_operations(1);
}

/// The whole of a monadic verb.
template <class Op, VerbFunction verb>
void monadic(Space** top, const Space* cell, Space* quads, signed char mode) {
    static constexpr MonadicVerb table = monadic_verb<Op>(verb);
    Op op;
    if constexpr (requires { op.tolerance; })
        op.tolerance = comparison_tolerance(quads);
    run_monadic_with(table, op, top, cell, quads, mode);
}

} // namespace tessor
