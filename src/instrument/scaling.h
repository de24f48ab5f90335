// Figures of the report of timings: each is shown in one of four units, chosen by its size.
#pragma once

#include <cstdio>

namespace tessor {

/// Texts of a figure in each unit, with a printf place for the number.
struct Units {
    const char* giga;
    const char* mega;
    const char* kilo;
    const char* one;
};
struct TimeUnits {
    const char* nano;
    const char* micro;
    const char* milli;
    const char* one;
};

/// A rate, or a number of things.
void print_scaled(std::FILE* out, const Units& units, double x);
/// A time in seconds.
void print_time(std::FILE* out, const TimeUnits& units, double seconds);
/// Cycles of the processor, given in millions.
void print_cycles(std::FILE* out, const Units& units, double megacycles);

} // namespace tessor
