// Prints the spellings of the language as a dictionary for a fuzzer.
#include "frontend/spellings.h"

#include <cstdio>

int main() {
    using namespace tessor;
    for (const Word& word : all_spellings()) {
        std::putchar('"');
        for (const char byte : word.view())
            if (byte == gap || byte == wide_gap)
                std::putchar(' ');
            else
                std::printf("\\x%02x", static_cast<unsigned char>(byte));
        std::puts("\"");
    }
    for (const char* token : {"(1 2 3)", "'ab'", "`(1 2)`", "#NIL", "2i3", "1i2j3k4", "0.5",
                              "1e300", "-2147483648", "$", "%", "&1", "_A", ".F", "@A SET", " .\n"})
        std::printf("\"%s\"\n", token == std::string_view(" .\n") ? " .\\x0a" : token);
}
