#include "engine/memo.h"

#include "engine/calls.h"
#include "engine/names.h"
#include "engine/toaddr.h"
#include "parallel/coprocessor.h"
#include "values/refderef.h"
#include "values/text.h"

namespace tessor {

namespace {

bool remembers(const Space& function) {
    return function.arguments >= 0 && !(function.body->type & (ISPROBABLE | INOUT));
}

// A name ends at its first zero byte. A key that goes on behind one would also be found for other
// arguments.
bool is_whole_name(std::string_view key) {
    return key.find('\0') == std::string_view::npos;
}

// The function's own text is kept by the end mark of its body.
bool put_function(KeyText& key, const Space& function) {
    Space& end = function.body[function.elements];
    if (end.name) {
        key.put(end.name);
        return true;
    }
    const std::size_t from = key.size();
    if (!TOAddr1(key, function, 0))
        return false;
    const std::string_view own = key.view().substr(from);
    if (is_whole_name(own))
        end.name = stringdup(own);
    return true;
}

// The texts of the n values below the function, from the lowest up, and its own.
bool put_call(KeyText& key, const Activation& run, long n) {
    for (Space* argument = run.top - n; argument < run.top; ++argument) {
        argument->type &= ~ISPROBABLE;
        if (!TOAddr1(key, *argument, 0))
            return false;
    }
    return put_function(key, *run.top);
}

Bucket* entry_of(HashTable* table, char* key) {
    count_up(key);
    return enter(table, key);
}

void forget(HashTable* table, const char* key) {
    if (Bucket* bucket = checkhash(table, key))
        forgethash(table, bucket);
}

void remember(HashTable* table, char* key, const Space& value) {
    Space& place = *entry_of(table, key)->value;
    const Held old(place);
    place = value;
    referencepoint(&place);
}

// What is left of a call decides whether its result is worth remembering. `below` is the cell under
// the first argument's.
void settle(Activation& run, const Space& function, const Space* below, HashTable* table,
            char* key) {
    Space& header = *function.body;
    const long values = run.top - below;
    if (values > 1)
        header.type |= GLOBALCHANGE;
    else if (values == 1 && (run.top->type & ISPROBABLE))
        header.type |= ISPROBABLE;
    if (values == 1 && !(header.type & ISPROBABLE))
        remember(table, key, *run.top);
    else
        forget(table, key);
}

// The remembered value in place of the n arguments.
void recall(Activation& run, const Space& value, long n) {
    Space copy = value;
    referencepoint(&copy);
    for (; n > 0; --n)
        pop(run);
    *++run.top = copy;
}

Next call_and_remember(Activation& run, const Space& function, HashTable* table, char* key) {
    const Space* below = run.top - function.arguments;
    bool stopped = true;
    const Next next = run_function(run, function, function.arguments, &stopped);
    wait_for_coprocessors(); // what it left may still be in the making
    if (stopped)
        forget(table, key);
    else
        settle(run, function, below, table, key);
    return next;
}

Next run_remembering(Activation& run, bool recalls) {
    if (run.top->rank != kind::FUNCTION)
        return failed(run, 975);
    if (!remembers(*run.top))
        return call(run);
    const long n = run.top->arguments;
    if (run.values() - 1 < n) {
        pop(run);
        failed(run, 800);
        return Next::advance;
    }
    KeyText text;
    if (!put_call(text, run, n))
        return failed(run, 806);
    if (!is_whole_name(text.view()))
        return call(run);
    const BlockHandle key(text.finish());
    const Held function(*run.top--);
    HashTable* table = base_hash(run.table);
    const Space& remembered = *entry_of(table, key.as<char>())->value;
    if (recalls && is_set(&remembered)) {
        recall(run, remembered, n);
        return Next::advance;
    }
    return call_and_remember(run, function.value(), table, key.as<char>());
}

} // namespace

Next result(Activation& run) {
    return run_remembering(run, true);
}

Next reevaluate(Activation& run) {
    return run_remembering(run, false);
}

} // namespace tessor
