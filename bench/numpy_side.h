// NumPy in a process of its own, which measures the work that it is told.
#pragma once

#include "work.h"

#include <cstdio>
#include <sys/types.h>

namespace bench {

class NumPy {
public:
    /// Starts the interpreter with the script; ends the process if it can't.
    NumPy(const char* interpreter, const char* script);
    NumPy(const NumPy&) = delete;
    NumPy& operator=(const NumPy&) = delete;
    ~NumPy();

    /// Runs the work n times, each with a fresh result.
    Nanoseconds time(const Work& work, int n);
    /// Evaluates an expression over its own arrays n times.
    Nanoseconds evaluate(const char* expression, int n);
    /// Bytes that two operands and a sum take at the most, over what the process has without them.
    double memory(Type type, std::size_t n);

private:
    double ask(const char* question);

    pid_t child_ = -1;
    std::FILE* to_ = nullptr;
    std::FILE* from_ = nullptr;
};

} // namespace bench
