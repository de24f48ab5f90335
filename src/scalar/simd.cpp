#include "scalar/simd.h"

namespace tessor {

#if defined(__x86_64__)
const SimdLevel simd_level = [] {
    __builtin_cpu_init();
    const bool v3 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")
                    && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    const bool v4 = v3 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl")
                    && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq")
                    && __builtin_cpu_supports("avx512cd");
    return v4 ? SimdLevel::v4 : v3 ? SimdLevel::v3 : SimdLevel::baseline;
}();
#else
const SimdLevel simd_level = SimdLevel::baseline;
#endif

} // namespace tessor
