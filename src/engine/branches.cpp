#include "engine/branches.h"

#include "engine/calls.h"
#include "scalar/contradict.h"
#include "scalar/random.h"
#include "values/array.h"
#include "values/refderef.h"

#include <algorithm>
#include <cmath>

namespace tessor {

namespace {

constexpr bool is_single(const Space& value) {
    return (value.type & (ISSCALAR | ISONEELEMENT)) != 0;
}

bool is_plain_integer(const Space& value) {
    return (value.type & ISINPLACE) && value.tag == tag::integer;
}

// The degree of truth of a number that isn't an integer; false if it has none.
bool degree_of(const Element& element, double& degree) {
    switch (element.tag) {
    case tag::real: degree = element.c[0]; return true;
    case tag::complex: degree = 1 - contradict_c(element.c); return true;
    case tag::quaternion: degree = 1 - contradict_q(element.c); return true;
    case tag::octonion: degree = 1 - contradict_o(element.c); return true;
    default: return false;
    }
}

// A draw makes the result of the function under way differ from run to run: RESULT is to know.
int drawn_flag(Activation& run, double degree) {
    if (std::isnan(degree))
        return -1;
    if (run.in_body)
        run.first[-1].type |= ISPROBABLE;
    return draw(std::clamp(degree, 0.0, 1.0), &prngs_seed) ? 1 : 0;
}

bool condition_holds(const Element& condition) {
    if (condition.tag == tag::integer)
        return condition.integer > 0;
    const double degree = condition.c[0];
    if (degree >= 1)
        return true;
    return degree > 0 && draw(degree, &prngs_seed);
}

// The cells between the current one and the target must belong to the list; the end mark itself may
// be the target.
bool is_within(const Activation& run, std::int32_t number) {
    const std::ptrdiff_t target = std::ptrdiff_t{number} - 1;
    for (const Space* cell = run.cell; cell - run.first < target; ++cell)
        if (is_end(*cell))
            return false;
    return true;
}

Next jump_to(Activation& run, std::int32_t number) {
    if (number < 0 || !is_within(run, number))
        return failed(run, 138);
    pop(run);
    if (number == 0)
        return do_return(run);
    run.cell = run.first + (number - 1);
    return Next::jumped;
}

} // namespace

Next check(Activation& run) {
    const Space& top = *run.top;
    if (is_plain_integer(top)) {
        run.check = top.integer > 0 ? 1 : 0;
        --run.top;
        return Next::advance;
    }
    if (!is_single(top)) {
        run.check = type_of(top) == ISEMPTY ? 0 : 1;
        pop(run);
        return Next::advance;
    }
    if (!has_data(top))
        return failed(run, 804);
    const Element element = element_at(top, 0);
    double degree = 0;
    if (element.tag == tag::integer)
        run.check = element.integer > 0 ? 1 : 0;
    else if (degree_of(element, degree))
        run.check = drawn_flag(run, degree);
    else
        return failed(run, 804);
    pop(run);
    return Next::advance;
}

Next if_(Activation& run) {
    Space& condition = run.top[-1];
    if (!is_single(condition))
        return failed(run, 801);
    const std::int32_t tag = has_data(condition) ? first_tag(condition) : tag::none;
    if (tag != tag::integer && tag != tag::real)
        return failed(run, 802);
    if (condition_holds(element_at(condition, 0))) {
        dereferencepoint(&condition);
        condition = *run.top--;
        return Next::advance;
    }
    Space empty;
    make_empty(empty);
    empty.depth = 1;
    pop(run);
    dereferencepoint(&condition);
    condition = empty;
    return Next::advance;
}

Next jump(Activation& run) {
    const Space& top = *run.top;
    if (is_plain_integer(top))
        return jump_to(run, top.integer);
    if (top.rank == 1 && (top.type & ISEMPTY)) {
        pop(run);
        return Next::advance;
    }
    if (top.rank < 0 || !has_data(top))
        return failed(run, 138);
    const Element first = element_at(top, 0);
    return first.tag == tag::integer ? jump_to(run, first.integer) : failed(run, 138);
}

} // namespace tessor
