#include "array/neighbours.h"

#include "values/array.h"
#include "values/instructions.h"

#include <algorithm>
#include <utility>

namespace tessor {

namespace {

// A coordinate beyond the border of an axis, put right.
std::int64_t corrected(std::int64_t c, std::int64_t extent, int modifier) {
    if (c >= 0 && c < extent)
        return c;
    switch (modifier) {
    case op::WRAP: return c < 0 ? c + extent : c - extent;
    case op::REFLECT: return c < 0 ? -c : 2 * extent - 2 - c;
    default: return Neighbours::outside;
    }
}

} // namespace

Neighbours::Neighbours(const Space& data, const Space& mask, int modifier) {
    std::int64_t stride = 1;
    offsets_ = {0};
    for (std::int32_t i = 0; i < data.rank; ++i) {
        Axis axis{extent(data, i), extent(mask, i), stride, 0, {}};
        const std::int64_t half = axis.mask_extent / 2;
        for (std::int64_t c = -half; c < axis.extent + half; ++c) {
            const std::int64_t within = corrected(c, axis.extent, modifier);
            axis.steps.push_back(within == outside ? outside : within * stride);
        }
        const std::size_t before = offsets_.size();
        for (std::int64_t k = 1; k < axis.mask_extent; ++k)
            for (std::size_t j = 0; j < before; ++j)
                offsets_.push_back(offsets_[j] + k * stride);
        reach_ += half * stride;
        stride *= axis.extent;
        axes_.push_back(std::move(axis));
    }
    if (stride != 0)
        find();
}

// The places at the position: sums of a step on each axis.
void Neighbours::find() {
    inner_ = std::all_of(axes_.begin(), axes_.end(), [](const Axis& axis) { return axis.inner(); });
    complete_ = true;
    if (inner_)
        return;
    places_.assign(1, 0);
    for (const Axis& axis : axes_) {
        const std::size_t before = places_.size();
        const std::int64_t* step = axis.steps.data() + axis.at;
        places_.resize(before * static_cast<std::size_t>(axis.mask_extent));
        for (std::int64_t k = axis.mask_extent - 1; k >= 0; --k) {
            complete_ &= step[k] != outside;
            for (std::size_t j = 0; j < before; ++j) {
                const std::int64_t place = places_[j];
                places_[static_cast<std::size_t>(k) * before + j] =
                    place == outside || step[k] == outside ? outside : place + step[k];
            }
        }
    }
}

void Neighbours::advance() {
    ++position_;
    for (Axis& axis : axes_) {
        if (++axis.at < axis.extent)
            break;
        axis.at = 0;
    }
    find();
}

} // namespace tessor
