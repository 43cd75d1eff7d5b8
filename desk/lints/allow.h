// Comments that allow what lints find: "// yxst:allow ID, ID".
//
// The first word is an identifier. So are those after it that are known, and those after a comma
// that are written like one, in small letters with a hyphen. The rest is for people.
#pragma once

#include "check/diagnostic.h"
#include "lints/subject.h"

#include <QString>

#include <vector>

// An identifier that a comment allows on its line.
struct Allowance {
    QString id;  // empty where the comment names none
    Span span;
    int line;                   // on which the comment begins
    bool isMisspelled = false;  // the marker, as in "yxst: allow"; it allows nothing
};

// In the order of the subject, by the identifiers that lints have.
std::vector<Allowance> AllowancesOf(const Subject& subject, const QSet<QString>& known);
