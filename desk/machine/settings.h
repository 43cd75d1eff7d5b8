// Variables of the program, and what users write about them: "NAME=VALUE", "NAME>VALUE".
#pragma once

#include "machine/code.h"
#include "machine/value.h"

#include <QString>

// Stands for the tick counter where the index of a variable is meant.
constexpr int TICK_VARIABLE = -2;
bool IsTick(const QString& name);

// The name of a variable, or "TICK".
QString NameOfVariable(const CodeUnit& program, int variable);

// A variable by the index of its declaration, or why there is none.
struct FoundVariable {
    int index = NOWHERE;
    QString fault;  // no full stop at its end
};

// The variable of that name in any spelling; the fault names the nearest one.
FoundVariable FindVariable(const CodeUnit& program, const QString& name);
// The same, or the tick counter, for what is set once.
FoundVariable FindSettable(const CodeUnit& program, const QString& name);

// "VAR_INPUT"
QLatin1String KeywordOf(Section section);

struct Setting {
    int variable = NOWHERE;
    Value value;
};

// Reads a value for a variable of the program. What is wrong with it, empty if nothing is.
QString ReadValueFor(const CodeUnit& program, int variable, const QString& text, Value& value);

// Reads "NAME=VALUE", where NAME may be TICK. What is wrong with it, empty if nothing is.
QString ReadSetting(const CodeUnit& program, const QString& text, Setting& setting);

enum class Comparison : unsigned char {
    Equal,
    NotEqual,
    LessOrEqual,
    GreaterOrEqual,
    Less,
    Greater
};

// What a variable is compared with.
struct Condition {
    Comparison comparison = Comparison::Equal;
    Setting setting;
};

// Reads "NAME=VALUE", or the same with <, >, <=, >= or <>. What is wrong with it, empty if
// nothing is.
QString ReadCondition(const CodeUnit& program, const QString& text, Condition& condition);

// Whether the condition holds for a value of its variable.
bool Holds(const Condition& condition, const Value& value);
