// A script in an editor, and its places as the language server protocol counts them: lines and
// UTF-16 units from 0, where a line ends with CR LF, LF or a lone CR. The compiler knows LF
// alone.
#pragma once

#include "language/model.h"

#include <QJsonObject>

// The lines of a text as the protocol divides them.
class LspLines {
public:
    explicit LspLines(const QString& text);

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
    int size_;
};

// What requests about one script are answered from. The model is always that of the text.
struct Script {
    QString uri;
    int version = 0;
    Model model;
    LspLines lines;

    const Source& source() const { return model.source; }
    const Facts& facts() const { return model.facts; }
};
