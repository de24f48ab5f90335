// The two 40-byte records behind every value and every program cell.
//
// A Space describes a value or a cell; a DataElement is one general element of an array. Both are
// trivially copyable and start with a 32-bit word that tells what they are, so a cell of a function
// can stand in an element block. Blocks behind the pointers are counted (block.h); who owns what is
// told in refderef.h. A character, integer or real scalar without a name needs no block: it lives
// in the Space itself (ISINPLACE).
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tessor {

struct MeaningTable;
struct DataElement;

/// Values of Space::rank below 0: kinds of cell.
namespace kind {
enum : std::int32_t {
    INVALID = -1,
    UNUSED = -2,
    LABEL = -3,
    VARIABLE = -4,
    FUNCTION = -5,
    OPERATOR = -6,
    ADDRESS = -7,
    LOCAL_ADDRESS = -8,
    LOCAL_VARIABLE = -9,
    END = -10,
};
}

/// Element tags.
namespace tag {
enum : std::int32_t {
    none = 0,
    subarray = 1,
    ascii = 2,
    unicode = 3,
    integer = 4,
    real = 5,
    complex = 6,
    quaternion = 7,
    octonion = 8,
    continuation = 9,
    filler = 10,
    file = 11,
    function = -5,
};
}

/// How an element was written or computed: decides how it prints, and what logic makes of it.
namespace form {
enum : std::uint16_t {
    text = 0,
    boolean = 1,
    logical = 2,
    binary = 4,
    number = 8,
    cartesian = 0x10,
    polar = 0x40,
    number_cartesian = 0x18,
    number_polar = 0x48,
    time = 0x200,
    constant = 0x1000,
};
}

/// Bits of an element's marks.
namespace mark {
enum : std::uint16_t {
    probable = 0x1,  ///< a truth value that came out of a draw
    degrees = 0x20,  ///< polar angles print in degrees, behind the letter d
    r = 0x100,       ///< the letter r was written in front
    named = 0x4000,  ///< a named constant: the name prints in place of the value
    hidden = 0x8000, ///< prints as nothing
};
}

/// Flags of Space::type.
enum : std::uint32_t {
    ISVARIABLE = 0x1,
    ISLOCAL = 0x2,
    ISADDRESS = 0x4,
    ISFUNCTION = 0x8,
    ISOPERATOR = 0x10,
    INOUT = 0x20,
    COMPLEXED = 0x40,
    STRUCTURED = 0x80,
    HASASCII = 0x100,
    HASUNICODE = 0x200,
    HASINTEGER = 0x400,
    HASREAL = 0x800,
    HASCOMPLEX = 0x1000,
    HASQUATERNION = 0x2000,
    HASOCTONION = 0x4000,
    HASFUNCTION = 0x8000,
    ISSCALAR = 0x10000,
    ISONEELEMENT = 0x20000,
    ISVECTOR = 0x40000,
    ISARRAY = 0x80000,
    ISSTRUCTURE = 0x100000,
    ISEMPTY = 0x200000,
    HASFILE = 0x400000,
    ISPROBABLE = 0x800000,
    SAMERANK = 0x1000000,
    LEFTSCALAR = 0x2000000,
    ISINPLACE = 0x4000000, ///< storage only: never part of a comparison of types, see type_of
    CONDITIONAL = 0x10000000,
    YES = 0x20000000,
    GLOBAL = 0x40000000,
    GLOBALCHANGE = 0x80000000,
};

/// The bits that say which kinds of element an array holds.
inline constexpr std::uint32_t element_kinds = 0x407f00;
/// The bits of the five numeric kinds.
inline constexpr std::uint32_t numeric_kinds = 0x7c00;
/// ASCII to OCTONION.
inline constexpr std::uint32_t simple_kinds = 0x7f00;

struct Space {
    std::int32_t rank;
    std::uint32_t type;
    union {
        void* shape_pointer; ///< arrays: block of rank integer elements (either layout)
        char* name;          ///< named cells: counted text
    };
    union {
        std::int16_t depth;     ///< arrays
        std::int16_t arguments; ///< FUNCTION: arity, negative for neadic
        std::int16_t operation; ///< OPERATOR: instruction number
    };
    union {
        std::uint16_t second;       ///< arrays: 0
        std::uint16_t locals;       ///< FUNCTION: number of local variables
        std::uint16_t suboperation; ///< OPERATOR: modifier; VARIABLE, ADDRESS: addressing class
    };
    std::uint32_t elements;
    union {
        struct {
            std::uint32_t first_index;
            std::int32_t last_index;
        };
        MeaningTable* table; ///< named and closing cells: the link in force; counted
        void* yielded;       ///< header cell of a function body: the record of YIELD; counted
        struct {             ///< ISINPLACE: what a DataElement keeps beside its value
            std::uint16_t form;
            std::uint16_t marks;
            std::int32_t tag;
        };
    };
    union {
        void* data_pointer; ///< counted block, null when empty
        Space* target;      ///< named cells: the name's Space
        Space* body;        ///< FUNCTION: block of cells, cell 0 the header
        double real;        ///< ISINPLACE
        std::int32_t integer;
        std::uint8_t character;
    };
};

struct DataElement {
    std::int32_t tag;
    std::uint16_t form;
    std::uint16_t marks;
    union {
        struct {
            char* name; ///< counted text of a named constant, else null
            union {
                std::uint8_t character;
                std::uint16_t unicode;
                std::int32_t integer;
                double real;
                double complex[2];
                double* octonion; ///< counted block of eight
                Space* subarray;  ///< counted block of one Space
            };
        };
        double quaternion[4]; ///< takes the place of the name
        struct {              ///< file
            char* path;
            void* stream; ///< counted block with the stream, shared by all copies of the element
            char* second_text;
            Space* template_space;
        };
    };
};

static_assert(sizeof(Space) == 40 && sizeof(DataElement) == 40);
static_assert(offsetof(Space, type) == 4 && offsetof(Space, shape_pointer) == 8
              && offsetof(Space, depth) == 16 && offsetof(Space, second) == 18
              && offsetof(Space, elements) == 20 && offsetof(Space, first_index) == 24
              && offsetof(Space, last_index) == 28 && offsetof(Space, data_pointer) == 32);
static_assert(offsetof(DataElement, form) == 4 && offsetof(DataElement, marks) == 6
              && offsetof(DataElement, name) == 8 && offsetof(DataElement, real) == 16
              && offsetof(DataElement, quaternion) == 8 && offsetof(DataElement, stream) == 16);

// Scalars in place are made and copied by whole 8-byte words. A wider load would have to wait until
// what was just stored in parts has reached memory, which costs more than a scalar verb.

/// Two 32-bit fields that follow each other, as one word.
constexpr std::uint64_t word_of(std::uint32_t first, std::uint32_t second) {
    if constexpr (std::endian::native == std::endian::little)
        return first | std::uint64_t{second} << 32;
    else
        return second | std::uint64_t{first} << 32;
}

/// form, marks and tag of a scalar in place, as one word.
constexpr std::uint64_t look_word(std::uint16_t form, std::uint16_t marks, std::int32_t tag) {
    const std::uint32_t first = std::endian::native == std::endian::little
                                    ? form | std::uint32_t{marks} << 16
                                    : marks | std::uint32_t{form} << 16;
    return word_of(first, static_cast<std::uint32_t>(tag));
}

/// Word i of a record.
inline std::uint64_t get_word(const Space& space, int i) {
    std::uint64_t word;
    std::memcpy(&word, reinterpret_cast<const char*>(&space) + 8 * i, 8);
    return word;
}
/// Stores word i of a record.
inline void put_word(Space& space, int i, std::uint64_t word) {
    std::memcpy(reinterpret_cast<char*>(&space) + 8 * i, &word, 8);
}

/// Copies a record; counts are the caller's affair.
inline void copy_words(Space& to, const Space& from) {
    for (int i = 0; i < 5; ++i) {
        std::uint64_t word = get_word(from, i);
        asm("" : "+r"(word)); // keeps the words apart
        put_word(to, i, word);
    }
}

/// The type word as the language knows it, without what only tells where the value is stored.
constexpr std::uint32_t type_of(const Space& space) {
    return space.type & ~ISINPLACE;
}

/// The element-kind bit of a tag; STRUCTURED for a subarray, HASFUNCTION for a function, else 0.
constexpr std::uint32_t kind_bit(std::int32_t tag) {
    switch (tag) {
    case tag::subarray: return STRUCTURED;
    case tag::ascii: return HASASCII;
    case tag::unicode: return HASUNICODE;
    case tag::integer: return HASINTEGER;
    case tag::real: return HASREAL;
    case tag::complex: return HASCOMPLEX;
    case tag::quaternion: return HASQUATERNION;
    case tag::octonion: return HASOCTONION;
    case tag::file: return HASFILE;
    case tag::function: return HASFUNCTION;
    default: return 0;
    }
}

/// rank and type of a number in place of which there is no more to say.
constexpr std::uint64_t plain_word(std::int32_t tag) {
    return word_of(0, ISSCALAR | ISINPLACE | kind_bit(tag));
}

/// More than one bit of a word.
constexpr bool several(std::uint32_t bits) {
    return (bits & (bits - 1)) != 0;
}

} // namespace tessor
