#include "io/writers/dump.h"

#include "io/writers/writer.h"
#include "values/instructions.h"
#include "values/shared.h"

namespace tessor {

namespace {

Place place_of(int level, Mode mode) {
    return {level, mode == Mode::source ? Style::source : Style::display, false};
}

} // namespace

void dump(std::FILE* stream, const char* prefix, const Space& space) {
    PrintOut = true;
    disass(stream, prefix, space, 0, Mode::display);
    PrintOut = false;
}

void disass(std::FILE* stream, const char* prefix, const Space& space, int level, Mode mode) {
    Writer out(stream);
    out.put(prefix);
    write_value(out, space, place_of(level, mode));
    out.flush();
}

bool is_local_address(const Space& value) {
    return value.rank == kind::ADDRESS && (value.type & ISLOCAL);
}

bool fails_elsewhere(const Space& value) {
    return value.rank == kind::ADDRESS && value.suboperation == op::SLIL;
}

void write_stack(Writer& out, const Space* lowest, const Space* highest) {
    for (; lowest <= highest; ++lowest) {
        PrintOut = true;
        if (!out.vocabulary() || !is_local_address(*lowest))
            write_value(out, *lowest, place_of(0, Mode::source));
        PrintOut = false;
        out.put('\n');
        if (lowest < highest && fails_elsewhere(*lowest))
            out.end_batch();
    }
    out.end_batch();
}

void dumpstack(std::FILE* stream, const Space* lowest, const Space* highest) {
    Writer out(stream);
    out.begin_batches(cells_of_a_batch, nullptr);
    write_stack(out, lowest, highest);
}

} // namespace tessor
