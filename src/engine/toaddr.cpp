#include "engine/toaddr.h"

#include "values/array.h"
#include "values/hypercomplex.h"
#include "values/instructions.h"
#include "values/native_stack.h"

#include <algorithm>
#include <cmath>

namespace tessor {

namespace {

char digit(unsigned value) {
    return static_cast<char>(0x40 + value);
}

// Sixteenths from the lowest up, until nothing is left.
void nibbles(KeyText& text, std::int64_t value) {
    auto magnitude = static_cast<std::uint64_t>(value);
    if (value < 0) {
        text.put('-');
        magnitude = 0 - magnitude;
    }
    for (; magnitude != 0; magnitude >>= 4)
        text.put(digit(magnitude & 0xf));
}

// The same of a whole value of any size.
void whole_nibbles(KeyText& text, double value) {
    if (std::fabs(value) < 0x1p62) {
        nibbles(text, static_cast<std::int64_t>(value));
        return;
    }
    if (value < 0)
        text.put('-');
    for (double left = std::fabs(value); left != 0; left = std::trunc(left / 16))
        text.put(digit(static_cast<unsigned>(std::fmod(left, 16))));
}

void put_real(KeyText& text, double value) {
    text.put('\\');
    if (std::isnan(value))
        text.put('X');
    else if (std::isinf(value))
        text.put(value < 0 ? "-Z" : "Z");
    else if (value == std::trunc(value))
        whole_nibbles(text, value);
    else
        rtox(text, value);
}

// Components with a letter between each two: the letters from `first` on.
void put_components(KeyText& text, const Element& element, int n) {
    const bool polar_form = element.form == form::polar;
    double c[8];
    double flops = 0;
    std::copy_n(element.c, n, c);
    if (polar_form && n == 2)
        polar<2>(c, c, flops);
    else if (polar_form && n == 4)
        polar<4>(c, c, flops);
    else if (polar_form)
        polar<8>(c, c, flops);
    text.put(element.form == form::number ? "\\#" : "\\");
    realtox(text, c[0]);
    for (int i = 1; i < n; ++i) {
        text.put(static_cast<char>((polar_form ? 'p' : 'i') + i - 1));
        realtox(text, c[i]);
    }
}

void put_quoted(KeyText& text, std::string_view bytes) {
    text.put('\'');
    text.put(bytes);
    text.put('\'');
}

void put_hexadecimal(KeyText& text, unsigned value) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    char buffer[8];
    char* at = std::end(buffer);
    do {
        *--at = digits[value & 0xf];
        value >>= 4;
    } while (value != 0);
    put_quoted(text, {at, static_cast<std::size_t>(std::end(buffer) - at)});
}

std::string_view code_of(std::uint32_t number) {
    return number < instruction_table.size() ? instruction_table[number].code : "";
}

// Reductions that have a code of their own; none for the others.
std::string_view reduction_code(const Space& cell) {
    const bool derived = cell.operation == op::OUTERPRODUCT
                         || (cell.operation >= op::SCAN && cell.operation <= op::REDUCE);
    if (!derived)
        return {};
    switch (cell.suboperation) {
    case op::MULTIPLY: return "Rp";
    case op::ADD: return "Us";
    case op::AND: return "La";
    case op::OR: return "Na";
    default: return {};
    }
}

bool shows_suboperation(const Space& cell) {
    if (cell.operation == op::MASK)
        return cell.suboperation != 0;
    return cell.operation == op::OUTERPRODUCT
           || (cell.operation >= op::SCAN && cell.operation <= op::REDUCENWISELASTAXIS);
}

void put_instruction(KeyText& text, const Space& cell) {
    if (const std::string_view code = reduction_code(cell); !code.empty()) {
        text.put(code);
        return;
    }
    const bool folded = (cell.operation == op::IF_YES || cell.operation == op::IF_NO)
                        && static_cast<std::int16_t>(cell.suboperation) != kind::FUNCTION;
    if (folded && cell.elements != 0)
        text.put(code_of(cell.elements));
    if (folded || shows_suboperation(cell))
        text.put(code_of(cell.suboperation));
    text.put(code_of(static_cast<std::uint16_t>(cell.operation)));
}

std::string_view name_of(const Space& cell) {
    return cell.name ? std::string_view(cell.name) : std::string_view();
}

void put_name(KeyText& text, std::string_view prefix, const Space& cell) {
    text.put(prefix);
    text.put(name_of(cell));
    text.put(' ');
}

void put_local(KeyText& text, std::string_view prefix, const Space& cell) {
    text.put(prefix);
    nibbles(text, std::int64_t{element_at(cell, 0).integer} + 1);
}

std::string_view class_prefix(const Space& cell) {
    switch (cell.suboperation) {
    case op::SAIG: return "_";
    case op::SAIL: return "$";
    case op::SLIL: return ".";
    default: return "";
    }
}

void put_header(KeyText& text, const Space& function) {
    if (function.locals != 0) {
        text.put("vA");
        nibbles(text, function.locals);
    }
    if (function.arguments < 0) {
        text.put("fU");
        return;
    }
    switch (function.arguments) {
    case 0: text.put("nI"); return;
    case 1: text.put("mO"); return;
    case 2: text.put("dY"); return;
    case 3: text.put("tR"); return;
    default:
        text.put("aR");
        nibbles(text, function.arguments);
        text.put("fU");
        return;
    }
}

// Writes one value with all that is in it; instruction codes begin at even places from its start.
struct Form {
    KeyText& text;
    std::size_t start;

    bool value(const Space& space, int nested) {
        if (!stack_guard())
            return false;
        if (space.rank < 0)
            return cell(space, nested);
        if (!contents(space, nested))
            return false;
        if (space.type & CONDITIONAL)
            text.put(space.type & YES ? "?y" : "?n");
        return true;
    }

    bool cell(const Space& space, int nested) {
        switch (space.rank) {
        case kind::LOCAL_VARIABLE: put_local(text, "&", space); break;
        case kind::LOCAL_ADDRESS: put_local(text, "@&", space); break;
        case kind::ADDRESS:
        case kind::LABEL: put_name(text, "@", space); break;
        case kind::VARIABLE: put_name(text, class_prefix(space), space); break;
        case kind::OPERATOR: instruction(space); break;
        case kind::FUNCTION: return function(space, nested);
        case kind::UNUSED: text.put('X'); break;
        case kind::INVALID: text.put('Y'); break;
        default: break;
        }
        return true;
    }

    void instruction(const Space& space) {
        if (space.operation == op::NOOP)
            return;
        if ((text.size() - start) % 2 != 0)
            text.put(' ');
        put_instruction(text, space);
    }

    bool function(const Space& space, int nested) {
        put_header(text, space);
        for (const Space* at = space.body + 1; at->type != 0; ++at)
            if (!value(*at, nested + 1))
                return false;
        text.put(';');
        if ((space.type | space.body->type) & ISOPERATOR)
            text.put("oP");
        return true;
    }

    bool contents(const Space& space, int nested) {
        if (space.type & ISEMPTY) {
            text.put('.');
            return true;
        }
        if (!has_data(space))
            return true;
        if ((space.type & (STRUCTURED | COMPLEXED | HASASCII)) == HASASCII) {
            characters(space, nested);
        } else if (space.type & ISSCALAR) {
            text.put('`');
            if (!element(element_at(space, 0)))
                return false;
            text.put(")`");
            return true;
        } else if (!elements(space)) {
            return false;
        }
        if (space.rank > 1)
            shape(space);
        return true;
    }

    void characters(const Space& space, int nested) {
        if (nested > 0)
            text.put('\'');
        if (!(space.type & ISINPLACE) && storage_of(space.data_pointer) == Storage::character) {
            text.put({static_cast<const char*>(space.data_pointer), space.elements});
        } else {
            for (std::uint32_t i = 0; i < space.elements; ++i)
                text.put(static_cast<char>(element_at(space, i).character));
        }
        if (nested > 0)
            text.put('\'');
    }

    bool elements(const Space& space) {
        const bool brackets = space.depth != 0;
        if (brackets)
            text.put('(');
        for (std::uint32_t i = 0; i < space.elements; ++i)
            if (!element(element_at(space, i)))
                return false;
        if (brackets)
            text.put(')');
        return true;
    }

    void shape(const Space& space) {
        text.put('[');
        for (std::int32_t axis = 0; axis < space.rank; ++axis) {
            text.put('$');
            nibbles(text, extent(space, axis));
        }
        text.put(']');
    }

    bool element(const Element& item) {
        switch (item.tag) {
        case tag::subarray: {
            text.put('(');
            const bool whole = value(*item.subarray, 1);
            text.put(')');
            return whole;
        }
        case tag::ascii: {
            const auto byte = static_cast<char>(item.character);
            put_quoted(text, {&byte, 1});
            break;
        }
        case tag::unicode: put_hexadecimal(text, item.unicode); break;
        case tag::integer:
            text.put('\\');
            nibbles(text, item.integer);
            break;
        case tag::real: put_real(text, item.c[0]); break;
        case tag::complex: put_components(text, item, 2); break;
        case tag::quaternion: put_components(text, item, 4); break;
        case tag::octonion: put_components(text, item, 8); break;
        default: text.put("??? "); break;
        }
        return true;
    }
};

} // namespace

void KeyText::grow(std::size_t more) {
    const std::size_t wanted = std::max(size_ + more, size_ * 2 + 48);
    void* block = block_ ? Reallocate(block_.get(), wanted) : allocate_block(wanted);
    block_.release();
    block_ = BlockHandle(block);
    capacity_ = block_capacity(block);
}

void KeyText::put(std::string_view text) {
    if (capacity_ - size_ < text.size())
        grow(text.size());
    text.copy(block_.as<char>() + size_, text.size());
    size_ += text.size();
}

char* KeyText::finish() {
    put('\0');
    auto* text = static_cast<char*>(Reallocate(block_.get(), size_));
    block_.release();
    size_ = 0;
    capacity_ = 0;
    return text;
}

bool TOAddr1(KeyText& text, const Space& value, int nested) {
    return Form{text, text.size()}.value(value, nested);
}

char* TOAddr(const Space& value, int nested) {
    KeyText text;
    return TOAddr1(text, value, nested) ? text.finish() : nullptr;
}

void rtox(KeyText& text, double value) {
    constexpr int most_digits = 16;
    const double magnitude = std::fabs(value);
    const auto exponent =
        static_cast<int>(std::trunc(std::trunc(std::log(magnitude)) / 0.6931471805599453));
    nibbles(text, exponent);
    text.put(value < 0 ? ":-" : ":");
    double left = std::scalbn(magnitude, -exponent);
    for (int i = 0; i < most_digits; ++i) {
        const double whole = std::trunc(left);
        text.put(digit(static_cast<unsigned>(whole)));
        left = (left - whole) * 16;
        if (left == 0)
            break;
    }
}

void realtox(KeyText& text, double value) {
    if (std::isnan(value)) {
        text.put('X');
    } else if (std::isinf(value)) {
        if (value < 0)
            text.put('-');
    } else if (value == std::trunc(value) && std::fabs(value) < 2147483647.0) {
        nibbles(text, static_cast<std::int64_t>(value));
    } else {
        rtox(text, value);
    }
}

} // namespace tessor
