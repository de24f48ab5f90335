#include "frontend/input.h"

#include "io/writers/exception.h"
#include "values/shared.h"

#include <cerrno>
#include <cstring>

namespace tessor {

namespace {

constexpr std::size_t first_look_ahead = 1024;

bool fault_noted() {
    return (attention.load(std::memory_order_relaxed) & attend::fault) != 0;
}

// A read that was broken off is tried again, unless it was for a fault that waits to be taken. An
// interrupt that came before the reading began is left to the run.
bool interrupted(std::FILE* stream) {
    if (!std::ferror(stream) || errno != EINTR)
        return false;
    std::clearerr(stream);
    if (fault_noted())
        take_signals();
    return true;
}

// A zero byte ends the input like the end of the stream.
int read_byte(Input& input) {
    if (input.ended)
        return input_end;
    int byte;
    if (input.from_text) {
        byte = input.at[input.ready];
    } else {
        do
            byte = getc_unlocked(input.stream);
        while (byte == EOF && interrupted(input.stream));
    }
    if (byte > 0)
        return byte;
    input.ended = true;
    return input_end;
}

void append(Input& input, unsigned char byte) {
    std::vector<unsigned char>& buffer = input.buffer;
    if (input.ready == 0)
        input.at = buffer.data();
    const auto used = static_cast<std::size_t>(input.at - buffer.data());
    if (used + input.ready == buffer.size()) {
        if (used > 0)
            std::memmove(buffer.data(), input.at, input.ready);
        else
            buffer.resize(buffer.size() * 2);
        input.at = buffer.data();
    }
    buffer[static_cast<std::size_t>(input.at - buffer.data()) + input.ready] = byte;
}

} // namespace

void restart(Input& input, std::FILE* stream, const char* text) {
    input.stream = stream;
    input.from_text = text != nullptr;
    input.ended = !text && !stream;
    input.at = reinterpret_cast<const unsigned char*>(text);
    input.ready = 0;
    if (input.buffer.empty())
        input.buffer.resize(first_look_ahead); // a failure finds the text unread
    if (!text)
        input.at = input.buffer.data();
}

void release_look_ahead(Input& input) {
    if (input.buffer.size() > first_look_ahead) {
        input.buffer.resize(first_look_ahead);
        input.buffer.shrink_to_fit();
    }
    input.at = nullptr;
    input.ready = 0;
}

int peek_further(Input& input, std::size_t ahead) {
    while (input.ready <= ahead) {
        const int byte = read_byte(input);
        if (byte == input_end)
            return input_end;
        if (!input.from_text)
            append(input, static_cast<unsigned char>(byte));
        ++input.ready;
    }
    return input.at[ahead];
}

int next_from_source(Input& input) {
    const int byte = read_byte(input);
    if (input.from_text && byte != input_end)
        ++input.at;
    return byte;
}

} // namespace tessor
