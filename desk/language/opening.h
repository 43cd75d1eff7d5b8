// What may stand at a place of a script: asked of the compiler, which reads what stands before it
// and then meets one word or another.
#pragma once

#include "language/model.h"

#include <QStringList>

#include <optional>

// What the compiler has read when it comes to the place.
struct Opening {
    Source before;      // the text before the place without what does not matter there, mended
    Facts facts;        // of that text and a token that is none
    QStringList putIn;  // names that a mend declares; the script does not have them

    // Whether the token was asked for there, perhaps beside others.
    bool expects(Token code) const;
    // The first word of the innermost statement that is open, TOKEN_UNKNOWN if none is.
    Token statement() const;
};

// None where the compiler does not come, whatever is mended: after the program, for one, or
// within a comment. A `;` that is missing at the end of the line before is put in, and so is the
// end of a head that statements follow. Statements before the place that cannot be passed are
// left out, and one that begins with a name is taken for an assignment.
std::optional<Opening> OpeningAt(const Model& model, int offset);

// Those of the words that may stand there. Each is a reserved word or, where one comes next, a
// type.
QStringList WordsThatMayStand(const Opening& opening, const QStringList& words);
