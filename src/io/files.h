// Files as programs and as bytes.
//
// The name of the file is on top. An instruction that fails leaves its operands, a write that the
// system refuses as well.
#pragma once

#include "engine/machine.h"

#include <cstdio>

namespace tessor {

/// Runs what is left of a stream on this frame, sentence by sentence, one level deeper.
Next run_stream(Activation& run, std::FILE* stream);

/// READ: runs the file; what the program leaves stays. 701, 702, 710, 720.
Next do_read(Activation& run);
/// TEXTREAD: the bytes of the file as a text. 701, 702, 710, 720.
Next textread(Activation& run);
/// WRITE: the value below the name in source form and a line end, to standard output if the name is
/// empty. 703, 704, 711, 720.
Next do_write(Activation& run);
/// APPEND, TEXTWRITE, TEXTAPPEND: the value behind what the file holds, in source form; as it is
/// shown, in place of what the file held; as it is shown, behind it. 706, 707, 712, 720.
Next append(Activation& run);
Next textwrite(Activation& run);
Next textappend(Activation& run);

} // namespace tessor
