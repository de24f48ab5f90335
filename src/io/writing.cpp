#include "io/writing.h"

#include <ctime>

namespace tessor {

Writing::Writing() {
    sigemptyset(&pipe_);
    sigaddset(&pipe_, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    was_pending_ = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
}

Writing::~Writing() {
    constexpr timespec at_once{};
    if (!was_pending_)
        sigtimedwait(&pipe_, nullptr, &at_once);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

} // namespace tessor
