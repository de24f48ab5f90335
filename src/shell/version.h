// What this program is: the banner, how it was built, the sizes that it works with.
#pragma once

namespace tessor {

void print_banner();
/// The banner, and on what system, when and how it was compiled.
void print_version();
/// Sizes and limits of the records and numbers of the language.
void print_internals();

} // namespace tessor
