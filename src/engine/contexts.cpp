#include "engine/contexts.h"

#include "values/array.h"

namespace tessor {

namespace {

void replace_link(Activation& run, MeaningTable* pushed) {
    drop(run.table);
    run.table = pushed;
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
    case op::SMALL: replace_link(run, push_new(run.table, makesmallhashtab)); break;
    case op::LARGE: replace_link(run, push_new(run.table, makehashtab)); break;
    case op::BASIC: replace_link(run, pushtable(run.table, base_hash(run.table))); break;
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
