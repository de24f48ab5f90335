// The instruction table: name, class, behaviour and text code of every instruction number.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace tessor {

/// Instruction numbers.
namespace op {
enum Instruction : std::int16_t {
#define INSTRUCTION(name, instruction_class, behaviour, code) name,
#include "values/instructions.def"
#undef INSTRUCTION
};
} // namespace op

/// What the engine does with an instruction after class preparation.
enum class Behaviour : std::uint8_t { runs, skip, r993, r994 };

struct InstructionRow {
    std::string_view name;
    std::uint8_t instruction_class;
    Behaviour behaviour;
    std::string_view code;
};

inline constexpr std::array instruction_table = {
#define INSTRUCTION(name, instruction_class, behaviour, code)                                      \
    InstructionRow{#name, instruction_class, Behaviour::behaviour, code},
#include "values/instructions.def"
#undef INSTRUCTION
};

inline constexpr int instruction_count = 270;
static_assert(instruction_table.size() == instruction_count);
static_assert(op::ADD == 122 && op::RESHAPE == 160 && op::FUNCTIONEND == 243 && op::SLIL == 268);

/// Name of an instruction as listings and reports show it; blank for numbers outside the table and
/// for the unused last number.
constexpr std::string_view instruction_name(int number) {
    if (number < 0 || number >= op::BLANK)
        return "";
    return instruction_table[static_cast<std::size_t>(number)].name;
}

} // namespace tessor
