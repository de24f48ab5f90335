#include "engine/names.h"

#include "engine/calls.h"
#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "values/block.h"
#include "values/refderef.h"
#include "values/shared.h"

namespace tessor {

namespace {

void rebind(Space& cell, MeaningTable* link, Space* value) {
    count_up(value);
    release_enclosed(cell.target);
    drop(cell.table);
    cell.table = hold(link);
    cell.target = value;
}

Next call_verb(Activation& run) {
    Space& function = *run.top;
    function.type = function.body->type;
    return (function.type & ISOPERATOR) ? call(run) : Next::advance;
}

// An address names a place to store in. That of a local can outlive its frame: it must lie below
// the address itself.
bool is_storable(const Activation& run, const Space& address) {
    if (address.rank != kind::ADDRESS || !address.target)
        return false;
    return !(address.type & ISLOCAL) || address.target < run.top;
}

// What a late-bound cell that is bound to nothing means right now. Only a name of the table in
// force is bound: one found further out is hidden as soon as that table gets its own.
Space* meaning_now(Activation& run, Space& cell) {
    if (cell.suboperation != op::SAIL && cell.suboperation != op::SAIG)
        return nullptr;
    HashTable* where = nullptr;
    const Bucket* found = getsymandtab(run.table, cell.name, &where, base_hash(run.table));
    if (!found)
        return nullptr;
    if (where == hash_of(run.table))
        rebind(cell, run.table, found->value);
    return found->value;
}

// The value goes to its place; what stood there is released.
void store(Space& target, const Space& value, bool keeps) {
    Space old = target;
    target = value;
    target.type &= ~(CONDITIONAL | YES);
    if (keeps)
        referencepoint(&target);
    dereferencepoint(&old);
}

Next store_name(Activation& run, bool keeps) {
    Space& address = *run.top;
    if (!is_storable(run, address))
        return failed(run, 55);
    Held name(address);
    store(*address.target, run.top[-1], keeps);
    run.top -= keeps ? 1 : 2;
    return Next::advance;
}

} // namespace

// Under the table that it was bound under a cell stands as it is, bound to nothing too: a
// function's own names don't give way to those of whoever calls it. A Space that is unset may have
// been forgotten, and the name made again.
bool keep_bound(Activation& run, Space& cell) {
    const bool forgotten = cell.target && !is_set(cell.target);
    if (!forgotten && cell.table && hash_of(cell.table) == hash_of(run.table))
        return false;
    const Bucket* found = checkmeaning(run.table, cell.name);
    if (!found) {
        release_enclosed(cell.target);
        cell.target = nullptr;
        return false;
    }
    if (found->value == cell.target)
        return false;
    rebind(cell, run.table, found->value);
    return true;
}

void make_name(Space& cell, MeaningTable* link, HashTable* hash) {
    count_up(cell.name);
    if (const Bucket* made = enter(hash, cell.name))
        rebind(cell, link, made->value);
}

Next push_variable(Activation& run) {
    if (!room(run))
        return Next::failed;
    Space& cell = *run.now;
    if (cell.suboperation != op::SGIG)
        keep_bound(run, cell);
    const Space* value = cell.target ? cell.target : meaning_now(run, cell);
    if (!is_set(value))
        return failed(run, 23);
    push_copy(run, *value);
    return run.top->rank == kind::FUNCTION ? call_verb(run) : Next::advance;
}

Next push_address(Activation& run) {
    if (!room(run))
        return Next::failed;
    Space& cell = *run.now;
    if (cell.suboperation == op::SGIG) {
        mark_first(run, GLOBALCHANGE);
    } else {
        if (keep_bound(run, cell) && cell.suboperation == op::SAIG)
            mark_first(run, GLOBALCHANGE);
        if (!cell.target && cell.suboperation == op::SAIL) {
            make_name(cell, run.table, hash_of(run.table));
        } else if (!cell.target && cell.suboperation == op::SAIG) {
            mark_first(run, GLOBALCHANGE);
            make_name(cell, run.table, base_hash(run.table));
        }
        if (!cell.target)
            return failed(run, 23);
    }
    push_copy(run, cell);
    return Next::advance;
}

Next push_local(Activation& run) {
    if (!room(run))
        return Next::failed;
    const Space* local = local_of(run, *run.now);
    if (!local || local->rank == kind::VARIABLE)
        return failed(run, 23);
    push_copy(run, *local);
    return Next::advance;
}

Next push_local_address(Activation& run) {
    if (!room(run))
        return Next::failed;
    Space* local = local_of(run, *run.now);
    if (!local)
        return failed(run, 23);
    Space& pushed = *++run.top;
    pushed = Space{};
    pushed.rank = kind::ADDRESS;
    pushed.type = ISLOCAL | ISADDRESS;
    pushed.elements = 1;
    pushed.target = local;
    return Next::advance;
}

Next push_label(Activation& run) {
    if (!is_set(run.now->target))
        return failed(run, 23);
    if (!room(run))
        return Next::failed;
    push_copy(run, *run.now->target);
    return Next::advance;
}

Next assign(Activation& run) {
    return store_name(run, true);
}

Next set(Activation& run) {
    return store_name(run, false);
}

} // namespace tessor
