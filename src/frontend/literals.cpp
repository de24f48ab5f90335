#include "frontend/literals.h"

#include "frontend/cells.h"
#include "io/writers/exception.h"
#include "values/refderef.h"
#include "values/reshape.h"
#include "values/text.h"

#include <algorithm>

namespace tessor {

namespace {

constexpr std::size_t integer_bits = 32;
constexpr std::size_t character_bits = 8;
constexpr std::size_t character_digits = 8; ///< more bits than that make an integer

// A finished value on its way, given up if it doesn't arrive.
class Owned {
public:
    explicit Owned(const Space& value) : value_(value) {}
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { dereferencepoint(&value_); }

    Space& value() { return value_; }
    Space release() {
        const Space value = value_;
        value_ = Space{};
        return value;
    }

private:
    Space value_;
};

void add(Literal& literal, const Element& element) {
    if (literal.elements.kinds() & element_kinds & ~kind_bit(element.tag))
        literal.type |= COMPLEXED;
    literal.elements.add(element);
}

void add_integer(Literal& literal, std::int32_t value, std::uint16_t form) {
    if (literal.elements.kinds() & element_kinds & ~HASINTEGER)
        literal.type |= COMPLEXED;
    literal.elements.add_integer(value, form);
}

void add_character(Literal& literal, int byte, std::uint16_t form = form::text) {
    if (literal.elements.kinds() & element_kinds & ~HASASCII)
        literal.type |= COMPLEXED;
    literal.elements.add_character(static_cast<std::uint8_t>(byte), form);
}

void add_subarray(Literal& literal, Owned& inner) {
    if (literal.elements.kinds() & element_kinds)
        literal.type |= COMPLEXED;
    literal.elements.add_enclosed(inner.value());
    inner.release();
}

// The one-element value around an enclosed array.
Space enclosing(Owned& inner) {
    ArrayBuilder element(1);
    element.add_enclosed(inner.value());
    inner.release();
    Space cell;
    make_vector(cell, 1, element.finish(), STRUCTURED);
    cell.type = ISSCALAR | STRUCTURED | ISSTRUCTURE;
    cell.depth = 0;
    return cell;
}

// A finished literal goes where it belongs: into a cell, or into the literal around it.
void deliver(Scanner& s, const Space& value) {
    Owned finished(value);
    if (s.literals.empty()) {
        s.mode = ScanMode::code;
        emit(s, s.enclosed ? enclosing(finished) : finished.release());
        return;
    }
    Literal& around = s.literals.back();
    add_subarray(around, finished);
    around.depth = static_cast<std::int16_t>(std::min(s.deepest + 1, 32767));
    s.mode = ScanMode::vector;
}

// A literal whose shape may follow waits for it.
void finish(Scanner& s, const Space& value, bool shape_follows) {
    s.literals.pop_back();
    if (!shape_follows) {
        deliver(s, value);
        return;
    }
    s.shaped = value;
    s.has_shaped = true;
    s.shape.clear();
    s.shape_failed = false;
    s.mode = s.literals.empty() ? ScanMode::shape : ScanMode::nested_shape;
}

// Length of what leads to a shape behind the end of a literal: [ with at most one blank in front.
std::size_t match_shape(Scanner& s, std::size_t from) {
    const int byte = peek(s.input, from);
    if (byte == '[')
        return 1;
    const bool blank = is_blank(byte) || (byte == '\n' && reads_across_lines(s));
    return blank && peek(s.input, from + 1) == '[' ? 2 : 0;
}

Space finished_array(Literal& literal) {
    Space value;
    const std::uint32_t n = literal.elements.size();
    if (n == 0) {
        make_empty(value, HASINTEGER | literal.type);
    } else {
        const std::uint32_t type = literal.elements.kinds() | literal.type;
        make_vector(value, n, literal.elements.finish(), type);
    }
    value.depth = literal.depth;
    return value;
}

Space finished_text(Literal& literal) {
    Space value;
    const std::uint32_t n = literal.elements.size();
    if (n == 0) {
        make_empty(value, HASASCII);
        value.depth = 1;
        return value;
    }
    void* block = literal.elements.finish();
    if (n > 1) {
        make_vector(value, n, block, HASASCII);
        return value;
    }
    const Element only = element_of(block, 0);
    release_data(block, 1);
    make_character(value, only.character, only.form);
    return value;
}

void close_array(Scanner& s) {
    std::size_t length = peek(s.input, 1) == '`' ? 2 : 1;
    const std::size_t shape = match_shape(s, length);
    use(s.input, length + shape);
    finish(s, finished_array(s.literals.back()), shape > 0);
}

void close_text(Scanner& s) {
    const std::size_t shape = match_shape(s, 0);
    use(s.input, shape);
    finish(s, finished_text(s.literals.back()), shape > 0);
}

void open_nested(Scanner& s, ScanMode mode) {
    use(s.input, 1);
    if (!may_nest(s)) {
        Space refused;
        make_empty(refused);
        refused.type = ISVECTOR;
        Owned shown(refused);
        exception(807, nullptr, &refused);
        return;
    }
    s.literals.back().type |= mode == ScanMode::vector ? STRUCTURED | ISSTRUCTURE : STRUCTURED;
    s.literals.emplace_back();
    s.deepest = std::max(s.deepest, static_cast<int>(s.literals.size()) - 1);
    s.mode = mode;
}

// 'x' is a character; anything else in quotes a text.
void scan_quote(Scanner& s) {
    const int second = peek(s.input, 1);
    const bool doubled = second == '\'';
    if (second != '\n' && second != input_end && peek(s.input, 2) == '\''
        && (!doubled || peek(s.input, 3) == '\'')) {
        use(s.input, doubled ? 4 : 3);
        add_character(s.literals.back(), second);
        return;
    }
    open_nested(s, ScanMode::text);
}

// The name is the handle's until the element is stored.
Element with_name(Scanner& s, const ConstantMatch& match, BlockHandle& name) {
    Element element = match.element;
    element.name = match.name ? match.name : stringdup(bytes(s.input, 0, match.text_length));
    name = BlockHandle(element.name);
    return element;
}

// What begins with a digit or a sign and can be nothing but a number.
bool scan_number(Scanner& s) {
    const ElementMatch number = match_numeric(s.input, Place::array);
    if (number.length == 0)
        return false;
    use(s.input, number.length);
    add(s.literals.back(), number.element);
    return true;
}

void add_bits(Scanner& s, const BitsMatch& bits) {
    const std::uint32_t value = bits_value(s.input, bits, integer_bits, 809);
    use(s.input, bits.length);
    add_integer(s.literals.back(), static_cast<std::int32_t>(value), form::binary);
}

void add_constant(Scanner& s, const ConstantMatch& constant) {
    BlockHandle name;
    const Element element = with_name(s, constant, name);
    use(s.input, constant.text_length);
    add(s.literals.back(), element);
    name.release();
}

// A number, bits or a named constant. No number goes on where bits or the name of a constant match.
bool scan_item(Scanner& s, int first) {
    if (const IntegerMatch plain = match_plain_integer(s.input, first); plain.length) {
        use(s.input, plain.length);
        add_integer(s.literals.back(), plain.value, form::number);
        return true;
    }
    if (first == '0') {
        if (const BitsMatch bits = match_bits(s.input, 0); bits.length) {
            add_bits(s, bits);
            return true;
        }
    }
    if (begins_constant(first)) {
        if (const ConstantMatch constant = find_constant(s.input, Place::array); constant.length) {
            add_constant(s, constant);
            return true;
        }
    }
    return begins_number(first) && scan_number(s);
}

void close_shape(Scanner& s) {
    use(s.input, 1);
    s.mode = s.literals.empty() ? ScanMode::code : ScanMode::vector;
    if (!s.has_shaped)
        return;
    if (!s.shape.empty() && !s.shape_failed) {
        const auto rank = static_cast<std::int32_t>(s.shape.size());
        std::int32_t* block = new_shape(rank);
        std::ranges::copy(s.shape, block);
        Space extents;
        make_vector(extents, static_cast<std::uint32_t>(rank), block, HASINTEGER);
        Owned right(extents);
        if (const int number = reshape_data(&s.shaped, &right.value()))
            exception(number, nullptr, nullptr);
    }
    s.has_shaped = false;
    deliver(s, s.shaped);
}

void add_extent(Scanner& s, const NumberMatch& number) {
    use(s.input, number.length);
    const Element element = number_element(number);
    if (element.tag == tag::integer) {
        s.shape.push_back(element.integer);
    } else {
        exception(1100, nullptr, nullptr);
        s.shape_failed = true;
    }
}

} // namespace

bool compile_plain_integer(Scanner& s, int first) {
    const IntegerMatch number = match_plain_integer(s.input, first);
    if (number.length == 0)
        return false;
    use(s.input, number.length);
    Space cell;
    make_integer(cell, number.value);
    emit(s, cell);
    return true;
}

void open_literal(Scanner& s, ScanMode mode, bool enclosed) {
    drop_literals(s);
    s.literals.emplace_back();
    s.enclosed = enclosed;
    s.mode = mode;
}

void compile_number(Scanner& s, const ElementMatch& match) {
    Space cell;
    make_scalar(cell, match.element);
    use(s.input, match.length);
    emit(s, cell);
}

void compile_bits(Scanner& s, const BitsMatch& match) {
    const std::uint32_t value = bits_value(s.input, match, integer_bits, 809);
    use(s.input, match.length);
    Space cell;
    if (match.digits > character_digits)
        make_integer(cell, static_cast<std::int32_t>(value), form::binary);
    else
        make_character(cell, static_cast<std::uint8_t>(value), form::binary);
    emit(s, cell);
}

void compile_quoted_bits(Scanner& s, const BitsMatch& match) {
    const std::uint32_t value = bits_value(s.input, match, character_bits, 810);
    use(s.input, match.length);
    Space cell;
    make_character(cell, static_cast<std::uint8_t>(value), form::binary);
    emit(s, cell);
}

void compile_constant(Scanner& s, const ConstantMatch& match) {
    Space cell;
    BlockHandle name;
    if (match.element.tag == tag::none)
        make_empty(cell);
    else
        make_scalar(cell, with_name(s, match, name));
    name.release();
    use(s.input, match.text_length);
    emit(s, cell);
}

void drop_literals(Scanner& s) noexcept {
    if (s.has_shaped)
        dereferencepoint(&s.shaped);
    s.has_shaped = false;
    s.enclosed = false;
    s.literals.clear();
    s.deepest = 0;
}

void scan_vector(Scanner& s) {
    while (s.mode == ScanMode::vector) {
        const int byte = peek(s.input, 0);
        if (is_blank(byte) || byte == '\n')
            use(s.input, 1);
        else if (byte == '(')
            open_nested(s, ScanMode::vector);
        else if (byte == ')')
            close_array(s);
        else if (byte == '\'')
            scan_quote(s);
        else if (byte == input_end)
            return;
        else if (!scan_item(s, byte))
            echo(s);
    }
}

void scan_text(Scanner& s) {
    Literal& literal = s.literals.back();
    for (;;) {
        const int byte = next(s.input);
        if (byte == '\'') {
            if (peek(s.input, 0) != '\'') {
                close_text(s);
                return;
            }
            use(s.input, 1);
            add_character(literal, '\'');
        } else if (byte == input_end) {
            return;
        } else if (byte == '"') {
            std::fputc(byte, stdout);
        } else if (const BitsMatch bits = byte == '`' ? match_quoted_bits(s.input, 0) : BitsMatch{};
                   bits.length) {
            const std::uint32_t value = bits_value(s.input, bits, character_bits, 810);
            use(s.input, bits.length);
            add_character(literal, static_cast<int>(value), form::binary);
        } else {
            add_character(literal, byte);
        }
    }
}

void scan_shape(Scanner& s) {
    const int byte = peek(s.input, 0);
    if (byte == ']') {
        close_shape(s);
    } else if (s.mode == ScanMode::shape && (is_blank(byte) || byte == '\n')) {
        use(s.input, 1);
    } else if (const NumberMatch number = match_whole(s.input); number.length) {
        add_extent(s, number);
    } else {
        echo(s);
    }
}

} // namespace tessor
