// Instructions that reach the terminal and the clock.
//
// What was shown is flushed before any of them waits. Standard input is shared with the scanner:
// each takes up where the one before has stopped.
#pragma once

#include "engine/machine.h"

namespace tessor {

/// INPUT: a line of the language, run in a frame of its own. It leaves what the line leaves, an
/// empty vector if that is nothing.
Next input(Activation& run);
/// QUOTEDIN: a line as text, a scalar if it has one byte. An interrupt ends the waiting.
Next quotedin(Activation& run);
/// TIME: the Julian day, a real scalar of form 0x200.
Next time(Activation& run);
/// SLEEP: so many seconds, an integer or a real; 949 if there are less than none. An interrupt ends
/// it. Any other value stays.
Next sleep(Activation& run);
/// WAIT: until ENTER is pressed.
Next wait(Activation& run);

} // namespace tessor
