// The scalar verbs, one function each.
//
// All take the address of the top pointer, the current cell (for reports), the system values, and a
// mode: 0 top level; 1 as 0, but no operand block may be overwritten; -2 no workers; -1 as -2, but
// no operand block may be overwritten. A dyadic verb leaves its result in the left operand's cell
// and pops one; a monadic verb replaces the top value. Failures throw ErrorJump or OutOfStorage.
#pragma once

#include "values/space.h"

namespace tessor {

// monadic
void conjugate(Space** top, const Space* cell, Space* quads, signed char mode);
void negative(Space** top, const Space* cell, Space* quads, signed char mode);
void signum(Space** top, const Space* cell, Space* quads, signed char mode);
void direction(Space** top, const Space* cell, Space* quads, signed char mode);
void reciprocal(Space** top, const Space* cell, Space* quads, signed char mode);
void magnitude(Space** top, const Space* cell, Space* quads, signed char mode);
void binary(Space** top, const Space* cell, Space* quads, signed char mode);
void number(Space** top, const Space* cell, Space* quads, signed char mode);
void polar(Space** top, const Space* cell, Space* quads, signed char mode);
void deg(Space** top, const Space* cell, Space* quads, signed char mode);
void rad(Space** top, const Space* cell, Space* quads, signed char mode);
void cartesian(Space** top, const Space* cell, Space* quads, signed char mode);
void floor(Space** top, const Space* cell, Space* quads, signed char mode);
void ceiling(Space** top, const Space* cell, Space* quads, signed char mode);
void truncate(Space** top, const Space* cell, Space* quads, signed char mode);
void exponential(Space** top, const Space* cell, Space* quads, signed char mode);
void naturallog(Space** top, const Space* cell, Space* quads, signed char mode);
void pitimes(Space** top, const Space* cell, Space* quads, signed char mode);
void factorial(Space** top, const Space* cell, Space* quads, signed char mode);

// tests of the form
void isbinary(Space** top, const Space* cell, Space* quads, signed char mode);
void isnumber(Space** top, const Space* cell, Space* quads, signed char mode);
void iscartesian(Space** top, const Space* cell, Space* quads, signed char mode);
void ispolar(Space** top, const Space* cell, Space* quads, signed char mode);

// powers of a fixed base, and logarithms to one
void pow2(Space** top, const Space* cell, Space* quads, signed char mode);
void powe(Space** top, const Space* cell, Space* quads, signed char mode);
void pow10(Space** top, const Space* cell, Space* quads, signed char mode);
void ld(Space** top, const Space* cell, Space* quads, signed char mode);
void log10(Space** top, const Space* cell, Space* quads, signed char mode);
/// Draws from prngs_seed; what they leave is ISPROBABLE.
void roll(Space** top, const Space* cell, Space* quads, signed char mode);
void Random(Space** top, const Space* cell, Space* quads, signed char mode);

// monadic logic
void not_(Space** top, const Space* cell, Space* quads, signed char mode);
void boolean(Space** top, const Space* cell, Space* quads, signed char mode);
void logical(Space** top, const Space* cell, Space* quads, signed char mode);
void probably(Space** top, const Space* cell, Space* quads, signed char mode);
void contradiction(Space** top, const Space* cell, Space* quads, signed char mode);
void isboolean(Space** top, const Space* cell, Space* quads, signed char mode);
void islogical(Space** top, const Space* cell, Space* quads, signed char mode);

// dyadic arithmetic
void add(Space** top, const Space* cell, Space* quads, signed char mode);
void subtract(Space** top, const Space* cell, Space* quads, signed char mode);
void multiply(Space** top, const Space* cell, Space* quads, signed char mode);
void divide(Space** top, const Space* cell, Space* quads, signed char mode);
void residue(Space** top, const Space* cell, Space* quads, signed char mode);
/// The function with the number on the right, -7 to 7, of what is on the left: else number 85.
void circular(Space** top, const Space* cell, Space* quads, signed char mode);
void minimum(Space** top, const Space* cell, Space* quads, signed char mode);
void maximum(Space** top, const Space* cell, Space* quads, signed char mode);
void power(Space** top, const Space* cell, Space* quads, signed char mode);
void logarithm(Space** top, const Space* cell, Space* quads, signed char mode);
void binomial(Space** top, const Space* cell, Space* quads, signed char mode);

// dyadic logic
void and_(Space** top, const Space* cell, Space* quads, signed char mode);
void or_(Space** top, const Space* cell, Space* quads, signed char mode);
void nand(Space** top, const Space* cell, Space* quads, signed char mode);
void nor(Space** top, const Space* cell, Space* quads, signed char mode);
void strongand(Space** top, const Space* cell, Space* quads, signed char mode);
void strongor(Space** top, const Space* cell, Space* quads, signed char mode);
void strongnand(Space** top, const Space* cell, Space* quads, signed char mode);
void strongnor(Space** top, const Space* cell, Space* quads, signed char mode);

// comparison
void identical(Space** top, const Space* cell, Space* quads, signed char mode);
void notidentical(Space** top, const Space* cell, Space* quads, signed char mode);
void less(Space** top, const Space* cell, Space* quads, signed char mode);
void notgreater(Space** top, const Space* cell, Space* quads, signed char mode);
void equivalent(Space** top, const Space* cell, Space* quads, signed char mode);
void notless(Space** top, const Space* cell, Space* quads, signed char mode);
void greater(Space** top, const Space* cell, Space* quads, signed char mode);
void notequivalent(Space** top, const Space* cell, Space* quads, signed char mode);

// The same for two integers or reals in place, for an engine in a hurry: the result is left in the
// left one's place, and nothing is popped or counted. They return the flops, or -1 if the operands
// are others, with nothing done.
long add_in_place(Space* left, const Space* right, Space* quads);
long subtract_in_place(Space* left, const Space* right, Space* quads);
long multiply_in_place(Space* left, const Space* right, Space* quads);
long divide_in_place(Space* left, const Space* right, Space* quads);
long residue_in_place(Space* left, const Space* right, Space* quads);
long circular_in_place(Space* left, const Space* right, Space* quads);
long minimum_in_place(Space* left, const Space* right, Space* quads);
long maximum_in_place(Space* left, const Space* right, Space* quads);
long power_in_place(Space* left, const Space* right, Space* quads);
long logarithm_in_place(Space* left, const Space* right, Space* quads);
long binomial_in_place(Space* left, const Space* right, Space* quads);
long and_in_place(Space* left, const Space* right, Space* quads);
long or_in_place(Space* left, const Space* right, Space* quads);
long nand_in_place(Space* left, const Space* right, Space* quads);
long nor_in_place(Space* left, const Space* right, Space* quads);
long strongand_in_place(Space* left, const Space* right, Space* quads);
long strongor_in_place(Space* left, const Space* right, Space* quads);
long strongnand_in_place(Space* left, const Space* right, Space* quads);
long strongnor_in_place(Space* left, const Space* right, Space* quads);
long identical_in_place(Space* left, const Space* right, Space* quads);
long notidentical_in_place(Space* left, const Space* right, Space* quads);
long less_in_place(Space* left, const Space* right, Space* quads);
long notgreater_in_place(Space* left, const Space* right, Space* quads);
long equivalent_in_place(Space* left, const Space* right, Space* quads);
long notless_in_place(Space* left, const Space* right, Space* quads);
long greater_in_place(Space* left, const Space* right, Space* quads);
long notequivalent_in_place(Space* left, const Space* right, Space* quads);

} // namespace tessor
