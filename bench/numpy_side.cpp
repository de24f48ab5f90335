#include "numpy_side.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace bench {

namespace {

constexpr const char* type_names[] = {"int32", "float64", "complex128", "bool"};
constexpr const char* verb_names[] = {"add",   "subtract", "multiply", "divide", "less",
                                      "equal", "minimum",  "maximum",  "and",    "or",
                                      "not",   "square",   "root",     "power",  "logarithm"};

[[noreturn]] void give_up(const char* why) {
    std::fprintf(stderr, "NumPy: %s\n", why);
    std::exit(1);
}

} // namespace

NumPy::NumPy(const char* interpreter, const char* script) {
    int to[2];
    int from[2];
    if (pipe2(to, O_CLOEXEC) != 0 || pipe2(from, O_CLOEXEC) != 0)
        give_up("no pipe");
    std::signal(SIGPIPE, SIG_IGN);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, to[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, from[1], STDOUT_FILENO);
    char* const arguments[] = {const_cast<char*>(interpreter), const_cast<char*>(script), nullptr};
    if (posix_spawn(&child_, interpreter, &actions, nullptr, arguments, environ) != 0)
        give_up("can't start the interpreter");
    posix_spawn_file_actions_destroy(&actions);
    close(to[0]);
    close(from[1]);
    to_ = fdopen(to[1], "w");
    from_ = fdopen(from[0], "r");
}

NumPy::~NumPy() {
    std::fclose(to_);
    std::fclose(from_);
    waitpid(child_, nullptr, 0);
}

double NumPy::ask(const char* question) {
    std::fputs(question, to_);
    std::fflush(to_);
    double answer = 0;
    if (std::fscanf(from_, "%lf", &answer) != 1)
        give_up("no answer");
    return answer;
}

Nanoseconds NumPy::time(const Work& work, int n) {
    char question[128];
    std::snprintf(question, sizeof question, "time %s %s %zu %s %d\n",
                  verb_names[static_cast<int>(work.verb)], type_names[static_cast<int>(work.type)],
                  work.n, work.scalar ? "scalar" : "vector", n);
    return ask(question);
}

Nanoseconds NumPy::evaluate(const char* expression, int n) {
    char question[256];
    std::snprintf(question, sizeof question, "evaluate %d %s\n", n, expression);
    return ask(question);
}

double NumPy::memory(Type type, std::size_t n) {
    char question[128];
    std::snprintf(question, sizeof question, "memory %s %zu\n", type_names[static_cast<int>(type)],
                  n);
    return ask(question);
}

} // namespace bench
