#include "engine/short_road.h"

#include "engine/names.h"

namespace tessor {

namespace {

bool is_plain(const Space& value) {
    return (value.type & ISINPLACE) != 0;
}

// The value that a cell pushes if it is plain and the cell needs no looking up; else null.
const Space* pushed_by(const Activation& run, const Space& cell) {
    const Space* value = nullptr;
    switch (cell.rank) {
    case kind::VARIABLE: value = cell.suboperation == op::SGIG ? cell.target : nullptr; break;
    case kind::LOCAL_VARIABLE: value = local_of(run, cell); break;
    case kind::LABEL: value = cell.target; break;
    default: value = cell.rank >= 0 ? &cell : nullptr; break;
    }
    return value && is_plain(*value) ? value : nullptr;
}

// SET or ASSIGN behind the bound address of a plain value or of none.
bool stores_plainly(const Space& cell) {
    const Space& next = (&cell)[1];
    return cell.suboperation == op::SGIG && !(cell.type & CONDITIONAL) && cell.target
           && (is_plain(*cell.target) || cell.target->type == 0) && next.rank == kind::OPERATOR
           && (next.operation == op::SET || next.operation == op::ASSIGN);
}

// The instruction of a cell, with a condition that holds opened up; `skipped` if it doesn't hold,
// `undecided` if the long road must look.
constexpr int skipped = -1;
constexpr int undecided = -2;

int opened(const Activation& run, const Space& cell) {
    if (run.check < 0 || static_cast<std::int16_t>(cell.suboperation) == kind::FUNCTION)
        return undecided;
    if ((run.check == 1) != (cell.operation == op::IF_YES))
        return skipped;
    return static_cast<std::int16_t>(cell.suboperation);
}

// Where JUMP goes from a cell, if that is back.
Space* target_behind(const Activation& run, const Space* cell, const Space& number) {
    if (!is_plain(number) || number.tag != tag::integer || number.integer < 1)
        return nullptr;
    return number.integer <= cell - run.first ? run.first + (number.integer - 1) : nullptr;
}

bool attention_asked() {
    return attention.load(std::memory_order_relaxed) != 0;
}

} // namespace

bool short_road(Activation& run, CellCount& count) {
    Space* cell = run.cell;
    Space* top = run.top;
    Space* const floor = run.floor;
    bool returned = false;
    for (;; ++cell) {
        if (cell->rank == kind::OPERATOR) {
            int operation = cell->operation;
            if (operation == op::IF_YES || operation == op::IF_NO) {
                operation = opened(run, *cell);
                if (operation == skipped)
                    continue;
                if (operation == undecided)
                    break;
            }
            if (const Quick quick = bodies[operation].quick) {
                Space* after = quick(top, floor, run.quads);
                if (!after)
                    break;
                top = after;
            } else if (operation == op::CHECK) {
                if (top < floor || !is_plain(*top) || top->tag != tag::integer)
                    break;
                run.check = top->integer > 0 ? 1 : 0;
                --top;
            } else if (operation == op::JUMP) {
                Space* target = top < floor ? nullptr : target_behind(run, cell, *top);
                if (!target || attention_asked())
                    break;
                --top;
                count.jump(cell, target);
                if (operation != cell->operation)
                    count.again();
                cell = target - 1;
                continue;
            } else if (operation == op::RETURN || operation == op::FUNCTIONEND) {
                if (run.own_locals || run.table != run.entry)
                    break;
                returned = true;
            } else {
                break;
            }
            if (operation != cell->operation)
                count.again();
            if (returned)
                break;
        } else if (cell->rank == kind::ADDRESS) {
            if (!stores_plainly(*cell) || top < floor || !is_plain(*top))
                break;
            mark_first(run, GLOBALCHANGE);
            copy_words(*cell->target, *top);
            ++cell;
            if (cell->operation == op::SET)
                --top;
        } else {
            const Space* value = pushed_by(run, *cell);
            if (!value || top > stacktop)
                break;
            if (cell->type & CONDITIONAL) {
                if (run.check < 0)
                    break;
                if (run.check == ((cell->type & YES) ? 0 : 1))
                    continue;
            }
            copy_words(*++top, *value);
            if (top->type & (CONDITIONAL | YES))
                top->type &= ~(CONDITIONAL | YES);
        }
    }
    run.cell = run.now = cell;
    run.cell_top = run.top = top;
    return returned;
}

Space* discard_in_place(Space* top, const Space* floor, Space*) {
    return top >= floor && is_plain(*top) ? top - 1 : nullptr;
}

Space* right_in_place(Space* top, const Space* floor, Space*) {
    if (top <= floor || !is_plain(*top) || !is_plain(top[-1]))
        return nullptr;
    copy_words(top[-1], *top);
    return top - 1;
}

Space* swap_in_place(Space* top, const Space* floor, Space*) {
    if (top <= floor || !is_plain(*top) || !is_plain(top[-1]))
        return nullptr;
    Space held;
    copy_words(held, *top);
    copy_words(*top, top[-1]);
    copy_words(top[-1], held);
    return top;
}

Space* duplicate_in_place(Space* top, const Space* floor, Space*) {
    if (top < floor || top > stacktop || !is_plain(*top))
        return nullptr;
    copy_words(top[1], *top);
    return top + 1;
}

} // namespace tessor
