// POW2, POWE, POW10, LD and LOG10: a verb with a constant of the instruction's own beside the top
// value. An empty value stays as it is.
#include "io/writers/exception.h"
#include "scalar/verbs.h"
#include "values/array.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <utility>

namespace tessor {

namespace {

using Dyadic = void (*)(Space** top, const Space* cell, Space* quads, signed char mode);

// After a failure the constant goes; what the verb had pushed above it stays.
void take_out(Space** top, Space* constant) {
    dereferencepoint(constant);
    for (; constant < *top; ++constant)
        *constant = constant[1];
    --*top;
}

template <Dyadic verb, bool under>
void with_constant(double value, Space** top, const Space* cell, Space* quads, signed char mode) {
    Space* operand = *top;
    if (operand->rank >= 0 && operand->elements == 0)
        return;
    if (operand > stacktop)
        fail(806, top, cell);
    Space* constant = operand + 1;
    make_real(*constant, value);
    if (under)
        std::swap(*constant--, *operand);
    ++*top;
    try {
        verb(top, cell, quads, mode);
    } catch (...) {
        take_out(top, constant);
        throw;
    }
}

} // namespace

void pow2(Space** top, const Space* cell, Space* quads, signed char mode) {
    with_constant<power, true>(2.0, top, cell, quads, mode);
}

void powe(Space** top, const Space* cell, Space* quads, signed char mode) {
    with_constant<power, true>(2.718281828459045, top, cell, quads, mode);
}

void pow10(Space** top, const Space* cell, Space* quads, signed char mode) {
    with_constant<power, true>(10.0, top, cell, quads, mode);
}

void ld(Space** top, const Space* cell, Space* quads, signed char mode) {
    with_constant<logarithm, false>(2.0, top, cell, quads, mode);
}

void log10(Space** top, const Space* cell, Space* quads, signed char mode) {
    with_constant<logarithm, false>(10.0, top, cell, quads, mode);
}

} // namespace tessor
