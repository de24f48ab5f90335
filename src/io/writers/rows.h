// Elements one after the other, and what stands between them.
#pragma once

#include "io/writers/writer.h"
#include "values/array.h"

#include <algorithm>

namespace tessor {

/// The line ends that divide rows, planes and so on.
class Rows {
public:
    Rows(const Space& space, bool wanted)
        : space_(space),
          row_(wanted && space.shape_pointer && space.elements > 1
                   ? static_cast<std::uint32_t>(extent(space, 0))
                   : 0),
          next_(row_) {}

    /// Behind element number k, counted from 1, unless it is the last. A longer row ends only where
    /// all shorter ones do.
    void behind(Writer& out, std::uint32_t k) {
        if (k != next_ || k == space_.elements)
            return;
        next_ += row_;
        std::uint64_t length = row_;
        for (std::int32_t axis = 0; k % length == 0; length *= length_of(axis)) {
            out.put('\n');
            if (++axis == space_.rank)
                return;
        }
    }

private:
    std::uint64_t length_of(std::int32_t axis) const {
        return static_cast<std::uint64_t>(std::max(extent(space_, axis), 1));
    }

    const Space& space_;
    std::uint32_t row_;
    std::uint32_t next_;
};

/// Calls one(i) for each element, with line ends, if they are wanted, and seams between them.
template <class One>
void write_each(Writer& out, const Space& space, bool lines, One one) {
    Rows rows(space, lines);
    constexpr std::uint32_t elements_in_a_hundred = 100;
    std::uint32_t seam = elements_in_a_hundred;
    for (std::uint32_t i = 0; i < space.elements;) {
        one(i);
        ++i;
        rows.behind(out, i);
        if (i == seam) {
            out.seam();
            seam += elements_in_a_hundred;
        }
    }
}

} // namespace tessor
