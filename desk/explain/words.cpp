#include "explain/words.h"

#include <QRegularExpression>

#include <algorithm>
#include <string_view>

namespace {

constexpr std::string_view LANGUAGE[] = {
#include "words.inc"
};

using Row = QStringList;

// The cells of a row whose first is code, without the marks of that; empty for other lines.
Row RowOf(const QString& line) {
    if (!line.startsWith(QLatin1String("| `"))) {
        return {};
    }
    Row cells = line.mid(2, line.size() - 4).split(QStringLiteral(" | "));
    cells.front().remove(u'`');
    return cells;
}

// The rows with that many cells below a heading of the second level.
std::vector<Row> RowsBelow(const QString& heading, int cells) {
    std::vector<Row> rows;
    bool isBelow = false;
    for (const std::string_view each : LANGUAGE) {
        const QString line = QString::fromUtf8(each.data(), static_cast<int>(each.size()));
        isBelow = line.startsWith(QLatin1String("## ")) ? line.mid(3) == heading : isBelow;
        const Row row = isBelow ? RowOf(line) : Row();
        if (row.size() == cells) {
            rows.push_back(row);
        }
    }
    return rows;
}

std::vector<BuiltInRow> ReadBuiltIns() {
    std::vector<BuiltInRow> builtIns;
    for (const Row& row : RowsBelow(QStringLiteral("Built-ins"), 4)) {
        builtIns.push_back({row[0], row[1], row[2], row[3]});
    }
    return builtIns;
}

bool IsSame(const QString& one, QStringView other) {
    return QStringView(one).compare(other, Qt::CaseInsensitive) == 0;
}

}  // namespace

const std::vector<BuiltInRow>& BuiltInRows() {
    static const std::vector<BuiltInRow> rows = ReadBuiltIns();
    return rows;
}

const BuiltInRow* BuiltInRowOf(QStringView name) {
    const std::vector<BuiltInRow>& rows = BuiltInRows();
    const auto found = std::find_if(rows.begin(), rows.end(), [name](const BuiltInRow& row) {
        return IsSame(row.name, name);
    });
    return found == rows.end() ? nullptr : &*found;
}

// "four `UDINT` words" are four parameters, each a word.
QStringList ParameterTexts(const BuiltInRow& row) {
    static const QRegularExpression form(QStringLiteral("^(four )?`[A-Z]+`(?: (.*?))?$"));
    QStringList texts;
    for (const QString& parameter : row.parameters.split(QStringLiteral(", "))) {
        const QRegularExpressionMatch match = form.match(parameter);
        const bool isFour = match.capturedLength(1) > 0;
        for (int index = 1; index <= (isFour ? 4 : 1); ++index) {
            texts.append(isFour ? QStringLiteral("word %1").arg(index) : match.captured(2));
        }
    }
    return texts;
}

QString ValuesOfType(QStringView name) {
    static const std::vector<Row> rows = RowsBelow(QStringLiteral("Types"), 3);
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [name](const Row& row) { return IsSame(row[0], name); });
    return found == rows.end() ? QString() : (*found)[1];
}
