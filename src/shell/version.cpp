#include "shell/version.h"

#include "shell/build_info.h" // made by the build

#include <cstdint>
#include <cstdio>
#include <limits>

namespace tessor {

namespace {

constexpr const char* program_name = "Tessor";
constexpr const char* revisions = TESSOR_VERSION " (numeric 1, parallel 1)";
constexpr int build_number = 1;
constexpr const char* notice = "An interpreter for arrays of numbers and text.";

// The sizes that the language promises, whatever the records of this build are.
struct Size {
    const char* name;
    int bytes;
};

constexpr Size structures[] = {
    {"data element (common size)", 40},
    {"ascii", 16},
    {"unicode", 16},
    {"integer", 16},
    {"real", 24},
    {"complex", 32},
    {"quaternion", 40},
    {"octonion", 80},
    {"file", 24},
    {"continuation", 32},
    {"subarray", 16},
    {"filler", 12},
};

constexpr Size precisions[] = {
    {"character", 1}, {"integer", 4},     {"real", 8},
    {"complex", 16},  {"quaternion", 32}, {"octonion", 64},
};

constexpr Size machine_integers[] = {
    {"unsigned char", 1},
    {"unsigned short int", 2},
    {"unsigned int", 4},
    {"unsigned long int", 4},
};

template <std::size_t n>
void print_sizes(const char* title, const Size (&sizes)[n]) {
    std::printf("%s\n\n", title);
    for (const Size& size : sizes)
        std::printf("\t %s: %d\n", size.name, size.bytes);
}

void print_precision() {
    std::fputs("Computer implementation precision data:\n\n", stdout);
    std::printf("\tGreatest INTEGER value = %d\n\n", std::numeric_limits<std::int32_t>::max());
    std::printf("\tGreatest integer REAL value = %.16g\n", 9007199254740991.0);
    std::printf("\tREAL value precision = %.16g\n", 1e-15);
    std::printf("\t\tprecision in decimal numbers = %g digits\n", 15.59);
    std::printf("\t\teps = %g\n", 1.110223025e-16);
    std::printf("\t\tomega = %g\n", std::numeric_limits<double>::max());
    std::putchar('\n');
}

} // namespace

void print_banner() {
    std::printf("\n\n-- %s version %s [build %d] %s --\n\n%s\n\n", program_name, revisions,
                build_number, "", notice);
}

void print_version() {
    print_banner();
    std::printf("\n Compiled on: %s\n\n\n", TESSOR_COMPILED ", " __DATE__ " " __TIME__);
}

void print_internals() {
    print_sizes("Structure sizes:", structures);
    print_sizes("\nIndividual element sizes (precisions):", precisions);
    std::putchar('\n');
    print_sizes("Computer internal integer sizes:", machine_integers);
    std::fputs("\n(All sizes are in bytes.)\n\n", stdout);
    print_precision();
}

} // namespace tessor
