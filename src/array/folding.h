// What the roads of a reduction share.
#pragma once

#include "engine/machine.h"
#include "io/writers/exception.h"
#include "values/array.h"

namespace tessor {

/// A reduction under way: m runs of n elements each. The argument is left alone.
struct Folding {
    Activation& run;
    const Space& data; ///< the argument, on top of the stack
    std::int32_t rank; ///< of the result
    std::uint32_t n;   ///< elements of a run
    std::uint32_t m;   ///< results
    bool last_axis;    ///< a run's elements are m apart, else side by side
    int verb;
    bool forward;

    std::uint32_t index(std::uint32_t result_number, std::uint32_t i) const {
        return last_axis ? i * m + result_number : result_number * n + i;
    }
    /// The argument's elements stand in memory run by run.
    bool adjacent() const { return !last_axis || m == 1; }
    [[noreturn]] void refuse(int number) const { fail(number, &run.top, run.now); }
};

/// Elements that make up the result; the Space takes the block over.
struct Folded {
    void* block = nullptr;
    std::uint32_t set = 0;   ///< type bits that the result gains
    std::uint32_t clear = 0; ///< and loses before
};

/// ADD, SUBTRACT, MULTIPLY or DIVIDE of numbers of one kind, on their components; a null block if
/// they are anything else.
Folded fold_inline(const Folding& f);
/// The smaller or the larger of characters, integers or reals in a packed block, and the
/// connectives of integers there; a null block for anything else.
Folded fold_choices(const Folding& f);
/// ADD of numbers of several kinds: sums of all components, each as narrow as it can be. 991, 994.
Folded fold_components(const Folding& f);
/// Any verb on any elements, by the verb's own function. 806 and what the verb raises.
Folded fold_generally(const Folding& f);

inline void look_at_signals() {
    if (signal_noted())
        take_signals();
}

} // namespace tessor
