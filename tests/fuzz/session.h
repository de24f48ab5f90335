// A console inside this process, for programs made of any bytes.
//
// Nothing that a program does leaves the process: instructions that touch files, sleep or start the
// editor have no body here, so they report number 993. A program that runs too long is interrupted
// as by a person at the terminal, some times, and then dropped.
#pragma once

#include "values/instructions.h"

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace tessor::fuzz {

/// Starts the system; what it prints goes nowhere. Once.
void start_session();

/// Runs a program as standard input. The values and names that it leaves stay. False: it has been
/// interrupted, as it took too long.
bool run_program(std::string_view text);
/// The same with all the time that it takes.
void run_patiently(std::string_view text);

/// Recounts all blocks, in a checked build; between sentences.
void check_counts();

/// Ends what a program has left open: literals, switches. Values and names stay.
void finish_sentence();

/// Takes stack, names, system values, switches and the scanner back to what they are at the start.
void forget_everything();

/// While one lives, the instructions have their bodies.
class Allowed {
public:
    explicit Allowed(std::initializer_list<op::Instruction> instructions);
    Allowed(const Allowed&) = delete;
    Allowed& operator=(const Allowed&) = delete;
    ~Allowed();

private:
    std::vector<op::Instruction> instructions_;
};

/// The bytes as a text.
inline std::string_view text_of(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Stops the process with a report that the two texts should be equal.
[[noreturn]] void report_difference(std::string_view what, std::string_view one,
                                    std::string_view other);

} // namespace tessor::fuzz
