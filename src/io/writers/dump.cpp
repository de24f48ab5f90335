#include "io/writers/dump.h"

#include "io/writers/writer.h"
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

void write_stack(Writer& out, const Space* lowest, const Space* highest) {
    for (; lowest <= highest; ++lowest) {
        PrintOut = true;
        write_value(out, *lowest, place_of(0, Mode::source));
        PrintOut = false;
        out.put('\n');
    }
    out.end_batch();
}

void dumpstack(std::FILE* stream, const Space* lowest, const Space* highest) {
    Writer out(stream);
    out.begin_batches(cells_of_a_batch, nullptr);
    write_stack(out, lowest, highest);
}

} // namespace tessor
