// Runs a target on the files of directories, without a fuzzer: the kept cases as a test.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerInitialize(int*, char***);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    int n = 0;
    // The target may leave this directory.
    for (int i = 1; i < argc; ++i)
        argv[i] = realpath(argv[i], nullptr);
    if (LLVMFuzzerInitialize(&argc, &argv) != 0)
        return 1;
    for (int i = 1; i < argc; ++i) {
        if (!argv[i])
            return 1;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(argv[i])) {
            if (!entry.is_regular_file())
                continue;
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes(std::istreambuf_iterator<char>(file), {});
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                   bytes.size());
            ++n;
        }
    }
    return n == 0;
}
