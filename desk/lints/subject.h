// What the lints look at, and the questions that several of them ask.
#pragma once

#include "check/diagnostic.h"
#include "check/tokens.h"
#include "facts/facts.h"

#include <QSet>

// A script that compiles. It holds for as long as its source and facts.
struct Subject {
    const Source& source;
    const Facts& facts;
    Tokens tokens;

    Subject(const Source& ofSource, const Facts& ofFacts)
        : source(ofSource), facts(ofFacts), tokens(ofSource, ofFacts) {}

    const NameFact& name(int index) const { return facts.names[static_cast<std::size_t>(index)]; }
    const StatementFact& statement(int index) const {
        return facts.statements[static_cast<std::size_t>(index)];
    }
    QStringView textOf(const NameFact& name) const { return facts.textOf(name.text); }
    // The line of an offset, from 1.
    int lineOf(int offset) const { return source.placeOf(offset).line; }
};

// A finding; whoever runs the lints adds the rest.
Diagnostic Finding(Span span, const QString& message);
Diagnostic Finding(Span span, const QString& message, const QString& help);
// The mark of the help stands at a place of its own.
Diagnostic Finding(Span span, const QString& message, const QString& help, Span helpSpan);

// A piece of the script in one line, its tokens without what stands between them but blanks.
QString OneLine(const Subject& subject, Span span);

// A text of which the middle is left out if it is long.
QString Shortened(const QString& text);

bool IsLoop(const StatementFact& statement);
bool IsReal(Typ type);

// The statement that begins at an offset, NONE if none does. Of several it is the outermost.
int StatementAt(const Subject& subject, int offset);

// What is used at a token, null if nothing is.
const UseFact* UseAt(const Subject& subject, int token);

// The name of the unit of a statement.
QStringView UnitOf(const Subject& subject, const StatementFact& statement);

// The token of the ":=" of a declaration, if it has an initial value.
int AssignOf(const Subject& subject, const NameFact& name);

// The labels that a GOTO names, by their index among the names.
QSet<int> LabelsOfGotos(const Subject& subject);
