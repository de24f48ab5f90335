// Writing to a file that a program named: what may go wrong, and what is told of it.
#pragma once

#include "engine/signals.h"
#include "io/opening.h"
#include "io/writers/exception.h"

#include <csignal>
#include <fcntl.h>
#include <utility>

namespace tessor {

// While one lives, a pipe that nobody reads any more is a failure of the writing, not the end of
// the process, and a signal breaks off what waits for a reader.
class Writing {
public:
    Writing();
    Writing(const Writing&) = delete;
    Writing& operator=(const Writing&) = delete;
    ~Writing();

private:
    Waiting waits_;
    sigset_t pipe_;
    sigset_t before_;
    bool was_pending_;
};

/// Calls write(stream), and closes the file. False: not everything could be written.
template <class Write>
bool write_to(Stream& opened, Write write) {
    const Writing now;
    const Stream stream = std::move(opened);
    try {
        write(stream.get());
        std::fflush(stream.get());
        if (signal_noted())
            take_signals();
    } catch (...) {
        // What is left must not wait for a reader.
        fcntl(fileno(stream.get()), F_SETFL, O_NONBLOCK);
        throw;
    }
    return !std::ferror(stream.get());
}

} // namespace tessor
