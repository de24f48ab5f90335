// Names and what they mean: hash tables, and the chain of links that lookups walk outward.
//
// A table maps a counted name to a counted block of one Space. Tables and links are counted blocks:
// a link holds its table and its outer link, a cell holds the link under which its name was found.
#pragma once

#include "values/block.h"
#include "values/space.h"

#include <cstdint>
#include <span>

namespace tessor {

struct Bucket {
    char* name;              ///< counted; null in an unused bucket
    Space* value;            ///< counted block of one Space; null in an unused bucket
    Bucket* next;            ///< counted block; null in an unused bucket
    std::uint16_t size_mark; ///< 4 in a small table, 0 in a large one
};

struct HashTable; ///< counted block

struct MeaningTable {
    HashTable* hash;     ///< null stands for the base hash table
    std::int32_t count;  ///< holders at run time; -1 on the base link
    MeaningTable* outer; ///< counted
    MeaningTable* inner; ///< not counted
    MeaningTable* base;  ///< not counted: it never goes away
};

/// The layout word of links: what recounts blocks knows them by it. They can hold each other in
/// circles, through functions in their tables, and then stay for good.
inline constexpr std::uint32_t link_layout = 0xffffffff;

HashTable* makehashtab();
HashTable* makesmallhashtab();
bool is_small(const HashTable* hash);
/// A base link over a hash table, whose count it takes over.
MeaningTable* makemeaning(HashTable* hash);

/// Finds a name or enters it unset, in a table of either size. Takes over the caller's count of the
/// name. Null for an empty name.
Bucket* enter(HashTable* hash, char* name);
Bucket* hashtab(HashTable* hash, char* name);
Bucket* smallhashtab(HashTable* hash, char* name);
/// Finds only; null if the name isn't there.
Bucket* checkhash(HashTable* hash, const char* name);
Bucket* checksmallhash(HashTable* hash, const char* name);

/// The walk from a link outwards; out is the table of the find, or the first link's if there is
/// none. `last` is the last table to look in.
Bucket* getsymandtab(MeaningTable* link, const char* name, HashTable** out, HashTable* last);
Bucket* checkmeaning(MeaningTable* link, const char* name);
Bucket* checksym_until(MeaningTable* link, const char* name, HashTable* last);
/// checkmeaning, or else an entry in the table of this link. Takes over the count of the name.
Bucket* meaning(MeaningTable* link, char* name, HashTable** out);

/// The base hash table of a link's chain; a link's own table, with null standing for that.
HashTable* base_hash(const MeaningTable* link);
HashTable* hash_of(const MeaningTable* link);

/// A link for the table on top of this link: count 1, or this link itself if it already has the
/// table. The caller gets a count of its own on the result; it keeps the one on `link`.
MeaningTable* pushtable(MeaningTable* link, HashTable* hash);
/// The same for a new table, which the link alone holds.
MeaningTable* push_new(MeaningTable* link, HashTable* (*make)());
void pushsymtabs(MeaningTable* inner, MeaningTable* outer);
/// One step back. Takes over the caller's count on `link`, gives one on the result.
MeaningTable* popsymtabs(MeaningTable* link);

/// Counts a link up or down.
inline MeaningTable* hold(MeaningTable* link) {
    count_up(link);
    return link;
}
void release_last(MeaningTable* link) noexcept;
inline void drop(MeaningTable* link) noexcept {
    if (link && count_down(link))
        release_last(link);
}

/// Forgets one name. Cells that still hold its Space find it unset; #IO and #CT live on in quads.
void forgethash(HashTable* hash, Bucket* bucket) noexcept;
void subwipe(Bucket* bucket) noexcept;
/// Forgets every name of a table, but for #IO and #CT.
void hashwipe(HashTable* hash) noexcept;

/// The first bucket of the first chain in use from `index` on, whose index goes there; null if
/// there is none. A bucket without a name ends its chain.
const Bucket* next_used(const HashTable* hash, std::uint32_t& index);

/// Adds every name of the link's table that begins with `first` to a vector in the making.
void list_symbols(Space& result, MeaningTable* link, char first);

/// The system values: #IO is the third, #CT the seventh.
extern Space* quads;
inline constexpr int quad_io = 2;
inline constexpr int quad_ct = 6;

/// The buckets of the system values by their places; the others have no name.
std::span<const Bucket> system_names();

/// Makes the global table, its base link, quads with #IO and #CT. Called once at start-up.
void start_symbols();
extern HashTable* memory;
extern MeaningTable* variables;

} // namespace tessor
