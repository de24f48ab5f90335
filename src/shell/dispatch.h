// The one place where instruction numbers meet the functions that carry them out.
#pragma once

namespace tessor {

/// Fills the engine's table of bodies. Once, at start-up.
void fill_dispatch();

} // namespace tessor
