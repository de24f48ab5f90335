// Files as values: a stream that can be kept in variables and arrays. All copies of a file share
// its stream, which is closed when the last of them goes.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// Lets counting close the streams of files.
void start_files();

/// OPEN: name or file, template: a file value. Files that are there already are opened again, from
/// their start. 706, 707, 712, 720.
Next do_open(Activation& run);
/// CLOSE: closes the streams of all files in the value and drops it. 727 if there are none.
Next do_close(Activation& run);
/// REWIND: the same, with a rewinding of the streams.
Next do_rewind(Activation& run);

} // namespace tessor
