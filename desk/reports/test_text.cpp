#include "reports/test_text.h"

#include "reports/formats.h"
#include "reports/run_report.h"
#include "reports/terminal_text.h"

#include <algorithm>

namespace {

QString LineAt(const TestedFile& file, Place place, const QString& text) {
    return QStringLiteral("%1:%2:%3: %4")
        .arg(Harmless(file.path), QString::number(place.line), QString::number(place.column),
             text);
}

QString CellLine(const TestedFile& file, const TestFailure& failure, const CellFailure& cell) {
    return LineAt(file, cell.place,
                  QStringLiteral("%1 is %2 after cycle %3, expected %4")
                      .arg(cell.column, cell.got)
                      .arg(failure.cycle)
                      .arg(Harmless(cell.expected)));
}

QString StopLine(const TestedFile& file, const TestFailure& failure) {
    return LineAt(file, {failure.line, 1},
                  QStringLiteral("the run ends in cycle %1").arg(failure.cycle));
}

// Cells under each other, with two blanks between the columns.
QString AlignedRow(const QStringList& cells, const std::vector<int>& widths) {
    QString line;
    for (int column = 0; column < cells.size(); ++column) {
        line += (column == 0 ? QString() : QStringLiteral("  ")) +
                cells[column].rightJustified(widths[static_cast<std::size_t>(column)]);
    }
    return line;
}

QStringList Aligned(const std::vector<QStringList>& rows) {
    std::vector<int> widths(static_cast<std::size_t>(rows.front().size()), 0);
    for (const QStringList& row : rows) {
        for (int column = 0; column < row.size(); ++column) {
            int& width = widths[static_cast<std::size_t>(column)];
            width = std::max(width, row[column].size());
        }
    }
    QStringList lines;
    for (const QStringList& row : rows) {
        lines.append(AlignedRow(row, widths));
    }
    return lines;
}

QStringList LastCyclesTable(const LastCycles& last) {
    if (last.names.isEmpty()) {
        return {};
    }
    const QString head = QStringLiteral("cycle");
    const int width = std::max(head.size(), QString::number(last.cycles.back()).size());
    std::vector<QStringList> rows = {QStringList{head.leftJustified(width)} + last.names};
    for (std::size_t index = 0; index < last.cycles.size(); ++index) {
        const QString cycle = QString::number(last.cycles[index]);
        rows.push_back(QStringList{cycle.leftJustified(width)} + last.values[index]);
    }
    return Aligned(rows);
}

// ---------------------------------------------------------------------------------------------
// Coverage
// ---------------------------------------------------------------------------------------------

// "lines 12, 14-16": those with statements that were not executed. A line without statements
// between two of them does not part them.
QString MissedText(const Coverage& coverage) {
    QStringList ranges;
    int first = 0;
    int last = 0;
    const auto close = [&] {
        if (first > 0) {
            ranges.append(first == last ? QString::number(first)
                                        : QStringLiteral("%1-%2").arg(first).arg(last));
        }
        first = 0;
    };
    for (const LineCoverage& line : coverage.lines) {
        if (line.executed == line.statements) {
            close();
            continue;
        }
        first = first == 0 ? line.line : first;
        last = line.line;
    }
    close();
    const bool isOne = ranges.size() == 1 && !ranges.front().contains(u'-');
    const QString numbers = ranges.join(QStringLiteral(", "));
    return numbers.isEmpty() ? numbers : (isOne ? "line " : "lines ") + numbers;
}

QString CoverageSummary(const CoveredScript& script) {
    constexpr int whole = 100;
    const Coverage& coverage = script.coverage;
    const int statements = coverage.statements();
    const int percent = statements == 0 ? whole : coverage.executed() * whole / statements;
    const QString missed = MissedText(coverage);
    return Harmless(script.source.name()) +
           QStringLiteral(": %1 of %2 statements executed, ")
               .arg(coverage.executed())
               .arg(statements) +
           QString::number(percent) + u'%' +
           (missed.isEmpty() ? QString() : QStringLiteral("; not all on ") + missed);
}

// What stands before a line of the script: how often it was executed.
QString CountText(const LineCoverage& line) {
    if (line.executed == 0) {
        return QStringLiteral("never");
    }
    return QString::number(line.count) + (line.executed < line.statements ? "*" : "");
}

QStringList CoverageListing(const CoveredScript& script) {
    std::vector<QStringList> rows;
    auto covered = script.coverage.lines.begin();
    for (int number = 1; number <= script.source.lineCount(); ++number) {
        const bool hasStatements =
            covered != script.coverage.lines.end() && covered->line == number;
        rows.push_back(
            {hasStatements ? CountText(*covered) : QString(), QString::number(number)});
        covered += hasStatements ? 1 : 0;
    }
    QStringList lines = Aligned(rows);
    for (int index = 0; index < lines.size(); ++index) {
        const QString text =
            script.source.text(script.source.lineAt(index + 1)).toString().replace(u'\t', u' ');
        lines[index] +=
            QStringLiteral(" |") + (text.isEmpty() ? QString() : u' ' + Harmless(text));
    }
    return lines;
}

}  // namespace

QStringList FailureLines(const TestedFile& file, const CaseResult& result, bool isStrict) {
    QStringList lines;
    if (result.failure) {
        for (const CellFailure& cell : result.failure->cells) {
            lines.append(CellLine(file, *result.failure, cell));
        }
    }
    if (result.failure && result.failure->stop) {
        lines.append(StopLine(file, *result.failure));
        lines.append(LineOf(file.loaded, FindingOf(*result.failure->stop)));
    }
    return isStrict ? lines + NoteLines(file, result) : lines;
}

QStringList NoteLines(const TestedFile& file, const CaseResult& result) {
    QStringList lines;
    for (const Finding& finding : FindingsOf(result.notes)) {
        lines.append(LineOf(file.loaded, finding));
    }
    return lines;
}

QStringList LastCyclesLines(const CaseResult& result) {
    if (!result.failure) {
        return {};
    }
    const LastCycles& last = result.failure->last;
    const QStringList unchanged = last.unchanged.isEmpty()
                                      ? QStringList()
                                      : QStringList{QStringLiteral("unchanged: ") +
                                                    last.unchanged.join(QStringLiteral(", "))};
    return LastCyclesTable(last) + unchanged;
}

QStringList BrokenLines(const TestedFile& file) {
    if (!file.failure.isEmpty()) {
        return {Harmless(file.failure)};
    }
    if (file.loaded.fault) {
        const Finding finding = {Level::Error, QStringLiteral("unsound-code"),
                                 file.loaded.fault->message, file.loaded.fault->item};
        return {LineOf(file.loaded, finding)};
    }
    QStringList lines;
    for (const Diagnostic& each : file.errors->diagnostics) {
        const Source& source = file.errors->source;
        lines.append(QStringLiteral("%1 %2: %3 [%4]")
                         .arg(PlaceText(source, each.placeIn(source)),
                              QString::fromLatin1(NameOf(each.level).data()),
                              Harmless(each.message), each.id));
    }
    return lines;
}

QStringList CoverageLines(const CoveredScript& script, CoverageForm form) {
    QStringList lines;
    if (form == CoverageForm::Listing) {
        lines = CoverageListing(script);
    }
    return lines + QStringList{CoverageSummary(script)};
}

QString CasesText(int count) {
    return QStringLiteral("%1 case%2").arg(count).arg(count == 1 ? "" : "s");
}
