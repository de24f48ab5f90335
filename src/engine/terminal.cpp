#include "engine/terminal.h"

#include "engine/signals.h"
#include "io/writers/exception.h"
#include "values/array.h"
#include "values/block.h"
#include "values/shared.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <string>
#include <sys/time.h>

namespace tessor {

namespace {

// Unlike the scanner's reading, this is no place where an interrupt is ignored.
int read_byte() {
    const Waiting now;
    for (;;) {
        take_signals();
        errno = 0;
        const int byte = getc_unlocked(stdin);
        if (byte != EOF || !std::ferror(stdin) || errno != EINTR)
            return byte;
        std::clearerr(stdin);
    }
}

std::string read_line() {
    constexpr std::size_t longest = std::numeric_limits<std::int32_t>::max();
    std::string line;
    for (int byte = read_byte(); byte != EOF && byte != '\n'; byte = read_byte()) {
        if (line.size() == longest)
            throw OutOfStorage{};
        line.push_back(static_cast<char>(byte));
    }
    return line;
}

constexpr double seconds_per_day = 86400;
constexpr double julian_day_of_1970 = 2440587.5;

double seconds_since_1970() {
    timeval now;
    gettimeofday(&now, nullptr);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_usec) / 1e6;
}

using Clock = std::chrono::steady_clock;

// In slices: a signal that comes between the look for it and the sleep waits for one of them.
void sleep_interruptibly(Clock::duration length) {
    constexpr Clock::duration slice = std::chrono::milliseconds(50);
    const Clock::time_point end = Clock::now() + length;
    for (;;) {
        take_signals();
        const Clock::duration left = std::min(end - Clock::now(), slice);
        if (left <= Clock::duration::zero())
            return;
        const timespec request{0, std::chrono::nanoseconds(left).count()};
        nanosleep(&request, nullptr);
    }
}

// To the microsecond, and no longer than the clock can count.
Clock::duration length_of(double seconds) {
    constexpr double longest = 1e9;
    if (!(seconds > 0))
        return Clock::duration::zero();
    const double microseconds = std::min(seconds, longest) * 1e6;
    return std::chrono::microseconds(static_cast<std::int64_t>(microseconds));
}

bool is_single(const Space& value) {
    return (value.type & (ISSCALAR | ISONEELEMENT)) != 0 && has_data(value);
}

} // namespace

Next input(Activation& run) {
    if (!room(run) || !may_nest(run))
        return Next::failed;
    std::fflush(stdout);
    CellBuffer buffer;
    fill_reading(buffer.cells(), run.table, stdin, nullptr, LineEnd::ends);
    Space* frame = run.top + 1;
    Activation nested(buffer.cells(), run.table, frame, frame, run.top, run.quads, run.depth + 1);
    run.top = run_nested(nested);
    if (run.top < frame)
        make_empty(*++run.top);
    return Next::advance;
}

Next quotedin(Activation& run) {
    if (!room(run))
        return Next::failed;
    std::fflush(stdout);
    const std::string line = read_line();
    make_text(run.top[1], line.data(), line.size());
    ++run.top;
    return Next::advance;
}

Next time(Activation& run) {
    if (!room(run))
        return Next::failed;
    const double day = seconds_since_1970() / seconds_per_day + julian_day_of_1970;
    make_real(*++run.top, day, form::time);
    return Next::advance;
}

Next sleep(Activation& run) {
    if (!is_single(*run.top))
        return Next::advance;
    const Element length = element_at(*run.top, 0);
    if (length.tag != tag::integer && length.tag != tag::real)
        return Next::advance;
    const double seconds = length.tag == tag::integer ? length.integer : length.c[0];
    if (seconds < 0)
        return failed(run, 949);
    std::fflush(stdout);
    sleep_interruptibly(length_of(seconds));
    pop(run);
    return Next::advance;
}

Next wait(Activation&) {
    std::fflush(stdout);
    std::fputs("\nWaiting... press ENTER to continue: ", stderr);
    std::fflush(stderr);
    read_byte();
    return Next::advance;
}

} // namespace tessor
