// What all scalar verbs share: operands, conformance, extension, choice of the result block,
// recursion, typing, counters.
//
// A verb is a table of kernels, one for each pair of tags (or each tag) that it has an operation
// for. A kernel comes in two forms: loops over packed data, and one element at a time. Packed
// operands take the first road, all others the second; the results are the same in everything that
// a program can observe. dyadic.h and monadic.h make the tables from a verb's overloads.
//
// A failure throws ErrorJump with the operands still on the stack, or OutOfStorage with everything
// as it was. If results were to be written over an operand, those before the failing element are in
// it.
#pragma once

#include "scalar/value.h"

namespace tessor {

/// Elements between two looks at the noted signals, and between two checks of the results.
#ifdef TESSOR_TIGHT
inline constexpr std::uint32_t stretch_length = 7;
inline constexpr std::uint32_t long_stretch = 7;
#else
inline constexpr std::uint32_t stretch_length = 4096; ///< what goes through a buffer in the cache
inline constexpr std::uint32_t long_stretch = 65536;  ///< what goes straight to its place
#endif

/// A stretch of packed operands, as values of the kernel's types. A single operand has one value.
struct Stretch {
    const void* left;
    const void* right; ///< null for a monadic verb
    std::uint32_t n;
    bool left_single;
    bool right_single;
};

/// What a loop over a stretch counted.
struct Tally {
    std::uint32_t flops = 0;
    std::uint32_t fits = 0; ///< results of two kinds that are integers
    bool misfit = false;    ///< narrow loops: some result isn't
};

/// The operation for one pair of tags, or one tag.
struct Kernel {
    Storage storage;      ///< of narrow results
    Storage wide_storage; ///< elements: there is no wide loop
    bool checked;         ///< narrow results may misfit
    std::uint32_t
        integer_flops; ///< results of two kinds: flops of an integer, and of a real; they are
    std::uint32_t real_flops; ///< not in the tally
    /// Narrow results of a stretch. If one misfits, all are void.
    void (*narrow)(const void* op, const Stretch& stretch, void* items, Tally& tally);
    /// The same as doubles, whatever their kind.
    void (*wide)(const void* op, const Stretch& stretch, void* items, Tally& tally);
    /// The look of all results of operands with these looks. False: only each element can tell.
    bool (*look)(Look left, Look right, bool over_right, Look& result);
    /// The kind bits of n results, where their tag doesn't tell them; else null.
    std::uint32_t (*kinds)(const void* items, std::uint32_t n);
    /// One element. Counts its flops in op_flops. Returns 0, or the number to report.
    int (*element)(const void* op, const Element& left, const Element& right, bool over_right,
                   Element& result);
};

inline constexpr int tags = tag::octonion + 1;

/// Rows of the tables of kernels: a tag, or elements of a byte each.
inline constexpr int truth_row = tags;
inline constexpr int degree_row = tags + 1;
inline constexpr int rows = tags + 2;

/// What is particular to a verb.
struct Rules {
    /// Type bits that an operand may not have: number 17.
    std::uint32_t refused = ISADDRESS | HASASCII | HASUNICODE;
    /// Kinds of number for which the verb has no operation: number 994.
    std::uint32_t restricted = 0;
    /// Kinds of which more than one makes a result COMPLEXED.
    std::uint32_t counted = numeric_kinds;
    /// An integer beside a real gives what the same real would.
    bool integers_as_reals = true;
    /// Nothing of a number counts but its truth, a degree from 0 to 1.
    bool truths = false;
    /// So does an integer on the left or alone, whatever stands on the right.
    bool left_as_reals = false;
    /// A call by the verb itself, for a subarray, counts the flop of the verb too.
    bool nested_flop = false;
    /// Results depend on draws, and so on the thread that makes them.
    bool draws = false;
};

using VerbFunction = void (*)(Space** top, const Space* cell, Space* quads, signed char mode);

/// The most that an operation's record may take.
inline constexpr std::size_t most_op_bytes = 64;

struct DyadicVerb {
    Rules rules;
    const Kernel* kernels[rows][rows];
    VerbFunction verb;
    std::size_t op_size =
        0; ///< of the operation's record, which is copied freely; 0: it is permanent
    /// What a verb with an order of its own has against two elements of its operands, before all
    /// else: the number to report, or 0. Null: nothing.
    int (*refuses)(const Space& holder, const Element& left, const Element& right) = nullptr;
};

struct MonadicVerb {
    Rules rules;
    const Kernel* kernels[rows];
    VerbFunction verb;
    std::size_t op_size = 0;
    const Kernel* others[rows]; ///< for elements of the forms that `other` names
    bool (*other)(std::int32_t tag, std::uint16_t form);

    const Kernel* const* kernels_for(std::int32_t tag, std::uint16_t form) const {
        return other && other(tag, form) ? others : kernels;
    }
};

/// Runs a dyadic verb on the top two values: the result is left in the left one's cell, and *top
/// falls by one. Raises 17, 162, 806, 991, 994 and what the verb's elements report.
void run_dyadic(const DyadicVerb& verb, const void* op, Space** top, const Space* cell,
                Space* quads, signed char mode);

/// Runs a monadic verb on the top value, which the result replaces. An empty value stays as it is.
/// Raises 806, 991, 994 and what the verb's elements report.
void run_monadic(const MonadicVerb& verb, const void* op, Space** top, const Space* cell,
                 Space* quads, signed char mode);

/// The counters at the close of a verb with a result of n elements.
void count_operations(std::uint32_t n);

} // namespace tessor
