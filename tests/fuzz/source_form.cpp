// A value made from the bytes, printed in source form, read back and printed again.
#include "session.h"

#include "engine/machine.h"
#include "io/writers/dump.h"
#include "values/array.h"
#include "values/refderef.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace tessor;

namespace {

// Takes the input apart; zeros once it is used up.
class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : at_(data), left_(size) {}
    std::uint8_t byte() {
        if (left_ == 0)
            return 0;
        --left_;
        return *at_++;
    }
    template <class T>
    T value() {
        std::uint8_t bytes[sizeof(T)];
        for (std::uint8_t& b : bytes)
            b = byte();
        return std::bit_cast<T>(bytes);
    }
    bool empty() const { return left_ == 0; }

private:
    const std::uint8_t* at_;
    std::size_t left_;
};

constexpr std::uint16_t number_forms[] = {
    form::number, form::boolean,          form::logical,      form::binary,
    form::number, form::number_cartesian, form::number_polar, form::number,
};

// No infinity: no literal gives one.
double real_of(Bytes& bytes) {
    const std::uint8_t how = bytes.byte();
    if (how < 128)
        return how - 64 + (how % 2) / 2.0;
    const auto x = bytes.value<double>();
    return std::isfinite(x) ? x : 0;
}

// No literal of several kinds takes a line end or the zero byte as a character.
std::uint8_t character_of(Bytes& bytes) {
    const std::uint8_t byte = bytes.byte();
    return byte == 0 || byte == '\n' ? 'a' : byte;
}

Space value_of(Bytes& bytes, int depth);

void add_element(ArrayBuilder& builder, Bytes& bytes, int depth, int what) {
    const std::uint16_t look = number_forms[bytes.byte() % 8];
    switch (what) {
    case 0: builder.add_character(character_of(bytes)); return;
    case 1: builder.add_integer(bytes.value<std::int32_t>(), look & 0xf); return;
    case 2: builder.add_integer(static_cast<std::int8_t>(bytes.byte())); return;
    case 3: builder.add_real(real_of(bytes), look & 0xf); return;
    case 4: {
        Space item = value_of(bytes, depth + 1);
        if (item.rank == 0)
            builder.add(element_at(item, 0));
        else
            builder.add_enclosed(item);
        return;
    }
    default: break;
    }
    Element element;
    const int components = what == 5 ? 2 : what == 6 ? 4 : 8;
    element.tag = what == 5 ? tag::complex : what == 6 ? tag::quaternion : tag::octonion;
    element.form = look >= form::cartesian ? look : std::uint16_t{form::number_cartesian};
    element.marks = bytes.byte() % 4 == 1 ? mark::degrees : 0;
    for (int i = 0; i < components; ++i)
        element.c[i] = real_of(bytes);
    builder.add(element);
}

Space value_of(Bytes& bytes, int depth) {
    const std::uint8_t shape = bytes.byte();
    const std::uint8_t kind = bytes.byte();
    const std::uint32_t n = 1 + shape % 7;
    ArrayBuilder builder;
    for (std::uint32_t i = 0; i < n; ++i) {
        int what = kind & 8 ? bytes.byte() % 8 : kind % 8;
        if (what == 4 && (depth == 6 || bytes.empty()))
            what = 2;
        add_element(builder, bytes, depth, what);
    }
    std::uint32_t type = builder.kinds();
    if (several(type & (element_kinds | STRUCTURED)))
        type |= COMPLEXED;
    Space value;
    make_vector(value, n, builder.finish(), type);
    if (type & STRUCTURED)
        value.depth = static_cast<std::int16_t>(7 - depth);
    return value;
}

std::string source_of(const Space& value) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* stream = open_memstream(&text, &size);
    disass(stream, "", value, 0, Mode::source);
    std::fclose(stream);
    const std::string source(text, size);
    std::free(text);
    return source;
}

// The source form of what a source form gives.
std::string read_back(const std::string& source) {
    fuzz::run_program(source + " .");
    const std::string again = sp > stack ? source_of(*sp) : "nothing";
    fuzz::forget_everything();
    return again;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::start_session();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    Space value = value_of(bytes, 0);
    const std::string first = source_of(value);
    dereferencepoint(&value);
    const std::string second = read_back(first);
    if (first != second)
        fuzz::report_difference("printed, read back and printed again", first, second);
    return 0;
}
