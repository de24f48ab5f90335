// The scanner alone, on any bytes, with every meaning of a line end, from a stream and from a text.
#include "session.h"

#include "engine/machine.h"
#include "frontend/fill.h"

#include <cstdio>
#include <string>

using namespace tessor;

namespace {

bool ends_input(const Space* cells, int n) {
    return n >= 2 && cells[n - 2].rank == kind::OPERATOR
           && cells[n - 2].operation == op::ENDPROCESS;
}

void scan_stream(std::string& text, LineEnd mode) {
    if (text.empty())
        return;
    std::FILE* stream = fmemopen(text.data(), text.size(), "r");
    for (int n = 1; !std::feof(stream);) {
        CellBuffer buffer;
        n = fill(buffer.cells(), variables, stream, nullptr, mode);
        if (ends_input(buffer.cells(), n))
            break;
    }
    std::fclose(stream);
}

void scan_text(const std::string& text, LineEnd mode) {
    const char* at = text.c_str();
    while (*at) {
        CellBuffer buffer;
        fill(buffer.cells(), variables, nullptr, &at, mode);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::start_session();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const auto mode = static_cast<LineEnd>(data[0] % 3);
    std::string text(fuzz::text_of(data + 1, size - 1));
    if (data[0] & 4)
        scan_text(text, mode);
    else
        scan_stream(text, mode);
    fuzz::forget_everything();
    return 0;
}
