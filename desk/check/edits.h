// Changes to a script's text, and where the places of the changed text come from.
#pragma once

#include "facts/source.h"

#include <QStringList>

#include <optional>
#include <vector>

// A piece of the script and what stands in its place.
struct Edit {
    Span span;  // empty where something is put in
    QString text;
    bool isMend = false;  // whether it is what the script should have: nothing follows from it
};

// A text of the same extent as a piece: the neutral text, then blanks, with the line feeds of the
// piece where they are. It is longer where the neutral text has no room on the first line.
QString NeutralText(QStringView piece, const QString& neutral);

// The same for the piece of a script: one that blanks it out, line feeds apart.
Edit BlankOut(const Source& source, Span span);

// One that takes out a piece, with the blanks that are one too many then, or with its whole line.
Edit TakeOut(const Source& source, Span span);

// Whether all comments in what the edits replace are in what they write.
bool KeepComments(const Source& source, const std::vector<Edit>& edits);

// What is proposed to get past an error: edits, none if there is no way past.
struct Repair {
    std::vector<Edit> edits;  // in the text that was compiled
    // Names about which nothing is known for certain any more: a message about a piece that has
    // one of them may follow from the error. The first are those of the open unit, the others
    // are seen by all units.
    QStringList doubtfulNames;
    QStringList doubtfulDefinitions;
    QStringList arrays;  // of the open unit: variables in place of arrays, which are refused
};

// Edits of one script, in the order of the script, none within another.
class Edits {
public:
    // Adds an edit in the place of those that lie within its span.
    void add(Edit edit);

    const std::vector<Edit>& all() const { return edits_; }
    QString applyTo(const QString& text) const;

    // Where a place of the changed text comes from. One within a changed piece comes from the
    // begin of that, or for the end of a piece from its end.
    int originalBegin(int offset) const;
    int originalEnd(int offset) const;
    Span original(Span span) const { return {originalBegin(span.begin), originalEnd(span.end)}; }

    // The piece of the script that stands unchanged in a piece of the changed text, or the place
    // for an empty one; none if the piece holds some of a change.
    std::optional<Span> exact(Span span) const;

private:
    std::vector<Edit> edits_;
};
