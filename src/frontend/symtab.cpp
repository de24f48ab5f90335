#include "frontend/symtab.h"

#include "values/array.h"
#include "values/refderef.h"
#include "values/text.h"

#include <array>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace tessor {

HashTable* memory = nullptr;
MeaningTable* variables = nullptr;
Space* quads = nullptr;

struct HashTable {
    std::uint16_t size_mark;
    std::uint32_t buckets;
    Bucket* bucket;
    std::uint64_t* used; ///< a bit for each bucket in use: wiping needn't look at the rest
};

namespace {

constexpr std::uint32_t large_buckets = 65536;
constexpr std::uint32_t small_buckets = 256;
constexpr std::uint16_t small_mark = 4;
constexpr std::int32_t most_holders = 0x7fffffff;

// The permutation of Pearson hashing.
constexpr std::array<std::uint8_t, 256> rand8 = {
    131, 127, 112, 67,  241, 22,  74,  191, 121, 220, 205, 130, 162, 152, 139, 44,  237, 249, 50,
    87,  137, 36,  54,  202, 156, 113, 145, 136, 254, 15,  7,   110, 82,  132, 184, 134, 128, 27,
    31,  11,  72,  12,  5,   122, 99,  142, 159, 154, 89,  124, 55,  203, 13,  195, 83,  210, 91,
    84,  255, 193, 58,  148, 126, 86,  179, 138, 192, 143, 26,  30,  185, 120, 246, 68,  151, 80,
    140, 242, 176, 70,  114, 201, 173, 232, 71,  4,   155, 209, 163, 92,  97,  189, 129, 119, 64,
    248, 60,  240, 211, 66,  125, 197, 45,  216, 160, 96,  161, 77,  81,  228, 186, 244, 65,  178,
    194, 42,  3,   208, 164, 167, 105, 25,  213, 118, 117, 214, 146, 123, 20,  9,   188, 238, 230,
    10,  190, 111, 247, 23,  175, 38,  206, 174, 59,  0,   37,  231, 40,  168, 165, 109, 251, 46,
    243, 85,  225, 106, 171, 239, 212, 234, 235, 48,  217, 73,  166, 200, 104, 252, 75,  229, 39,
    250, 116, 24,  52,  135, 57,  88,  62,  215, 150, 157, 8,   33,  226, 69,  182, 29,  141, 183,
    227, 187, 253, 180, 47,  103, 28,  102, 19,  43,  78,  35,  51,  147, 34,  221, 153, 233, 90,
    177, 98,  198, 245, 16,  41,  204, 172, 61,  144, 63,  207, 94,  101, 2,   17,  158, 6,   18,
    32,  115, 133, 49,  224, 21,  170, 169, 76,  1,   108, 236, 149, 223, 199, 53,  222, 219, 218,
    56,  79,  181, 107, 95,  100, 93,  14,  196,
};

std::uint32_t small_hash(const char* name) {
    auto h = static_cast<std::uint8_t>(*name);
    do {
        ++name;
        h = rand8[h ^ static_cast<std::uint8_t>(*name)];
    } while (*name);
    return h;
}

std::uint32_t large_hash(const char* name) {
    auto h1 = static_cast<std::uint8_t>(*name);
    auto h2 = static_cast<std::uint8_t>(h1 + 1);
    do {
        ++name;
        const auto c = static_cast<std::uint8_t>(*name);
        h1 = rand8[h1 ^ c];
        h2 = rand8[h2 ^ c];
    } while (*name);
    return h1 * 256u + h2;
}

std::uint32_t index_of(const HashTable* hash, const char* name) {
    return hash->size_mark == small_mark ? small_hash(name) : large_hash(name);
}

HashTable* make_table(std::uint16_t size_mark, std::uint32_t buckets) {
    BlockHandle block(allocate_block(sizeof(HashTable)));
    auto* hash = block.as<HashTable>();
    *hash = {size_mark, buckets, nullptr, nullptr};
    hash->bucket = static_cast<Bucket*>(zeroed_memory(buckets, sizeof(Bucket)));
    hash->used = static_cast<std::uint64_t*>(zeroed_memory(buckets / 64, sizeof(std::uint64_t)));
    if (!hash->bucket || !hash->used) {
        std::free(hash->bucket);
        std::free(hash->used);
        throw OutOfStorage{};
    }
    return static_cast<HashTable*>(block.release());
}

Bucket* find_in_chain(Bucket* bucket, const char* name) {
    for (; bucket && bucket->name; bucket = bucket->next)
        if (stringcmp(bucket->name, name))
            return bucket;
    return nullptr;
}

void set_unset(Space& space) {
    space = Space{};
    space.rank = kind::ADDRESS;
}

// Gives up what a name stands for. Cells that hold the Space find it unset.
void release_value(Space* value) noexcept {
    Space old = *value;
    set_unset(*value);
    dereferencepoint(&old);
    release_enclosed(value);
}

// The system names live in quads, whichever table they are looked for in.

Bucket fixedsyms[8] = {};

int system_place(const char* name) {
    if (std::strcmp(name, "#CT") == 0)
        return quad_ct;
    if (std::strcmp(name, "#IO") == 0)
        return quad_io;
    return -1;
}

void check_tolerance(Space& ct) {
    if (ct.rank < 0 && ct.type != 0)
        return;
    if (!has_data(ct) || first_tag(ct) == tag::octonion) {
        std::fflush(stdout);
        std::fputs("WARNING/ERROR: The #CT value is not numerically specified, unspecified "
                   "results can be expected from verbs depending on the Comparison Tolerance",
                   stderr);
        return;
    }
    if (first_tag(ct) == tag::integer && !(ct.type & (ISSCALAR | ISONEELEMENT)))
        ct.type |= COMPLEXED;
}

Bucket* system_bucket(int place, char* name) {
    Bucket& bucket = fixedsyms[place];
    if (bucket.name)
        release_block(name);
    else
        bucket.name = name;
    bucket.value = quads + place;
    if (place == quad_ct)
        check_tolerance(quads[place]);
    return &bucket;
}

// Dead links wait in a list (through their inner fields), so that a table that holds functions that
// hold links is released without native recursion.
MeaningTable* dead_links = nullptr;
bool releasing_links = false;

void drop_hash(HashTable* hash) noexcept {
    if (!hash || !count_down(hash))
        return;
    hashwipe(hash);
    std::free(hash->bucket);
    std::free(hash->used);
    free_block(hash);
}

void release_links() noexcept {
    releasing_links = true;
    while (MeaningTable* link = dead_links) {
        dead_links = link->inner;
        drop_hash(link->hash);
        if (link->outer && link->outer->inner == link)
            link->outer->inner = nullptr;
        drop(link->outer);
        free_block(link);
    }
    releasing_links = false;
}

// #IO and #CT stand alone in a block of eight; the word in front of each, the last of an unused
// Space, is its block header, so that cells can count it like any name's Space.
void make_permanent(Space* quad) {
    header_of(quad) = {-1, 0};
}

void make_system_value(int place, Element element, const char* name) {
    element.marks = mark::named;
    element.name = stringdup(name);
    make_scalar(quads[place], element);
    make_permanent(quads + place);
    system_bucket(place, stringdup(name));
}

} // namespace

HashTable* makehashtab() {
    return make_table(0, large_buckets);
}

HashTable* makesmallhashtab() {
    return make_table(small_mark, small_buckets);
}

bool is_small(const HashTable* hash) {
    return hash->size_mark == small_mark;
}

MeaningTable* makemeaning(HashTable* hash) {
    auto* link = static_cast<MeaningTable*>(allocate_block(sizeof(MeaningTable), link_layout));
    *link = {hash, -1, nullptr, link, link};
    header_of(link).count = -1;
    return link;
}

Bucket* enter(HashTable* hash, char* name) {
    const BlockHandle owned(name);
    if (const int place = system_place(name); place >= 0) {
        count_up(name);
        return system_bucket(place, name);
    }
    if (!*name)
        return nullptr;
    const std::uint32_t index = index_of(hash, name);
    Bucket* last = &hash->bucket[index];
    if (last->name) {
        for (;; last = last->next) {
            if (stringcmp(last->name, name))
                return last;
            if (!last->next)
                break;
        }
    }
    auto* value = static_cast<Space*>(allocate_block(sizeof(Space)));
    set_unset(*value);
    if (last->name) {
        BlockHandle held(value);
        last->next = static_cast<Bucket*>(allocate_block(sizeof(Bucket)));
        held.release();
        last = last->next;
    }
    count_up(name);
    *last = {name, value, nullptr, hash->size_mark};
    hash->used[index / 64] |= std::uint64_t{1} << index % 64;
    return last;
}

Bucket* hashtab(HashTable* hash, char* name) {
    return enter(hash, name);
}

Bucket* smallhashtab(HashTable* hash, char* name) {
    return enter(hash, name);
}

Bucket* checkhash(HashTable* hash, const char* name) {
    if (!*name)
        return nullptr;
    return find_in_chain(&hash->bucket[index_of(hash, name)], name);
}

Bucket* checksmallhash(HashTable* hash, const char* name) {
    return checkhash(hash, name);
}

HashTable* hash_of(const MeaningTable* link) {
    return link->hash ? link->hash : link->base->hash;
}

HashTable* base_hash(const MeaningTable* link) {
    return link->base->hash;
}

Bucket* getsymandtab(MeaningTable* link, const char* name, HashTable** out, HashTable* last) {
    for (MeaningTable* at = link; at; at = at->outer) {
        HashTable* hash = at->hash;
        if (out)
            *out = hash;
        if (hash) {
            if (Bucket* found = checkhash(hash, name))
                return found;
            if (hash == last)
                return nullptr;
        }
    }
    if (out)
        *out = link->hash;
    return nullptr;
}

Bucket* checkmeaning(MeaningTable* link, const char* name) {
    return getsymandtab(link, name, nullptr, base_hash(link));
}

Bucket* checksym_until(MeaningTable* link, const char* name, HashTable* last) {
    return getsymandtab(link, name, nullptr, last);
}

Bucket* meaning(MeaningTable* link, char* name, HashTable** out) {
    BlockHandle owned(name);
    if (Bucket* found = getsymandtab(link, name, out, base_hash(link)))
        return found;
    HashTable* hash = hash_of(link);
    if (out)
        *out = hash;
    return enter(hash, static_cast<char*>(owned.release()));
}

// A link whose last holder has gone.
void release_last(MeaningTable* link) noexcept {
    link->inner = dead_links;
    dead_links = link;
    if (!releasing_links)
        release_links();
}

MeaningTable* pushtable(MeaningTable* link, HashTable* hash) {
    if (link->hash == hash) {
        if (link->count >= 0 && link->count < most_holders)
            ++link->count;
        return hold(link);
    }
    auto* pushed = static_cast<MeaningTable*>(allocate_block(sizeof(MeaningTable), link_layout));
    count_up(hash);
    *pushed = {hash, 1, hold(link), nullptr, link->base};
    link->inner = pushed;
    return pushed;
}

MeaningTable* push_new(MeaningTable* link, HashTable* (*make)()) {
    HashTable* hash = make();
    MeaningTable* pushed = nullptr;
    try {
        pushed = pushtable(link, hash);
    } catch (...) {
        drop_hash(hash);
        throw;
    }
    count_down(hash);
    return pushed;
}

void pushsymtabs(MeaningTable* inner, MeaningTable* outer) {
    if (inner != outer)
        inner->inner = outer;
    if (outer->count >= 0 && outer->count < most_holders)
        ++outer->count;
}

MeaningTable* popsymtabs(MeaningTable* link) {
    if (link->count > 0) {
        --link->count;
        return link;
    }
    if (!link->outer)
        return link;
    MeaningTable* outer = hold(link->outer);
    link->inner = nullptr;
    drop(link);
    return outer;
}

void forgethash(HashTable* hash, Bucket* bucket) noexcept {
    if (!bucket->name || system_place(bucket->name) >= 0)
        return;
    const std::uint32_t index = index_of(hash, bucket->name);
    release_block(bucket->name);
    release_value(bucket->value);
    if (Bucket* next = bucket->next) {
        *bucket = *next;
        free_block(next);
    } else if (bucket == &hash->bucket[index]) {
        *bucket = {nullptr, nullptr, nullptr, hash->size_mark};
        hash->used[index / 64] &= ~(std::uint64_t{1} << index % 64);
    } else {
        Bucket* before = &hash->bucket[index];
        while (before->next != bucket)
            before = before->next;
        before->next = nullptr;
        free_block(bucket);
    }
}

void subwipe(Bucket* bucket) noexcept {
    if (!bucket->name)
        return;
    Bucket* next = bucket->next;
    release_block(bucket->name);
    release_value(bucket->value);
    *bucket = {nullptr, nullptr, nullptr, bucket->size_mark};
    while (next) {
        Bucket* after = next->next;
        release_block(next->name);
        release_value(next->value);
        free_block(next);
        next = after;
    }
}

void hashwipe(HashTable* hash) noexcept {
    for (std::uint32_t word = 0; word < hash->buckets / 64; ++word) {
        while (const std::uint64_t bits = hash->used[word]) {
            hash->used[word] = bits & (bits - 1);
            subwipe(&hash->bucket[word * 64 + static_cast<std::uint32_t>(std::countr_zero(bits))]);
        }
    }
}

const Bucket* next_used(const HashTable* hash, std::uint32_t& index) {
    for (; index < hash->buckets; index = (index / 64 + 1) * 64) {
        if (const std::uint64_t bits = hash->used[index / 64] >> index % 64) {
            index += static_cast<std::uint32_t>(std::countr_zero(bits));
            return &hash->bucket[index];
        }
    }
    return nullptr;
}

namespace {

// One more name, as a text inside a list.
void add_name(ArrayBuilder& names, const char* name) {
    const std::size_t length = std::strlen(name);
    void* data = allocate_block(length, encode({Storage::character, form::text, 0}));
    std::memcpy(data, name, length);
    Space text;
    make_vector(text, static_cast<std::uint32_t>(length), data, HASASCII);
    Element element;
    element.tag = tag::subarray;
    try {
        element.subarray = enclose(text);
    } catch (...) {
        dereferencepoint(&text);
        throw;
    }
    try {
        names.add(element);
    } catch (...) {
        release_enclosed(element.subarray);
        throw;
    }
}

} // namespace

void list_symbols(Space& result, MeaningTable* link, char first) {
    const HashTable* hash = hash_of(link);
    ArrayBuilder names;
    for (std::uint32_t index = 0; const Bucket* b = next_used(hash, index); ++index)
        for (; b && b->name; b = b->next)
            if (b->name[0] == first)
                add_name(names, b->name);
    if (names.size() == 0)
        return;
    const std::uint32_t n = names.size();
    Space list;
    make_vector(list, n, names.finish(), STRUCTURED);
    list.depth = 2;
    dereferencepoint(&result);
    result = list;
}

std::span<const Bucket> system_names() {
    return fixedsyms;
}

void start_symbols() {
    release_link = drop;
    memory = makehashtab();
    variables = makemeaning(memory);
    quads = static_cast<Space*>(allocate_items(8, sizeof(Space)));
    std::memset(static_cast<void*>(quads), 0, 8 * sizeof(Space));
    make_system_value(quad_io, integer_element(1), "#IO");
    make_system_value(
        quad_ct, real_element(std::bit_cast<double>(0x3CD203AF9EE75616u), form::logical), "#CT");
}

} // namespace tessor
