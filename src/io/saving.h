// Saved workspaces: names and values as a program that sets and pushes them again.
//
// A saved file is source text in batches, each ended by a line ".", so that the scanner's room for
// one sentence is enough for any number of names. LOAD runs it. A write that the system refuses
// leaves the name of the file on the stack.
#pragma once

#include "engine/machine.h"
#include "io/writers/writer.h"

namespace tessor {

/// Every name that has a value, table by table from this link outward: the value in source form,
/// and what sets the name to it.
void remember(Writer& out, const MeaningTable* link);

/// SAVE: the names and this frame's values, its locals included. 708, 709, 713, 720.
Next save(Activation& run);
/// REMEMBER: the names alone. 724, 725, 726, 720.
Next do_remember(Activation& run);
/// DUMPSTACK: the values alone; to standard output, and with the name, if the name is empty. 721,
/// 722, 723, 720.
Next do_dumpstack(Activation& run);
/// LOAD: this frame's values and the names of the innermost table go, and what the file holds
/// takes their place. 715, 716, 710, 720.
Next load(Activation& run);

} // namespace tessor
