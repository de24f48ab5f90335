// Names at run time: what a name cell pushes, and storing under a name.
#pragma once

#include "engine/machine.h"

namespace tessor {

Next push_variable(Activation& run);      ///< VARIABLE cell; calls a function that is a verb
Next push_address(Activation& run);       ///< ADDRESS cell
Next push_local(Activation& run);         ///< LOCAL VARIABLE cell
Next push_local_address(Activation& run); ///< LOCAL ADDRESS cell
Next push_label(Activation& run);         ///< LABEL cell

/// A name's Space that holds a value.
inline bool is_set(const Space* value) {
    return value && value->type != 0;
}

/// The stack cell of the local that the cell numbers, in a packed block of one integer; null if the
/// frame has no such local.
inline Space* local_of(const Activation& run, const Space& cell) {
    const auto slot = *static_cast<const std::int32_t*>(cell.data_pointer);
    return slot >= 0 && slot < run.floor - run.base ? run.base + slot : nullptr;
}

/// Keeps a late-bound cell or address pointing at what its name means along the current chain, at
/// nothing if it means nothing. True if it was bound anew.
bool keep_bound(Activation& run, Space& cell);
/// Makes the name of such a cell in a table, and binds it.
void make_name(Space& cell, MeaningTable* link, HashTable* hash);
/// A mark on the first cell for whoever looks at a function's body; nothing decides by it. A
/// literal in the first place is a value and takes no mark.
inline void mark_first(Activation& run, std::uint32_t bits) {
    if (run.first->rank < 0 && !(run.first->type & bits))
        run.first->type |= bits;
}

Next assign(Activation& run); ///< ASSIGN: the value stays on the stack
Next set(Activation& run);    ///< SET: both are gone

} // namespace tessor
