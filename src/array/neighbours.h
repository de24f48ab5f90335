// Where the neighbours of each position of an array stand.
#pragma once

#include "values/space.h"

#include <cstdint>
#include <vector>

namespace tessor {

/// Goes through the positions of an array in memory order, axis 0 fastest, and tells for each the
/// places of its neighbours under a mask, in the mask's order.
class Neighbours {
public:
    static constexpr std::int64_t outside = -1;

    /// `modifier`: 0, WRAP or REFLECT. The mask fits the data: the same rank, odd extents of at
    /// most one more than the data's.
    Neighbours(const Space& data, const Space& mask, int modifier);

    /// The place of each neighbour, less origin(): from 0 on, or `outside`.
    const std::vector<std::int64_t>& places() const { return inner_ ? offsets_ : places_; }
    std::int64_t origin() const { return inner_ ? position_ - reach_ : 0; }
    /// Whether no neighbour lies outside.
    bool complete() const { return complete_; }
    void advance();

private:
    struct Axis {
        std::int64_t extent;
        std::int64_t mask_extent;
        std::int64_t stride;
        std::int64_t at = 0;             ///< coordinate of the position
        std::vector<std::int64_t> steps; ///< by coordinate + half the mask: distance, or `outside`

        bool inner() const { return at >= mask_extent / 2 && at < extent - mask_extent / 2; }
    };

    void find();

    std::vector<Axis> axes_;
    std::vector<std::int64_t> offsets_; ///< places where no border is near, less the first
    std::vector<std::int64_t> places_;
    std::int64_t position_ = 0;
    std::int64_t reach_ = 0; ///< from the first neighbour to the position
    bool inner_ = false;
    bool complete_ = true;
};

} // namespace tessor
