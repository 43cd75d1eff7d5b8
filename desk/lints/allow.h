// Comments that allow what lints find: "// yxst:allow ID, ID".
#pragma once

#include "check/diagnostic.h"
#include "lints/subject.h"

#include <QString>

#include <vector>

// An identifier that a comment allows on its line.
struct Allowance {
    QString id;  // empty where the comment names none
    Span span;
    int line;
};

// In the order of the subject.
std::vector<Allowance> AllowancesOf(const Subject& subject);
