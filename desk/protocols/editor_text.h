// The text of a script as an editor has it, which changes piece by piece.
#pragma once

#include <QJsonObject>
#include <QString>

#include <vector>

// Knows where its lines begin, so that a change takes the time of what follows it and no more.
class EditorText {
public:
    explicit EditorText(QString text = QString());

    const QString& text() const { return text_; }

    // Does a TextDocumentContentChangeEvent. Positions beyond a line or the text stand for the
    // end of that; a change without a range is the whole text.
    void change(const QJsonObject& event);

private:
    QString text_;
    std::vector<int> begins_;  // of its lines; the first is 0

    int offsetOf(const QJsonObject& position) const;
    int endOf(std::size_t line) const;
    void replace(int begin, int end, const QString& with);
};
