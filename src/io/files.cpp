#include "io/files.h"

#include "engine/signals.h"
#include "io/opening.h"
#include "io/writers/dump.h"
#include "io/writers/exception.h"
#include "io/writing.h"
#include "values/array.h"
#include "values/shared.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tessor {

namespace {

constexpr FileNumbers reading_numbers = {701, 702, 710};
constexpr FileNumbers writing_numbers = {703, 704, 711};
constexpr FileNumbers other_numbers = {706, 707, 712};

constexpr std::size_t longest_text = std::numeric_limits<std::int32_t>::max();

bool ends_input(const Space& cell) {
    return cell.rank == kind::OPERATOR && cell.operation == op::ENDPROCESS;
}

// What the system says that there is to read, and one byte to see the end; a pipe doesn't say.
std::size_t expected_bytes(int descriptor) {
    constexpr std::size_t piece = std::size_t{1} << 16;
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || status.st_size <= 0)
        return piece;
    return static_cast<std::size_t>(status.st_size) + 1;
}

// Less than asked for, and no more than there is: 0 at the end, and where the system can't read.
std::size_t read_some(int descriptor, char* bytes, std::size_t room) {
    constexpr std::size_t most = std::size_t{1} << 22; // a signal need not wait for all of it
    const Waiting now;
    for (;;) {
        if (signal_noted())
            take_signals();
        const ssize_t n = ::read(descriptor, bytes, std::min(room, most));
        if (n >= 0 || errno != EINTR)
            return static_cast<std::size_t>(std::max<ssize_t>(n, 0));
    }
}

// All bytes of a file in a block of characters, cut to their number.
BlockHandle read_bytes(int descriptor, std::size_t& length) {
    const std::uint32_t layout = encode({Storage::character, form::text, 0});
    const std::size_t expected = expected_bytes(descriptor);
    if (expected > longest_text)
        throw OutOfStorage{};
    BlockHandle block(allocate_block(expected, layout));
    length = 0;
    for (;;) {
        if (length == block_capacity(block.get())) {
            if (length > longest_text / 2)
                throw OutOfStorage{};
            BlockHandle larger(allocate_block(2 * length, layout));
            std::copy_n(block.as<char>(), length, larger.as<char>());
            block = std::move(larger);
        }
        const std::size_t n =
            read_some(descriptor, block.as<char>() + length, block_capacity(block.get()) - length);
        if (n == 0)
            return block;
        length += n;
        if (length > longest_text)
            throw OutOfStorage{};
    }
}

Space text_of(BlockHandle block, std::size_t length) {
    Space text;
    if (length < 2) {
        make_text(text, block.as<char>(), length);
        return text;
    }
    void* data = Reallocate(block.release(), length);
    make_vector(text, static_cast<std::uint32_t>(length), data, HASASCII);
    return text;
}

void write_form(std::FILE* stream, const Space& value, Mode mode) {
    PrintOut = true;
    disass(stream, "", value, 0, mode);
    PrintOut = false;
    operations += value.elements;
}

// False: not everything could be written.
bool write_value_to(Stream& opened, const Space& value, Mode mode, const char* end) {
    return write_to(opened, [&](std::FILE* stream) {
        write_form(stream, value, mode);
        std::fputs(end, stream);
    });
}

// The instructions that share one opening end the sentence when they fail.
Next write_named(Activation& run, FileMode file_mode, Mode mode) {
    OpenedFile file = open_named(*run.top, file_mode, other_numbers);
    if (file.number)
        fail(file.number, &run.top, run.now);
    if (!write_value_to(file.stream, run.top[-1], mode, ""))
        fail(other_numbers.failure, &run.top, run.now);
    pop(run);
    return Next::advance;
}

} // namespace

Next run_stream(Activation& run, std::FILE* stream) {
    CellBuffer buffer;
    for (;;) {
        fill_reading(buffer.cells(), run.table, stream, nullptr, LineEnd::blank);
        if (ends_input(*buffer.cells()))
            return Next::advance;
        if (!may_nest(run))
            return Next::failed;
        run.top = machine(buffer.cells(), run.table, run.base, run.floor, run.top, run.quads,
                          run.depth + 1);
        clear_cells(buffer.cells());
    }
}

Next do_read(Activation& run) {
    const OpenedFile file = open_named(*run.top, FileMode::read, reading_numbers);
    if (file.number)
        return failed(run, file.number);
    pop(run);
    return run_stream(run, file.stream.get());
}

Next textread(Activation& run) {
    const OpenedFile file = open_named(*run.top, FileMode::read, reading_numbers);
    if (file.number)
        return failed(run, file.number);
    std::size_t length = 0;
    BlockHandle bytes = read_bytes(fileno(file.stream.get()), length);
    const Space text = text_of(std::move(bytes), length);
    dereferencepoint(run.top);
    *run.top = text;
    return Next::advance;
}

Next do_write(Activation& run) {
    if (run.top->type & ISEMPTY) {
        pop(run);
        write_form(stdout, *run.top, Mode::source);
        std::fputc('\n', stdout);
        std::fflush(stdout);
        return Next::advance;
    }
    OpenedFile file = open_named(*run.top, FileMode::write, writing_numbers);
    if (file.number)
        return failed(run, file.number);
    if (!write_value_to(file.stream, run.top[-1], Mode::source, "\n"))
        return failed(run, writing_numbers.failure);
    pop(run);
    return Next::advance;
}

Next append(Activation& run) {
    return write_named(run, FileMode::append, Mode::source);
}

Next textwrite(Activation& run) {
    return write_named(run, FileMode::write, Mode::display);
}

Next textappend(Activation& run) {
    return write_named(run, FileMode::append, Mode::display);
}

} // namespace tessor
