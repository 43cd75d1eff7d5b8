// Lints: what compiles, and hardly does what was meant.
#pragma once

#include "check/diagnostic.h"
#include "facts/facts.h"

#include <QStringList>

#include <vector>

// All that the lints find in a script that compiles, in its order, without those that are
// disabled by their identifiers and those that a comment of the script allows. It is nothing for
// a script with an error.
std::vector<Diagnostic> FindLints(const Source& source, const Facts& facts,
                                  const QStringList& disabled);

// The identifiers of all lints, in the order of the table.
QStringList LintIds();

// The lint that may be meant by an identifier that none has, empty if none is like it.
QString NearestLint(const QString& id);
