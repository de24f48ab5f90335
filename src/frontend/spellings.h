// Every spelling of the language, and what each compiles to: the one table of them.
#pragma once

#include "frontend/words.h"
#include "values/instructions.h"
#include "values/space.h"

#include <span>

namespace tessor {

/// What a spelling does beyond writing the cell of its own instruction.
enum class Act : std::uint8_t {
    plain,
    selector, ///< a hidden integer in front: which function CIRCULAR is to compute
    exponent, ///< a hidden real in front: the exponent of POWER
    root,     ///< POWER behind it
    yield_to, ///< RETURN behind it
    target,   ///< ends the pending left-hand side
    derived,  ///< turns the instruction before it into its operand
    if_yes,   ///< makes the cell before it conditional
    if_no,
    modifier,  ///< modifies the MASK that must follow
    run_on,    ///< leaves the inspection prompt, or is the plain instruction
    break_off, ///< leaves the inspection prompt and drops the sentence
    built_in,  ///< the next spelling is the built-in one
    end_batch,
    open,  ///< a function header
    close, ///< the end of a definition
    address,
    comment,
};

struct Meaning {
    std::string_view spellings; ///< separated by blanks
    std::int16_t operation = 0;
    std::uint16_t suboperation = 0;
    std::uint32_t marks = 0; ///< on the function being compiled
    Act act = Act::plain;
    double argument = 0; ///< hidden value, number that is reported, or arity
};

/// The meaning of a word that find_spelling gave.
const Meaning& meaning_of(const Word& word);

/// The longest spelling that the input begins with.
WordMatch find_spelling(Input& input, bool across_lines);

/// All spellings, in the order of their bytes.
std::span<const Word> all_spellings();

/// Permanent counted texts: no bytes, the end of a definition, a line end.
char* empty_spelling();
char* semicolon();
char* line_end_spelling();
/// The permanent text of a word, which has no gap.
char* text_of(const Word& word);

} // namespace tessor
