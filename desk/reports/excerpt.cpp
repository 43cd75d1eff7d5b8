#include "reports/excerpt.h"

#include "reports/terminal_text.h"

#include <QVector>

#include <algorithm>
#include <vector>

namespace {

constexpr int ROOM = 100;        // columns of an excerpt
constexpr int REACH = 2 * ROOM;  // characters on each side of a mark that may be seen
constexpr int TAB = 4;           // columns between the stops
constexpr char32_t ELLIPSIS = 0x2026;

// Characters side by side, tabs expanded.
struct Row {
    std::vector<Cell> cells;
    int width = 0;

    void append(QStringView text);
    void append(Cell cell);
};

void Row::append(Cell cell) {
    cells.push_back(cell);
    width += cell.width;
}

void Row::append(QStringView text) {
    for (const uint character : text.toUcs4()) {
        if (character != '\t') {
            append(CellOf(character));
            continue;
        }
        for (int columns = TAB - width % TAB; columns > 0; --columns) {
            append(Cell{U' ', 1});
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
void AppendVisible(QString& text, Cell cell, int column, Columns inside) {
    const int from = std::max(column, inside.from);
    const int to = std::min(column + cell.width, inside.to);
    if (from == column && to == column + cell.width) {
        text.append(QString::fromUcs4(&cell.shown, 1));
    } else if (from < to) {
        text.append(QString(to - from, u' '));
    }
}

QString VisibleText(const Row& row, Columns window, bool isCutBefore, bool isCutAfter) {
    const Columns inside = {window.from + isCutBefore, window.to - isCutAfter};
    const QString ellipsis = QString::fromUcs4(&ELLIPSIS, 1);
    QString text = isCutBefore ? ellipsis : QString();
    int column = 0;
    for (const Cell cell : row.cells) {
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

}  // namespace

Excerpt ExcerptOf(const Source& source, Span piece) {
    const int number = source.placeOf(piece.begin).line;
    const Span line = TextOfLine(source, number);
    const Span marked = PieceOfLine(source, line, piece);
    const Span seen = {std::max(line.begin, marked.begin - REACH),
                       std::min(line.end, marked.begin + REACH)};
    const int markedEnd = std::min(marked.end, seen.end);

    Row row;
    row.append(source.text({seen.begin, marked.begin}));
    const int markBegin = row.width;
    row.append(source.text({marked.begin, markedEnd}));
    const Columns mark = {markBegin, std::max(row.width, markBegin + 1)};
    row.append(source.text({markedEnd, seen.end}));

    const int width = std::max(row.width, mark.to);
    const Columns window = WindowOf(width, mark);
    const bool isCutBefore = window.from > 0 || seen.begin > line.begin;
    const bool isCutAfter = window.to < width || seen.end < line.end;
    return {number, VisibleText(row, window, isCutBefore, isCutAfter), MarkText(mark, window)};
}
