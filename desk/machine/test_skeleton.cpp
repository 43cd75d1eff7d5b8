#include "machine/test_skeleton.h"

#include "facts/csv.h"
#include "machine/engine_objects.h"
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

bool IsInput(const EngineUses& uses, const Declaration& declaration) {
    return declaration.section == Section::Input || UseOf(uses, declaration).isRead;
}

bool IsOutput(const EngineUses& uses, const Declaration& declaration) {
    return declaration.section == Section::Output || UseOf(uses, declaration).isWritten;
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

std::vector<SkeletonColumn> ColumnsOf(const Code& code, const EngineUses& uses) {
    Machine machine(code, Profile(), Checks());
    machine.setTickStep(TICK_STEP);
    const std::vector<Declaration>& declarations = code.program().declarations;
    std::vector<SkeletonColumn> columns = {{QStringLiteral("cycles"), QStringLiteral("1")}};
    const auto add = [&](auto isWanted, const QString& mark) {
        for (std::size_t index = 0; index < declarations.size(); ++index) {
            if (isWanted(uses, declarations[index])) {
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

QString SkeletonOf(Code code, const QString& script) {
    const EngineUses uses = EngineUsesOf(code);
    NameEngineObjects(uses, code.units.back());
    QString head = QStringLiteral("script, ") + CsvText(script) +
                   QStringLiteral("\ntick, %1\n").arg(TICK_STEP);
    for (const Declaration& declaration : code.program().declarations) {
        head += IsNamedByNumber(declaration) ? LineOfObject(declaration) : QString();
    }
    return COMMENT + head + QStringLiteral("\ncase, the first cycle\n") +
           RowsOf(ColumnsOf(code, uses));
}
