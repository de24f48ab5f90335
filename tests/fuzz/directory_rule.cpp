// The directory rule against the kernel: a path that the rule lets through opens nothing outside.
//
// The kernel resolves each path in a tree of directories, once freely and once with the order to
// stay beneath. What it refuses then, the rule must have refused; but for a path that ends in "..",
// which opens a directory and gives no bytes.
#include "io/opening.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <linux/openat2.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace tessor;

namespace {

constexpr std::string_view components[] = {"..", "../", "/",   "./", ".",    "a/", "b/",    "a",
                                           "b",  ".h/", "...", "//", "..a/", ".a", "a/../", "\xff"};

void make_tree(const std::string& place, int depth) {
    mkdir(place.c_str(), 0700);
    if (depth == 0)
        return;
    for (const char* name : {"/a", "/b", "/.h", "/...", "/..a"})
        make_tree(place + name, depth - 1);
}

bool leads_outside(const std::string& path) {
    open_how how{};
    how.flags = O_PATH;
    how.resolve = RESOLVE_BENEATH;
    const long descriptor = syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how);
    if (descriptor >= 0)
        close(static_cast<int>(descriptor));
    return descriptor < 0 && errno == EXDEV;
}

bool ends_above(std::string_view path) {
    return path == ".." || path.ends_with("/..");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::string place = "/dev/shm/tessor-rule-XXXXXX";
    if (!mkdtemp(place.data()) || chdir(place.c_str()) != 0)
        std::abort();
    make_tree("tree", 3);
    return chdir("tree");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string path;
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0)
            break;
        if (data[i] >= 0x80)
            path += components[data[i] % 16];
        else
            path += static_cast<char>(data[i]);
    }
    if (checkpath(path.c_str()) && leads_outside(path) && !ends_above(path))
        std::abort();
    return 0;
}
