#include "io/file_values.h"

#include "array/walk.h"
#include "io/opening.h"
#include "io/writers/exception.h"
#include "values/array.h"

#include <cstring>

namespace tessor {

namespace {

// What the counted block of a file's stream holds; null when it is closed.
std::FILE*& stream_in(void* block) {
    return *static_cast<std::FILE**>(block);
}

void close_in(void* block) noexcept {
    if (std::FILE* stream = stream_in(block))
        std::fclose(stream);
    stream_in(block) = nullptr;
}

const DataElement* general_elements(const Space& value) {
    if ((value.type & ISINPLACE) || value.rank < 0 || !value.data_pointer
        || storage_of(value.data_pointer) != Storage::elements)
        return nullptr;
    return static_cast<const DataElement*>(value.data_pointer);
}

// Acts on every file in a value, from the last to the first; stops when the action returns true,
// and returns that.
template <class Action>
bool any_file(Activation& run, const Space& value, const Action& action) {
    const DataElement* elements = general_elements(value);
    if (!elements)
        return false;
    enter_level(run);
    for (std::uint32_t i = value.elements; i-- > 0;) {
        const DataElement& element = elements[i];
        if (element.tag == tag::subarray ? any_file(run, *element.subarray, action)
                                         : element.tag == tag::file && action(element))
            return true;
    }
    return false;
}

template <class Action>
Next on_streams(Activation& run, const Action& action) {
    if (!any_file(run, *run.top, [](const DataElement&) { return true; }))
        fail(727, &run.top, run.now);
    any_file(run, *run.top, [&](const DataElement& file) {
        action(file.stream);
        return false;
    });
    pop(run);
    return Next::advance;
}

void make_file(Space& value, OpenedFile& file, std::uint16_t marks, const Space& pattern) {
    BlockHandle stream(allocate_block(sizeof(std::FILE*)));
    BlockHandle slot(allocate_block(sizeof(DataElement)));
    DataElement& element = *slot.as<DataElement>();
    element = DataElement{};
    element.tag = tag::file;
    element.form = form::binary;
    element.marks = marks;
    element.template_space = enclose(pattern);
    element.path = static_cast<char*>(file.path.release());
    stream_in(stream.get()) = file.stream.release();
    element.stream = stream.release();
    element.second_text = nullptr;
    value = Space{};
    value.type = ISSCALAR | HASFILE;
    value.elements = 1;
    value.data_pointer = slot.release();
}

// The files of a value, closed and opened again. False if one can't be opened.
bool reopen(Activation& run, const Space& value) {
    return !any_file(run, value, [](const DataElement& file) {
        close_in(file.stream);
        stream_in(file.stream) = open_path(file.path, FileMode::update).release();
        return !stream_in(file.stream);
    });
}

} // namespace

void start_files() {
    close_stream = close_in;
}

Next do_open(Activation& run) {
    Space& value = run.top[-1];
    if (value.type & HASFILE && value.rank >= 0) {
        if (!reopen(run, value))
            return failed(run, 712);
        pop(run);
        return Next::advance;
    }
    OpenedFile file = open_named(value, FileMode::update, {706, 707, 712});
    if (file.number)
        fail(file.number, &run.top, run.now);
    const bool small = run.now->suboperation == op::SMALL;
    Space made;
    make_file(made, file, small ? mark::named | mark::r : mark::named, *run.top);
    --run.top;
    dereferencepoint(run.top);
    *run.top = made;
    return Next::advance;
}

Next do_close(Activation& run) {
    return on_streams(run, close_in);
}

Next do_rewind(Activation& run) {
    return on_streams(run, [](void* block) {
        if (std::FILE* stream = stream_in(block))
            std::rewind(stream);
    });
}

} // namespace tessor
