// What the roads of a reduction share.
#pragma once

#include "engine/machine.h"
#include "values/array.h"

namespace tessor {

/// A reduction under way: m runs of n elements each.
struct Folding {
    Activation& run;
    const Space& data; ///< the argument as it was
    Space& result;     ///< its place on the stack, with the reduced frame
    std::uint32_t n;   ///< elements of a run
    std::uint32_t m;   ///< results
    bool last_axis;    ///< a run's elements are m apart, else side by side
    int verb;
    bool forward;

    std::uint32_t index(std::uint32_t result_number, std::uint32_t i) const {
        return last_axis ? i * m + result_number : result_number * n + i;
    }
};

/// Elements that make up the result; the Space takes the block over.
struct Folded {
    void* block = nullptr;
    std::uint32_t set = 0;   ///< type bits that the result gains
    std::uint32_t clear = 0; ///< and loses before
};

/// ADD, SUBTRACT, MULTIPLY or DIVIDE of numbers of one kind, on their components.
Folded fold_inline(const Folding& f);
/// The smaller or the larger of plain integers or reals; a null block if they are anything else.
Folded fold_extremes(const Folding& f);
/// ADD of numbers of several kinds: sums of all components, each as narrow as it can be. 991, 994.
Folded fold_components(const Folding& f);
/// Any verb on any elements, by the verb's own function. 806 and what the verb raises.
Folded fold_generally(const Folding& f);

} // namespace tessor
