// The short road: stretches of cells that work on plain scalars alone.
//
// Most cells of most programs push, combine, compare, store or drop a number in place. They can't
// fail, touch no count, and nobody looks at the stack between them, since traces and timings are
// attentions; so they run with the top in a register. Any other cell is the long road's.
#pragma once

#include "engine/machine.h"

#include <cstddef>
#include <utility>

namespace tessor {

/// Counts the cells that one activation runs, and the verbs of the short road, for the statistics
/// of the sentence. They are added when the count ends, however the activation does.
class CellCount {
public:
    explicit CellCount(Activation& run) : run_(run), from_(run.cell) { run.count = this; }
    CellCount(const CellCount&) = delete;
    CellCount& operator=(const CellCount&) = delete;
    ~CellCount() {
        settle(1);
        run_.count = nullptr;
    }
    /// Adds what has been counted so far, with the current cell (1) or without (0).
    void settle(int current_cell) {
        const std::ptrdiff_t cells = before_ + (run_.cell - from_) + current_cell;
        operators += static_cast<double>(cells);
        before_ -= cells;
        if (verbs_) {
            operations += static_cast<double>(std::exchange(verbs_, 0));
            total_flops += static_cast<double>(std::exchange(flops_, 0));
        }
    }

    /// A verb on scalars.
    void verb(long flops) {
        ++verbs_;
        flops_ += flops;
    }

    /// The run goes on at a target after this cell.
    void jump(const Space* cell, const Space* target) {
        before_ += cell - from_ + 1;
        from_ = target;
    }
    /// The current cell is run once more, opened up.
    void again() { ++before_; }
    /// The current cell is an end mark, which isn't run.
    void end() { --before_; }

private:
    Activation& run_;
    const Space* from_; ///< first cell since the last jump
    std::ptrdiff_t before_ = 0;
    long verbs_ = 0;
    long flops_ = 0;
};

/// Runs cells from the current one on, up to the first that isn't plain; that is the current cell
/// then. True: the list has returned, at this cell. Nothing may ask for attention.
bool short_road(Activation& run, CellCount& count);

} // namespace tessor
