// Markdown, as the pages of the manual use it, as plain text for a terminal.
#pragma once

#include <QString>
#include <QStringList>

struct TextForm {
    int width;       // where lines are broken, of code excepted
    bool hasColors;  // whether what is marked in the page is bold
};

// Paragraphs, lists, tables and fences, each followed by a line feed and set apart by an empty
// line. Comments are left out, links are their texts; code in a line keeps its backticks unless
// it is bold.
QString PlainText(const QStringList& markdown, TextForm form);

// One paragraph that is bold as a whole, whatever is marked in it.
QString BoldText(const QString& markdown, TextForm form);
