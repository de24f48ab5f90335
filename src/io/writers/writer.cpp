#include "io/writers/writer.h"

#include "io/writers/exception.h"
#include "io/writers/numbers.h"
#include "values/native_stack.h"
#include "values/shared.h"

#include <cstring>
#include <unistd.h>

namespace tessor {

void Writer::put(std::string_view text) {
    if (text.empty())
        return;
    if (text.size() > sizeof buffer_ - used_) {
        drain();
        if (text.size() > sizeof buffer_) {
            std::fwrite(text.data(), 1, text.size(), stream_);
            drained_ = text.back();
            return;
        }
    }
    std::memcpy(buffer_ + used_, text.data(), text.size());
    used_ += text.size();
}

void Writer::drain() {
    drained_ = last();
    if (used_ > 0)
        std::fwrite(buffer_, 1, used_, stream_);
    used_ = 0;
}

void Writer::flush() {
    drain();
    std::fflush(stream_);
}

// What isn't a terminal gets its text in larger pieces: nobody watches it grow.
void Writer::seam() {
    if (terminal_ < 0)
        terminal_ = isatty(fileno(stream_));
    if (terminal_)
        flush();
    listen();
}

void Writer::listen() {
    if (signal_noted()) {
        flush();
        take_signals();
    }
}

void write_indent(Writer& out, int level) {
    for (int i = 0; i < level; ++i)
        out.put("   ");
}

void write_spelling(Writer& out, std::string_view spelling, bool first_meaning) {
    constexpr std::string_view ends_of_literals = "')`]";
    const bool like_shape =
        spelling.substr(0, 1) == "[" && ends_of_literals.find(out.last()) != spelling.npos;
    out.put(' ');
    if (first_meaning || like_shape)
        out.put("::");
    out.put(spelling);
}

void write_word(Writer& out, std::string_view word) {
    write_spelling(out, word, out.vocabulary() && out.vocabulary()->hides(word));
}

void write_integer(Writer& out, std::int32_t value) {
    out.advance(number_text(out.room(number_room), value));
}

void guard_depth(Writer& out) {
    if (stack_guard())
        return;
    out.flush();
    PrintOut = false;
    fail(806, nullptr, nullptr);
}

} // namespace tessor
