// A person's editor, and the stream editor.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// EDIT: the source of the top value, or an empty file for an empty frame, goes to the editor; what
/// is saved is compiled and run on this frame in place of the value. TEXTEDIT pushes it as text,
/// without its last byte. The temporary file can't be written: 711; not read back: 710.
Next edit(Activation& run);

/// STREAMEDIT: tests that the top is a pattern (205 and 206 if not). Both operands stay.
Next streamedit(Activation& run);

} // namespace tessor
