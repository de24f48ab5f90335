#include "io/saving.h"

#include "engine/names.h"
#include "frontend/names.h"
#include "frontend/symtab.h"
#include "io/files.h"
#include "io/writers/dump.h"
#include "io/writers/elements.h"
#include "io/writers/writer.h"
#include "io/writing.h"
#include "values/array.h"
#include "values/shared.h"

#include <string>
#include <string_view>

namespace tessor {

namespace {

constexpr FileNumbers save_numbers = {708, 709, 713};
constexpr FileNumbers load_numbers = {715, 716, 710};
constexpr FileNumbers dump_numbers = {721, 722, 723};
constexpr FileNumbers remember_numbers = {724, 725, 726};

constexpr int records_of_a_batch = 257;

// What has a name without a value loses the name, unless something that is saved refers to it.
bool is_named(MeaningTable* names, std::string_view word) {
    const Bucket* found = checkmeaning(names, std::string(word).c_str());
    return found && (is_set(found->value) || count_of(found->value) > 1);
}

// A word that the function itself has given a meaning, in a table of its own, gets it again before
// it is read.
bool reads_as_built_in(MeaningTable* names, const Space& variable) {
    const Bucket* global = checkhash(base_hash(names), variable.name);
    const bool own =
        variable.suboperation != op::SGIG && !(global && global->value == variable.target);
    return !own && reads_as_word(variable.name);
}

// A name that begins like one of a class goes back as it is typed, any other between quotes. What
// would not be read back either way goes back as a text: a label too, whose table comes back with
// its function.
void write_target(Writer& out, std::string_view name) {
    const bool prefixed = has_prefix(name);
    out.count_cells(2);
    if (is_key(name)) {
        write_key(out, name);
    } else {
        out.put(prefixed ? " @" : " @\x02");
        out.put(name);
        if (!prefixed)
            out.put('\x03');
    }
    write_word(out, "SET");
    out.put('\n');
}

// A word's own operand, left over by a word that failed, shows nowhere; but a name keeps it.
bool is_hidden_number(const Space& value) {
    if (value.rank != 0 || !has_data(value))
        return false;
    const Element element = element_at(value, 0);
    return (element.marks & mark::hidden) && !element.named();
}

void write_hidden_number(Writer& out, const Space& value) {
    bool joined = false;
    out.count_cells(1);
    write_element(out, element_at(value, 0), {0, Style::source, false}, true, joined);
}

void write_record(Writer& out, const Bucket& bucket) {
    PrintOut = true;
    if (is_hidden_number(*bucket.value))
        write_hidden_number(out, *bucket.value);
    else
        write_value(out, *bucket.value, {0, Style::source, false});
    PrintOut = false;
    write_target(out, bucket.name);
}

void remember_table(Writer& out, const HashTable* hash) {
    int records = 0;
    for (std::uint32_t index = 0; const Bucket* bucket = next_used(hash, index); ++index) {
        for (; bucket && bucket->name; bucket = bucket->next) {
            if (!is_set(bucket->value) || is_local_address(*bucket->value))
                continue;
            write_record(out, *bucket);
            if (++records == records_of_a_batch || fails_elsewhere(*bucket->value)) {
                out.end_batch();
                records = 0;
            }
        }
    }
}

template <class Write>
void write_program(std::FILE* stream, MeaningTable* names, Write write) {
    const Vocabulary vocabulary = {reads_as_built_in, is_named, names};
    Writer out(stream);
    out.begin_batches(cells_of_a_batch, &vocabulary);
    write(out);
}

// The file that the top names is open, `write` fills it, and the name goes.
template <class Write>
Next write_named(Activation& run, const FileNumbers& numbers, Write write) {
    OpenedFile file = open_named(*run.top, FileMode::write, numbers);
    if (file.number)
        return failed(run, file.number);
    if (!write_to(file.stream, [&](std::FILE* stream) { write_program(stream, run.table, write); }))
        return failed(run, numbers.failure);
    pop(run);
    return Next::advance;
}

} // namespace

void remember(Writer& out, const MeaningTable* link) {
    for (; link; link = link->outer)
        if (link->hash)
            remember_table(out, link->hash);
    out.end_batch();
}

Next save(Activation& run) {
    return write_named(run, save_numbers, [&run](Writer& out) {
        remember(out, run.table);
        write_stack(out, run.base, run.top - 1);
    });
}

Next do_remember(Activation& run) {
    return write_named(run, remember_numbers, [&run](Writer& out) { remember(out, run.table); });
}

Next do_dumpstack(Activation& run) {
    if (run.top->type & ISEMPTY) {
        write_program(stdout, run.table,
                      [&run](Writer& out) { write_stack(out, run.base, run.top); });
        std::fflush(stdout);
        return Next::advance;
    }
    return write_named(run, dump_numbers,
                       [&run](Writer& out) { write_stack(out, run.base, run.top - 1); });
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
