#include "values/native_stack.h"

#include <algorithm>
#include <cstddef>
#include <pthread.h>
#include <sys/resource.h>

namespace tessor {

namespace {

// What a leaf of the recursion may need beyond its guard: formatting, allocation, the unwinding of
// a failure, a signal's handler.
constexpr std::size_t reserve = std::size_t{256} << 10;

// A runaway recursion is to end before it has used up the machine's memory.
constexpr std::size_t most_native_stack = std::size_t{48} << 20;

// The kernel lets no stack grow closer than this to another mapping.
constexpr std::size_t mapping_gap = std::size_t{1} << 20;

std::size_t stack_limit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) != 0)
        return std::size_t{8} << 20;
    return std::min<rlim_t>(limit.rlim_cur, most_native_stack);
}

} // namespace

constinit thread_local std::uintptr_t native_stack_floor = 0;

std::size_t native_stack_size() {
    return stack_limit() + mapping_gap;
}

void measure_native_stack() {
    std::uintptr_t highest = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    std::size_t size = stack_limit();
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        void* lowest = nullptr;
        std::size_t room = 0;
        if (pthread_attr_getstack(&attributes, &lowest, &room) == 0) {
            highest = reinterpret_cast<std::uintptr_t>(lowest) + room;
            // A limit that was raised since the start may reach into what is mapped below.
            if (room > mapping_gap && room - mapping_gap < size)
                size = std::max(room - mapping_gap, std::min(room, size) / 2);
        }
        pthread_attr_destroy(&attributes);
    }
    native_stack_floor = highest - size + std::min(reserve, size / 2);
}

} // namespace tessor
