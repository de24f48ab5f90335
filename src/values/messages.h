// The numbered texts.
#pragma once

namespace tessor {

/// The text of a number; numbers outside 0 to 1102 and numbers without a text of their own give
/// "--- Good bye. (999) ---".
const char* errors(int number);

} // namespace tessor
