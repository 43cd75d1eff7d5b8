// The place of an error and what surrounds it.
#pragma once

#include "check/edits.h"
#include "check/tokens.h"

#include <QLatin1String>

// What all repairs look at: the text that was compiled, what the compiler told of it, and the
// token at which it stopped. If that could not be read it is the next one that could.
struct Scene {
    const Source& source;
    const Facts& facts;
    Tokens tokens;
    int error;

    Scene(const Source& ofSource, const Facts& ofFacts);

    // Whether the error is of that kind, by a constant of the catalogue.
    bool isError(QLatin1String constant) const;
    bool isExpected(Token code) const;

    const UnitFact& unit() const;            // the one that is open
    const StatementFact* statement() const;  // the innermost that is open, or null
    const StatementFact* parentOf(const StatementFact& statement) const;
    const DeclarationFact* declaration() const;  // the one that is open, or null

    // The first token from an index on that has one of the codes, before the `;` or the boundary
    // that ends the search; NONE if there is none.
    int findInStatement(int from, std::initializer_list<Token> wanted) const;

    // Whether the token is a name that nothing has which the open unit sees; that of a type is
    // not.
    bool isUndeclared(int index) const;
};

// Repairs made of one edit. Its text is set apart from what stands beside it.
Repair TakeOut(const Scene& scene, Span span, const QString& neutral = QString());
Repair PutIn(int offset, const QString& text);

// The span from one token to another, both included.
Span SpanOver(const Scene& scene, int first, int last);
