#include "io/opening.h"

#include "engine/signals.h"
#include "io/writers/exception.h"
#include "values/array.h"
#include "values/shared.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace tessor {

namespace {

constexpr std::size_t stream_buffer = std::size_t{1} << 16;

struct ModeRow {
    int flags;
    const char* text;
};
constexpr ModeRow modes[] = {
    {O_RDONLY, "r"},
    {O_WRONLY | O_CREAT | O_TRUNC, "w"},
    {O_WRONLY | O_CREAT | O_APPEND, "a"},
    {O_RDWR, "r+b"},
};

int descriptor_of(const char* path, int flags) {
    constexpr mode_t for_all = 0666;
    const Waiting now;
    for (;;) {
        const int descriptor = ::open(path, flags | O_CLOEXEC, for_all);
        if (descriptor >= 0 || errno != EINTR)
            return descriptor;
        take_signals();
    }
}

int name_fault(const Space& name, const FileNumbers& numbers) {
    if (name.rank < 0 || (name.type & (HASASCII | COMPLEXED)) != HASASCII)
        return numbers.kind;
    return name.rank > 1 || (name.type & STRUCTURED) ? numbers.rank : 0;
}

// Null if an element isn't a character, whatever the kind bits say.
BlockHandle name_text(const Space& name) {
    BlockHandle text(allocate_block(std::size_t{name.elements} + 1));
    char* bytes = text.as<char>();
    for (std::uint32_t i = 0; i < name.elements; ++i) {
        const Element element = element_at(name, i);
        if (element.tag != tag::ascii)
            return {};
        bytes[i] = static_cast<char>(element.character);
    }
    bytes[name.elements] = 0;
    return text;
}

} // namespace

bool checkpath(const char* path) {
    if (*path == '/')
        return false;
    int depth = 0;
    while (*path) {
        const char* end = path + std::strcspn(path, "/");
        if (*path != '.' && end != path)
            ++depth;
        else if (*end && end - path == 2 && path[1] == '.' && --depth < 0)
            return false;
        path = *end ? end + 1 : end;
    }
    return true;
}

Stream open_path(const char* path, FileMode mode) {
    const ModeRow& row = modes[static_cast<std::size_t>(mode)];
    const int descriptor = descriptor_of(path, row.flags);
    if (descriptor < 0)
        return nullptr;
    Stream stream(fdopen(descriptor, row.text));
    if (stream)
        std::setvbuf(stream.get(), nullptr, _IOFBF, stream_buffer);
    else
        ::close(descriptor);
    return stream;
}

OpenedFile open_named(const Space& name, FileMode mode, const FileNumbers& numbers) {
    OpenedFile file;
    file.number = name_fault(name, numbers);
    if (file.number)
        return file;
    file.path = name_text(name);
    if (!file.path) {
        file.number = numbers.kind;
    } else if (constraindirectories && !checkpath(file.path.as<char>())) {
        file.number = 720;
    } else {
        file.stream = open_path(file.path.as<char>(), mode);
        if (!file.stream)
            file.number = numbers.failure;
    }
    return file;
}

} // namespace tessor
