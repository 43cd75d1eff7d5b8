#include "reports/run_report.h"

#include "machine/settings.h"
#include "reports/formats.h"
#include "reports/output.h"
#include "reports/terminal_text.h"

#include "qyx_text.h"
#include "qyx_types.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

// What a note says, in the order of Check.
constexpr QLatin1String NOTES[] = {
    "a whole number does not fit"_L1,
    "a whole number is divided by 0"_L1,
    "a real is not finite"_L1,
    "a real loses its fraction"_L1,
    "a whole number and a real are divided"_L1,
    "a shift goes beyond the operand"_L1,
    "values are left on the stack"_L1,
    "values are left on the stack"_L1,
    "the stack holds no value"_L1,
    "the unit has not ended"_L1,
    "the cycle does not end"_L1,
    "the variable is read before it has a value"_L1,
};

QString TimesText(qint64 count) {
    return count == 1 ? QStringLiteral("once") : QStringLiteral("%1 times").arg(count);
}

QString Counted(qint64 count, const QString& what) {
    return QStringLiteral("%1 %2%3").arg(count).arg(what, count == 1 ? "" : "s");
}

Diagnostic DiagnosticOf(const Loaded& loaded, const Finding& finding) {
    Diagnostic diagnostic;
    diagnostic.level = finding.level;
    diagnostic.id = finding.id;
    diagnostic.message = finding.message;
    diagnostic.span = SpanOfItem(loaded.source, *loaded.facts, finding.item);
    return diagnostic;
}

// "pump.yx: item 12: error: ..."
QString LineAboutItem(const Loaded& loaded, int item, const QString& text) {
    const QString place = item == 0 ? QString() : QStringLiteral("item %1: ").arg(item);
    return Harmless(loaded.source.name()) + QStringLiteral(": ") + place + text;
}

QString TextAbout(const Finding& finding) {
    const QString level = QString::fromLatin1(NameOf(finding.level).data());
    return QStringLiteral("%1: %2 [%3]").arg(level, finding.message, finding.id);
}

// The item with a mark, and those beside it.
void PrintItems(const Items& items, int number) {
    const int first = std::max(1, number - 1);
    const int last = std::min(items.count(), number + 1);
    const int digits = QString::number(last).size();
    for (int item = first; item <= last; ++item) {
        const QString text = Harmless(TextOf(items.item(item)));
        Print(QStringLiteral(" %1 | %2\n").arg(item, digits).arg(text));
        if (item == number) {
            const QString mark(std::max(1, text.size()), u'^');
            Print(QStringLiteral(" %1 | %2\n").arg(QString(), digits).arg(mark));
        }
    }
}

using TableRow = std::array<QString, 4>;

TableRow RowOf(const Declaration& declaration, const Value& value) {
    return {declaration.name, TypToStr(declaration.type), KeywordOf(declaration.section),
            TextOf(value)};
}

void PrintTable(const std::vector<TableRow>& rows) {
    std::array<int, 3> widths = {};
    for (const TableRow& row : rows) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    for (const TableRow& row : rows) {
        QString line;
        for (std::size_t column = 0; column < widths.size(); ++column) {
            line += row[column].leftJustified(widths[column] + 2);
        }
        Print(line + row.back() + u'\n');
    }
}

}  // namespace

std::vector<Finding> FindingsOf(const Notes& notes) {
    std::vector<Finding> findings;
    for (const auto& [place, count] : notes) {
        const auto& [check, item] = place;
        const QString message =
            NOTES[static_cast<std::size_t>(check)] + QStringLiteral(", ") + TimesText(count);
        findings.push_back({Level::Note, NameOf(check), message, item});
    }
    std::stable_sort(
        findings.begin(), findings.end(),
        [](const Finding& one, const Finding& other) { return one.item < other.item; });
    return findings;
}

Finding FindingOf(const RunStop& stop) {
    return {Level::Error, NameOf(stop.check), stop.message, stop.item};
}

void PrintFindings(const Loaded& loaded, const std::vector<Finding>& findings, bool hasColors) {
    if (loaded.isScript()) {
        FileReport report = {loaded.source, {}};
        for (const Finding& finding : findings) {
            report.diagnostics.push_back(DiagnosticOf(loaded, finding));
        }
        MakeHumanReport(hasColors, true)->file(report);
        return;
    }
    for (const Finding& finding : findings) {
        Print(LineAboutItem(loaded, finding.item, TextAbout(finding)) + u'\n');
        PrintItems(loaded.code.items, finding.item);
        Print(QStringLiteral("\n"));
    }
}

QString LineOf(const Loaded& loaded, const Finding& finding) {
    if (!loaded.isScript()) {
        return LineAboutItem(loaded, finding.item, TextAbout(finding));
    }
    const Place place = DiagnosticOf(loaded, finding).placeIn(loaded.source);
    return PlaceText(loaded.source, place) + u' ' + TextAbout(finding);
}

QString PlaceOf(const Loaded& loaded, int item) {
    if (!loaded.isScript()) {
        return QStringLiteral("%1: item %2").arg(loaded.source.name()).arg(item);
    }
    const Place place =
        loaded.source.placeOf(SpanOfItem(loaded.source, *loaded.facts, item).begin);
    return QStringLiteral("%1:%2:%3").arg(loaded.source.name()).arg(place.line).arg(place.column);
}

void ComplainOfFindings(const Loaded& loaded, const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
        Complain(LineOf(loaded, finding));
    }
}

void PrintFault(const Loaded& loaded, const CodeFault& fault) {
    Print(LineAboutItem(loaded, fault.item, QStringLiteral("error: ") + Harmless(fault.message)) +
          u'\n');
    if (fault.item > 0 && fault.item <= loaded.code.items.count()) {
        PrintItems(loaded.code.items, fault.item);
    }
}

void PrintVariables(const CodeUnit& program, const std::vector<int>& variables,
                    const Machine& machine) {
    std::vector<TableRow> rows;
    rows.reserve(variables.size());
    for (const int variable : variables) {
        rows.push_back(RowOf(program.declarations[static_cast<std::size_t>(variable)],
                             machine.value(variable)));
    }
    PrintTable(rows);
}

void PrintSummary(const Machine& machine, quint32 tickStep) {
    const QString stopped =
        machine.stop() ? QStringLiteral("; stopped in cycle %1").arg(machine.cycles() + 1)
                       : QString();
    const QString instructions =
        machine.isCounting() ? QStringLiteral(", ") +
                                   Counted(machine.instructions(), QStringLiteral("instruction"))
                             : QString();
    Print(QStringLiteral("%1 of %2%3%4\n")
              .arg(Counted(machine.cycles(), QStringLiteral("cycle")),
                   Counted(tickStep, QStringLiteral("tick")), instructions, stopped));
    if (machine.tickSetting()) {
        Print(QStringLiteral("TICK was set to %1\n").arg(*machine.tickSetting()));
    }
}
