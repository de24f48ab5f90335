#include "engine/contexts.h"

#include "values/array.h"
#include "values/block.h"

namespace tessor {

namespace {

void push(Activation& run, HashTable* hash) {
    MeaningTable* pushed = pushtable(run.table, hash);
    drop(run.table);
    run.table = pushed;
}

// A fresh table, which its link alone holds.
void push_fresh(Activation& run, HashTable* hash) {
    const BlockHandle held(hash);
    push(run, hash);
}

// One step forward and one back: the chain stays as it is.
void previous(Activation& run) {
    if (hash_of(run.table) == base_hash(run.table))
        return;
    ++run.table->count;
    run.table = popsymtabs(run.table);
}

Next list_names(Activation& run, char first) {
    if (!room(run))
        return Next::failed;
    Space names;
    make_empty(names);
    Space& top = *++run.top;
    top = names;
    list_symbols(top, run.table, first);
    top.last_index = static_cast<std::int32_t>(top.elements);
    return Next::advance;
}

} // namespace

Next change_context(Activation& run) {
    switch (run.now->suboperation) {
    case op::SMALL: push_fresh(run, makesmallhashtab()); break;
    case op::LARGE: push_fresh(run, makehashtab()); break;
    case op::BASIC: push(run, base_hash(run.table)); break;
    case op::PREVIOUS: previous(run); break;
    default: return run.values() < 0 ? failed(run, 800) : Next::advance;
    }
    return Next::advance;
}

Next wipe(Activation& run) {
    hashwipe(hash_of(run.table));
    return Next::advance;
}

Next list_variables(Activation& run) {
    return list_names(run, '_');
}

Next list_functions(Activation& run) {
    return list_names(run, '.');
}

} // namespace tessor
