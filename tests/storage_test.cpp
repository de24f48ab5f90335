// Sentences run with an allocation that fails: the first, the second, and so on until one runs to
// its end; alone, and with all that follow. A failure is message 27 and nothing else, what stood
// below on the stack stays, all counts are right, and the console goes on.
//
// storage_test FILE...: each line is `SETUP => SENTENCE`, or a sentence alone. With -s, files are
// sessions: each sentence of theirs is tried behind those before it, and only counts are looked at.
#include "session.h"

#include "engine/machine.h"
#include "io/writers/dump.h"
#include "shell/console.h"
#include "values/live.h"
#include "values/refderef.h"
#include "values/shared.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Strings and vectors fail as blocks do.
void* operator new(std::size_t n) {
    void* memory = tessor::refuses_storage() ? nullptr : std::malloc(n ? n : 1);
    return memory ? memory : throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

using namespace tessor;

namespace {

std::FILE* report = nullptr;

// What is under way, and what the processes that try it share.
std::string under_way;
struct Progress {
    long failing; ///< number of the allocation that fails
    int faults;
    bool over;
};
Progress* progress = nullptr;

// A stream whose bytes are kept.
class Kept {
public:
    Kept() { stream_ = open_memstream(&text_, &size_); }
    Kept(const Kept&) = delete;
    Kept& operator=(const Kept&) = delete;
    ~Kept() {
        std::fclose(stream_);
        std::free(text_);
    }
    std::FILE* stream() { return stream_; }
    std::string take() {
        std::fflush(stream_);
        std::string taken(text_, size_);
        std::rewind(stream_);
        return taken;
    }

private:
    char* text_ = nullptr;
    std::size_t size_ = 0;
    std::FILE* stream_;
};

Kept* output = nullptr;
Kept* errors_seen = nullptr;

void tell(const std::string& what) {
    if (++progress->faults <= 100)
        std::fprintf(report, "%s\n    allocation %ld: %s\n", under_way.c_str(), progress->failing,
                     what.c_str());
    std::fflush(report);
}

void stopped(int) {
    allocations_left = -1;
    tell("the process stops\n" + output->take() + errors_seen->take());
    std::signal(SIGABRT, SIG_DFL);
    std::raise(SIGABRT);
}

struct Outcome {
    std::string output;
    std::string errors;
    bool failed = false; ///< an allocation
};

// One sentence; its n-th allocation fails, or none does (0). `used`: bytes of the text it took.
Outcome run(const std::string& text, long n = 0, std::size_t* used = nullptr) {
    std::FILE* console_input = stdin;
    stdin = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
    const std::int64_t refused_before = refusals;
    allocations_left = n - 1;
    read_and_run();
    allocations_left = -1;
    if (used)
        *used = static_cast<std::size_t>(std::ftell(stdin));
    std::fclose(stdin);
    stdin = console_input;
    return {output->take(), errors_seen->take(), refusals > refused_before};
}

// The numbers of the messages in a text.
std::vector<int> messages_in(const std::string& text) {
    std::vector<int> numbers;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if ((at > 0 && text[at - 1] != '\n') || text[at] < '0' || text[at] > '9')
            continue;
        char* end;
        const long number = std::strtol(text.c_str() + at, &end, 10);
        if (end != text.c_str() + at && std::strncmp(end, " - ", 3) == 0)
            numbers.push_back(static_cast<int>(number));
    }
    return numbers;
}

std::vector<std::string> stack_texts() {
    static Kept text;
    std::vector<std::string> texts;
    for (const Space* value = stack + 1; value <= sp; ++value) {
        dump(text.stream(), "", *value);
        texts.push_back(text.take());
    }
    return texts;
}

void check_going_on() {
    fuzz::finish_sentence(); // a literal may be open
    fuzz::check_counts();
    const Outcome sum = run("1 2 ::ADD .");
    if (sum.output != "\n\n 3")
        tell("1 2 + gives " + sum.output + sum.errors);
    fuzz::check_counts();
}

// Batches that follow in a text or file meet what an earlier one left, and report that.
bool has_batches(const std::string& sentence) {
    for (const char* word : {"EXECUTE", "ASSEMBLE", "READ", "LOAD"})
        if (sentence.find(word) != sentence.npos)
            return true;
    return false;
}

void check_failure(const Outcome& outcome, const Outcome& success, bool batches) {
    const std::vector<int> numbers = messages_in(outcome.errors);
    if (numbers.empty() && outcome.output != success.output)
        tell("no message, but " + outcome.output);
    if (!numbers.empty() && (numbers[0] != 27 || (numbers.size() > 1 && !batches)))
        tell("messages " + outcome.errors);
}

std::string stack_text() {
    std::string all;
    for (const std::string& text : stack_texts())
        all += " [" + text + "]";
    return all;
}

// How many of the values that stood lowest still do. The top one goes when storage fails.
std::size_t still_there(const std::vector<std::string>& before) {
    const std::vector<std::string> now = stack_texts();
    std::size_t same = 0;
    while (same < before.size() && same < now.size() && now[same] == before[same])
        ++same;
    return same;
}

void start_afresh(const std::string& setup) {
    fuzz::forget_everything();
    for (const char* name : {"a", "b", "c"})
        unlink(name);
    run("77 78 .");
    const Outcome outcome = run(setup);
    if (!outcome.errors.empty())
        tell("setup: " + outcome.errors);
}

// A sentence behind another one, from the allocation on whose turn it is.
void try_line(const std::string& setup, const std::string& sentence) {
    start_afresh(setup);
    std::vector<std::string> before = stack_texts();
    const Outcome success = run(sentence);
    if (!success.errors.empty())
        tell("unhurt: " + success.errors);
    const std::size_t untouched = std::min<std::size_t>(still_there(before), 1);
    check_going_on();
    for (bool failed = true; failed;) {
        ++progress->failing;
        start_afresh(setup);
        before = stack_texts();
        const Outcome outcome = run(sentence, progress->failing);
        failed = outcome.failed;
        if (still_there(before) < untouched)
            tell("the stack is lost:" + stack_text() + outcome.output + outcome.errors);
        if (failed)
            check_failure(outcome, success, has_batches(sentence));
        else if (outcome.output != success.output)
            tell("differs: " + outcome.output);
        check_going_on();
    }
}

// Behind all that stands before it in a session.
void try_in_session(const std::vector<std::string>& sentences, std::size_t k) {
    constexpr long most_tried = 300;
    for (bool failed = true; failed && progress->failing < most_tried;) {
        ++progress->failing;
        fuzz::forget_everything();
        for (std::size_t i = 0; i < k; ++i)
            run(sentences[i]);
        endprocess = false;
        failed = run(sentences[k], progress->failing).failed;
        endprocess = false;
        run("::CLEAR ."); // some sessions fill the stack
        check_going_on();
    }
}

// What the recount must find, or all of this shows nothing.
void check_recount(void (*spoil)()) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGABRT, SIG_DFL);
        spoil();
        fuzz::check_counts();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFSIGNALED(status))
        tell("the recount finds nothing");
}

// In processes of their own: what stops one is told, and the next goes on behind it.
template <class Try>
void in_processes(const Try& attempt) {
    *progress = {0, progress->faults, false};
    while (!progress->over) {
        std::fflush(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            attempt();
            progress->over = true;
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (!progress->over && !(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT))
            tell("the process ends: " + std::to_string(status));
    }
}

void try_lines(const char* name) {
    std::ifstream file(name, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        under_way = line;
        const std::size_t arrow = line.find(" => ");
        const bool both = arrow != line.npos;
        const std::string setup = both ? line.substr(0, arrow) + " ." : ".";
        const std::string sentence = (both ? line.substr(arrow + 4) : line) + " .";
        for (const bool stays : {false, true}) {
            storage_stays_short = stays;
            in_processes([&] { try_line(setup, sentence); });
        }
    }
}

std::vector<std::string> sentences_of(const char* name) {
    std::ifstream file(name, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(file), {});
    std::vector<std::string> sentences;
    fuzz::forget_everything();
    while (!text.empty() && !endprocess) {
        std::size_t used;
        run(text, 0, &used);
        sentences.push_back(text.substr(0, used));
        text.erase(0, used);
    }
    return sentences;
}

void try_session(const char* name) {
    const std::vector<std::string> sentences = sentences_of(name);
    for (std::size_t k = 0; k < sentences.size(); ++k) {
        under_way = std::string(name) + ": " + sentences[k];
        in_processes([&] { try_in_session(sentences, k); });
    }
}

} // namespace

int main(int argc, char** argv) {
    report = fdopen(dup(1), "w");
    const bool sessions = argc > 1 && std::strcmp(argv[1], "-s") == 0;
    std::vector<std::string> names;
    for (int i = sessions ? 2 : 1; i < argc; ++i)
        names.emplace_back(realpath(argv[i], nullptr));
    fuzz::start_session();
    const fuzz::Allowed files({op::READ, op::WRITE, op::APPEND, op::TEXTREAD, op::TEXTWRITE,
                               op::TEXTAPPEND, op::OPEN, op::CLOSE, op::REWIND, op::SAVE, op::LOAD,
                               op::DUMPSTACK, op::REMEMBER});
    std::string place = "/dev/shm/tessor-storage-XXXXXX";
    if (!mkdtemp(place.data()) || chdir(place.c_str()) != 0)
        return 1;
    Kept out, err;
    stdout = out.stream();
    stderr = err.stream();
    output = &out;
    errors_seen = &err;
    std::signal(SIGABRT, stopped);
    progress = static_cast<Progress*>(
        mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    check_recount([] { count_up(quads); });
    check_recount([] { allocate_block(8); });
    check_recount([] { header_of(variables).count = 1; });
    for (const std::string& name : names)
        sessions ? try_session(name.c_str()) : try_lines(name.c_str());
    std::fprintf(report, "%d faults\n", progress->faults);
    std::fflush(report);
    _exit(progress->faults != 0);
}
