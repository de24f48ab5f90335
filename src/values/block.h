// Counted blocks: the one door through which all heap storage of values goes.
//
// A block is handed out as a pointer to its data; an 8-byte header in front holds the reference
// count and the layout word. A negative count means permanent: never changed, never freed. Counts
// change without a lock while no worker runs and atomically while one does (counts_shared).
//
// Small blocks come from free lists of the thread, large ones (1 MiB and up) are kept for a while
// when they are freed: fresh pages cost more than the work done on them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessor {

/// Thrown when a block can't be had; becomes message 27 at the recovery point.
struct OutOfStorage {};

struct BlockHeader {
    std::int32_t count;
    std::uint32_t layout; ///< storage of a data block (layout.h); 0 for all others
};
static_assert(sizeof(BlockHeader) == 8);

/// Set while a worker may count blocks beside the main thread.
extern bool counts_shared;

/// A block of `bytes` with count 1, contents unset. Throws OutOfStorage when there is none, or when
/// the size passes the machine's memory.
void* allocate_block(std::size_t bytes, std::uint32_t layout = 0);

/// The same for n items of one size; the product is taken in 64 bits.
inline void* allocate_items(std::uint64_t n, std::size_t size, std::uint32_t layout = 0) {
    return allocate_block(static_cast<std::size_t>(n * size), layout);
}

/// Zeroed memory that is no block, for free(): pages that nobody touches cost nothing. Null if
/// there is none.
void* zeroed_memory(std::size_t n, std::size_t size);

/// Gives the memory of a block back, whatever its count.
void free_block(void* block) noexcept;

/// Bytes that the block has room for.
std::size_t block_capacity(const void* block);

/// A block of the new size with the old contents as far as they fit, and the old layout word.
/// Count 1: grown or cut in place (the block may move). Any other count: a fresh block of count 1;
/// the old block's count isn't changed. Throws OutOfStorage, but never to cut a block of count 1.
void* Reallocate(void* block, std::size_t bytes);

inline BlockHeader& header_of(void* block) {
    return static_cast<BlockHeader*>(block)[-1];
}
inline const BlockHeader& header_of(const void* block) {
    return static_cast<const BlockHeader*>(block)[-1];
}

/// A block that stands in static storage: permanent, and as large as its value.
template <class T>
struct alignas(16) PermanentBlock {
    std::size_t capacity = sizeof(T);
    BlockHeader header{-1, 0};
    T value{};
};

/// The count, read beside whoever changes it.
inline std::int32_t count_of(const void* block) {
    return __atomic_load_n(&header_of(block).count, __ATOMIC_RELAXED);
}

/// Count of exactly 1: nobody else holds the block, it may be overwritten.
inline bool unshared(const void* block) {
    return count_of(block) == 1;
}

/// Counts a block up.
inline void count_up(void* block) {
    if (count_of(block) < 0)
        return;
    if (counts_shared)
        __atomic_add_fetch(&header_of(block).count, 1, __ATOMIC_RELAXED);
    else
        ++header_of(block).count;
}

/// Counts a block down. True: that was the last reference, and the caller must free it.
inline bool count_down(void* block) {
    if (count_of(block) < 0)
        return false;
    if (counts_shared)
        return __atomic_sub_fetch(&header_of(block).count, 1, __ATOMIC_ACQ_REL) <= 0;
    return --header_of(block).count <= 0;
}

/// Counts down a block that owns nothing (texts, packed data, shapes), and frees the last.
inline void release_block(void* block) noexcept {
    if (block && count_down(block))
        free_block(block);
}

/// The count of a block for debugging aids; -777 for null.
std::int32_t refr(const void* block);
/// The address of a block's header; null for null.
const void* refer(const void* block);

/// Owner of one count of a block that owns nothing further, so that a failure gives it back.
class BlockHandle {
public:
    BlockHandle() = default;
    explicit BlockHandle(void* block) : block_(block) {}
    BlockHandle(BlockHandle&& other) noexcept : block_(other.release()) {}
    BlockHandle& operator=(BlockHandle&& other) noexcept {
        if (this != &other) {
            release_block(block_);
            block_ = other.release();
        }
        return *this;
    }
    ~BlockHandle() { release_block(block_); }

    void* get() const { return block_; }
    template <class T>
    T* as() const {
        return static_cast<T*>(block_);
    }
    explicit operator bool() const { return block_ != nullptr; }
    /// Hands the count to the caller.
    void* release() {
        void* block = block_;
        block_ = nullptr;
        return block;
    }

private:
    void* block_ = nullptr;
};

} // namespace tessor
