// Calling functions and coming back.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// Calls the FUNCTION on top of the stack: its operands are the values below. Too few of them is
/// 800, no room for the locals, or on the native stack, 806; the function is off the stack then.
Next call(Activation& run);

/// A function that runs when its name is met.
inline bool runs_by_name(const Space& value) {
    return value.rank == kind::FUNCTION && (value.body->type & ISOPERATOR) != 0;
}
/// The same as pushing such a function and calling it. There must be room for the push.
Next call_named(Activation& run, const Space& function);

/// Lets a function's own table join the chain of the activation that calls it. What was entered
/// stays there after the call.
void enter_own_table(Activation& run, HashTable* hash);
inline void enter_table(Activation& run, const Space& function) {
    const MeaningTable* link = function.body[function.elements - 1].table;
    if (link && link->hash)
        enter_own_table(run, link->hash);
}

/// Runs a function that is held off the stack on the top n values; n below 0: in the caller's own
/// frame. `stopped` tells whether its activation ended early. 806 as in call.
Next run_function(Activation& run, const Space& function, long n, bool* stopped = nullptr);

/// Makes room for the locals of a call under its n operands, each unset. There must be that room.
void open_locals(Space* first_operand, long n, int locals);

/// Releases the locals that were made for this activation, and moves its values down over them.
void close_locals(Activation& run) noexcept;

Next do_return(Activation& run);     ///< RETURN and FUNCTIONEND
Next make_operator(Activation& run); ///< OPERATOR: a function that runs when its name is met

} // namespace tessor
