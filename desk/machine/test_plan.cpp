#include "machine/test_plan.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

const QString RELEASE = QStringLiteral("-");

QString Quoted(const QString& text) {
    return u'"' + text + u'"';
}

struct BoundSign {
    QLatin1String text;
    Comparison comparison;
};

// A sign stands before those that it begins with.
constexpr BoundSign BOUND_SIGNS[] = {
    {"<>"_L1, Comparison::NotEqual},       {"<="_L1, Comparison::LessOrEqual},
    {">="_L1, Comparison::GreaterOrEqual}, {"<"_L1, Comparison::Less},
    {">"_L1, Comparison::Greater},
};

// Reads the cells of rows for the variables of their columns; the first fault ends it.
class Planner {
public:
    Planner(const TestText& text, const CodeUnit& program) : text_(text), program_(program) {}

    TestPlan plan() {
        for (const std::vector<TestColumn>& columns : text_.columns) {
            findVariables(columns);
        }
        for (const TestCase& each : text_.cases) {
            PlannedCase planned = {each.name, each.line, {}};
            for (const TestRow& row : each.rows) {
                planned.rows.push_back(plannedRow(row));
            }
            plan_.cases.push_back(std::move(planned));
        }
        return std::move(plan_);
    }

private:
    const TestText& text_;
    const CodeUnit& program_;
    TestPlan plan_;
    std::vector<std::vector<int>> variables_;  // of the columns

    void fail(Place place, const QString& message) {
        if (!plan_.fault && !message.isEmpty()) {
            plan_.fault = CsvFault{place, message};
        }
    }

    void findVariables(const std::vector<TestColumn>& columns) {
        std::vector<int>& variables = variables_.emplace_back();
        for (const TestColumn& column : columns) {
            variables.push_back(variableOf(column));
        }
    }

    int variableOf(const TestColumn& column) {
        if (IsTick(column.name)) {
            if (column.use == ColumnUse::Force) {
                fail(column.place, QStringLiteral("TICK can be set, not forced"));
            }
            return TICK_VARIABLE;
        }
        const FoundVariable found = FindVariable(program_, column.name);
        fail(column.place, found.fault);
        return found.index;
    }

    PlannedRow plannedRow(const TestRow& row) {
        const auto head = static_cast<std::size_t>(row.columns);
        PlannedRow planned = {row.line, row.cycles, row.isAtMost, {}, {}, variables_[head]};
        for (std::size_t at = 0; at < row.cells.size() && !plan_.fault; ++at) {
            const auto column = static_cast<std::size_t>(row.columnsOf[at]);
            take(text_.columns[head][column], variables_[head][column], row.cells[at], planned);
        }
        return planned;
    }

    void take(const TestColumn& column, int variable, const CsvCell& cell, PlannedRow& row) {
        if (column.use == ColumnUse::Set || column.use == ColumnUse::Force) {
            takeSetting(column, variable, cell, row);
        } else {
            takeQuestion(column, variable, cell, row);
        }
    }

    void takeSetting(const TestColumn& column, int variable, const CsvCell& cell,
                     PlannedRow& row) {
        TestSetting setting = {column.use, {variable, Value()}, false};
        if (cell.text == RELEASE && column.use == ColumnUse::Force) {
            setting.isRelease = true;
        } else {
            setting.setting.value = valueOf(variable, cell, cell.text);
        }
        row.settings.push_back(setting);
    }

    Value valueOf(int variable, const CsvCell& cell, const QString& written) {
        QString text = written.trimmed();
        if (text_.separator == u';') {
            text.replace(u',', u'.');
        }
        Value value;
        fail(cell.place, ReadValueFor(program_, variable, text, value));
        return value;
    }

    // -----------------------------------------------------------------------------------------
    // What is expected
    // -----------------------------------------------------------------------------------------

    void takeQuestion(const TestColumn& column, int variable, const CsvCell& cell,
                      PlannedRow& row) {
        const QString mark =
            column.use == ColumnUse::AskAtEnd ? QStringLiteral("?") : QStringLiteral("!");
        row.questions.push_back({column.use, variable, conditionsOf(variable, cell),
                                 NameOfVariable(program_, variable) + mark, cell.text,
                                 cell.place});
    }

    std::vector<Condition> conditionsOf(int variable, const CsvCell& cell) {
        static const QRegularExpression range(QStringLiteral("^(.+?)\\.\\.(.+)$"));
        const QRegularExpressionMatch bounds = range.match(cell.text);
        if (bounds.hasMatch()) {
            return rangeOf(variable, cell, bounds.captured(1), bounds.captured(2));
        }
        const int tolerance = cell.text.indexOf(u'~');
        if (tolerance >= 0) {
            return nearOf(variable, cell, cell.text.left(tolerance),
                          cell.text.mid(tolerance + 1));
        }
        for (const BoundSign& sign : BOUND_SIGNS) {
            if (cell.text.startsWith(sign.text)) {
                const QString bound = cell.text.mid(sign.text.size());
                return {{sign.comparison, {variable, valueOf(variable, cell, bound)}}};
            }
        }
        return {{Comparison::Equal, {variable, valueOf(variable, cell, cell.text)}}};
    }

    std::vector<Condition> rangeOf(int variable, const CsvCell& cell, const QString& low,
                                   const QString& high) {
        const Condition least = {Comparison::GreaterOrEqual,
                                 {variable, valueOf(variable, cell, low)}};
        const Condition greatest = {Comparison::LessOrEqual,
                                    {variable, valueOf(variable, cell, high)}};
        if (least.setting.value.asReal() > greatest.setting.value.asReal()) {
            fail(cell.place, QStringLiteral("the first number of a range is the smaller one"));
        }
        return {least, greatest};
    }

    std::vector<Condition> nearOf(int variable, const CsvCell& cell, const QString& middle,
                                  const QString& tolerance) {
        const Value value = valueOf(variable, cell, middle);
        QString digits = tolerance.trimmed();
        if (text_.separator == u';') {
            digits.replace(u',', u'.');
        }
        Value width;
        if (!ReadValue(digits, value.isReal() ? TYP_LREAL : TYP_UDINT, width) ||
            width.asReal() < 0.0) {
            const QString kind =
                value.isReal() ? QStringLiteral("number") : QStringLiteral("whole number");
            fail(cell.place, QStringLiteral("the tolerance after ~ is a %1 from 0 on, not %2")
                                 .arg(kind, Quoted(digits)));
        }
        return {{Comparison::GreaterOrEqual, {variable, shifted(value, width, -1)}},
                {Comparison::LessOrEqual, {variable, shifted(value, width, 1)}}};
    }

    // A bound has the precision of its variable: 1.1 + 0.1 is the REAL that 1.2 is.
    static Value shifted(const Value& value, const Value& width, int sign) {
        if (!value.isReal()) {
            return WholeValue(value.type, value.whole + sign * width.whole);
        }
        const double sum = value.real + sign * width.real;
        return RealValue(value.type, value.type == TYP_REAL
                                         ? static_cast<double>(static_cast<float>(sum))
                                         : sum);
    }
};

bool IsSameObject(const Declaration& one, const Declaration& other) {
    return one.section == other.section &&
           std::equal(one.numbers.begin(), one.numbers.end(), other.numbers.begin(),
                      other.numbers.end(), [](const Literal& left, const Literal& right) {
                          return left.whole == right.whole;
                      });
}

// Why the program cannot have that object; empty if it can.
QString FaultOf(const Declaration& object, const CodeUnit& program) {
    if (program.variable(object.name) != NOWHERE) {
        return QStringLiteral("the program has a variable %1 already").arg(Quoted(object.name));
    }
    const auto same = std::find_if(
        program.declarations.begin(), program.declarations.end(),
        [&object](const Declaration& declaration) { return IsSameObject(declaration, object); });
    return same == program.declarations.end()
               ? QString()
               : QStringLiteral("this object has the name %1 already").arg(Quoted(same->name));
}

}  // namespace

std::optional<CsvFault> DeclareObjects(const TestPreamble& preamble, CodeUnit& program) {
    for (std::size_t index = 0; index < preamble.objects.size(); ++index) {
        const Declaration& object = preamble.objects[index];
        const QString fault = FaultOf(object, program);
        if (!fault.isEmpty()) {
            return CsvFault{preamble.objectPlaces[index], fault};
        }
        program.variables.insert(FoldedName(object.name),
                                 static_cast<int>(program.declarations.size()));
        program.declarations.push_back(object);
    }
    return std::nullopt;
}

TestPlan PlanTests(const TestText& text, const CodeUnit& program) {
    return Planner(text, program).plan();
}
