#include "values/live.h"

#include <mutex>

namespace tessor {

constinit thread_local std::int64_t allocations_left = -1;
std::int64_t refusals = 0;
bool storage_stays_short = false;

namespace {

std::mutex lock;
LiveBlock* first = nullptr;
std::size_t count = 0;

} // namespace

void enter_live(LiveBlock& block) noexcept {
    const std::scoped_lock guard(lock);
    block = {nullptr, first, 0};
    if (first)
        first->before = &block;
    first = &block;
    ++count;
}

void leave_live(LiveBlock& block) noexcept {
    const std::scoped_lock guard(lock);
    (block.before ? block.before->after : first) = block.after;
    if (block.after)
        block.after->before = block.before;
    --count;
}

LiveBlock* first_live() {
    return first;
}

std::size_t live_blocks() {
    return count;
}

} // namespace tessor
