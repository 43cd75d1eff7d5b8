#include "explain/markdown.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

// ---------------------------------------------------------------------------------------------
// Within a line
//
// Until the text is laid out, begin and end of what is bold are single characters that take no
// room. Each word has its own, so that lines can be broken between any words.
// ---------------------------------------------------------------------------------------------

namespace {

constexpr QChar BOLD_BEGIN(0x01);
constexpr QChar BOLD_END(0x02);

int WidthOf(const QString& text) {
    return text.size() - text.count(BOLD_BEGIN) - text.count(BOLD_END);
}

QString Bold(const QString& text) {
    QStringList words = text.split(' ');
    for (QString& word : words) {
        word = word.isEmpty() ? word : BOLD_BEGIN + word + BOLD_END;
    }
    return words.join(' ');
}

// Bold words of a line that follow each other become one piece.
QString WithEscapes(QString text) {
    return text.replace(QString(BOLD_END) + ' ' + BOLD_BEGIN, QStringLiteral(" "))
        .replace(BOLD_BEGIN, QLatin1String("\033[1m"))
        .replace(BOLD_END, QLatin1String("\033[0m"));
}

// The groups: backticks and the code between them, text of a link, escaped sign, stars and what
// stands between them.
const QRegularExpression& Marks() {
    static const QRegularExpression marks(
        QStringLiteral(R"((?<!`)(`+)(?!`)(.+?)(?<!`)\1(?!`))"
                       R"(|\[((?:[^][`]|`[^`]*`)*)\]\([^)\s]*\))"
                       R"(|\\([!-/:-@[-`{-~]))"
                       R"(|(\*\*?)(?=\S)(.+?)(?<=\S)\5)"));
    return marks;
}

QString PlainLine(const QString& markdown, bool hasColors);

QString PlainMark(const QRegularExpressionMatch& mark, bool hasColors) {
    if (mark.capturedLength(2) > 0) {
        return hasColors ? Bold(mark.captured(2).trimmed()) : mark.captured(0);
    }
    if (mark.capturedLength(4) > 0) {
        return mark.captured(4);
    }
    return PlainLine(mark.capturedLength(6) > 0 ? mark.captured(6) : mark.captured(3), hasColors);
}

QString PlainLine(const QString& markdown, bool hasColors) {
    QString plain;
    int end = 0;
    for (auto marks = Marks().globalMatch(markdown); marks.hasNext();) {
        const QRegularExpressionMatch mark = marks.next();
        plain += markdown.midRef(end, mark.capturedStart() - end);
        plain += PlainMark(mark, hasColors);
        end = mark.capturedEnd();
    }
    return plain + markdown.midRef(end);
}

// A word that is wider stands alone on its line.
QStringList Wrapped(const QString& text, int width) {
    QStringList lines;
    int room = 0;
    for (const QString& word : text.split(' ', Qt::SkipEmptyParts)) {
        const int needed = WidthOf(word) + 1;
        if (needed > room) {
            lines.append(word);
            room = width - WidthOf(word);
        } else {
            lines.last() += ' ' + word;
            room -= needed;
        }
    }
    return lines;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Tables
// ---------------------------------------------------------------------------------------------

namespace {

using Rows = std::vector<QStringList>;

constexpr int GAP = 2;
constexpr int LEAST_WIDTH = 8;

QStringList CellsOf(const QString& line, bool hasColors) {
    static const QRegularExpression border(QStringLiteral(R"((?<!\\)\|)"));
    QStringList cells = line.trimmed().split(border).mid(1);
    cells.removeLast();
    for (QString& cell : cells) {
        cell = PlainLine(cell.trimmed(), hasColors);
    }
    return cells;
}

std::vector<int> NeededWidths(const Rows& rows) {
    std::vector<int> widths(static_cast<std::size_t>(rows.front().size()), 0);
    for (const QStringList& row : rows) {
        for (int at = 0; at < row.size(); ++at) {
            int& width = widths[static_cast<std::size_t>(at)];
            width = std::max(width, WidthOf(row[at]));
        }
    }
    return widths;
}

// What the cells need; if it is too much, the widest columns give way.
std::vector<int> ColumnWidths(const Rows& rows, int width) {
    std::vector<int> widths = NeededWidths(rows);
    const int gaps = GAP * (static_cast<int>(widths.size()) - 1);
    int total = std::accumulate(widths.begin(), widths.end(), gaps);
    for (; total > width; --total) {
        int& widest = *std::max_element(widths.begin(), widths.end());
        widest = std::max(widest - 1, LEAST_WIDTH);
    }
    return widths;
}

QString TableLine(const QStringList& pieces, const std::vector<int>& widths) {
    QString line;
    int begin = 0;
    for (int at = 0; at < pieces.size(); ++at) {
        if (!pieces[at].isEmpty()) {
            line += QString(std::max(0, begin - WidthOf(line)), ' ') + pieces[at];
        }
        begin += widths[static_cast<std::size_t>(at)] + GAP;
    }
    return line;
}

QStringList TableRow(const QStringList& cells, const std::vector<int>& widths) {
    std::vector<QStringList> wrapped;
    int height = 0;
    for (int at = 0; at < cells.size(); ++at) {
        wrapped.push_back(Wrapped(cells[at], widths[static_cast<std::size_t>(at)]));
        height = std::max(height, wrapped.back().size());
    }
    QStringList lines;
    for (int at = 0; at < height; ++at) {
        QStringList pieces;
        for (const QStringList& cell : wrapped) {
            pieces.append(cell.value(at));
        }
        lines.append(TableLine(pieces, widths));
    }
    return lines;
}

// The row of dashes below the heads of the columns is made anew.
QStringList TableLines(const QStringList& markdown, TextForm form) {
    Rows rows;
    for (const QString& line : markdown) {
        rows.push_back(CellsOf(line, form.hasColors));
    }
    rows.erase(rows.begin() + 1);
    const std::vector<int> widths = ColumnWidths(rows, form.width);
    QStringList dashes;
    for (const int width : widths) {
        dashes.append(QString(width, '-'));
    }
    rows.insert(rows.begin() + 1, dashes);
    QStringList lines;
    for (const QStringList& row : rows) {
        lines += TableRow(row, widths);
    }
    return lines;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Blocks
// ---------------------------------------------------------------------------------------------

namespace {

enum class BlockKind : unsigned char { None, Paragraph, Item, Table, Code };

struct Block {
    BlockKind kind;
    QStringList lines;
};

const QRegularExpression& ItemMark() {
    static const QRegularExpression mark(QStringLiteral(R"(^(?:[-*+]|\d+\.) +)"));
    return mark;
}

bool IsFence(const QString& line) {
    return line.startsWith(QLatin1String("```"));
}

// The kind of the block that a line outside of code is in, `open` being that of the line above.
BlockKind KindOf(const QString& line, BlockKind open) {
    if (line.isEmpty() || line.startsWith(QLatin1String("<!--"))) {
        return BlockKind::None;
    }
    if (IsFence(line)) {
        return BlockKind::Code;
    }
    if (line.startsWith('|')) {
        return BlockKind::Table;
    }
    const bool isItem = ItemMark().match(line).hasMatch();
    return isItem || open == BlockKind::Item ? BlockKind::Item : BlockKind::Paragraph;
}

bool ContinuesBlock(const QString& line, BlockKind kind, BlockKind open) {
    const bool beginsItem = kind == BlockKind::Item && ItemMark().match(line).hasMatch();
    return kind == open && kind != BlockKind::Code && !beginsItem;
}

// Takes the lines from `at` to the end of the fence that begins there; the fence's index.
int TakeCode(const QStringList& markdown, int at, Block& block) {
    while (++at < markdown.size() && !IsFence(markdown[at])) {
        block.lines.append(markdown[at]);
    }
    return at;
}

std::vector<Block> BlocksOf(const QStringList& markdown) {
    std::vector<Block> blocks;
    BlockKind open = BlockKind::None;
    for (int at = 0; at < markdown.size(); ++at) {
        const QString& line = markdown[at];
        const BlockKind kind = KindOf(line, open);
        if (kind == BlockKind::Code) {
            blocks.push_back({kind, {}});
            at = TakeCode(markdown, at, blocks.back());
        } else if (ContinuesBlock(line, kind, open) && kind != BlockKind::None) {
            blocks.back().lines.append(line);
        } else if (kind != BlockKind::None) {
            blocks.push_back({kind, {line}});
        }
        open = kind;
    }
    return blocks;
}

// The lines with `first` in front of the first one and as many blanks in front of the others.
QStringList Hanging(const QStringList& lines, const QString& first) {
    QStringList hanging;
    for (const QString& line : lines) {
        hanging.append((hanging.isEmpty() ? first : QString(first.size(), ' ')) + line);
    }
    return hanging;
}

QStringList ItemLines(const QString& markdown, TextForm form) {
    const QString mark = ItemMark().match(markdown).captured();
    const QString text = PlainLine(markdown.mid(mark.size()), form.hasColors);
    return Hanging(Wrapped(text, form.width - mark.size()), mark);
}

QStringList CodeLines(const QStringList& code) {
    QStringList lines;
    for (const QString& line : code) {
        lines.append(line.isEmpty() ? line : QStringLiteral("    ") + line);
    }
    return lines;
}

QStringList LinesOf(const Block& block, TextForm form) {
    switch (block.kind) {
        case BlockKind::Code:
            return CodeLines(block.lines);
        case BlockKind::Table:
            return TableLines(block.lines, form);
        case BlockKind::Item:
            return ItemLines(block.lines.join(' '), form);
        default:
            return Wrapped(PlainLine(block.lines.join(' '), form.hasColors), form.width);
    }
}

QString Joined(const QStringList& lines) {
    return lines.join('\n') + '\n';
}

}  // namespace

QString PlainText(const QStringList& markdown, TextForm form) {
    QString text;
    BlockKind above = BlockKind::None;
    for (const Block& block : BlocksOf(markdown)) {
        const bool isNextItem = block.kind == BlockKind::Item && above == BlockKind::Item;
        text += text.isEmpty() || isNextItem ? QString() : QStringLiteral("\n");
        text += WithEscapes(Joined(LinesOf(block, form)));
        above = block.kind;
    }
    return text;
}

QString BoldText(const QString& markdown, TextForm form) {
    const QString plain = PlainLine(markdown, false).remove('`');
    const QString text = form.hasColors ? Bold(plain) : plain;
    return WithEscapes(Joined(Wrapped(text, form.width)));
}
