// Running a loop with the widest vectors that this processor has.
//
// A loop is given as a lambda that captures by value and is marked always_inline: it is compiled
// once for each level, inside a function that may use that level's instructions. Results are the
// same to the bit on all levels, as sums are never reordered and products never fused.
#pragma once

namespace tessor {

enum class SimdLevel { baseline, v3, v4 };
extern const SimdLevel simd_level;

template <class Loop>
[[gnu::noinline]] void run_baseline(Loop loop) {
    loop();
}

#if defined(__x86_64__)

template <class Loop>
[[gnu::noinline, gnu::target("arch=x86-64-v3")]] void run_v3(Loop loop) {
    loop();
}
template <class Loop>
[[gnu::noinline, gnu::target("arch=x86-64-v4")]] void run_v4(Loop loop) {
    loop();
}

template <class Loop>
void run_simd(Loop loop) {
    if (simd_level == SimdLevel::v4)
        run_v4(loop);
    else if (simd_level == SimdLevel::v3)
        run_v3(loop);
    else
        run_baseline(loop);
}

#else

template <class Loop>
void run_simd(Loop loop) {
    run_baseline(loop);
}

#endif

} // namespace tessor
