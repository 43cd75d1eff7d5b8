// How the lines of a text end. The compiler drops every carriage return before it reads.
#pragma once

#include <QByteArray>
#include <QString>

struct LineEnds {
    bool areCrLf = false;    // those of the whole text, by its first line
    bool hasLoneCr = false;  // one stands within a line

    // The text of lines that end with LF, with these ends.
    QString applied(QString text) const;
    // Why the lines would not be the same again, a sentence without its full stop; else empty.
    QString fault() const;
};

LineEnds LineEndsOf(const QByteArray& bytes);
LineEnds LineEndsOf(const QString& text);
