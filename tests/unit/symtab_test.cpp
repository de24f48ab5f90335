// Tables of names and the links between them.
#include "frontend/symtab.h"
#include "values/array.h"
#include "values/refderef.h"
#include "values/text.h"

#include <bit>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace tessor {
namespace {

using Names = std::vector<std::string>;

class Symbols : public testing::Test {
protected:
    // Each link here is the only holder of its table.
    Symbols() {
        if (!quads)
            start_symbols();
        large_link_ = pushed(variables, makehashtab());
        small_link_ = pushed(large_link_, makesmallhashtab());
        small_ = small_link_->hash;
        large_ = large_link_->hash;
    }
    ~Symbols() override {
        drop(small_link_);
        drop(large_link_);
    }

    static MeaningTable* pushed(MeaningTable* link, HashTable* hash) {
        MeaningTable* top = pushtable(link, hash);
        count_down(hash);
        return top;
    }
    static Bucket* put(HashTable* hash, const char* name, std::int32_t value) {
        Bucket* bucket = enter(hash, stringdup(name));
        make_integer(*bucket->value, value);
        return bucket;
    }
    static std::int32_t value_in(HashTable* hash, const char* name) {
        const Bucket* found = checkhash(hash, name);
        return found ? found->value->integer : -1;
    }
    static Names listed(MeaningTable* link, char first = '_') {
        Space list;
        make_empty(list);
        list_symbols(list, link, first);
        Names names;
        for (std::uint32_t i = 0; i < list.elements; ++i) {
            const Space& text = *element_at(list, i).subarray;
            EXPECT_EQ(text.rank, 1);
            names.emplace_back(static_cast<const char*>(text.data_pointer), text.elements);
        }
        dereferencepoint(&list);
        return names;
    }

    MeaningTable* large_link_;
    MeaningTable* small_link_;
    HashTable* small_;
    HashTable* large_;
};

// The orders follow from the hashes of the names, worked out by hand: small ones 44, 71, 142, 146
// (three times), 180, 191, 223, 248, 250; behind them, in a large table, 123, 37 and 114 for the
// three.
TEST_F(Symbols, StandInTheOrderOfTheirHashes) {
    const std::string longest = "_abcdefghijklmnopqrstuvwxyz";
    for (const std::string name : {"_", "_A", "_a", "_\xe9t\xe9", "_ge", "_total", "_9", "_og",
                                   "_x2", "_B", longest.c_str()}) {
        put(small_, name.c_str(), 1);
        put(large_, name.c_str(), 1);
    }
    put(small_, ".other", 1);
    EXPECT_EQ(listed(small_link_), (Names{"_B", "_x2", "_9", "_a", "_ge", "_og", "_total", "_A",
                                          longest, "_", "_\xe9t\xe9"}));
    EXPECT_EQ(listed(large_link_), (Names{"_B", "_x2", "_9", "_ge", "_og", "_a", "_total", "_A",
                                          longest, "_", "_\xe9t\xe9"}));
    EXPECT_EQ(listed(small_link_, '.'), Names{".other"});
    EXPECT_TRUE(listed(small_link_, '$').empty());
}

// Names of one chain, in a small table and in a large one.
TEST_F(Symbols, OfOneChainAreForgottenOneByOne) {
    const Names chain = {"_bhk", "_cszq", "_eulh"};
    for (HashTable* hash : {small_, large_})
        for (std::size_t gone = 0; gone < chain.size(); ++gone) {
            MeaningTable* link = hash == small_ ? small_link_ : large_link_;
            Names expected = chain;
            for (std::size_t i = 0; i < chain.size(); ++i)
                put(hash, chain[i].c_str(), static_cast<std::int32_t>(i));
            const char* name = chain[gone].c_str();
            Space* value = checkhash(hash, name)->value;
            count_up(value);
            forgethash(hash, checkhash(hash, name));
            EXPECT_EQ(value->type, 0u) << "who still holds the Space finds it unset";
            EXPECT_EQ(refr(value), 1);
            release_enclosed(value);
            expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(gone));
            EXPECT_EQ(listed(link), expected);
            for (std::size_t i = 0; i < chain.size(); ++i)
                EXPECT_EQ(value_in(hash, chain[i].c_str()),
                          i == gone ? -1 : static_cast<std::int32_t>(i));
            put(hash, "_fxkv", 7);
            expected.emplace_back("_fxkv");
            EXPECT_EQ(listed(link), expected);
            hashwipe(hash);
            EXPECT_TRUE(listed(link).empty());
        }
}

TEST_F(Symbols, AreEnteredOnceAndCounted) {
    char* name = stringdup("_A");
    count_up(name);
    const Bucket* made = enter(small_, name);
    EXPECT_EQ(made->value->rank, kind::ADDRESS);
    EXPECT_EQ(made->value->type, 0u);
    EXPECT_EQ(refr(name), 2);
    count_up(name);
    EXPECT_EQ(enter(small_, name), made);
    EXPECT_EQ(smallhashtab(small_, stringdup("_A")), made);
    EXPECT_EQ(refr(name), 2);
    EXPECT_EQ(enter(small_, stringdup("")), nullptr);
    EXPECT_EQ(checkhash(small_, ""), nullptr);
    hashwipe(small_);
    EXPECT_EQ(refr(name), 1);
    release_block(name);
}

TEST_F(Symbols, OfAnInnerTableHideOuterOnes) {
    put(large_, "_A", 1);
    put(small_, "_A", 2);
    put(memory, "_B", 3);
    EXPECT_EQ(checkmeaning(small_link_, "_A")->value->integer, 2);
    EXPECT_EQ(checkmeaning(large_link_, "_A")->value->integer, 1);
    EXPECT_EQ(checksym_until(small_link_, "_B", large_), nullptr);
    HashTable* out = nullptr;
    EXPECT_EQ(meaning(small_link_, stringdup("_B"), &out)->value->integer, 3);
    EXPECT_EQ(out, memory);
    EXPECT_EQ(meaning(large_link_, stringdup("_C"), &out)->value->type, 0u);
    EXPECT_EQ(out, large_);
    EXPECT_EQ(getsymandtab(small_link_, "_D", &out, memory), nullptr);
    hashwipe(memory);
    EXPECT_EQ(checkmeaning(small_link_, "_B"), nullptr);
}

TEST_F(Symbols, OfSystemValuesAreInNoTable) {
    for (HashTable* hash : {small_, large_, memory}) {
        EXPECT_EQ(enter(hash, stringdup("#IO"))->value, quads + quad_io);
        EXPECT_EQ(enter(hash, stringdup("#CT"))->value, quads + quad_ct);
        EXPECT_EQ(checkhash(hash, "#IO"), nullptr);
    }
    forgethash(memory, enter(memory, stringdup("#CT")));
    hashwipe(memory);
    const Element io = element_at(quads[quad_io], 0);
    const Element ct = element_at(quads[quad_ct], 0);
    EXPECT_EQ(io.integer, 1);
    EXPECT_STREQ(io.name, "#IO");
    EXPECT_EQ(std::bit_cast<std::uint64_t>(ct.c[0]), 0x3CD203AF9EE75616u);
    EXPECT_EQ(ct.form, form::logical);
    EXPECT_EQ(refr(quads + quad_io), -1);
    EXPECT_EQ(refr(quads + quad_ct), -1);
}

TEST_F(Symbols, LinksGoWithTheirSecondPop) {
    HashTable* own = makesmallhashtab();
    MeaningTable* link = pushed(small_link_, own);
    EXPECT_EQ(link->outer, small_link_);
    EXPECT_EQ(small_link_->inner, link);
    EXPECT_EQ(link->base, variables);
    MeaningTable* again = pushtable(link, own);
    EXPECT_EQ(again, link);
    EXPECT_EQ(link->count, 2);
    drop(again);
    EXPECT_EQ(popsymtabs(link), link);
    EXPECT_EQ(popsymtabs(link), link);
    EXPECT_EQ(popsymtabs(link), small_link_);
    EXPECT_EQ(small_link_->inner, nullptr);
    EXPECT_EQ(refr(small_link_), 2);
    drop(small_link_);
    MeaningTable* base = pushtable(variables, memory);
    EXPECT_EQ(base, variables);
    EXPECT_EQ(base->count, -1);
    EXPECT_EQ(popsymtabs(base), variables);
}

// A table whose value holds the link of another one, and so on: none is released within another.
TEST_F(Symbols, ChainsOfTablesAreReleasedOneAfterTheOther) {
    MeaningTable* link = hold(small_link_);
    for (int i = 0; i < 20000; ++i) {
        HashTable* hash = makesmallhashtab();
        Space* value = enter(hash, stringdup("_next"))->value;
        value->type = ISADDRESS;
        value->table = link;
        link = pushed(large_link_, hash);
    }
    drop(link);
    EXPECT_EQ(refr(small_link_), 1);
}

} // namespace
} // namespace tessor
