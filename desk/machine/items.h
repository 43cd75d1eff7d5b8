// Target code as a text, divided into its items: the code file, a single line in which keyword
// and place tell where an item ends, or the listing, which holds an item a line.
#pragma once

#include "facts/source.h"

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

struct Items {
    QByteArray text;  // UTF-8, as it was read
    std::vector<Span>
        spans;  // in `text`, by bytes; an item is empty where a declaration is missing

    int count() const { return static_cast<int>(spans.size()); }
    // An item by its number from 1, as the listing counts them.
    std::string_view item(int number) const;
};

// What is wrong with a text of target code.
struct CodeFault {
    int item;         // its number from 1, 0 where it is about no single item
    QString message;  // no full stop at its end
};

struct ItemsResult {
    Items items;                     // up to the fault, if there is one
    std::optional<CodeFault> fault;  // why the text cannot be divided
};

// Divides a code file, or a listing, which is told by its line feeds. Whatever the text is, it
// ends, in time and memory linear in its size.
ItemsResult DivideIntoItems(const QByteArray& text);

// A text as messages show it, cut where it is long.
QString Shown(const QString& text);
inline QString ShownText(std::string_view utf8) {
    constexpr std::size_t enough = 1000;
    return Shown(QString::fromUtf8(utf8.data(), static_cast<int>(std::min(utf8.size(), enough))));
}

// An item as messages show it: `item 12 "MOV @x #A0"`.
QString NameOfItem(const Items& items, int number);
