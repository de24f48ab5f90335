#include "engine/keys.h"

#include "engine/execute.h"
#include "engine/names.h"
#include "engine/toaddr.h"
#include "values/array.h"
#include "values/refderef.h"
#include "values/text.h"

#include <cstring>

namespace tessor {

namespace {

bool is_local(const Space& address) {
    return (address.type & ISLOCAL) != 0;
}

// The cell of a local whose frame is still there; null if there is none.
Space* live_local(const Activation& run, const Space& address) {
    return address.target < run.top ? address.target : nullptr;
}

// `value` may belong to what it replaces.
void replace_top(Activation& run, const Space& value) {
    const Held old(*run.top);
    Space& top = *run.top;
    top = value;
    top.type &= ~(CONDITIONAL | YES);
    referencepoint(&top);
}

Next get_local(Activation& run) {
    const Space* local = live_local(run, *run.top);
    if (!local || local->rank == kind::VARIABLE)
        return failed(run, 23);
    replace_top(run, *local);
    return Next::advance;
}

// A name that is found nowhere is made where its class says; other classes have no such place.
Next get_address(Activation& run) {
    Space& address = *run.top;
    if (is_local(address))
        return get_local(run);
    if (!address.name)
        return failed(run, 23);
    keep_bound(run, address);
    if (!address.target && address.suboperation == op::SAIL) {
        make_name(address, run.table, hash_of(run.table));
    } else if (!address.target && address.suboperation == op::SAIG) {
        mark_first(run, GLOBAL);
        make_name(address, run.table, base_hash(run.table));
    }
    if (!address.target)
        return failed(run, 23);
    replace_top(run, *address.target);
    return Next::advance;
}

// Puts what is stored under the text form of the top in its place; an empty vector if that is
// nothing, and `found` is false then.
Next fetch(Activation& run, bool& found) {
    char* key = TOAddr(*run.top, 0);
    if (!key)
        return failed(run, 806);
    const Bucket* bucket = meaning(run.table, key, nullptr);
    found = bucket && is_set(bucket->value);
    if (found) {
        replace_top(run, *bucket->value);
    } else {
        Space empty;
        make_empty(empty);
        const Held old(*run.top);
        *run.top = empty;
    }
    return Next::advance;
}

// The key of what is to be forgotten; null if it can't be made.
char* key_of(const Space& value) {
    return value.rank == kind::ADDRESS ? stringdup(value.name ? value.name : "") : TOAddr(value, 0);
}

void forget_local(Space* local) {
    if (!local)
        return;
    const Held old(*local);
    *local = Space{};
    local->rank = kind::VARIABLE;
}

// A prefix stands in the second place of a key, where no plain name has one.
bool has_prefix(const char* key) {
    return key[0] && (key[1] == '.' || key[1] == '$' || key[1] == '_');
}

Space address_of(MeaningTable* link, const Bucket& bucket) {
    Space address{};
    address.rank = kind::ADDRESS;
    address.type = ISADDRESS;
    address.name = bucket.name;
    address.depth = 1;
    address.elements = static_cast<std::uint32_t>(std::strlen(bucket.name));
    address.table = link;
    address.target = bucket.value;
    referencepoint(&address);
    return address;
}

} // namespace

Next forget(Activation& run) {
    if (run.top->rank == kind::ADDRESS && is_local(*run.top)) {
        forget_local(live_local(run, *run.top));
        pop(run);
        return Next::advance;
    }
    char* key = key_of(*run.top);
    if (!key)
        return failed(run, 806);
    HashTable* hash = nullptr;
    if (Bucket* bucket = meaning(run.table, key, &hash))
        forgethash(hash, bucket);
    pop(run);
    return Next::advance;
}

Next get(Activation& run) {
    if (run.top->rank == kind::ADDRESS)
        return get_address(run);
    bool found = false;
    return fetch(run, found);
}

Next do_(Activation& run) {
    bool found = false;
    const Next next = fetch(run, found);
    return found ? execute(run) : next;
}

Next at(Activation& run) {
    char* key = TOAddr(*run.top, 0);
    if (!key)
        return failed(run, 806);
    MeaningTable* link = run.table;
    const Bucket* bucket = nullptr;
    if (has_prefix(key)) {
        bucket = meaning(link, key, nullptr);
    } else {
        link = link->base;
        bucket = enter(hash_of(link), key);
    }
    if (!bucket)
        return failed(run, 994);
    const Held old(*run.top);
    *run.top = address_of(link, *bucket);
    return Next::advance;
}

} // namespace tessor
