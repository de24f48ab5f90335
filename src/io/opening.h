// Files by name: what a name is, where it may lead, and the opening that a signal can break off.
#pragma once

#include "engine/machine.h"

#include <cstdio>
#include <memory>

namespace tessor {

struct CloseStream {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

/// True if the rule of directories lets a path through: it doesn't begin with a slash, and no "../"
/// takes it above the level where it began. Names that begin with a point count as no level.
bool checkpath(const char* path);

enum class FileMode : std::uint8_t { read, write, append, update };

/// The numbers of an instruction that names a file.
struct FileNumbers {
    int kind;    ///< the name isn't characters
    int rank;    ///< it is no scalar or vector of them
    int failure; ///< the file can't be opened
};

struct OpenedFile {
    int number = 0;   ///< what to report if it isn't open; 720: the rule of directories
    BlockHandle path; ///< counted text
    Stream stream;
};

/// Opens the file that a value names. The name ends at a zero byte. A signal that comes while the
/// system makes the opening wait is taken.
OpenedFile open_named(const Space& name, FileMode mode, const FileNumbers& numbers);

/// The stream of a path that the rule has let through; null if it can't be had.
Stream open_path(const char* path, FileMode mode);

} // namespace tessor
