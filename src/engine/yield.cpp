#include "engine/yield.h"

#include "engine/calls.h"
#include "values/block.h"
#include "values/refderef.h"

#include <cstring>

namespace tessor {

namespace {

// What stands in front of the copies of the frame's cells. They count nothing: nobody reads them
// back.
struct alignas(8) FrameRecord {
    std::int32_t number; ///< of the instruction that made it
    std::int32_t unused;
    std::int32_t base;   ///< place of the frame on the stack
    std::int32_t cell;   ///< current cell
    std::int32_t index;  ///< of it in the list
    std::int32_t values; ///< cells from base to top
    std::int32_t locals; ///< cells from base to floor
    std::int32_t locals_again;
    std::int32_t pad[2];
};
static_assert(sizeof(FrameRecord) == sizeof(Space));

void* record_of(const Activation& run) {
    const long values = run.top - run.base + 1;
    const auto locals = static_cast<std::int32_t>(run.floor - run.base);
    const auto index = static_cast<std::int32_t>(run.cell - run.first);
    auto* record = static_cast<FrameRecord*>(
        allocate_items(static_cast<std::uint64_t>(values) + 1, sizeof(Space)));
    *record = {op::YIELD, 0,      static_cast<std::int32_t>(run.base - stack),
               index,     index,  static_cast<std::int32_t>(values),
               locals,    locals, {}};
    std::memcpy(record + 1, run.base, static_cast<std::size_t>(values) * sizeof(Space));
    return record;
}

} // namespace

Next yield(Activation& run) {
    if (run.top < run.floor)
        return failed(run, 800);
    Space& function = *run.top;
    if (function.rank != kind::FUNCTION)
        return failed(run, 950);
    BlockHandle record(record_of(run));
    Space* copy = copyfun(function);
    copy->yielded = record.release();
    release_body(function.body);
    function.body = copy;
    return do_return(run);
}

Next yield_to(Activation& run) {
    return run.top->rank == kind::FUNCTION ? call(run) : failed(run, 950);
}

} // namespace tessor
