// What a literal stands for.
#pragma once

#include "language/names.h"

// An integer of a script.
struct Integer {
    quint64 value;
    int base;
};

// Nothing for what is no integer or lies beyond 64 bits.
std::optional<Integer> IntegerOf(QStringView text);

// The value in a base, as a script writes it: "16#FF".
QString InBase(quint64 value, int base);

bool IsLiteral(Token code);  // a number, a string, TRUE or FALSE

// The name of a type, "no type" for none.
QString NameOfType(Typ type);

// The literal of a token with its type and its value in other bases, in Markdown.
QString LiteralText(const Model& model, int token);
