#include "engine/short_road.h"

#include "engine/names.h"

namespace tessor {

namespace {

bool is_plain(const Space& value) {
    return (value.type & ISINPLACE) != 0;
}

// A stretch under way, kept in registers.
struct Stretch {
    Activation& run;
    CellCount& count;
    Space* cell;
    Space* top;
    Space* const floor;
};

/// What follows a cell.
enum class After { next, stop, returned };

// SET or ASSIGN behind the bound address of a plain value or of none: both cells in one.
[[gnu::always_inline]] inline bool store(Stretch& s) {
    const Space& cell = *s.cell;
    const Space& next = s.cell[1];
    if (cell.suboperation != op::SGIG || (cell.type & CONDITIONAL) || !cell.target
        || next.rank != kind::OPERATOR
        || (next.operation != op::SET && next.operation != op::ASSIGN))
        return false;
    Space& target = *cell.target;
    if ((target.type && !is_plain(target)) || s.top < s.floor || s.top > stacktop
        || !is_plain(*s.top))
        return false;
    mark_first(s.run, GLOBALCHANGE);
    copy_words(target, *s.top);
    s.top -= next.operation == op::SET ? 1 : 0;
    ++s.cell;
    return true;
}

[[gnu::always_inline]] inline bool apply(Stretch& s, VerbInPlace verb, Space* left,
                                         const Space* right) {
    const long flops = verb(left, right, s.run.quads);
    if (flops < 0)
        return false;
    s.count.verb(flops);
    return true;
}

[[gnu::always_inline]] inline bool run_verb(Stretch& s, int operation) {
    const Quick& quick = quick_verbs[operation];
    if (!quick.verb || s.top - s.floor < quick.pops)
        return false;
    Space* const left = s.top - quick.pops;
    if (!apply(s, quick.verb, left, s.top))
        return false;
    s.top = left;
    return true;
}

// A value behind which a dyadic verb stands is its right operand, and needn't go on the stack.
[[gnu::always_inline]] inline bool combine(Stretch& s, const Space* right) {
    const Space& next = s.cell[1];
    if (next.rank != kind::OPERATOR || s.top < s.floor)
        return false;
    const Quick& quick = quick_verbs[next.operation];
    if (quick.pops != 1 || !apply(s, quick.verb, s.top, right))
        return false;
    ++s.cell;
    return true;
}

template <bool combines>
[[gnu::always_inline]] inline bool push(Stretch& s, const Space* value) {
    if (!value || !is_plain(*value) || s.top > stacktop)
        return false;
    if (combines && combine(s, value))
        return true;
    copy_words(*++s.top, *value);
    return true;
}

[[gnu::always_inline]] inline bool check(Stretch& s) {
    if (!is_plain(*s.top) || s.top->tag != tag::integer)
        return false;
    s.run.check = s.top->integer > 0 ? 1 : 0;
    --s.top;
    return true;
}

// Only back: whether a target ahead lies within the list takes a look at the cells between.
[[gnu::always_inline]] inline bool jump_back(Stretch& s) {
    const Space& number = *s.top;
    if (!is_plain(number) || number.tag != tag::integer || number.integer < 1
        || number.integer > s.cell - s.run.first || attention.load(std::memory_order_relaxed) != 0)
        return false;
    Space* target = s.run.first + (number.integer - 1);
    --s.top;
    s.count.jump(s.cell, target);
    s.cell = target - 1;
    return true;
}

[[gnu::always_inline]] inline bool duplicate(Stretch& s) {
    return s.top >= s.floor && push<false>(s, s.top);
}

[[gnu::always_inline]] inline bool two_plain(const Stretch& s) {
    return s.top > s.floor && is_plain(*s.top) && is_plain(s.top[-1]);
}

[[gnu::always_inline]] inline bool swap(Stretch& s) {
    if (!two_plain(s))
        return false;
    Space held;
    copy_words(held, *s.top);
    copy_words(*s.top, s.top[-1]);
    copy_words(s.top[-1], held);
    return true;
}

[[gnu::always_inline]] inline bool right(Stretch& s) {
    if (!two_plain(s))
        return false;
    copy_words(s.top[-1], *s.top);
    --s.top;
    return true;
}

[[gnu::always_inline]] inline bool discard(Stretch& s) {
    if (s.top < s.floor || !is_plain(*s.top))
        return false;
    --s.top;
    return true;
}

[[gnu::always_inline]] inline bool returns(const Stretch& s) {
    return !s.run.own_locals && s.run.table == s.run.entry;
}

After run_conditional(Stretch& s);

// `opened`: the instruction stood under a condition.
template <bool opened>
[[gnu::always_inline]] inline After run_operator(Stretch& s, int operation) {
    bool done = false;
    switch (operation) {
    case op::DISCARD: done = discard(s); break;
    case op::RIGHT: done = right(s); break;
    case op::SWAP: done = swap(s); break;
    case op::DUPLICATE: done = duplicate(s); break;
    case op::CHECK: done = s.top >= s.floor && check(s); break;
    case op::JUMP: done = s.top >= s.floor && jump_back(s); break;
    case op::RETURN:
    case op::FUNCTIONEND: return returns(s) ? After::returned : After::stop;
    case op::IF_YES:
    case op::IF_NO: return opened ? After::stop : run_conditional(s);
    default: done = run_verb(s, operation); break;
    }
    return done ? After::next : After::stop;
}

[[gnu::always_inline]] inline After run_conditional(Stretch& s) {
    const int governed = static_cast<std::int16_t>(s.cell->suboperation);
    if (s.run.check < 0 || governed == kind::FUNCTION)
        return After::stop;
    if ((s.run.check == 1) != (s.cell->operation == op::IF_YES))
        return After::next;
    const After after = run_operator<true>(s, governed);
    if (after != After::stop)
        s.count.again();
    return after;
}

// A literal or a name; a name that must be looked up isn't plain.
[[gnu::always_inline]] inline bool push_cell(Stretch& s) {
    const Space& cell = *s.cell;
    if (cell.type & CONDITIONAL) {
        if (s.run.check < 0)
            return false;
        if ((s.run.check == 1) != ((cell.type & YES) != 0))
            return true;
    }
    bool done = false;
    switch (cell.rank) {
    case kind::VARIABLE: done = cell.suboperation == op::SGIG && push<true>(s, cell.target); break;
    case kind::LOCAL_VARIABLE: done = push<true>(s, local_of(s.run, cell)); break;
    case kind::LABEL: done = push<false>(s, cell.target); break;
    default: done = cell.rank >= 0 && push<false>(s, &cell); break;
    }
    if (done && (s.top->type & CONDITIONAL))
        s.top->type &= ~(CONDITIONAL | YES);
    return done;
}

[[gnu::always_inline]] inline After run_cell(Stretch& s) {
    const Space& cell = *s.cell;
    if (cell.rank >= 0) {
        if ((cell.type & (CONDITIONAL | ISINPLACE)) != ISINPLACE)
            return cell.type && push_cell(s) ? After::next : After::stop;
        if (s.top > stacktop)
            return After::stop;
        if (!combine(s, &cell))
            *++s.top = cell; // nobody has just written it
        return After::next;
    }
    if (cell.rank == kind::OPERATOR)
        return run_operator<false>(s, cell.operation);
    if (cell.rank == kind::ADDRESS)
        return store(s) ? After::next : After::stop;
    return push_cell(s) ? After::next : After::stop;
}

} // namespace

bool short_road(Activation& run, CellCount& count) {
    Stretch s{run, count, run.cell, run.top, run.floor};
    After after = run_cell(s);
    while (after == After::next) {
        ++s.cell;
        after = run_cell(s);
    }
    run.cell = run.now = s.cell;
    run.cell_top = run.top = s.top;
    return after == After::returned;
}

} // namespace tessor
