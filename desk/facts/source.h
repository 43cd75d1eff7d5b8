// A script as text, and the places in it.
#pragma once

#include <QString>
#include <QStringView>

#include <algorithm>
#include <vector>

// A place in a script, both parts counted from 1; columns count UTF-16 units.
struct Place {
    int line;
    int column;
};

// A piece of a script: offsets of its first character and of the one after its last.
struct Span {
    int begin = 0;
    int end = 0;

    bool isEmpty() const { return begin >= end; }
    int length() const { return end - begin; }
};

// The text of a script as the compiler reads it, divided into lines at its line feeds alone.
class Source {
public:
    Source() : Source(QString(), QString()) {}
    // The name is what messages call the script.
    Source(QString name, QString text);

    const QString& name() const { return name_; }
    const QString& text() const { return text_; }
    // What of a span lies within the text.
    QStringView text(Span span) const {
        const int begin = std::clamp(span.begin, 0, size());
        return QStringView(text_).mid(begin, std::clamp(span.end, begin, size()) - begin);
    }
    int size() const { return text_.size(); }

    // The place of an offset from 0 to the size of the text, and back. A place beyond the text or
    // its line is taken for the end of either, one before the text for its begin; column 0 is the
    // line feed before the line.
    Place placeOf(int offset) const;
    int offsetOf(Place place) const;

    int lineCount() const { return static_cast<int>(lines_.size()); }
    // A line by its number from 1, without its line feed.
    Span lineAt(int line) const;

private:
    QString name_;
    QString text_;
    std::vector<int> lines_;  // where each line begins
};
