// The limit: plain loops over memory that is kept, compiled for this very processor. Results have
// the kinds that NumPy gives: quotients of integers are doubles, truth values bytes.
#pragma once

#include "work.h"

namespace bench {

using Kernel = void (*)(const void* left, const void* right, void* result, std::size_t n);

struct Limit {
    Kernel kernel;
    std::size_t result_size; ///< bytes of one element
};

Limit limit_of(const Work& work);

} // namespace bench
