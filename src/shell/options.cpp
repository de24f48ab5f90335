#include "shell/options.h"

#include "shell/version.h"
#include "values/shared.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <unistd.h>

namespace tessor {

namespace {

constexpr const char* usage_text =
    " -h -v -vv -q -u -c<arg> -c -th<arg> -t -p -pp<arg> -i{f,t,s} \n"
    "Where:\n"
    "\t-h \tThis usage message\n"
    "\t-v \tPrint version information.\n"
    "\t-vv \tPrint version and other (possibly) interesting information.\n\n"
    "\t-q \tQuiet, non-interactive mode:\n"
    "\t\tno copyright notice, or any other text,\n"
    "\t\texcept error messages.\n\n"
    "\t-u \tUnconstrain the access to files in directories of higher\n"
    "\t\thierarchical position. Any file the user has permissions\n"
    "\t\tto read/write/append to will be accepted.\n\n"
    "\t-c<number of processors>\n"
    "\t-c \tfor automatic selection of <number of processors>\n"
    "\t\tUse SMP with <number of processors>.\n"
    "\t-th<threads per processor>\n"
    "\t\tSpecify number of threads per processor (SMP only)\n"
    "\t\tThe default is 4.\n\n"
    "\t-t \tPrint process timing information.\n"
    "\t-p \tPrint performance information.\n"
    "\t-pp<processor speed in MHz>\n"
    "\t\tPrint processor performance information.\n"
    "\t-i \tPrint summary of instruction timings when exiting\n\t\t(if not quiet).\n"
    "\t-if \tPrint full summary of instruction timings,\n"
    "\t\tincluding floating point performance, when exiting\n\t\t(if not quiet).\n"
    "\t-it \tPrint terse operations/S per instruction,\n\t\twhen exiting (if not quiet).\n"
    "\t-is \tPrint just the summary of average operation timings\n"
    "\t\twhen exiting (if not quiet).\n"
    "\n";

// One word under the reader, and what it is read into.
struct Word {
    const char* at; ///< next character
    const char* program;
    Options& options;
};

// How reading goes on: nothing to go on, else the exit code.
using Outcome = std::optional<int>;
constexpr Outcome go_on = std::nullopt;

int print_usage(const Word& word) {
    std::printf("Usage: %s%s", word.program, usage_text);
    return 0;
}

int complain(const char* text) {
    std::puts(text);
    return 1;
}

Outcome unrecognised(const Word& word) {
    std::printf("Unrecognised option: -%c\n\n", *word.at);
    return print_usage(word);
}

// A letter that an option doesn't take; a dash begins the next option.
Outcome end_of_option(const Word& word) {
    return *word.at && *word.at != '-' ? unrecognised(word) : go_on;
}

// The decimal number that stands here; 0 if there is none. Numbers beyond 32 bits are cut.
std::int32_t number(Word& word) {
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    std::int64_t value = 0;
    for (; *word.at >= '0' && *word.at <= '9'; ++word.at)
        value = std::min(value * 10 + (*word.at - '0'), most);
    return static_cast<std::int32_t>(value);
}

// Takes the letter if it stands next.
bool follows(Word& word, char letter) {
    if (*word.at != letter)
        return false;
    ++word.at;
    return true;
}

Outcome version(const Word& word) {
    print_version();
    if (*word.at == 'v')
        print_internals();
    return 0;
}

Outcome take_processors(Word& word) {
    const std::int32_t given = number(word);
    const long configured = given > 0 ? given : sysconf(_SC_NPROCESSORS_CONF);
    word.options.processors = static_cast<std::uint32_t>(std::max(configured, 1L));
    return go_on;
}

Outcome take_timing(Word& word) {
    if (follows(word, 'h')) {
        word.options.thrds = static_cast<std::uint32_t>(number(word));
        if (word.options.thrds == 0)
            return complain("The number of threads must be given for -th option");
        return go_on;
    }
    timing = true;
    return end_of_option(word);
}

Outcome take_performance(Word& word) {
    if (follows(word, 'p')) {
        processor_performance = true;
        MHz = number(word);
        if (MHz == 0)
            return complain("Processor speed must be given for -pp option");
        return go_on;
    }
    performance = true;
    return end_of_option(word);
}

Outcome take_instruction_timing(Word& word) {
    opstime = true;
    if (follows(word, 'f'))
        word.options.report.flops = true;
    else if (follows(word, 't'))
        word.options.report.flops = word.options.report.terse_ops = true;
    else if (follows(word, 's'))
        word.options.report.just_summary = true;
    else
        return end_of_option(word);
    return go_on;
}

// The letter behind a dash. One that is no option says nothing.
Outcome take_option(Word& word) {
    switch (*word.at++) {
    case 'h': return print_usage(word);
    case 'v': return version(word);
    case 'q': word.options.quiet = true; return go_on;
    case 'u': constraindirectories = false; return go_on;
    case 'c': return take_processors(word);
    case 't': return take_timing(word);
    case 'p': return take_performance(word);
    case 'i': return take_instruction_timing(word);
    default: return go_on;
    }
}

Outcome read_word(Word word) {
    bool dash = false;
    while (*word.at) {
        if (*word.at == '-') {
            dash = true;
            ++word.at;
        } else if (dash) {
            dash = false;
            if (const Outcome outcome = take_option(word))
                return outcome;
        } else {
            if (*word.at == 'u' || *word.at == 'v')
                constraindirectories = false;
            ++word.at;
        }
    }
    return go_on;
}

} // namespace

std::optional<int> read_options(int argc, char** argv, Options& options) {
    for (int i = argc - 1; i > 0; --i) {
        if (const Outcome outcome = read_word({argv[i], argv[0], options}))
            return outcome;
    }
    return go_on;
}

} // namespace tessor
