#include "io/assemble.h"

#include "engine/execute.h"
#include "engine/signals.h"
#include "io/writers/dump.h"
#include "values/array.h"
#include "values/block.h"
#include "values/refderef.h"
#include "values/shared.h"
#include "values/text.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace tessor {

namespace {

Space closing_cell(char* spelling) {
    Space cell{};
    cell.rank = kind::OPERATOR;
    cell.type = ISOPERATOR;
    cell.name = spelling;
    cell.operation = op::FUNCTIONEND;
    return cell;
}

// A neadic function of a sentence of n cells, END included, which are moved into it.
Space wrapped(Space* cells, std::uint32_t n) {
    BlockHandle header(stringdup(":"));
    BlockHandle end(stringdup(";"));
    auto* body = static_cast<Space*>(allocate_items(std::uint64_t{n} + 2, sizeof(Space)));
    std::memcpy(static_cast<void*>(body + 1), cells, (std::size_t{n} - 1) * sizeof(Space));
    cells->type = 0;
    body[n] = closing_cell(static_cast<char*>(end.release()));
    body[n + 1] = Space{};
    Space function{};
    function.rank = kind::FUNCTION;
    function.type = ISFUNCTION;
    function.name = static_cast<char*>(header.release());
    function.arguments = -1;
    function.elements = n + 1;
    function.body = body;
    body[0] = function;
    body[0].elements = n;
    return function;
}

Space function_of(Space* cells, std::uint32_t n) {
    if (n != 2 || cells->rank != kind::FUNCTION)
        return wrapped(cells, n);
    const Space function = *cells;
    cells->type = 0;
    return function;
}

// A stream that is written to memory.
class MemoryStream {
public:
    MemoryStream() : stream_(open_memstream(&bytes_, &length_)) {}
    MemoryStream(const MemoryStream&) = delete;
    MemoryStream& operator=(const MemoryStream&) = delete;
    ~MemoryStream() {
        if (stream_)
            std::fclose(stream_);
        std::free(bytes_);
    }

    std::FILE* stream() const { return stream_; }

    // What was written, as a text.
    Space text() {
        constexpr std::size_t longest = std::numeric_limits<std::int32_t>::max();
        if (std::fflush(stream_) != 0 || std::ferror(stream_) || length_ > longest)
            throw OutOfStorage{};
        Space result;
        make_text(result, bytes_, length_);
        return result;
    }

private:
    char* bytes_ = nullptr;
    std::size_t length_ = 0;
    std::FILE* stream_;
};

} // namespace

// A zero byte is the end of the input wherever it stands: nothing is read from there on.
Next assemble(Activation& run) {
    if (!is_executable_text(*run.top))
        return failed(run, 981);
    const BlockHandle source = source_of(*run.top);
    const char* at = source.as<char>();
    const char* end = at + run.top->elements;
    pop(run);
    CellBuffer buffer;
    while (at < end && *at) {
        if (!room(run))
            return Next::failed;
        const char* sentence = at;
        const int n = fill_reading(buffer.cells(), run.table, nullptr, &at, LineEnd::blank);
        if (at == sentence)
            break;
        if (n > 0) {
            run.top[1] = function_of(buffer.cells(), static_cast<std::uint32_t>(n));
            ++run.top;
        }
    }
    return Next::advance;
}

Next disassemble(Activation& run) {
    MemoryStream written;
    if (!written.stream())
        return failed(run, 711);
    const Mode mode = run.now->suboperation == op::TEXTWRITE ? Mode::display : Mode::source;
    PrintOut = true;
    disass(written.stream(), "", *run.top, 0, mode);
    PrintOut = false;
    const Space text = written.text();
    dereferencepoint(run.top);
    *run.top = text;
    return Next::advance;
}

} // namespace tessor
