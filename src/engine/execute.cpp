#include "engine/execute.h"

#include "engine/calls.h"
#include "engine/signals.h"
#include "values/array.h"
#include "values/refderef.h"

#include <algorithm>
#include <cstring>

namespace tessor {

bool is_executable_text(const Space& value) {
    return (value.rank == 0 || value.rank == 1)
           && (value.type & (STRUCTURED | COMPLEXED | HASASCII)) == HASASCII;
}

// The characters, and behind them what ends a sentence.
BlockHandle source_of(const Space& text) {
    constexpr char end[] = " .";
    BlockHandle source(allocate_block(std::size_t{text.elements} + sizeof end));
    char* bytes = source.as<char>();
    for (std::uint32_t i = 0; i < text.elements; ++i)
        bytes[i] = static_cast<char>(element_at(text, i).character);
    std::memcpy(bytes + text.elements, end, sizeof end);
    return source;
}

namespace {

// A zero byte is the end of the input wherever it stands: nothing is read from there on.
Next execute_text(Activation& run) {
    if (!may_nest(run))
        return Next::failed;
    const BlockHandle source = source_of(*run.top);
    const char* at = source.as<char>();
    const char* end = at + run.top->elements;
    pop(run);
    CellBuffer buffer;
    while (at < end && *at) {
        const char* before = at;
        fill_reading(buffer.cells(), run.table, nullptr, &at, LineEnd::blank);
        run.top = machine(buffer.cells(), run.table, run.base, run.floor, run.top, run.quads,
                          run.depth + 1);
        clear_cells(buffer.cells());
        if (at == before)
            break;
    }
    return Next::advance;
}

} // namespace

Next execute(Activation& run) {
    if (run.top->rank == kind::FUNCTION)
        return call(run);
    return is_executable_text(*run.top) ? execute_text(run) : failed(run, 995);
}

Next dip(Activation& run) {
    if (run.top->rank != kind::FUNCTION)
        return failed(run, 995);
    const Held function(*run.top--);
    const Space hidden = *run.top--;
    Held kept(hidden);
    const long n = function.value().arguments;
    const Next next = run_function(run, function.value(), std::min(n, run.values()));
    if (!room(run))
        return Next::failed;
    *++run.top = hidden;
    kept.release();
    return next;
}

} // namespace tessor
