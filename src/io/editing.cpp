#include "io/editing.h"

#include "engine/signals.h"
#include "io/opening.h"
#include "io/writers/dump.h"
#include "values/array.h"
#include "values/block.h"
#include "values/shared.h"

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <unistd.h>

namespace tessor {

namespace {

// A file of our own in the system's temporary directory, removed at the latest with the handle.
class TemporaryFile {
public:
    TemporaryFile() : descriptor_(mkstemp(path_)), exists_(descriptor_ >= 0) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (descriptor_ >= 0)
            close(descriptor_);
        remove();
    }

    const char* path() const { return path_; }
    // The file as it was made; once.
    Stream open_writing() {
        Stream stream(descriptor_ < 0 ? nullptr : fdopen(descriptor_, "w"));
        if (stream)
            descriptor_ = -1;
        return stream;
    }
    // The file that now has the name: editors put a new one in place of the old.
    Stream open_reading() const { return Stream(std::fopen(path_, "re")); }
    void remove() {
        if (exists_)
            std::remove(path_);
        exists_ = false;
    }

private:
    char path_[sizeof(P_tmpdir "/tessor-XXXXXX")] = P_tmpdir "/tessor-XXXXXX";
    int descriptor_;
    bool exists_;
};

bool as_text(const Activation& run) {
    return run.now->suboperation == op::TEXTREAD;
}

void write_value_to(std::FILE* stream, const Space& value, bool shown_too) {
    if (shown_too)
        dump(stream, "", value);
    PrintOut = true;
    disass(stream, "", value, 0, Mode::source);
    PrintOut = false;
    operations += value.elements;
}

// False: what the editor would open isn't all there.
bool write_top(const Activation& run, TemporaryFile& file) {
    Stream stream = file.open_writing();
    if (!stream)
        return false;
    if (run.values() > 0)
        write_value_to(stream.get(), *run.top, as_text(run));
    const bool written = !std::ferror(stream.get());
    return std::fclose(stream.release()) == 0 && written;
}

void run_editor(const char* path) {
    const char* chosen = std::getenv("EDITOR");
    const std::string editor = chosen && *chosen ? "$EDITOR " : "vi ";
    const std::string command =
        "/bin/sh -c 'SHELL=`which Tessor`; export SHELL; " + editor + path + "'";
    std::fflush(stdout);
    // Whether the editor succeeded shows in the file.
    [[maybe_unused]] const int status = std::system(command.c_str());
}

std::string contents(std::FILE* stream) {
    std::string text;
    char piece[4096];
    while (const std::size_t n = std::fread(piece, 1, sizeof piece, stream))
        text.append(piece, n);
    if (text.size() > std::size_t{std::numeric_limits<std::int32_t>::max()})
        throw OutOfStorage{};
    return text;
}

Next push_edited_text(Activation& run, std::FILE* stream) {
    const std::string text = contents(stream);
    Space edited;
    make_text(edited, text.data(), text.empty() ? 0 : text.size() - 1);
    if (run.values() > 0)
        pop(run);
    *++run.top = edited;
    return Next::advance;
}

bool ends_input(const Space& cell) {
    return cell.rank == kind::OPERATOR && cell.operation == op::ENDPROCESS;
}

Next run_edited(Activation& run, std::FILE* stream) {
    if (run.values() > 0)
        pop(run);
    CellBuffer buffer;
    while (!std::feof(stream)) {
        fill_reading(buffer.cells(), run.table, stream, nullptr, LineEnd::blank);
        if (ends_input(*buffer.cells()))
            break;
        if (!may_nest(run))
            return Next::failed;
        Activation sentence(buffer.cells(), run.table, run.base, run.floor, run.top, run.quads,
                            run.depth + 1);
        run.top = run_nested(sentence);
        clear_cells(buffer.cells());
    }
    return Next::advance;
}

} // namespace

Next edit(Activation& run) {
    if (as_text(run) && run.values() <= 0 && !room(run))
        return Next::failed;
    TemporaryFile file;
    if (!write_top(run, file))
        return failed(run, 711);
    run_editor(file.path());
    const Stream stream = file.open_reading();
    if (!stream)
        return failed(run, 710);
    file.remove();
    return as_text(run) ? push_edited_text(run, stream.get()) : run_edited(run, stream.get());
}

Next streamedit(Activation& run) {
    const Space& pattern = *run.top;
    if ((pattern.type & (COMPLEXED | HASASCII)) != HASASCII)
        return failed(run, 205);
    if (pattern.rank > 1)
        return failed(run, 206);
    return Next::advance;
}

} // namespace tessor
