#include "instrument/recount.h"

#include "engine/machine.h"
#include "engine/signals.h"
#include "frontend/symtab.h"
#include "parallel/coprocessor.h"
#include "values/layout.h"
#include "values/live.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace tessor {

namespace {

// What a block holds. refderef tells the same by what it does; said once more here, so that one
// checks the other.
enum class Holds { nothing, data, space, table, link };

struct Met {
    const void* block;
    Holds holds;
    std::uint32_t n; ///< elements of data
};

// The blocks that were met and whose own references are still to be followed: depth of nesting
// can't exhaust the native stack.
class Recount {
public:
    void follow() {
        while (!met_.empty()) {
            const Met next = met_.back();
            met_.pop_back();
            switch (next.holds) {
            case Holds::nothing: break;
            case Holds::data: elements(static_cast<const DataElement*>(next.block), next.n); break;
            case Holds::space: enclosed(static_cast<const Space*>(next.block)); break;
            case Holds::table: names(static_cast<const HashTable*>(next.block)); break;
            case Holds::link: link(static_cast<const MeaningTable*>(next.block)); break;
            }
        }
    }

    void refer(const void* block, Holds holds = Holds::nothing, std::uint32_t n = 0) {
        if (block && count_of(block) >= 0 && live_block(block).found++ == 0)
            met_.push_back({block, holds, n});
    }

    void space(const Space& space) {
        if (space.type & ISINPLACE)
            return;
        if (space.rank < 0) {
            cell(space);
            return;
        }
        data(space.shape_pointer, static_cast<std::uint32_t>(space.rank));
        data(space.data_pointer, space.elements);
    }

    void link(const MeaningTable* link) {
        refer(link->hash, Holds::table);
        refer(link->outer, Holds::link);
    }

    void bucket(const Bucket& bucket) {
        refer(bucket.name);
        refer(bucket.value, Holds::space);
    }

private:
    void data(const void* block, std::uint32_t n) {
        const bool general = block && storage_of(block) == Storage::elements;
        refer(block, general ? Holds::data : Holds::nothing, n);
    }

    void cell(const Space& cell) {
        refer(cell.name);
        switch (cell.rank) {
        case kind::FUNCTION: refer(cell.body, Holds::space); break;
        case kind::LOCAL_VARIABLE:
        case kind::LOCAL_ADDRESS: refer(cell.data_pointer); break;
        case kind::ADDRESS:
            if (cell.type & ISLOCAL) // of a place on the stack
                break;
            [[fallthrough]];
        case kind::VARIABLE:
        case kind::OPERATOR:
        case kind::LABEL:
            refer(cell.table, Holds::link);
            refer(cell.target, Holds::space);
            break;
        default: break;
        }
    }

    // A block of one Space, or a function's body, whose header refers to itself.
    void enclosed(const Space* block) {
        if (block->rank != kind::FUNCTION || block->body != block) {
            space(*block);
            return;
        }
        refer(block->yielded);
        const Space* at = block + 1;
        for (; !is_end(*at); ++at)
            space(*at);
        refer(at->name);
    }

    void elements(const DataElement* elements, std::uint32_t n) {
        for (std::uint32_t i = 0; i < n; ++i)
            element(elements[i]);
    }

    void element(const DataElement& element) {
        switch (element.tag) {
        case tag::quaternion:
        case tag::filler: break;
        case tag::file:
            refer(element.path);
            refer(element.stream);
            refer(element.second_text);
            refer(element.template_space, Holds::space);
            break;
        default:
            if (element.tag < 0) {
                cell(reinterpret_cast<const Space&>(element));
                break;
            }
            refer(element.name);
            if (element.tag == tag::subarray)
                refer(element.subarray, Holds::space);
            if (element.tag == tag::octonion)
                refer(element.octonion);
        }
    }

    void names(const HashTable* hash) {
        for (std::uint32_t index = 0; const Bucket* b = next_used(hash, index); ++index) {
            bucket(*b);
            while ((b = b->next)) {
                refer(b);
                bucket(*b);
            }
        }
    }

    std::vector<Met> met_;
};

bool is_live(const void* block) {
    for (const LiveBlock* live = first_live(); live; live = live->after)
        if (data_of(*live) == block)
            return true;
    return false;
}

// The value of a name that is a function; null if the block is none.
const Space* function_in(const void* block) {
    if (header_of(block).layout == link_layout || block_capacity(block) < sizeof(Space))
        return nullptr;
    const auto* value = static_cast<const Space*>(block);
    const bool function = value->rank == kind::FUNCTION && value->body != value;
    return function && is_live(value->body) ? value : nullptr;
}

// Links that only hold each other, and functions that use the forgotten name they are stored in,
// are reached by no root and yet not lost: what they hold is counted, and then their own counts
// have to agree.
void count_circles(Recount& count) {
    std::vector<LiveBlock*> begun;
    for (LiveBlock* live = first_live(); live; live = live->after) {
        const void* block = data_of(*live);
        if (live->found != 0 || count_of(block) < 0)
            continue;
        const Space* function = function_in(block);
        if (!function && header_of(block).layout != link_layout)
            continue;
        live->found = 1;
        begun.push_back(live);
        if (function)
            count.space(*function);
        else
            count.link(static_cast<const MeaningTable*>(block));
        count.follow();
    }
    for (LiveBlock* live : begun)
        --live->found;
}

void count_roots(std::span<const Space> held) {
    Recount count;
    for (const Space& value : held)
        count.space(value);
    for (const Space* value = stack + 1; value <= sp; ++value)
        count.space(*value);
    count.refer(quads);
    for (const int place : {quad_io, quad_ct})
        count.space(quads[place]);
    for (const Bucket& name : system_names())
        count.bucket(name);
    count.link(variables);
    for (const Space* buffer = spare_buffers(); buffer; buffer = buffer->target)
        count.refer(buffer);
    count.follow();
    count_circles(count);
}

// The first bytes help to recognise a block that has been lost.
void tell(const LiveBlock& live) {
    const void* block = data_of(live);
    std::fprintf(stderr, "recount: block %p, layout %#x: count %d, found %d; %zu bytes:", block,
                 header_of(block).layout, count_of(block), live.found, block_capacity(block));
    const auto* bytes = static_cast<const unsigned char*>(block);
    for (std::size_t i = 0; i < block_capacity(block) && i < 40; ++i)
        std::fprintf(stderr, " %02x", bytes[i]);
    std::fputc('\n', stderr);
}

bool compare() {
    constexpr int most_told = 20;
    int wrong = 0;
    for (const LiveBlock* live = first_live(); live; live = live->after) {
        const std::int32_t count = count_of(data_of(*live));
        if (count >= 0 && count != live->found && ++wrong <= most_told)
            tell(*live);
    }
    return wrong == 0;
}

} // namespace

void recount(std::span<const Space> held) {
    if (frames_lost)
        return;
    settle_coprocessors();
    for (LiveBlock* live = first_live(); live; live = live->after)
        live->found = 0;
    count_roots(held);
    if (compare())
        return;
    std::fflush(nullptr);
    std::abort();
}

void recount_now_and_then() {
    // A walk over 100000 blocks takes some milliseconds, many times as long as a short sentence.
    constexpr std::size_t affordable = 100000;
    static std::size_t sentences = 0;
    if (++sentences <= live_blocks() / affordable)
        return;
    sentences = 0;
    recount();
}

} // namespace tessor
