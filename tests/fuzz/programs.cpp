// Whole programs: nothing that a person can type breaks the console.
#include "session.h"

using namespace tessor;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::start_session();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::run_program(fuzz::text_of(data, size));
    fuzz::forget_everything();
    return 0;
}
