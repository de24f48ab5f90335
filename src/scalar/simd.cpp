#include "scalar/simd.h"

namespace tessor {

#if defined(__x86_64__)
const SimdLevel simd_level = [] {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("x86-64-v4"))
        return SimdLevel::v4;
    return __builtin_cpu_supports("x86-64-v3") ? SimdLevel::v3 : SimdLevel::baseline;
}();
#else
const SimdLevel simd_level = SimdLevel::baseline;
#endif

} // namespace tessor
