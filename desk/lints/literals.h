// Numbers as scripts write them.
#pragma once

#include "lints/subject.h"

#include <QStringView>

#include <optional>

// A number with its signs.
struct Number {
    double value;  // exact as far as a double is, which is beyond all types of integers
    bool isReal;   // written with a "."
    bool hasBase;
    bool isNegative;
};

// What a token of the code TOKEN_NUMBER stands for.
Number NumberOf(QStringView text);

// The number, with its signs, that the tokens from one to before another are; nothing if they
// are anything else.
std::optional<Number> SignedNumber(const Subject& subject, int begin, int end);
