#include "tessor_side.h"

#include "clock.h"
#include "frontend/fill.h"
#include "io/writers/exception.h"
#include "shell/dispatch.h"
#include "values/array.h"
#include "values/native_stack.h"
#include "values/refderef.h"
#include "values/text.h"

#include <cstdio>
#include <cstdlib>

namespace bench {

using namespace tessor;

namespace {

struct Kind {
    Storage storage;
    std::uint32_t bit;
};

Kind kind_of(Type type) {
    switch (type) {
    case Type::int32: return {Storage::integer, HASINTEGER};
    case Type::float64: return {Storage::real, HASREAL};
    case Type::complex128: return {Storage::complex, HASCOMPLEX};
    case Type::truth: break;
    }
    return {Storage::truth, HASINTEGER};
}

} // namespace

void start_tessor() {
    measure_native_stack();
    fill_dispatch();
    start_symbols();
}

void bind_array(const char* name, Type type, std::size_t n, bool left) {
    const auto [storage, bit] = kind_of(type);
    const std::uint16_t look = type == Type::truth ? form::boolean : form::number;
    void* data = allocate_items(n, item_size(storage), encode({storage, look, 0}));
    fill_operand(data, type, n, left ? left_value : right_value);
    Space* target = enter(memory, stringdup(name))->value;
    dereferencepoint(target);
    make_vector(*target, static_cast<std::uint32_t>(n), data, bit);
}

std::string scalar_text(Type type) {
    const std::string whole = std::to_string(scalar_value);
    switch (type) {
    case Type::int32: return whole;
    case Type::float64: return whole + ".5";
    case Type::complex128: return whole + ".5i" + whole + ".5";
    case Type::truth: break;
    }
    return "T";
}

const char* verb_text(Verb verb) {
    constexpr const char* texts[] = {"ADD",   "SUBTRACT", "MULTIPLY", "DIVIDE",    "LESS",
                                     "EQUAL", "MINIMUM",  "MAXIMUM",  "AND",       "OR",
                                     "NOT",   "SQUARE",   "SQRT",     "1.5 POWER", "10 LOG"};
    return texts[static_cast<int>(verb)];
}

Sentence::Sentence(const std::string& text) {
    const char* at = text.c_str();
    if (fill(buffer_.cells(), variables, stdin, &at, LineEnd::blank) == 0) {
        std::fprintf(stderr, "can't compile: %s\n", text.c_str());
        std::exit(1);
    }
}

// Depth 1, since a run at depth 0 shows the top of the stack.
void Sentence::run() {
    try {
        sp = machine(buffer_.cells(), variables, stack + 1, stack + 1, sp, quads, 1);
    } catch (const ErrorJump&) {
        std::exit(1);
    }
}

Nanoseconds Sentence::time(int n) {
    const Nanoseconds began = now();
    for (int i = 0; i < n; ++i)
        run();
    return (now() - began) / n;
}

Result::Result(Sentence& sentence) {
    sentence.run();
}

Result::~Result() {
    dereferencepoint(sp--);
}

std::size_t Result::size() const {
    return sp->elements;
}

double Result::at(std::size_t i, int c) const {
    const Element element = element_at(*sp, static_cast<std::uint32_t>(i));
    if (element.tag == tag::integer)
        return c == 0 ? element.integer : 0;
    return c < components_of(element.tag) ? element.c[c] : 0;
}

} // namespace bench
