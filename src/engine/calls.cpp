#include "engine/calls.h"

#include "io/writers/exception.h"
#include "parallel/coprocessor.h"
#include "values/block.h"
#include "values/refderef.h"

#include <cstring>
#include <utility>
#include <vector>

namespace tessor {

namespace {

void put_on_chain(MeaningTable*& chain, HashTable* hash) {
    MeaningTable* pushed = pushtable(chain, hash);
    drop(chain);
    chain = pushed;
}

bool on_chain(const Activation& run, const HashTable* hash) {
    const MeaningTable* link = run.table;
    while (link != run.entry && link->hash != hash)
        link = link->outer;
    return link != run.entry;
}

// Takes a table out of what this activation has put on its chain: an outer place is hidden by the
// inner one that it is to get, and a loop that calls functions must not make the chain longer.
void take_off_chain(Activation& run, const HashTable* hash) {
    std::vector<HashTable*> others;
    for (const MeaningTable* link = run.table; link != run.entry; link = link->outer)
        if (link->hash != hash)
            others.push_back(link->hash);
    MeaningTable* chain = hold(run.entry);
    try {
        for (std::size_t i = others.size(); i-- > 0;)
            put_on_chain(chain, others[i]);
    } catch (...) {
        drop(chain);
        throw;
    }
    drop(std::exchange(run.table, chain));
}

Next run_on_operands(Activation& run, const Space& function) {
    const long n = function.arguments;
    if (n > 0 && run.values() < n) {
        failed(run, 800);
        return Next::advance;
    }
    return run_function(run, function, n);
}

// The body of a function under way, whose name may be given another value meanwhile.
class HeldBody {
public:
    explicit HeldBody(Space* body) : body_(body) { count_up(body); }
    HeldBody(const HeldBody&) = delete;
    HeldBody& operator=(const HeldBody&) = delete;
    ~HeldBody() {
        if (count_of(body_) > 1)
            count_down(body_);
        else
            release_body(body_);
    }

private:
    Space* body_;
};

} // namespace

void open_locals(Space* first_operand, long n, int locals) {
    std::memmove(static_cast<void*>(first_operand + locals), first_operand,
                 static_cast<std::size_t>(n) * sizeof(Space));
    for (int i = 0; i < locals; ++i) {
        first_operand[i] = Space{};
        first_operand[i].rank = kind::VARIABLE;
    }
}

void enter_own_table(Activation& run, HashTable* hash) {
    if (run.table->hash == hash && run.table->count < 0)
        return;
    if (run.table->hash != hash && on_chain(run, hash))
        take_off_chain(run, hash);
    put_on_chain(run.table, hash);
}

Next run_function(Activation& run, const Space& function, long n, bool* stopped) {
    if (!may_nest(run))
        return Next::failed;
    Space* base = run.base;
    Space* floor = run.floor;
    const int locals = n < 0 ? 0 : function.locals;
    if (locals > stacktop + 1 - run.top)
        return failed(run, 806);
    if (n >= 0) {
        base = run.top - n + 1;
        floor = base + locals;
    }
    if (locals > 0) {
        wait_for_coprocessors();
        open_locals(base, n, locals);
        run.top += locals;
    }
    Activation callee(function.body + 1, run.table, base, floor, run.top, run.quads, run.depth + 1);
    callee.in_body = true;
    callee.own_locals = locals > 0;
    run.top = run_nested(callee);
    if (stopped)
        *stopped = callee.stopped;
    return Next::advance;
}

Next call(Activation& run) {
    enter_table(run, *run.top);
    Held function(*run.top);
    --run.top;
    return run_on_operands(run, function.value());
}

Next call_named(Activation& run, const Space& function) {
    enter_table(run, function);
    const HeldBody held(function.body);
    return run_on_operands(run, function);
}

void close_locals(Activation& run) noexcept {
    if (!run.own_locals)
        return;
    settle_coprocessors();
    for (Space* local = run.base; local < run.floor; ++local)
        dereferencepoint(local);
    const long values = run.values();
    std::memmove(static_cast<void*>(run.base), run.floor,
                 static_cast<std::size_t>(values) * sizeof(Space));
    run.top = run.base + values - 1;
}

Next do_return(Activation& run) {
    if (run.own_locals)
        wait_for_coprocessors();
    if (run.table != run.entry)
        run.table = popsymtabs(run.table);
    close_locals(run);
    return Next::end;
}

Next make_operator(Activation& run) {
    Space& top = *run.top;
    if (top.rank != kind::FUNCTION)
        return Next::advance;
    if (!unshared(top.body)) {
        Space* copy = copyfun(top);
        release_body(top.body);
        top.body = copy;
    }
    top.body->type |= ISOPERATOR;
    top.type = top.body->type;
    return Next::advance;
}

} // namespace tessor
