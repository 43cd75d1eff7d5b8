#include "machine/test_skeleton.h"

#include "facts/csv.h"
#include "machine/machine.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

constexpr quint32 TICK_STEP = 100;

const QString COMMENT = QStringLiteral(
    "# Lines of numbers are rows: so many cycles are executed. <=20 is at most so many.\n"
    "# name    is set before the row          name?  is asked after it\n"
    "# name!   is asked in each of its cycles\n"
    "# An empty cell leaves an input as it is and asks nothing. The values asked below are "
    "those\n"
    "# that the script gives: see whether they are right.\n");

// Whether the script uses an object of the engine in that way, or by reference.
bool IsUsed(const Facts& facts, const Declaration& declaration, UseKind kind) {
    const bool isEngine = declaration.section == Section::EngineGlobal ||
                          declaration.section == Section::EngineRegister;
    return isEngine && std::any_of(facts.uses.begin(), facts.uses.end(), [&](const UseFact& use) {
               const NameFact& name = facts.names[static_cast<std::size_t>(use.name)];
               return (use.kind == kind || use.kind == UseKind::Reference) &&
                      name.kind == NameKind::Variable &&
                      FoldedName(facts.textOf(name.text).toString()) ==
                          FoldedName(declaration.name);
           });
}

bool IsInput(const Facts& facts, const Declaration& declaration) {
    return declaration.section == Section::Input || IsUsed(facts, declaration, UseKind::Read);
}

bool IsOutput(const Facts& facts, const Declaration& declaration) {
    return declaration.section == Section::Output || IsUsed(facts, declaration, UseKind::Write);
}

struct SkeletonColumn {
    QString name;
    QString value;
};

// A value that no cell can hold is left out.
QString CellOf(const Machine& machine, int variable) {
    const Value value = machine.value(variable);
    const bool isNumber = !value.isReal() || std::isfinite(value.real);
    return machine.stop() || !isNumber ? QString() : TextOf(value);
}

std::vector<SkeletonColumn> ColumnsOf(const Loaded& loaded) {
    Machine machine(loaded.code, Profile(), Checks());
    machine.setTickStep(TICK_STEP);
    const std::vector<Declaration>& declarations = loaded.code.program().declarations;
    std::vector<SkeletonColumn> columns = {{QStringLiteral("cycles"), QStringLiteral("1")}};
    const auto add = [&](auto isWanted, const QString& mark) {
        for (std::size_t index = 0; index < declarations.size(); ++index) {
            if (isWanted(*loaded.facts, declarations[index])) {
                columns.push_back(
                    {declarations[index].name + mark, CellOf(machine, static_cast<int>(index))});
            }
        }
    };
    add(IsInput, QString());
    machine.cycle();
    add(IsOutput, QStringLiteral("?"));
    return columns;
}

// Cells of both rows stand under each other.
QString RowsOf(const std::vector<SkeletonColumn>& columns) {
    QString names;
    QString values;
    for (const SkeletonColumn& column : columns) {
        const int width = std::max(column.name.size(), column.value.size()) + 2;
        const bool isLast = &column == &columns.back();
        names += isLast ? column.name : (column.name + u',').leftJustified(width);
        values += isLast ? column.value : (column.value + u',').leftJustified(width);
    }
    return names + u'\n' + values + u'\n';
}

}  // namespace

QString SkeletonOf(const Loaded& loaded, const QString& script) {
    return COMMENT + QStringLiteral("script, ") + CsvText(script) +
           QStringLiteral("\ntick, %1\n\ncase, the first cycle\n").arg(TICK_STEP) +
           RowsOf(ColumnsOf(loaded));
}
