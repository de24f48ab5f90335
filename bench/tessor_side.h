// The system under measurement: named arrays, and sentences compiled once and run many times.
#pragma once

#include "engine/machine.h"
#include "work.h"

#include <string>

namespace bench {

/// Starts the parts of the system that a sentence needs.
void start_tessor();

/// Stores an array of n elements under a name; the old value goes.
void bind_array(const char* name, Type type, std::size_t n, bool left);

/// The scalar on the right, as it is written in a sentence.
std::string scalar_text(Type type);
/// The verb as it is written behind its operands, with what belongs to it.
const char* verb_text(Verb verb);

/// A sentence compiled once.
class Sentence {
public:
    explicit Sentence(const std::string& text);

    /// Runs it on the value stack; ends the process if it failed.
    void run();
    /// Runs it n times.
    Nanoseconds time(int n);

private:
    tessor::CellBuffer buffer_;
};

/// The value that a sentence left, taken off the stack when the handle dies.
class Result {
public:
    explicit Result(Sentence& sentence);
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;
    ~Result();
    /// Component c of element i.
    double at(std::size_t i, int c) const;
    std::size_t size() const;
};

} // namespace bench
