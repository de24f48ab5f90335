#include "engine/stack.h"

#include "values/array.h"
#include "values/refderef.h"

#include <utility>

namespace tessor {

namespace {

Next push_count(Activation& run, long count) {
    if (!room(run))
        return Next::failed;
    make_integer(*++run.top, static_cast<std::int32_t>(count));
    return Next::advance;
}

} // namespace

Next discard(Activation& run) {
    if (run.top >= run.floor)
        pop(run);
    return Next::advance;
}

Next right(Activation& run) {
    if (run.values() >= 2) {
        dereferencepoint(run.top - 1);
        run.top[-1] = *run.top;
        --run.top;
    }
    return Next::advance;
}

Next swap(Activation& run) {
    if (run.values() >= 2)
        std::swap(run.top[-1], *run.top);
    return Next::advance;
}

Next duplicate(Activation& run) {
    if (!room(run))
        return Next::failed;
    push_copy(run, *run.top);
    return Next::advance;
}

Next clear(Activation& run) {
    while (run.top >= run.floor)
        pop(run);
    return Next::advance;
}

Next push_mark(Activation& run) {
    if (!room(run))
        return Next::failed;
    push_copy(run, *run.now);
    return Next::advance;
}

Next countstack(Activation& run) {
    return push_count(run, run.values());
}

Next counttomark(Activation& run) {
    long count = 0;
    for (const Space* at = run.top; at >= run.floor && !is_mark(*at); --at)
        ++count;
    return push_count(run, count);
}

Next cleartomark(Activation& run) {
    while (run.top >= run.floor && !is_mark(*run.top))
        pop(run);
    return Next::advance;
}

} // namespace tessor
