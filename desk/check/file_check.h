// All errors of one script, found one after the other.
//
// The compiler tells its first error; the piece that holds it is taken out and the rest compiled
// again, until nothing is left. Whoever owns the check compiles: take() gets what came of the
// text that is next, and tells whether there is another.
#pragma once

#include "check/diagnostic.h"
#include "check/edits.h"
#include "facts/facts.h"

#include <QPair>
#include <QSet>

#include <functional>

// What is found beside the compiler's warnings in a script that compiles.
using FindMore = std::function<std::vector<Diagnostic>(const Source& source, const Facts& facts)>;

class FileCheck {
    // A name that means nothing certain: the unit that has it, by its begin, NONE for all units,
    // and its folded text.
    using DoubtfulName = QPair<int, QString>;

public:
    FileCheck(const Source& source, int maxErrors, FindMore findMore = {});

    // The text to be compiled next.
    const Source& next() const { return edited_; }
    // What leads from the script to that text.
    const Edits& edits() const { return edits_; }
    // Takes what the compiler told of it. False when the check has ended.
    bool take(const Facts& facts);

    // What was found, in the order of the script. With an error, warnings are those that do not
    // depend on a piece that was taken out.
    FileReport report() const;

private:
    Source source_;
    Source edited_;
    Edits edits_;
    int maxErrors_;
    FindMore findMore_;
    int errors_ = 0;
    int roundsLeft_;
    QSet<DoubtfulName> doubtfulNames_;
    QSet<DoubtfulName> arrays_;  // those that are refused, of which the elements have the type
    std::vector<Diagnostic> found_;
    std::vector<Diagnostic> warnings_;

    Diagnostic diagnosticOf(const Facts& facts, const MessageFact& message) const;
    void takeWarnings(const Facts& facts);
    void takeMore(const Facts& facts);
    bool isProposed(const QString& name) const;
    bool dependsOnEdits(const Facts& facts, const MessageFact& message) const;
    bool isConsequence(const Facts& facts, const std::vector<Help>& helps) const;
    bool isAfterRepair(const Facts& facts) const;
    bool isAtError(const Facts& facts) const;
    bool isEndAfterEdit(const Facts& facts) const;
    bool isAtEdit(const Facts& facts) const;
    bool isDoubtful(const Facts& facts) const;
    bool isIndexOfArray(const Facts& facts) const;
    bool isDoubtfulName(int unit, const QString& name) const;
    int unitAt(const Facts& facts, int place) const;
    Facts factsOfScript(const Facts& facts) const;
    std::vector<Edit> mendOfScript(std::vector<Edit> mend) const;
    void reportError(const Facts& facts, std::vector<Help> helps);
    bool mend(const Facts& facts, const std::vector<Help>& helps);
    bool repair(const Facts& facts);
    bool apply(const Repair& repair, int unit);
    void stop(const Facts& facts, const QString& why);
};
