#include "io/saving.h"

#include "engine/names.h"
#include "io/files.h"
#include "io/writers/dump.h"
#include "io/writers/writer.h"
#include "io/writing.h"
#include "values/shared.h"

#include <string_view>

namespace tessor {

namespace {

constexpr FileNumbers save_numbers = {708, 709, 713};
constexpr FileNumbers load_numbers = {715, 716, 710};
constexpr FileNumbers dump_numbers = {721, 722, 723};
constexpr FileNumbers remember_numbers = {724, 725, 726};

constexpr int records_of_a_batch = 257;
constexpr std::string_view batch_end = ".\n";

// A name that begins like one of a class goes back as it is typed, any other between quotes, where
// it may hold any byte but the one that closes them.
void write_target(Writer& out, std::string_view name) {
    constexpr std::string_view prefixes = "_.$%";
    const bool bare = prefixes.find(name[0]) != prefixes.npos || name.find('\x03') != name.npos;
    out.put(bare ? " @" : " @\x02");
    out.put(name);
    out.put(bare ? " SET\n" : "\x03 SET\n");
}

void write_record(Writer& out, const Bucket& bucket) {
    PrintOut = true;
    write_value(out, *bucket.value, {0, Style::source, false});
    PrintOut = false;
    write_target(out, bucket.name);
}

void remember_table(Writer& out, const HashTable* hash) {
    int records = 0;
    for (std::uint32_t index = 0; const Bucket* bucket = next_used(hash, index); ++index) {
        for (; bucket && bucket->name; bucket = bucket->next) {
            if (!is_set(bucket->value))
                continue;
            write_record(out, *bucket);
            if (++records == records_of_a_batch) {
                out.put(batch_end);
                records = 0;
            }
        }
    }
}

// The file that the top names is open, `write` fills it, and the name goes.
template <class Write>
Next write_named(Activation& run, const FileNumbers& numbers, Write write) {
    OpenedFile file = open_named(*run.top, FileMode::write, numbers);
    if (file.number)
        return failed(run, file.number);
    if (!write_to(file.stream, write))
        return failed(run, numbers.failure);
    pop(run);
    return Next::advance;
}

} // namespace

void remember(std::FILE* stream, const MeaningTable* link) {
    Writer out(stream);
    for (; link; link = link->outer)
        if (link->hash)
            remember_table(out, link->hash);
    out.put(batch_end);
}

Next save(Activation& run) {
    return write_named(run, save_numbers, [&run](std::FILE* stream) {
        remember(stream, run.table);
        dumpstack(stream, run.base, run.top - 1);
    });
}

Next do_remember(Activation& run) {
    return write_named(run, remember_numbers,
                       [&run](std::FILE* stream) { remember(stream, run.table); });
}

Next do_dumpstack(Activation& run) {
    if (run.top->type & ISEMPTY) {
        dumpstack(stdout, run.base, run.top);
        std::fflush(stdout);
        return Next::advance;
    }
    return write_named(run, dump_numbers,
                       [&run](std::FILE* stream) { dumpstack(stream, run.base, run.top - 1); });
}

Next load(Activation& run) {
    const OpenedFile file = open_named(*run.top, FileMode::read, load_numbers);
    if (file.number)
        return failed(run, file.number);
    while (run.top >= run.floor)
        pop(run);
    hashwipe(hash_of(run.table));
    return run_stream(run, file.stream.get());
}

} // namespace tessor
