// What a program leaves is saved, loaded and saved again: the two files are equal.
#include "session.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

using namespace tessor;

namespace {

constexpr std::size_t most_bytes = 1 << 18;

// The text of a file without what may differ. A hidden operand that a failing verb has left prints
// as nothing, and a cell without a spelling as a blank. A spelling needs :: as long as a name of
// its own exists, even if it has no value. A zero below zero comes back as an integer.
std::string text_of(const char* name) {
    std::ifstream file(name, std::ios::binary);
    std::string text;
    for (std::string line; std::getline(file, line);)
        if (!line.empty() && line != ".") // batches count hidden operands as well
            text += line + '\n';
    for (std::size_t at; (at = text.find("::")) != text.npos;)
        text.erase(at, 2);
    for (std::size_t at; (at = text.find("  ")) != text.npos;)
        text.erase(at, 1);
    for (std::size_t at = 0; (at = text.find(" -0", at)) != text.npos; ++at)
        if (text[at + 3] == ' ' || text[at + 3] == '\n')
            text.erase(at + 1, 1);
    return text;
}

bool is_digit(char byte) {
    return byte >= '0' && byte <= '9';
}

// A comment that is taken for the verb of a reduction, or a name that begins like one of a class.
bool has_no_spelling(std::string_view program) {
    constexpr std::string_view blanks = " \t\r\n";
    for (std::size_t at = 1; at < program.size(); ++at) {
        const char before = program[at - 1];
        const std::string_view rest = program.substr(at);
        constexpr std::string_view classes = "%$_.&@";
        constexpr std::string_view dropped = "\"()|";
        if (classes.find(before) != classes.npos && dropped.find(rest[0]) != dropped.npos)
            return true;
        if (before != '"' && before != '\xbc')
            continue;
        const std::string_view behind =
            rest.substr(std::min(rest.find_first_not_of(blanks), rest.size()));
        for (const char* reduction : {"/", "\\", ".", "\xab", "REDUCE", "SCAN", "OUTER", "INNER"})
            if (behind.starts_with(reduction))
                return true;
    }
    return false;
}

// What can't come back: the address of a local variable that has gone; elements that a failing verb
// hasn't made; the last bit of a polar number, by way of modulus and angles; anything, once the
// program has given the words that saved text is made of a meaning.
bool may_differ(std::string_view program, const std::string& text) {
    if (has_no_spelling(program))
        return true;
    if (text.find(" @\n") != text.npos || text.find(" ??? ") != text.npos)
        return true;
    for (std::size_t at = 0; (at = text.find('p', at + 1)) != text.npos;)
        if (is_digit(text[at - 1]))
            return true;
    for (const char* word : {"SET", "AT", "RESHAPE", "ENCLOSE", "ATOM", "OPERATOR", "DISCARD"})
        if (text.find('\2' + std::string(word) + '\3') != text.npos)
            return true;
    return false;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::start_session();
    std::string place = "/dev/shm/tessor-saving-XXXXXX";
    if (!mkdtemp(place.data()) || chdir(place.c_str()) != 0)
        std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (const char* name : {"first", "second"})
        unlink(name);
    const std::string_view program = fuzz::text_of(data, size);
    fuzz::run_program(program);
    {
        const fuzz::Allowed files{op::SAVE, op::LOAD};
        fuzz::finish_sentence();
        const bool saved = fuzz::run_program("'first' :: SAVE .");
        fuzz::forget_everything();
        if (!saved
            || (std::filesystem::exists("first")
                && std::filesystem::file_size("first") > most_bytes)) {
            std::filesystem::remove("first");
            return 0;
        }
        fuzz::run_patiently("'first' LOAD .\n'second' :: SAVE .");
    }
    fuzz::forget_everything();
    const std::string first = text_of("first");
    const std::string second = text_of("second");
    if (!first.empty() && first != second && !may_differ(program, first))
        fuzz::report_difference("saved, loaded and saved again", first, second);
    return 0;
}
