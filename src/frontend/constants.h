// The named constants: numbers that keep the name they were written by.
#pragma once

#include "frontend/input.h"
#include "values/array.h"

namespace tessor {

enum class Place { code, array };

struct ConstantMatch {
    std::size_t length = 0;      ///< the boundary byte included
    std::size_t text_length = 0; ///< without it
    Element element;             ///< the name not yet set; no tag: the empty vector #NIL
    char* name = nullptr;        ///< permanent text, null for a negative constant
};

/// The constant that the input begins with; length 0 if there is none.
ConstantMatch find_constant(Input& input, Place place);

} // namespace tessor
