// A script in an editor, and its places as the language server protocol counts them: lines and
// UTF-16 units from 0, where a line ends with CR LF, LF or a lone CR. The compiler knows LF
// alone, and drops every CR before it reads.
#pragma once

#include "format/line_ends.h"
#include "language/model.h"

#include <QJsonObject>

// The lines of a text as the protocol divides them. Offsets are those of the text as the compiler
// reads it, without any CR.
class LspLines {
public:
    // The text may have CRs.
    explicit LspLines(const QString& text);

    const LineEnds& ends() const { return ends_; }

    // The position of an offset from 0 to the size of the text.
    QJsonObject positionOf(int offset) const;
    QJsonObject rangeOf(Span span) const;

    // The offset of a position; one beyond its line or the text is taken for the end of that.
    // What is no position is taken for the begin of the text.
    int offsetOf(const QJsonObject& position) const;
    Span spanOf(const QJsonObject& range) const;

private:
    struct Line {
        int begin;
        int end;  // without the characters that end it
    };
    std::vector<Line> lines_;
    LineEnds ends_;
};

// The text without any CR, as the compiler reads it.
QString CompiledText(QString text);

// What requests about one script are answered from. The model is always that of the text.
struct Script {
    QString uri;
    int version = 0;
    Model model;
    LspLines lines;
    QJsonObject client = {};  // the capabilities that the client told at "initialize"

    const Source& source() const { return model.source; }
    const Facts& facts() const { return model.facts; }
};

// Thrown where a request cannot be fulfilled: why, for the user, without a full stop.
struct RequestFailed {
    QString why;
};
