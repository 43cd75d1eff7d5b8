#include "machine/settings.h"

#include "explain/distance.h"

#include "qyx_types.h"

#include <algorithm>

namespace {

const QString TICK_NAME = QStringLiteral("TICK");

constexpr QLatin1String SECTIONS[] = {"VAR"_L1,          "VAR_INPUT"_L1,     "VAR_OUTPUT"_L1,
                                      "VAR_GLOBAL"_L1,   "VAR_ARG"_L1,       "VAR_REF"_L1,
                                      "VAR_YXGLOBAL"_L1, "VAR_YXREGISTER"_L1};

struct ComparisonSign {
    QLatin1String text;
    Comparison comparison;
};

// A sign stands before those that it begins with.
constexpr ComparisonSign SIGNS[] = {
    {"<>"_L1, Comparison::NotEqual},
    {"<="_L1, Comparison::LessOrEqual},
    {">="_L1, Comparison::GreaterOrEqual},
    {"="_L1, Comparison::Equal},
    {"<"_L1, Comparison::Less},
    {">"_L1, Comparison::Greater},
};

// The name among the declared ones that is most like the text; empty if none is like it.
QString NearestName(const CodeUnit& program, const QString& name) {
    QStringList names;
    for (const Declaration& declaration : program.declarations) {
        names.append(declaration.name);
    }
    return NearestWord(name, names);
}

QString Quoted(const QString& text) {
    return u'"' + text + u'"';
}

QString RangeText(Typ type) {
    if (type == TYP_BOOL) {
        return QStringLiteral("TRUE or FALSE");
    }
    if (type >= TYP_REAL) {
        return type == TYP_REAL ? QStringLiteral("a number from -3.4e38 to 3.4e38")
                                : QStringLiteral("a number");
    }
    const Range& range = RangeOf(type);
    return QStringLiteral("a whole number from %1 to %2").arg(range.least).arg(range.greatest);
}

using Find = FoundVariable (*)(const CodeUnit& program, const QString& name);

// Takes the name and the value apart at a sign of that length.
QString ReadParts(const CodeUnit& program, const QString& text, int at, int length, Find find,
                  Setting& setting) {
    const FoundVariable found = find(program, text.left(at).trimmed());
    if (found.index == NOWHERE) {
        return found.fault;
    }
    setting.variable = found.index;
    return ReadValueFor(program, found.index, text.mid(at + length).trimmed(), setting.value);
}

bool HoldsFor(Comparison comparison, int order) {
    switch (comparison) {
        case Comparison::Equal:
            return order == 0;
        case Comparison::NotEqual:
            return order != 0;
        case Comparison::LessOrEqual:
            return order <= 0;
        case Comparison::GreaterOrEqual:
            return order >= 0;
        case Comparison::Less:
            return order < 0;
        default:
            return order > 0;
    }
}

}  // namespace

QLatin1String KeywordOf(Section section) {
    return SECTIONS[static_cast<std::size_t>(section)];
}

FoundVariable FindVariable(const CodeUnit& program, const QString& name) {
    const int index = program.variable(name);
    if (index != NOWHERE) {
        return {index, {}};
    }
    const QString nearest = NearestName(program, name);
    const QString proposal =
        nearest.isEmpty() ? QString() : QStringLiteral("; near it: ") + nearest;
    return {NOWHERE, QStringLiteral("the program has no variable ") + Quoted(name) + proposal};
}

FoundVariable FindSettable(const CodeUnit& program, const QString& name) {
    return IsTick(name) ? FoundVariable{TICK_VARIABLE, {}} : FindVariable(program, name);
}

bool IsTick(const QString& name) {
    return name.compare(TICK_NAME, Qt::CaseInsensitive) == 0;
}

QString NameOfVariable(const CodeUnit& program, int variable) {
    return variable == TICK_VARIABLE
               ? TICK_NAME
               : program.declarations[static_cast<std::size_t>(variable)].name;
}

QString ReadValueFor(const CodeUnit& program, int variable, const QString& text, Value& value) {
    const Typ type = variable == TICK_VARIABLE
                         ? Typ(TYP_UDINT)
                         : program.declarations[static_cast<std::size_t>(variable)].type;
    if (ReadValue(text, type, value)) {
        return {};
    }
    return QStringLiteral("%1 is %2, so it takes %3, not %4")
        .arg(NameOfVariable(program, variable), TypToStr(type), RangeText(type), Quoted(text));
}

QString ReadSetting(const CodeUnit& program, const QString& text, Setting& setting) {
    const int at = text.indexOf(u'=');
    if (at < 0) {
        return QStringLiteral("NAME=VALUE is expected, not ") + Quoted(text);
    }
    return ReadParts(program, text, at, 1, FindSettable, setting);
}

QString ReadCondition(const CodeUnit& program, const QString& text, Condition& condition) {
    for (int at = 0; at < text.size(); ++at) {
        const QStringView rest = QStringView(text).mid(at);
        const auto* const sign =
            std::find_if(std::begin(SIGNS), std::end(SIGNS),
                         [rest](const ComparisonSign& row) { return rest.startsWith(row.text); });
        if (sign != std::end(SIGNS)) {
            condition.comparison = sign->comparison;
            return ReadParts(program, text, at, sign->text.size(), FindVariable,
                             condition.setting);
        }
    }
    return QStringLiteral("NAME=VALUE is expected, or <, >, <=, >=, <> instead of =, not ") +
           Quoted(text);
}

bool Holds(const Condition& condition, const Value& value) {
    const Value& bound = condition.setting.value;
    if (!value.isReal()) {
        const int order = value.whole < bound.whole ? -1 : value.whole > bound.whole ? 1 : 0;
        return HoldsFor(condition.comparison, order);
    }
    if (value.real != value.real) {
        return condition.comparison == Comparison::NotEqual;
    }
    const int order = value.real < bound.real ? -1 : value.real > bound.real ? 1 : 0;
    return HoldsFor(condition.comparison, order);
}
