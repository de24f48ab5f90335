#include "instrument/scaling.h"

namespace tessor {

void print_scaled(std::FILE* out, const Units& units, double x) {
    if (x >= 1000000000)
        std::fprintf(out, units.giga, x / 1000000000);
    else if (x >= 1000000)
        std::fprintf(out, units.mega, x / 1000000);
    else if (x < 1000)
        std::fprintf(out, units.one, x);
    else
        std::fprintf(out, units.kilo, x / 1000);
}

void print_time(std::FILE* out, const TimeUnits& units, double seconds) {
    if (seconds < 1e-06)
        std::fprintf(out, units.nano, seconds * 1000000000);
    else if (seconds < 0.001)
        std::fprintf(out, units.micro, seconds * 1000000);
    else if (seconds < 1)
        std::fprintf(out, units.milli, seconds * 1000);
    else
        std::fprintf(out, units.one, seconds);
}

void print_cycles(std::FILE* out, const Units& units, double megacycles) {
    if (megacycles < 0.001)
        std::fprintf(out, units.one, megacycles * 1000000);
    else if (megacycles < 1)
        std::fprintf(out, units.kilo, megacycles * 1000);
    else if (megacycles >= 1000)
        std::fprintf(out, units.giga, megacycles / 1000);
    else
        std::fprintf(out, units.mega, megacycles);
}

} // namespace tessor
