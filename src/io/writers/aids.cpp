// What a person at a debugger calls.
#include "io/writers/dump.h"

#include "values/array.h"
#include "values/block.h"

#include <array>
#include <string_view>

namespace tessor {

namespace {

struct FlagName {
    std::uint32_t bit;
    const char* name;
};

constexpr std::array flag_names = {
    FlagName{ISVARIABLE, "ISVARIABLE"},
    FlagName{ISLOCAL, "ISLOCAL"},
    FlagName{ISADDRESS, "ISADDRESS"},
    FlagName{ISFUNCTION, "ISFUNCTION"},
    FlagName{INOUT, "INOUT"},
    FlagName{COMPLEXED, "COMPLEXED"},
    FlagName{GLOBAL, "GLOBAL"},
    FlagName{GLOBALCHANGE, "GLOBALCHANGE"},
    FlagName{STRUCTURED, "STRUCTURED"},
    FlagName{HASASCII, "HASASCII"},
    FlagName{HASUNICODE, "HASUNICODE"},
    FlagName{HASINTEGER, "HASINTEGER"},
    FlagName{HASREAL, "HASREAL"},
    FlagName{HASCOMPLEX, "HASCOMPLEX"},
    FlagName{HASQUATERNION, "HASQUATERNION"},
    FlagName{HASOCTONION, "HASOCTONION"},
    FlagName{HASFUNCTION, "HASFUNCTION"},
    FlagName{ISSCALAR, "ISSCALAR"},
    FlagName{ISONEELEMENT, "ISONEELEMENT"},
    FlagName{ISVECTOR, "ISVECTOR"},
    FlagName{ISARRAY, "ISARRAY"},
    FlagName{ISSTRUCTURE, "ISSTRUCTURE"},
    FlagName{ISEMPTY, "ISEMPTY"},
    FlagName{HASFILE, "HASFILE"},
    FlagName{ISPROBABLE, "ISPROBABLE"},
    FlagName{SAMERANK, "SAMERANK"},
    FlagName{LEFTSCALAR, "LEFTSCALAR"},
    FlagName{CONDITIONAL, "CONDITIONAL"},
    FlagName{ISOPERATOR, "ISOPERATOR"},
};

/// Words for a rank, from -10 to 1.
constexpr std::array<const char*, 12> rank_names = {
    "END",      "LOCAL VARIABLE", "LOCAL ADDRESS", "ADDRESS", "OPERATOR", "FUNCTION",
    "VARIABLE", "LABEL",          "UNUSED",        "INVALID", "SCALAR",   "ARRAY",
};

void show_rank(std::int32_t rank) {
    if (rank >= 2)
        std::printf("rank %d", rank);
    else if (rank >= kind::END)
        std::fputs(rank_names[static_cast<std::size_t>(rank - kind::END)], stdout);
}

void show_shape(const Space& space) {
    std::fputs(" shape: [ ", stdout);
    for (std::int32_t axis = 0; space.shape_pointer && axis < space.rank; ++axis)
        std::printf("%ld ", static_cast<long>(extent(space, axis)));
    std::fputc(']', stdout);
}

void show_contents(const Space& space) {
    const bool in_place = (space.type & ISINPLACE) != 0;
    std::printf("refr(data_pointer) %ld, refr(shape_pointer) %ld",
                static_cast<long>(refr(in_place ? nullptr : space.data_pointer)),
                static_cast<long>(refr(space.shape_pointer)));
    disass(stdout, "\n", space, 0, Mode::source);
}

} // namespace

void detail_type(const char* text, std::uint32_t type) {
    std::printf(" %s", text);
    if (type == 0)
        std::fputs(" END", stdout);
    for (const FlagName& flag : flag_names) {
        if (type & flag.bit)
            std::printf(" %s", flag.name);
        if ((type & flag.bit) == CONDITIONAL)
            std::fputs(type & YES ? " YES" : " NO", stdout);
    }
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

void type(std::uint32_t type) {
    detail_type("", type);
}

void at(const Space& space) {
    detail_type("", type_of(space));
    show_rank(space.rank);
    if (space.rank == kind::FUNCTION)
        std::printf(" arguments %d, locals %d,", space.arguments, space.locals);
    else
        std::printf(" depth %d,", space.depth);
    std::printf(" elements %d ", static_cast<int>(space.elements));
    const bool cell = (space.type & (ISVARIABLE | ISADDRESS | ISFUNCTION | ISOPERATOR)) != 0;
    if (!cell)
        show_shape(space);
    if (cell && space.name)
        std::fputs(space.name, stdout);
    else
        show_contents(space);
}

} // namespace tessor
