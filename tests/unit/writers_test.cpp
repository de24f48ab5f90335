// Values and cells, built by hand, in both forms; the reports; the aids.
#include "io/writers/dump.h"
#include "io/writers/exception.h"
#include "values/array.h"
#include "values/instructions.h"
#include "values/native_stack.h"
#include "values/refderef.h"
#include "values/shared.h"
#include "values/text.h"

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

namespace tessor {
namespace {

// A stream into memory.
class Memory {
public:
    Memory() : stream_(open_memstream(&text_, &size_)) {}
    ~Memory() {
        std::fclose(stream_);
        std::free(text_);
    }
    std::FILE* stream() { return stream_; }
    std::string text() {
        std::fflush(stream_);
        return {text_, size_};
    }

private:
    char* text_ = nullptr;
    std::size_t size_ = 0;
    std::FILE* stream_;
};

std::string displayed(const Space& space) {
    Memory memory;
    dump(memory.stream(), "", space);
    return memory.text();
}

std::string as_source(const Space& space) {
    Memory memory;
    disass(memory.stream(), "", space, 0, Mode::source);
    return memory.text();
}

// Values. Each is the caller's to give up.

using Extents = std::vector<std::int32_t>;

Space shaped(Space space, const Extents& extents) {
    release_block(space.shape_pointer);
    space.rank = static_cast<std::int32_t>(extents.size());
    std::int32_t* shape = new_shape(space.rank);
    std::copy(extents.begin(), extents.end(), shape);
    space.shape_pointer = shape;
    space.type = (space.type & ~ISVECTOR) | (space.rank > 1 ? ISARRAY : ISVECTOR);
    return space;
}

Space array(std::initializer_list<Element> elements) {
    ArrayBuilder builder;
    for (const Element& element : elements)
        builder.add(element);
    std::uint32_t type = builder.kinds();
    if (several(type & (element_kinds | STRUCTURED)))
        type |= COMPLEXED;
    const auto n = builder.size();
    Space space;
    make_vector(space, n, builder.finish(), type);
    if (type & STRUCTURED)
        space.depth = 2;
    return space;
}

Element inside(const Space& space) {
    Element element;
    element.tag = tag::subarray;
    element.subarray = enclose(space);
    return element;
}

Space enclosed(const Space& inner, std::int16_t depth) {
    Space space = array({inside(inner)});
    space.type = ISSCALAR | STRUCTURED | ISSTRUCTURE;
    space.depth = depth;
    return space;
}

// An enclosed value that has no shape.
Space lone(const Space& inner, std::int16_t depth) {
    Space space;
    make_scalar(space, inside(inner));
    space.type = ISSCALAR | STRUCTURED | ISSTRUCTURE;
    space.depth = depth;
    return space;
}

Space text(const std::string& bytes) {
    Space space;
    make_text(space, bytes.data(), bytes.size());
    return space;
}

Space scalar(const Element& element) {
    Space space;
    make_scalar(space, element);
    return space;
}

Space with(Space space, std::uint32_t type) {
    space.type |= type;
    return space;
}

Element hyper(std::int32_t tag, std::initializer_list<double> components,
              std::uint16_t form = form::cartesian, std::uint16_t marks = 0) {
    Element element;
    element.tag = tag;
    element.form = form;
    element.marks = marks;
    std::copy(components.begin(), components.end(), element.c);
    return element;
}

Element named(Element element, const char* name, std::uint16_t marks = mark::named) {
    element.name = stringdup(name);
    element.marks = marks;
    return element;
}

Element i(std::int32_t value, std::uint16_t form = form::number) {
    return integer_element(value, form);
}
Element r(double value) {
    return real_element(value);
}
Element c(char value, std::uint16_t form = form::text) {
    return character_element(static_cast<std::uint8_t>(value), form);
}
Space empty(std::uint32_t kinds = 0) {
    Space space;
    make_empty(space, kinds);
    return space;
}

// Cells.

Space named_cell(std::int32_t rank, std::uint32_t type, int addressing, const char* name) {
    Space cell{};
    cell.rank = rank;
    cell.type = type;
    cell.suboperation = static_cast<std::uint16_t>(addressing);
    cell.name = name ? stringdup(name) : nullptr;
    return cell;
}

Space instruction(int operation, const char* spelling, int suboperation = 0,
                  std::uint32_t elements = 0) {
    Space cell = named_cell(kind::OPERATOR, ISOPERATOR, suboperation, spelling);
    cell.operation = static_cast<std::int16_t>(operation);
    cell.elements = elements;
    return cell;
}

Space local(std::int32_t rank, std::int32_t slot) {
    Space cell{};
    cell.rank = rank;
    cell.type = ISLOCAL;
    cell.elements = 1;
    cell.data_pointer = allocate_block(sizeof(DataElement));
    store(*static_cast<DataElement*>(cell.data_pointer), i(slot));
    return cell;
}

Space function(int arguments, int locals, const char* header, std::vector<Space> code,
               std::uint32_t type = ISFUNCTION) {
    Space cell = named_cell(kind::FUNCTION, type, locals, header);
    cell.arguments = static_cast<std::int16_t>(arguments);
    cell.body = static_cast<Space*>(allocate_items(code.size() + 2, sizeof(Space)));
    cell.body[0] = cell;
    std::copy(code.begin(), code.end(), cell.body + 1);
    cell.body[code.size() + 1] = Space{};
    return cell;
}

struct Case {
    Space value;
    const char* display;
    const char* source;
};

void expect(const std::vector<Case>& cases) {
    for (const Case& one : cases) {
        Space space = one.value;
        EXPECT_EQ(displayed(space), one.display);
        EXPECT_EQ(as_source(space), one.source);
        dereferencepoint(&space);
    }
}

TEST(Writers, Scalars) {
    const double infinity = std::numeric_limits<double>::infinity();
    expect({
        {scalar(i(-3)), " -3", " -3"},
        {scalar(i(2, form::boolean)), " T", " T"},
        {scalar(i(5, form::binary)), " 5", " 0#00000000000000000000000000000101"},
        {scalar(r(1.0 / 3)), " 0.3333333333", " 0.33333333333333331"},
        {scalar(r(-0.0)), " 0", " 0"},
        {scalar(r(2147483647.0)), " 2147483647", " 2147483647"},
        {scalar(r(1e15)), " 1e+15", " 1000000000000000"},
        {scalar(r(-std::nan(""))), " -nan", " nan"},
        {scalar(r(-infinity)), " -inf", " -inf"},
        {scalar(c('\'')), "'", " ''''"},
        {scalar(c('A', form::binary)), "A", " '`0#01000001`'"},
        {scalar(named(r(3.14), "#PI")), " #PI", " #PI"},
        {scalar(named(i(0), "#END", mark::named | mark::hidden)), "", " #END"},
        {scalar(integer_element(1, form::constant, mark::hidden)), "", ""},
        {with(scalar(i(4)), CONDITIONAL | YES), " 4", " 4 IF_YES"},
    });
}

TEST(Writers, Hypercomplex) {
    expect({
        {scalar(hyper(tag::complex, {1, 2})), " 1i2", " 1i2"},
        {scalar(hyper(tag::complex, {1, 2}, form::number)), " 1i2", " #1i2"},
        {scalar(hyper(tag::complex, {3, 0}, form::number)), " 3", " #3i0"},
        {scalar(hyper(tag::complex, {3, 0}, form::cartesian, mark::r)), " r3", " r3i0"},
        {scalar(hyper(tag::quaternion, {1, 0, 2, 0})), " 1i0j2", " 1i0j2"},
        {scalar(hyper(tag::octonion, {1, 0, 0, 0, 0, 0, 0, -1})), " 1i0j0k0l0m0n0o-1",
         " 1i0j0k0l0m0n0o-1"},
        {scalar(hyper(tag::complex, {0, 1}, form::polar, mark::degrees)), " d1p90", " d1p90"},
        {scalar(hyper(tag::complex, {2, 0}, form::polar, mark::degrees)), " 2", " 2"},
        {scalar(hyper(tag::complex, {-2, 0}, form::polar)), " 2p3.141592654",
         " 2p3.1415926535897931"},
        // The last angle of a long quaternion doesn't lead back to it.
        {scalar(hyper(tag::quaternion, {1, 0, 0.5, 0}, form::polar)), " 1.118033989p0q0.5235987756",
         " 1i0j0.5"},
        {array({hyper(tag::complex, {0, 1}, form::polar)}), " 1p1.570796327", " ( 0i1 )"},
    });
}

TEST(Writers, Texts) {
    expect({
        {text("it's"), "it's", " 'it''s'"},
        {text("say \"`0#1\""), "say \"`0#1\"", " 'say `0#00100010``0#01100000`0#1`0#00100010`'"},
        {text("`0`0#`"), "`0`0#`", " '`0`0#`'"},
        {shaped(text("abcdefgh"), {2, 2, 2}), "ab\ncd\n\nef\ngh", " 'abcdefgh' [ 2 2 2 ]"},
        {shaped(array({c('a')}), {1}), "a", " 'a' [ 1 ]"},
        {empty(HASASCII), ".\n", "#NIL\n"},
    });
}

TEST(Writers, Arrays) {
    expect({
        {array({i(1), i(2), i(3)}), " 1 2 3", " ( 1 2 3 )"},
        {shaped(array({i(1), i(2), i(3), i(4)}), {2, 2}), " 1 2\n 3 4", " ( 1 2 3 4 ) [ 2 2 ]"},
        {array({r(2), r(2.5)}), " 2 2.5", " ( 2 2.5 )"},
        {array({i(1), r(-0.0)}), " 1 0", " ( 1 0 )"},
        {array({i(1), c('a'), i(2), c('b'), c('\'')}), " 1 a 2 b'", " ( 1 'a' 2 'b' '''' )"},
        {array({i(1), inside(array({i(2), i(3)}))}), " 1 ( 2 3 ) ", " ( 1 ( 2 3 ) )"},
        {array({i(1), inside(text("ab"))}), " 1 'ab'", " ( 1 'ab' )"},
        {array({inside(array({i(2), inside(text("ab"))})), i(4)}), " ( 2 'ab'   4",
         " ( ( 2 'ab' ) 4 )"},
        {array({i(1), inside(empty()), inside(empty(HASASCII))}), " 1    #NIL\n    #NIL\n",
         " ( 1 () '' )"},
        {array({i(1), inside(shaped(array({c('b')}), {1}))}), " 1 'b'", " ( 1 'bb' [1] )"},
        {array({i(1), inside(text("a"))}), " 1 'a'", " [. 1 'a' ATOM FIRST .]"},
        {array({named(i(0), "#END", mark::named | mark::hidden), i(1)}), " #END 1", " ( 0 1 )"},
    });
}

TEST(Writers, EnclosedValues) {
    const auto vector = [] { return array({i(1), i(2), i(3)}); };
    expect({
        {enclosed(vector(), 0), " `(  1 2 3  )`", " `( 1 2 3 )`"},
        {enclosed(shaped(array({i(1), i(2)}), {2, 1}), 0), " `(  1 2  )`", " `( 1 2 )` [ 2 1 ]"},
        {enclosed(vector(), 1), " `(  1 2 3  )`", " ( 1 2 3 ) ATOM"},
        {enclosed(text("ab"), 0), " `( 'ab' )`", " 'ab' ATOM"},
        {lone(vector(), 0), " `(  1 2 3  )`", " `( 1 2 3 )`"},
        {lone(vector(), 2), " `(  1 2 3  )`", " ( 1 2 3 ) ATOM FIRST"},
        {array({i(1), inside(lone(vector(), 0))}), " 1  `(  1 2 3  )` ", " [. 1 `( 1 2 3 )` .]"},
        {enclosed(empty(HASINTEGER), 0), " `( .\n  )`", " `( )`"},
        {with(enclosed(vector(), 0), CONDITIONAL), " `(  1 2 3  )` IF_NO", " `( 1 2 3 )` IF_NO"},
        {array({i(1), inside(enclosed(vector(), 1))}), " 1  `(  1 2 3  )` ",
         " [. 1 ( 1 2 3 ) ATOM .]"},
    });
}

TEST(Writers, PackedAndGeneralElementsLookAlike) {
    const auto both = [](Space space) {
        const std::string packed = displayed(space) + as_source(space);
        own_elements(space);
        EXPECT_EQ(displayed(space) + as_source(space), packed);
        dereferencepoint(&space);
    };
    both(array({i(1), i(-2)}));
    both(array({i(1, form::boolean), i(0, form::boolean)}));
    both(array({r(1), r(2.5), r(1e300)}));
    both(array({hyper(tag::complex, {1, 2}), hyper(tag::complex, {3, 0})}));
    both(shaped(text("abcdef"), {3, 2}));
}

TEST(Writers, Cells) {
    expect({
        {local(kind::LOCAL_VARIABLE, 1), " . STACK VARIABLE:\t&2", " &2"},
        {local(kind::LOCAL_ADDRESS, 0), " . STACK ADDRESS:\t&1", " @&1"},
        {named_cell(kind::ADDRESS, ISADDRESS | ISOPERATOR, op::SGIG, "A"), " . GLOBAL ADDRESS:\tA",
         " @A"},
        {named_cell(kind::ADDRESS, ISADDRESS | ISLOCAL, 0, nullptr), " ADDRESS:\t", " @"},
        {named_cell(kind::VARIABLE, ISVARIABLE, op::SAIL, "A"), " . SAIL VARIABLE:\t $A", "\n $A"},
        {named_cell(kind::VARIABLE, ISVARIABLE, op::SAIG, "A"), " . SAIG . VARIABLE:\t _A",
         "\n _A"},
        {named_cell(kind::VARIABLE, ISVARIABLE | CONDITIONAL, op::SGIG, "a b"), " . VARIABLE:\ta b",
         "\n\x02"
         "a b\x03 IF_NO"},
        {array({inside(instruction(op::ADD, "+"))}), "  + ", " ( + )"},
        {named_cell(kind::LABEL, ISADDRESS, 0, "%L"), " . LABEL:\t\t%L", "\n @%L"},
        {named_cell(kind::UNUSED, ISVARIABLE, 0, nullptr), " . Unused name!\n",
         " . Unused name!\n"},
        {instruction(op::ADD, "+"), " . OPERATOR:\t\t+", " +"},
        {instruction(op::PRINT, "PRINT"), " . OPERATOR:\t\tPRINT\n", " PRINT"},
        {instruction(op::JUMP, "JUMP"), " . OPERATOR:\t\tJUMP", " JUMP\n"},
        {instruction(op::REDUCE, "+ //", op::ADD), " . OPERATOR:\t\tADD . OPERATOR:\t\t+ //",
         " + //"},
        {instruction(op::NOOP, " hm ", op::CONTEXT), " . COMMENT:\t\t hm ", " \" hm \"\n"},
        {instruction(op::NOOP, "%L"), " . OPERATOR:\t\t%L", " %L\n"},
        {instruction(op::NOOP, nullptr), " . OPERATOR:\t\tNOOP", " NOOP"},
        {instruction(op::IF_YES, "+ ?Y", op::ADD), " . OPERATOR:\t\tADD . OPERATOR:\t\t+ ?Y",
         " + ?Y"},
        {instruction(op::IF_NO, nullptr, op::REDUCE, op::ADD),
         " . OPERATOR:\t\tADD REDUCE . OPERATOR:\t\tIF_NO", " ADD REDUCE"},
        {instruction(op::IF_NO, nullptr, kind::FUNCTION), " . OPERATOR:\t\tIF_NO", " IF_NO"},
        {instruction(op::POWER, ""), " . OPERATOR:\t\t", " "},
    });
}

TEST(Writers, Functions) {
    const auto end = [] { return instruction(op::FUNCTIONEND, ";"); };
    expect({
        {function(1, 0, "MONADIC", {scalar(i(1)), instruction(op::ADD, "+"), end()}),
         "\n MONADIC\n    1 + ;\n", "\n MONADIC\n    1 + ;\n"},
        {function(-1, 0, "NEADIC", {end()}, ISFUNCTION | ISOPERATOR), "\n NEADIC ; OPERATOR\n",
         "\n NEADIC ; OPERATOR\n"},
        {function(5, 2, nullptr, {end()}), "\n VARS 2 ARGS 5 FUNCTION\n    ;\n",
         "\n VARS 2 ARGS 5 FUNCTION\n    ;\n"},
        {function(0, 0, nullptr,
                  {named_cell(kind::VARIABLE, ISVARIABLE, op::SGIG, "X"),
                   function(2, 0, nullptr, {end()}), end()}),
         "\n NILADIC\n   \n   X\n    DYADIC\n       ;\n    ;\n",
         "\n NILADIC\n   \n   X\n    DYADIC\n       ;\n    ;\n"},
    });
}

TEST(Writers, StackOfCells) {
    Memory memory;
    Space cells[3] = {Space{}, scalar(i(3)), empty()};
    dumpstack(memory.stream(), cells + 1, cells + 2);
    dumpstack(memory.stream(), cells + 1, cells);
    EXPECT_EQ(memory.text(), " 3\n#NIL\n\n.\n.\n");
    dereferencepoint(&cells[2]);
}

// Deeper than any native stack of the usual size.
TEST(Writers, NestingThatTheStackCanNotTakeIsReported) {
    measure_native_stack();
    Space deep = array({i(1)});
    for (int level = 0; level < 1000000; ++level)
        deep = array({inside(deep)});
    testing::internal::CaptureStderr();
    EXPECT_THROW(displayed(deep), ErrorJump);
    EXPECT_FALSE(PrintOut);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "\n806 - stack full.\n\n");
    dereferencepoint(&deep);
}

TEST(Writers, AnInterruptIsTakenBetweenHundreds) {
    Space text_of_many = text(std::string(150, 'x'));
    Memory memory;
    note_signal(SIGINT);
    testing::internal::CaptureStdout();
    EXPECT_THROW(dump(memory.stream(), "", text_of_many), ErrorJump);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n\n** User interrupt. **\n");
    EXPECT_EQ(memory.text(), std::string(100, 'x'));
    EXPECT_TRUE(PrintOut);
    EXPECT_FALSE(signal_noted());
    PrintOut = false;
    A_Problem = 0;
    dereferencepoint(&text_of_many);
}

} // namespace
} // namespace tessor
