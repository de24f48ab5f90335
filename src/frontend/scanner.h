// The scanner's state, shared among the sources that make it up.
//
// All of it survives between calls of fill, but for what fill sets anew: the input, the open levels
// and the pending left-hand sides. Cells under way, literals in the making and bodies of open
// definitions are owned here until they are finished.
#pragma once

#include "frontend/fill.h"
#include "frontend/input.h"
#include "frontend/spellings.h"
#include "values/array.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace tessor {

enum class ScanMode : std::uint8_t {
    code,
    address,      ///< the token behind @
    vector,       ///< items of an array literal
    shape,        ///< the shape of a finished literal
    nested_shape, ///< the same inside an array literal
    text,
    comment,
    modifier, ///< the MASK behind WRAP or REFLECT
    name,
    address_name,
};

/// One level of code: the batch itself, or a definition that is open.
struct Level {
    Space* cells = nullptr;        ///< first code cell; of a definition: cell 1 of its body block
    std::uint32_t count = 0;       ///< cells written
    std::uint32_t room = 0;        ///< cells that the block has room for as it is
    MeaningTable* entry = nullptr; ///< link in force where the level began, held outside
    MeaningTable* table = nullptr; ///< link in force; holds a count unless it is `entry`
    int funcvars = 0;              ///< declared local variables
    Space function{};              ///< the FUNCTION cell to be
};

/// An array literal or text in the making.
struct Literal {
    ArrayBuilder elements;
    std::uint32_t type = 0; ///< bits beside the kinds of the elements
    std::int16_t depth = 1;
};

struct Scanner {
    Input input;
    ScanMode mode = ScanMode::code;
    LineEnd flag = LineEnd::blank;
    bool tessor_op = false; ///< the next spelling is the built-in, whatever it means to the user
    bool over = false;      ///< the batch has ended

    std::vector<Level> returnstack;
    std::array<std::uint8_t, 512> varstack{}; ///< pending left-hand sides: 1 for a global one
    std::size_t varsp = 0;

    std::vector<Literal> literals; ///< innermost last
    int deepest = 0;               ///< deepest nesting of this literal so far
    bool enclosed = false;         ///< the outermost literal stands between backquotes
    bool has_shaped = false;
    Space shaped{}; ///< the literal whose shape is being read
    std::vector<std::int32_t> shape;
    bool shape_failed = false;

    std::string operat;             ///< the name being collected
    const Word* modifier = nullptr; ///< the word in front of MASK
};

/// Levels and literals that may be open at a time.
inline constexpr std::size_t nesting_limit = 16584;

inline Level& level(Scanner& s) {
    return s.returnstack.back();
}
inline bool in_definition(const Scanner& s) {
    return s.returnstack.size() > 1;
}
/// True if one more level may be opened. The outermost literal is none.
inline bool may_nest(const Scanner& s) {
    return s.returnstack.size() + std::max<std::size_t>(s.literals.size(), 1) <= nesting_limit;
}
/// A line end that ends the batch: nothing may look past it.
bool line_end_ends(const Scanner& s);
inline bool reads_across_lines(const Scanner& s) {
    return !line_end_ends(s);
}

/// Writes a byte that the mode has no rule for, and drops it.
inline void echo(Scanner& s) {
    std::fputc(next(s.input), stdout);
}

// The modes. Each call takes at least one byte, or ends the mode.

void scan_code(Scanner& s);
void scan_address(Scanner& s);
void scan_name(Scanner& s);
void scan_vector(Scanner& s);
void scan_text(Scanner& s);
void scan_shape(Scanner& s);
void scan_comment(Scanner& s);
void scan_modifier(Scanner& s);

} // namespace tessor
