#include "values/text.h"

#include "values/block.h"

#include <cstring>

namespace tessor {

char* stringcat(std::string_view first, std::string_view second) {
    auto* text = static_cast<char*>(allocate_block(first.size() + second.size() + 1));
    first.copy(text, first.size());
    second.copy(text + first.size(), second.size());
    text[first.size() + second.size()] = 0;
    return text;
}

char* stringdup(std::string_view text) {
    return stringcat(text, {});
}

bool stringcmp(const char* a, const char* b) {
    return a == b || std::strcmp(a, b) == 0;
}

int strcomp(const char* a, const char* b) {
    while (*a && *a == *b) {
        ++a;
        ++b;
    }
    return static_cast<signed char>(*a) - static_cast<signed char>(*b);
}

} // namespace tessor
