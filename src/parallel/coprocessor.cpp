#include "parallel/coprocessor.h"

namespace tessor {

std::uint32_t processors = 1;
std::uint32_t cpus = 1;
std::uint32_t thrds = 1;
std::int32_t MIN_PARALLEL = 1001;

} // namespace tessor
