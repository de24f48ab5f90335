#include "frontend/numbers.h"

#include "io/writers/exception.h"
#include "values/hypercomplex.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace tessor {

namespace {

constexpr double greatest_integer = 2147483647.0;
constexpr std::size_t exact_digits = 18; ///< as many fit in 64 bits

// Conversion by the library's rules. from_chars knows no high minus and tells overflow and
// underflow apart from the value, so the rare rest goes the slow way.
double convert(std::string_view digits) {
    double value = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (stop == end && error == std::errc{})
        return value;
    std::string text(digits);
    fixsign(text);
    return std::strtod(text.c_str(), nullptr);
}

bool stands_at(Input& input, std::size_t from, std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i)
        if (peek(input, from + i) != text[i])
            return false;
    return true;
}

NumberMatch match_named_number(Input& input, std::size_t from, bool negative) {
    const std::size_t sign = negative ? 1 : 0;
    NumberMatch match;
    if (stands_at(input, from + sign, "Inf") || stands_at(input, from + sign, "inf")) {
        match.length = sign + 3;
        match.value = std::numeric_limits<double>::infinity();
        if (negative)
            match.value = -match.value;
    } else if (!negative && (stands_at(input, from, "NaN") || stands_at(input, from, "nan"))) {
        match.length = 3;
        match.value = std::numeric_limits<double>::quiet_NaN();
    }
    return match;
}

struct Exponent {
    std::size_t end = 0; ///< 0: there is none
    bool negative = false;
};

Exponent match_exponent(Input& input, std::size_t from) {
    const int letter = peek(input, from);
    if (letter != 'e' && letter != 'E')
        return {};
    std::size_t at = from + 1;
    Exponent exponent;
    if (const int sign = peek(input, at); is_minus(sign) || sign == '+') {
        exponent.negative = sign != '+';
        ++at;
    }
    if (!is_digit(peek(input, at)))
        return {};
    while (is_digit(peek(input, at)))
        ++at;
    exponent.end = at;
    return exponent;
}

// The families of component letters. Which letters a number uses decides its kind.
constexpr std::string_view cartesian_letters = "ijklmno";
constexpr std::string_view polar_letters = "pqrstuv";

constexpr std::int32_t tag_of_last(std::size_t last) {
    return last == 1 ? tag::complex : last <= 3 ? tag::quaternion : tag::octonion;
}

struct Prefix {
    std::size_t length = 0;
    bool hash = false;
    bool r = false;
    bool degrees = false;
};

Prefix match_prefix(Input& input, Place place) {
    Prefix prefix;
    const int first = peek(input, 0);
    prefix.hash = first == '#';
    prefix.degrees = first == 'd' && place == Place::code;
    prefix.length = prefix.hash || prefix.degrees ? 1 : 0;
    if (peek(input, prefix.length) == 'r') {
        prefix.r = true;
        ++prefix.length;
    }
    return prefix;
}

// The letters that may follow the first number of a hypercomplex one.
std::string_view letters_from(int letter, const Prefix& prefix, Place place) {
    if (letter == input_end)
        return {};
    const char c = static_cast<char>(letter);
    if (!prefix.degrees && cartesian_letters.find(c) != std::string_view::npos)
        return cartesian_letters;
    if (!prefix.hash && place == Place::code && polar_letters.find(c) != std::string_view::npos)
        return polar_letters;
    return {};
}

double radians(double angle) {
    return static_cast<double>(static_cast<long double>(angle) / 180.0L * 3.141592653589793);
}

void finish_polar(Element& element, const Prefix& prefix) {
    element.form = form::polar;
    if (prefix.degrees) {
        element.marks |= mark::degrees;
        std::transform(element.c + 1, element.c + 8, element.c + 1, radians);
    }
    double flops = 0;
    if (element.tag == tag::complex)
        cartesiancomplex(element.c, element.c, flops);
    else if (element.tag == tag::quaternion)
        cartesianquat(element.c, element.c, flops);
    else
        cartesianocto(element.c, element.c, flops);
}

ElementMatch match_components(Input& input, Place place, const Prefix& prefix,
                              const NumberMatch& first) {
    ElementMatch match;
    Element& element = match.element;
    std::size_t at = prefix.length + first.length;
    const std::string_view letters = letters_from(peek(input, at), prefix, place);
    std::size_t last = 0;
    element.c[0] = first.value;
    while (!letters.empty()) {
        const int letter = peek(input, at);
        const std::size_t index =
            letter == input_end ? std::string_view::npos : letters.find(static_cast<char>(letter));
        if (index == std::string_view::npos || index + 1 <= last)
            break;
        const NumberMatch component = match_number(input, at + 1);
        if (component.length == 0)
            break;
        last = index + 1;
        element.c[last] = component.value;
        at += 1 + component.length;
    }
    if (last == 0)
        return {};
    match.length = at;
    element.tag = tag_of_last(last);
    element.form = prefix.hash ? form::number : form::cartesian;
    element.marks = prefix.r ? mark::r : 0;
    if (letters == polar_letters)
        finish_polar(element, prefix);
    return match;
}

} // namespace

NumberMatch match_number(Input& input, std::size_t from) {
    std::size_t at = from;
    int byte = peek(input, at);
    const bool negative = is_minus(byte);
    if (negative)
        byte = peek(input, ++at);
    if (!is_digit(byte) && byte != '.')
        return match_named_number(input, from, negative);

    const std::size_t start = at;
    std::uint64_t digits = 0;
    for (; is_digit(byte); byte = peek(input, ++at))
        digits = digits * 10 + static_cast<std::uint64_t>(byte - '0');
    NumberMatch match;
    match.whole = true;
    bool plain = at - start <= exact_digits;
    if (byte == '.' && is_digit(peek(input, at + 1))) {
        match.whole = plain = false;
        for (at += 2; is_digit(peek(input, at)); ++at) {
        }
    } else if (at == start) {
        return {};
    }
    if (const Exponent exponent = match_exponent(input, at); exponent.end) {
        at = exponent.end;
        plain = false;
        match.whole = match.whole && !exponent.negative;
    }
    match.length = at - from;
    match.value = plain ? static_cast<double>(digits) : convert(bytes(input, start, at - start));
    if (negative)
        match.value = -match.value;
    return match;
}

Element number_element(const NumberMatch& number) {
    if (number.whole && std::fabs(number.value) <= greatest_integer)
        return integer_element(static_cast<std::int32_t>(number.value));
    return real_element(number.value);
}

ElementMatch match_numeric(Input& input, Place place) {
    const Prefix prefix = match_prefix(input, place);
    const NumberMatch first = match_number(input, prefix.length);
    if (first.length == 0)
        return {};
    ElementMatch match = match_components(input, place, prefix, first);
    if (match.length == 0 && prefix.length == 0) {
        match.length = first.length;
        match.element = number_element(first);
    }
    return match;
}

BitsMatch match_bits(Input& input, std::size_t from) {
    if (!stands_at(input, from, "0#"))
        return {};
    BitsMatch match;
    match.from = from + 2;
    std::size_t at = match.from;
    for (int byte = peek(input, at); byte == '0' || byte == '1' || byte == '|';)
        byte = peek(input, ++at);
    match.digits = at - match.from;
    match.length = match.digits ? at - from : 0;
    return match;
}

BitsMatch match_quoted_bits(Input& input, std::size_t from) {
    BitsMatch match = match_bits(input, from);
    if (match.length == 0 || peek(input, from + match.length) != '`')
        return {};
    match.length += from + 1;
    return match;
}

NumberMatch match_whole(Input& input) {
    const std::size_t start = is_minus(peek(input, 0)) ? 1 : 0;
    std::size_t at = start;
    while (is_digit(peek(input, at)))
        ++at;
    if (at == start)
        return {};
    if (const Exponent exponent = match_exponent(input, at); exponent.end && !exponent.negative)
        at = exponent.end;
    const double value = convert(bytes(input, start, at - start));
    return {at, true, start ? -value : value};
}

std::uint32_t bits_value(const Input& input, const BitsMatch& match, std::size_t limit,
                         int number) {
    std::string_view digits = bytes(input, match.from, match.digits);
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.size() > limit) {
        exception(number, nullptr, nullptr);
        digits = digits.substr(0, limit);
    }
    std::uint32_t value = 0;
    for (const char digit : digits)
        value = value << 1 | (digit == '1' ? 1u : 0u);
    return value;
}

IntegerMatch match_integer(Input& input, std::size_t from) {
    std::size_t at = from;
    const bool negative = is_minus(peek(input, at));
    if (negative)
        ++at;
    if (!is_digit(peek(input, at)))
        return {};
    std::int64_t value = 0;
    for (int byte = peek(input, at); is_digit(byte); byte = peek(input, ++at))
        value = std::min<std::int64_t>(value * 10 + (byte - '0'), std::int64_t{1} << 31);
    value =
        std::min<std::int64_t>(negative ? -value : value, std::numeric_limits<std::int32_t>::max());
    return {at - from, static_cast<std::int32_t>(value)};
}

void fixsign(std::string& text) {
    std::ranges::replace(text, static_cast<char>(high_minus), '-');
}

} // namespace tessor
