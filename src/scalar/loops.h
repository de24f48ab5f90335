// The packed loops of kernels, made from an operation's overloads.
#pragma once

#include "scalar/frame.h"
#include "scalar/simd.h"

namespace tessor {

/// Loops over these go through run_simd; all others are compiled once.
template <class L, class R>
inline constexpr bool vector_pair = (RealLike<L> && RealLike<R>)
                                    || (std::same_as<L, Complex> && std::same_as<R, Complex>)
                                    || (ByteLike<L> && ByteLike<R>);

/// What the items of a result's loop are.
template <class Out, bool wide>
using LoopItem = std::conditional_t<wide, typename Stored<Out>::Wide, typename Stored<Out>::Item>;

template <class Out>
constexpr auto no_misfit() {
    if constexpr (Stored<Out>::checked)
        return decltype(Stored<Out>::misfit(std::declval<Out>())){0};
    else
        return 0;
}

/// A loop over `n` results; `apply(i, flops)` gives result i and counts its flops, but for results
/// of two kinds. No result depends on another, and items overlap an operand only where both stand
/// at the same place.
template <bool wide, class Out, class Apply>
[[gnu::always_inline]] inline void loop(std::uint32_t n, void* room, Tally* tally, Apply apply) {
    auto* items = static_cast<LoopItem<Out, wide>*>(room);
    std::uint32_t flops = 0;
    std::uint64_t fits = 0;
    auto misfits = no_misfit<Out>();
#pragma GCC ivdep
    for (std::uint32_t i = 0; i < n; ++i) {
        const Out result = apply(i, flops);
        if constexpr (wide) {
            items[i] = Stored<Out>::wide(result);
            if constexpr (Stored<Out>::two_kinds)
                fits += Stored<Out>::fits(result) ? 1u : 0u;
        } else {
            Stored<Out>::save(items, i, result);
            if constexpr (Stored<Out>::checked)
                misfits |= Stored<Out>::misfit(result);
        }
    }
    *tally = {flops, wide ? static_cast<std::uint32_t>(fits) : n, misfits < 0};
}

/// The loop with the widest vectors, or as it is. `apply` captures by value.
template <bool simd, bool wide, class Out, class Apply>
void run_loop(std::uint32_t n, void* room, Tally& tally, Apply apply) {
    Tally* out = &tally;
    if constexpr (simd)
        run_simd([=]() __attribute__((always_inline)) { loop<wide, Out>(n, room, out, apply); });
    else
        loop<wide, Out>(n, room, out, apply);
}

/// The kernel of a record with run<wide>, look and element.
template <class Functions, class Out>
constexpr Kernel make_kernel() {
    Kernel kernel{};
    kernel.storage = Stored<Out>::storage;
    kernel.wide_storage = Stored<Out>::wide_storage;
    kernel.checked = Stored<Out>::checked;
    kernel.narrow = Functions::template run<false>;
    if constexpr (!std::is_void_v<typename Stored<Out>::Wide>)
        kernel.wide = Functions::template run<true>;
    if constexpr (Stored<Out>::two_kinds) {
        kernel.integer_flops = static_cast<std::uint32_t>(Functions::kind_flops(true));
        kernel.real_flops = static_cast<std::uint32_t>(Functions::kind_flops(false));
    }
    kernel.look = Functions::look;
    kernel.element = Functions::element;
    return kernel;
}

} // namespace tessor
