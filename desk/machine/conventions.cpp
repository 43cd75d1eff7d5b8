#include "machine/conventions.h"

#include "qyx_text.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

struct MathRow {
    QLatin1String name;
    MathFunction function;
};

constexpr MathRow MATH_ROWS[] = {
    {"cos"_L1, std::cos},     {"sin"_L1, std::sin},     {"tan"_L1, std::tan},
    {"acos"_L1, std::acos},   {"asin"_L1, std::asin},   {"atan"_L1, std::atan},
    {"ceil"_L1, std::ceil},   {"floor"_L1, std::floor}, {"round"_L1, std::round},
    {"exp"_L1, std::exp},     {"fabs"_L1, std::fabs},   {"ln"_L1, std::log},
    {"log10"_L1, std::log10}, {"sqrt"_L1, std::sqrt},
};

}  // namespace

bool IsStepDown(const Code& code, const Instruction& instruction) {
    return instruction.operation == Operation::Subtract &&
           instruction.from.kind == OperandKind::Literal &&
           code.literals[static_cast<std::size_t>(instruction.from.index)].whole == 1;
}

bool IsResultPushed(const Code& code, CallResult choice, int next) {
    const bool isInCode = next < static_cast<int>(code.instructions.size());
    const bool isDropped =
        isInCode && code.instructions[static_cast<std::size_t>(next)].to.kind == OperandKind::Nil;
    return choice == CallResult::Both || (choice == CallResult::ByUse && isDropped);
}

MathFunction FindMathFunction(const QString& name) {
    const auto* const found =
        std::find_if(std::begin(MATH_ROWS), std::end(MATH_ROWS),
                     [&name](const MathRow& row) { return row.name == name; });
    return found == std::end(MATH_ROWS) ? nullptr : found->function;
}

std::size_t EngineNumbersOf(const BuiltIn& builtIn) {
    constexpr std::size_t numbersOfRegister = 4;
    return builtIn.parameters.size() < numbersOfRegister ? 1 : numbersOfRegister;
}
