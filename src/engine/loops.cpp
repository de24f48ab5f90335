#include "engine/loops.h"

#include "engine/calls.h"
#include "values/array.h"
#include "values/shared.h"

#include <algorithm>

namespace tessor {

namespace {

bool is_count(const Space& value) {
    return value.rank == 0 && has_data(value) && first_tag(value) == tag::integer
           && element_at(value, 0).integer >= 0;
}

// What keeps a function from being run in turns: 0, or the number to report.
int obstacle(const Space& function, bool repeats) {
    if (function.locals != 0)
        return 988;
    return !repeats && function.arguments < 0 ? 979 : 0;
}

bool has_operands(const Activation& run, int arguments) {
    return arguments <= 0 || run.values() >= arguments - 1;
}

// One turn of REPEAT: in the frame of the activation that repeats.
void repeat_turn(Activation& run, Activation& callee) {
    restart(callee, run.base, run.floor, run.top);
    run.top = run_nested(callee);
}

// One turn of LOOP. The frame begins one value below the operands, but not below the frame of the
// activation that loops. False: the turn failed, and that is reported.
bool loop_turn(Activation& run, Activation& callee, int arguments, std::int32_t index) {
    Space* const height = run.top;
    if (arguments > 0) {
        if (!room(run))
            return false;
        make_integer(*++run.top, index);
    }
    Space* floor = std::max(run.top - arguments, run.floor);
    restart(callee, floor, floor, run.top);
    run.top = run_nested(callee);
    if (run.top == height)
        return true;
    failed(run, 978);
    return false;
}

Next turns(Activation& run, const Space& function, std::int32_t count, bool repeats) {
    const int arguments = function.arguments;
    enter_table(run, function);
    Activation callee(function.body + 1, run.table, run.base, run.floor, run.top, run.quads,
                      run.depth + 1);
    callee.in_body = true;
    callee.left = true;
    for (std::int64_t i = 1; i <= count; ++i) {
        if (!has_operands(run, arguments))
            return failed(run, 800);
        if (repeats)
            repeat_turn(run, callee);
        else if (!loop_turn(run, callee, arguments, static_cast<std::int32_t>(i)))
            return Next::failed;
    }
    operations += count;
    return Next::advance;
}

} // namespace

Next loop(Activation& run) {
    if (run.top->rank != kind::FUNCTION)
        return failed(run, 976);
    if (!is_count(run.top[-1]))
        return failed(run, 977);
    const bool repeats = run.now->suboperation == op::DISCARD;
    Held function(*run.top--);
    const std::int32_t count = element_at(*run.top, 0).integer;
    pop(run);
    if (count == 0)
        return Next::advance;
    if (const int number = obstacle(function.value(), repeats))
        return failed(run, number);
    if (!may_nest(run))
        return Next::failed;
    return turns(run, function.value(), count, repeats);
}

} // namespace tessor
