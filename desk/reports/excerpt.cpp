#include "reports/excerpt.h"

#include "reports/terminal_text.h"

#include <QVector>

#include <algorithm>
#include <vector>

namespace {

constexpr int ROOM = 100;        // columns of an excerpt
constexpr int REACH = 2 * ROOM;  // characters on each side of a mark that may be seen
constexpr int TAB = 4;           // columns between the stops
constexpr ShownCell ELLIPSIS = {0x2026, 1};

// Characters side by side, tabs expanded.
struct Row {
    std::vector<ShownCell> cells;
    int width = 0;

    void append(QStringView text);
    void append(ShownCell cell);
};

void Row::append(ShownCell cell) {
    cells.push_back(cell);
    width += cell.width;
}

void Row::append(QStringView text) {
    for (const uint character : text.toUcs4()) {
        if (character != '\t') {
            append(ShownCellOf(character));
            continue;
        }
        for (int columns = TAB - width % TAB; columns > 0; --columns) {
            append(ShownCell{U' ', 1});
        }
    }
}

// Columns, from the first to the one after the last.
struct Columns {
    int from;
    int to;
};

// The part of a row that is shown: the mark in its middle, or the begin of a long mark.
Columns WindowOf(int width, Columns mark) {
    if (width <= ROOM) {
        return {0, width};
    }
    const int middle = (mark.from + std::min(mark.to, mark.from + ROOM / 2)) / 2;
    const int from = std::clamp(middle - ROOM / 2, 0, width - ROOM);
    return {from, from + ROOM};
}

// Appends a cell at a column. One that is not wholly inside leaves blanks.
void AppendVisible(QString& text, ShownCell cell, int column, Columns inside) {
    const int from = std::max(column, inside.from);
    const int to = std::min(column + cell.width, inside.to);
    if (from == column && to == column + cell.width) {
        text.append(QString::fromUcs4(&cell.shown, 1));
    } else if (from < to) {
        text.append(QString(to - from, u' '));
    }
}

QString VisibleText(const Row& row, Columns window) {
    const bool isCutBefore = window.from > 0;
    const bool isCutAfter = window.to < row.width;
    const Columns inside = {window.from + isCutBefore, window.to - isCutAfter};
    const QString ellipsis = QString::fromUcs4(&ELLIPSIS.shown, 1);
    QString text = isCutBefore ? ellipsis : QString();
    int column = 0;
    for (const ShownCell cell : row.cells) {
        AppendVisible(text, cell, column, inside);
        column += cell.width;
    }
    return isCutAfter ? text + ellipsis : text;
}

QString MarkText(Columns mark, Columns window) {
    const int to = std::min(mark.to, window.to);
    return QString(mark.from - window.from, u' ') + QString(to - mark.from, u'^');
}

// A line without its end, which may be a carriage return as well.
Span TextOfLine(const Source& source, int line) {
    const Span whole = source.lineAt(line);
    const bool hasReturn = source.text(whole).endsWith(u'\r');
    return {whole.begin, whole.end - (hasReturn ? 1 : 0)};
}

// A character that takes two units is marked whole.
Span WholeCharacters(const Source& source, Span piece) {
    const auto splits = [&text = source.text()](int at) {
        return at > 0 && at < text.size() && text[at - 1].isHighSurrogate() &&
               text[at].isLowSurrogate();
    };
    return {piece.begin - splits(piece.begin), piece.end + splits(piece.end)};
}

Span PieceOfLine(const Source& source, Span line, Span piece) {
    const int begin = std::min(piece.begin, line.end);
    return WholeCharacters(source, {begin, std::clamp(piece.end, begin, line.end)});
}

// A row with the columns of its mark.
struct MarkedRow {
    Row row;
    Columns mark;
};

// What of a line may be seen around a piece of it.
MarkedRow RowAround(const Source& source, Span line, Span piece) {
    const int begin = std::max(line.begin, piece.begin - REACH);
    const int end = std::min(line.end, piece.begin + REACH);
    const int pieceEnd = std::min(piece.end, end);
    Row row;
    if (begin > line.begin) {
        row.append(ELLIPSIS);
    }
    row.append(source.text({begin, piece.begin}));
    const int from = row.width;
    row.append(source.text({piece.begin, pieceEnd}));
    const int to = std::max(row.width, from + 1);
    row.append(source.text({pieceEnd, end}));
    if (end < line.end) {
        row.append(ELLIPSIS);
    }
    return {row, {from, to}};
}

}  // namespace

Excerpt ExcerptOf(const Source& source, Span piece) {
    const int number = source.placeOf(piece.begin).line;
    const Span line = TextOfLine(source, number);
    const auto [row, mark] = RowAround(source, line, PieceOfLine(source, line, piece));
    const Columns window = WindowOf(std::max(row.width, mark.to), mark);
    return {number, VisibleText(row, window), MarkText(mark, window)};
}
