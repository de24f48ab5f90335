#include "frontend/constants.h"

#include "frontend/words.h"

#include <bit>

namespace tessor {

namespace {

struct Constant {
    std::string_view spellings; ///< separated by blanks
    std::int32_t tag;
    std::uint16_t form;
    double value;
    bool hidden = false; ///< as a value it prints as nothing
};

constexpr Constant real(std::string_view spellings, std::uint64_t bits) {
    return {spellings, tag::real, form::number, std::bit_cast<double>(bits)};
}
constexpr Constant selector(std::string_view spellings, int value) {
    return {spellings, tag::integer, form::constant, static_cast<double>(value)};
}
constexpr Constant truth(std::string_view spellings, int value) {
    return {spellings, tag::integer, form::boolean, static_cast<double>(value)};
}

// May have a minus directly in front.
constexpr auto signed_rows = std::to_array<Constant>({
    real("#PI #pi", 0x400921FB54442D18),
    real("#2PI #2pi", 0x401921FB54442D18),
    real("#PI_2 #pi_2", 0x3FF921FB54442D18),
    real("#PI_4 #pi_4", 0x3FE921FB54442D18),
    real("#1_PI #1_pi", 0x3FD45F306DC9C883),
    real("#2_PI #2_pi", 0x3FE45F306DC9C883),
    real("#2_SQRTPI #2_SQRTpi", 0x3FF20DD750429B6D),
    real("#SQRT2", 0x3FF6A09E667F3BCD),
    real("#SQRT3", 0x3FFBB67AE8584CAA),
    real("#SQRT1_2", 0x3FE6A09E667F3BCD),
    real("#E #e #EULER #NAPIER", 0x4005BF0A8B145769),
});

constexpr auto plain_rows = std::to_array<Constant>({
    real("#LOG2E #LOG2e", 0x3FF71547652B82FE),
    real("#LOG10E #LOG10e", 0x3FDBCB7B1526E50E),
    real("#LN2", 0x3FE62E42FEFA39EF),
    real("#LN10", 0x40026BB1BBB55516),
    selector("#ATANH", -7),
    selector("#ACOSH", -6),
    selector("#ASINH", -5),
    selector("#SQRTX2m1", -4),
    selector("#ATAN", -3),
    selector("#ACOS", -2),
    selector("#ASIN", -1),
    selector("#SQRT1mX2", 0),
    selector("#SIN", 1),
    selector("#COS", 2),
    selector("#TAN", 3),
    selector("#SQRTX2p1", 4),
    selector("#SINH", 5),
    selector("#COSH", 6),
    selector("#TANH", 7),
    truth("F #F #FALSE", 0),
    truth("T #T #TRUE", 1),
});

// Not inside an array literal.
constexpr auto code_signed_rows = std::to_array<Constant>({
    real("#1_SQRT2", 0x3FE6A09E667F3BCD),
});

constexpr auto code_rows = std::to_array<Constant>({
    real("#LOGE2 #LOGe2", 0x3FE62E42FEFA39EF),
    real("#LOGE10 #LOGe10", 0x40026BB1BBB55516),
    {"#END", tag::integer, form::constant, 0, true},
    {"#NIL", tag::none, form::text, 0},
});

constexpr auto signed_words = make_words<count_words(signed_rows)>(signed_rows);
constexpr auto plain_words = make_words<count_words(plain_rows)>(plain_rows);
constexpr auto code_signed_words = make_words<count_words(code_signed_rows)>(code_signed_rows);
constexpr auto code_words = make_words<count_words(code_rows)>(code_rows);

static_assert(well_made(signed_words) && well_made(plain_words));
static_assert(well_made(code_signed_words) && well_made(code_words));

template <class Table, class Rows>
void try_table(Input& input, std::size_t from, const Table& table, const Rows& rows,
               ConstantMatch& found) {
    const WordMatch match = match_word(input, from, table, false);
    if (!match.word)
        return;
    const Constant& constant = rows[match.word->row];
    found.length = from + match.length;
    found.text_length = from + match.text_length;
    found.element.tag = constant.tag;
    found.element.form = constant.form;
    found.element.marks = mark::named | (constant.hidden ? mark::hidden : 0);
    const double value = from ? -constant.value : constant.value;
    if (constant.tag == tag::integer)
        found.element.integer = static_cast<std::int32_t>(value);
    else
        found.element.c[0] = value;
    found.name = from ? nullptr : const_cast<char*>(match.word->text);
}

} // namespace

ConstantMatch find_constant(Input& input, Place place) {
    ConstantMatch found;
    const std::size_t from = peek(input, 0) == '-' ? 1 : 0;
    try_table(input, from, signed_words, signed_rows, found);
    if (place == Place::code)
        try_table(input, from, code_signed_words, code_signed_rows, found);
    if (from == 0) {
        try_table(input, 0, plain_words, plain_rows, found);
        if (place == Place::code)
            try_table(input, 0, code_words, code_rows, found);
    }
    return found;
}

} // namespace tessor
