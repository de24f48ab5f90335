#include "values/block.h"

#include "values/live.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <mutex>
#include <sys/mman.h>
#include <unistd.h>

namespace tessor {

bool counts_shared = false;

namespace {

// In front of the header stands the capacity in bytes, which also tells where a block came from.
struct Prefix {
    std::size_t capacity;
    BlockHeader header;
};
static_assert(sizeof(Prefix) == prefix_bytes);

constexpr std::size_t small_limit = 1024;
constexpr std::size_t large_limit = std::size_t{1} << 20;
constexpr std::size_t page = 4096;
constexpr std::size_t huge_page_from = std::size_t{4} << 20;
constexpr std::size_t granule = 16;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool pooled = false; // every block by itself, so that the sanitizer sees its life
#else
constexpr bool pooled = !verifies;
#endif

Prefix& prefix_of(void* block) {
    return static_cast<Prefix*>(block)[-1];
}
const Prefix& prefix_of(const void* block) {
    return static_cast<const Prefix*>(block)[-1];
}

void* set_up(void* memory, std::size_t offset, std::size_t capacity, std::uint32_t layout) {
    void* block = static_cast<char*>(memory) + offset;
    prefix_of(block) = {capacity, {1, layout}};
    return block;
}

std::size_t physical_memory() {
    static const std::size_t bytes = [] {
        const long pages = sysconf(_SC_PHYS_PAGES);
        const long size = sysconf(_SC_PAGESIZE);
        if (pages <= 0 || size <= 0)
            return std::size_t{1} << 40;
        return static_cast<std::size_t>(pages) * static_cast<std::size_t>(size);
    }();
    return bytes;
}

// Large blocks that were freed are kept, mapped and warm, for the next one that fits.
struct Kept {
    void* memory;
    std::size_t capacity;
};
struct LargeCache {
    std::mutex lock;
    std::array<Kept, 32> kept;
    std::size_t count = 0;
    std::size_t bytes = 0;
};
LargeCache& large_cache() {
    static LargeCache cache;
    return cache;
}

// The data begin within the first page, on a cache line, at another place in one block than in the
// next: operands and results that stand alike in their pages make loads wait for stores.
std::size_t mapped_size(std::size_t capacity) {
    return capacity + page;
}

std::size_t next_offset() {
    constexpr std::size_t line = 64;
    static std::atomic<std::size_t> turn{0};
    return line + turn.fetch_add(1, std::memory_order_relaxed) % 8 * 9 * line;
}
static_assert(64 + 7 * 9 * 64 <= page);

char* mapping_of(void* block) {
    const auto address = reinterpret_cast<std::uintptr_t>(block) - 1;
    return reinterpret_cast<char*>(address / page * page);
}

std::size_t round_large(std::size_t bytes) {
    return (bytes + page - 1) / page * page;
}

// Gives all that is kept back to the system. False if there was nothing.
bool drop_kept() noexcept {
    LargeCache& cache = large_cache();
    const std::scoped_lock guard(cache.lock);
    if (cache.count == 0)
        return false;
    for (std::size_t i = 0; i < cache.count; ++i)
        munmap(cache.kept[i].memory, mapped_size(cache.kept[i].capacity));
    cache.count = 0;
    cache.bytes = 0;
    return true;
}

// Memory from the system, which `take` asks for; null from it is a refusal.
template <class Take>
void* from_system(Take take) {
    void* memory = take();
    if (!memory && drop_kept())
        memory = take();
    if (!memory)
        throw OutOfStorage{};
    return memory;
}

// Small blocks: free lists by size, cut from slabs, one set for each thread.
struct FreeBlock {
    FreeBlock* next;
};
struct SmallPool {
    std::array<FreeBlock*, small_limit / granule + 1> free;
    char* slab;
    char* slab_end;
};
constinit thread_local SmallPool pool{};
constexpr std::size_t slab_bytes = 64 * 1024;

void* small_from_slab(std::size_t capacity) {
    const std::size_t size = capacity + sizeof(Prefix);
    if (static_cast<std::size_t>(pool.slab_end - pool.slab) < size) {
        char* slab = static_cast<char*>(from_system([] { return std::malloc(slab_bytes); }));
        pool.slab = slab;
        pool.slab_end = slab + slab_bytes;
    }
    void* memory = pool.slab;
    pool.slab += size;
    return memory;
}

Kept take_kept(LargeCache& cache, std::size_t i) {
    const Kept taken = cache.kept[i];
    cache.kept[i] = cache.kept[--cache.count];
    cache.bytes -= taken.capacity;
    return taken;
}

void advise(void* memory, std::size_t size) {
    if (size >= huge_page_from)
        madvise(memory, size, MADV_HUGEPAGE);
}

void* grow_mapping(void* memory, std::size_t from, std::size_t to) {
    void* moved = mremap(memory, mapped_size(from), mapped_size(to), MREMAP_MAYMOVE);
    if (moved == MAP_FAILED)
        return nullptr;
    advise(moved, mapped_size(to));
    return moved;
}

// The best kept block that is large enough, but not far too large; else the largest smaller one is
// stretched, so that kept memory doesn't pile up beside new memory.
void* large_from_cache(std::size_t& capacity) {
    LargeCache& cache = large_cache();
    const std::scoped_lock guard(cache.lock);
    std::size_t best = cache.count;
    std::size_t largest = cache.count;
    for (std::size_t i = 0; i < cache.count; ++i) {
        const std::size_t size = cache.kept[i].capacity;
        if (size >= capacity && size / 8 <= capacity
            && (best == cache.count || size < cache.kept[best].capacity))
            best = i;
        if (size < capacity && (largest == cache.count || size > cache.kept[largest].capacity))
            largest = i;
    }
    if (best < cache.count) {
        const Kept taken = take_kept(cache, best);
        capacity = taken.capacity;
        return taken.memory;
    }
    if (largest < cache.count) {
        const Kept taken = take_kept(cache, largest);
        if (void* memory = grow_mapping(taken.memory, taken.capacity, capacity))
            return memory;
        munmap(taken.memory, mapped_size(taken.capacity));
    }
    return nullptr;
}

void* new_mapping(std::size_t size) {
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

void* allocate_large(std::size_t bytes, std::uint32_t layout) {
    std::size_t capacity = round_large(bytes);
    void* memory = large_from_cache(capacity);
    if (!memory) {
        memory = from_system([=] { return new_mapping(mapped_size(capacity)); });
        advise(memory, mapped_size(capacity));
    }
    return set_up(memory, next_offset(), capacity, layout);
}

void* resize_large(void* block, std::size_t bytes) {
    if (bytes > physical_memory())
        throw OutOfStorage{};
    const std::size_t old = prefix_of(block).capacity;
    const std::size_t capacity = round_large(bytes);
    char* memory = mapping_of(block);
    const std::ptrdiff_t offset = static_cast<char*>(block) - memory;
    void* moved = from_system([=] { return grow_mapping(memory, old, capacity); });
    void* resized = static_cast<char*>(moved) + offset;
    prefix_of(resized).capacity = capacity;
    return resized;
}

void keep_large(void* memory, std::size_t capacity) noexcept {
    LargeCache& cache = large_cache();
    {
        const std::scoped_lock guard(cache.lock);
        const std::size_t limit = physical_memory() / 8;
        if (cache.count < cache.kept.size() && cache.bytes + capacity <= limit) {
            cache.kept[cache.count++] = {memory, capacity};
            cache.bytes += capacity;
            return;
        }
    }
    munmap(memory, mapped_size(capacity));
}

void* allocate_middle(std::size_t bytes, std::uint32_t layout) {
    static const bool tuned = [] {
        mallopt(M_MMAP_THRESHOLD, 2 * large_limit);
        mallopt(M_TRIM_THRESHOLD, 1 << 26);
        return true;
    }();
    static_cast<void>(tuned);
    void* memory = from_system([=] { return std::malloc(bytes + ahead_of_data); });
    if constexpr (verifies)
        enter_live(*static_cast<LiveBlock*>(memory));
    return set_up(memory, ahead_of_data, bytes, layout);
}

} // namespace

void* allocate_block(std::size_t bytes, std::uint32_t layout) {
    if (!pooled) {
        if (bytes > physical_memory() || (verifies && refuses_storage()))
            throw OutOfStorage{};
        return allocate_middle(bytes, layout);
    }
    if (bytes <= small_limit) {
        const std::size_t index = (bytes + granule - 1) / granule;
        const std::size_t capacity = index * granule;
        if (FreeBlock* block = pool.free[index]) {
            pool.free[index] = block->next;
            return set_up(block, sizeof(Prefix), capacity, layout);
        }
        return set_up(small_from_slab(capacity), sizeof(Prefix), capacity, layout);
    }
    if (bytes < large_limit)
        return allocate_middle(bytes, layout);
    if (bytes > physical_memory())
        throw OutOfStorage{};
    return allocate_large(bytes, layout);
}

void* zeroed_memory(std::size_t n, std::size_t size) {
    return verifies && refuses_storage() ? nullptr : std::calloc(n, size);
}

void free_block(void* block) noexcept {
    if (!block)
        return;
    const std::size_t capacity = prefix_of(block).capacity;
    void* memory = &prefix_of(block);
    if (verifies) {
        LiveBlock& live = live_block(block);
        leave_live(live);
        std::free(&live);
    } else if (!pooled) {
        std::free(memory);
    } else if (capacity <= small_limit) {
        auto* freed = static_cast<FreeBlock*>(memory);
        FreeBlock*& list = pool.free[capacity / granule];
        freed->next = list;
        list = freed;
    } else if (capacity < large_limit) {
        std::free(memory);
    } else {
        keep_large(mapping_of(block), capacity);
    }
}

std::size_t block_capacity(const void* block) {
    return prefix_of(block).capacity;
}

void* Reallocate(void* block, std::size_t bytes) {
    const std::size_t capacity = block_capacity(block);
    const bool alone = unshared(block);
    const bool cut = alone && bytes <= capacity;
    if (cut && bytes >= (pooled ? capacity / 2 : capacity))
        return block;
    void* fresh;
    try {
        if (pooled && alone && capacity >= large_limit && bytes >= large_limit)
            return resize_large(block, bytes);
        fresh = allocate_block(bytes, header_of(block).layout);
    } catch (const OutOfStorage&) {
        if (cut)
            return block;
        throw;
    }
    std::memcpy(fresh, block, std::min(bytes, capacity));
    if (alone)
        free_block(block);
    return fresh;
}

std::int32_t refr(const void* block) {
    return block ? header_of(block).count : -777;
}

const void* refer(const void* block) {
    return block ? &header_of(block) : nullptr;
}

} // namespace tessor
