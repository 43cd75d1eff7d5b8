#include "language/declarations.h"

#include "explain/words.h"
#include "language/literals.h"
#include "language/remarks.h"
#include "lints/subject.h"

#include "qyx_types.h"

#include <algorithm>
#include <iterator>

namespace {

const DeclarationFact* DeclarationOf(const Model& model, int name) {
    const std::vector<DeclarationFact>& all = model.facts.declarations;
    const auto found = std::find_if(all.begin(), all.end(), [name](const DeclarationFact& each) {
        return each.name == name && each.isEnded;
    });
    return found == all.end() ? nullptr : &*found;
}

QString KeywordText(Token code) {
    return QString(TokensTable[Lookup(code)].text);
}

QString VariableText(const Model& model, int name) {
    const DeclarationFact* const declaration = DeclarationOf(model, name);
    return declaration == nullptr
               ? TextOfName(model, name) + QStringLiteral(" : ") +
                     NameOfType(NameOf(model, name).type)
               : OneLine(Subject(model.source, model.facts), declaration->span);
}

QString SectionsText(const Model& model, int unit) {
    QString text;
    Token section = TOKEN_UNKNOWN;
    for (const int parameter : ParametersOf(model, unit)) {
        const Token own = NameOf(model, parameter).section;
        if (own != section) {
            text += section == TOKEN_UNKNOWN ? QString() : QStringLiteral("END_VAR\n");
            text += KeywordText(own) + u'\n';
            section = own;
        }
        text += QStringLiteral("    ") + VariableText(model, parameter) + u'\n';
    }
    return text.isEmpty() ? text : u'\n' + text + QStringLiteral("END_VAR");
}

QString DefinitionText(const Model& model, int name) {
    const int unit = UnitNamed(model, name);
    const NameFact& fact = NameOf(model, name);
    const QString type = fact.kind == NameKind::Function
                             ? QStringLiteral(" : ") + NameOfType(fact.type)
                             : QString();
    const QString keyword = KeywordText(unit == NONE ? TOKEN_FUNCTION : UnitOf(model, unit).kind);
    return keyword + u' ' + TextOfName(model, name) + type + SectionsText(model, unit);
}

QString WithoutMarks(QString markdown) {
    return markdown.remove(u'`');
}

bool IsFunction(const BuiltInRow& row) {
    return row.result != QLatin1String("none");
}

QString BuiltInText(const BuiltInRow& row) {
    const QString result = QStringLiteral(" : ") + WithoutMarks(row.result);
    return row.name + u'(' + WithoutMarks(row.parameters) + u')' +
           (IsFunction(row) ? result : QString());
}

}  // namespace

QString DeclarationText(const Model& model, int name) {
    const NameFact& fact = NameOf(model, name);
    const QString text = TextOfName(model, name);
    if (fact.isBuiltIn) {
        const BuiltInRow* const row = BuiltInRowOf(text);
        return row == nullptr ? text : BuiltInText(*row);
    }
    switch (fact.kind) {
        case NameKind::Variable:
            return VariableText(model, name);
        case NameKind::Label:
            return text + u':';
        default:
            return DefinitionText(model, name);
    }
}

namespace {

struct Role {
    Token section;
    const char* text;
};

constexpr Role ROLES[] = {
    {TOKEN_VAR, "Variable"},
    {TOKEN_VAR_INPUT, "Input"},
    {TOKEN_VAR_OUTPUT, "Output"},
    {TOKEN_VAR_GLOBAL, "Global variable"},
    {TOKEN_VAR_YXGLOBAL, "Engine global"},
    {TOKEN_VAR_YXREGISTER, "Engine register"},
    {TOKEN_VAR_ARG, "Parameter by value"},
    {TOKEN_VAR_REF, "Parameter by reference"},
    {TOKEN_RESULT, "Result"},
};

QString RoleOfVariable(const NameFact& name) {
    const auto* const role =
        std::find_if(std::begin(ROLES), std::end(ROLES),
                     [&name](const Role& each) { return each.section == name.section; });
    const char* const text = role == std::end(ROLES) ? "Variable" : role->text;
    return QLatin1String(name.isConstant ? "Constant" : text);
}

QString VariableRole(const Model& model, const NameFact& name) {
    const QString section = name.section == TOKEN_RESULT
                                ? QString()
                                : QStringLiteral(" (`%1`)").arg(KeywordText(name.section));
    return QStringLiteral("%1 of %2%3")
        .arg(RoleOfVariable(name), UnitTitle(model, name.unit), section);
}

QString LabelRole(const Model& model, int name) {
    const Span span = DeclaredAt(model, name);
    const int unit = span.isEmpty() ? NONE : UnitAt(model, span.begin);
    return unit == NONE ? QStringLiteral("Label that is not defined")
                        : QStringLiteral("Label in %1").arg(UnitTitle(model, unit));
}

QString KindText(NameKind kind) {
    return kind == NameKind::Function        ? QStringLiteral("function")
           : kind == NameKind::FunctionBlock ? QStringLiteral("function block")
                                             : QStringLiteral("program");
}

QString BuiltInRole(const BuiltInRow& row) {
    const NameKind kind = IsFunction(row) ? NameKind::Function : NameKind::FunctionBlock;
    return QStringLiteral("Built-in %1: %2").arg(KindText(kind), row.text);
}

Span PieceOf(const Model& model, int name) {
    const DeclarationFact* const declaration = DeclarationOf(model, name);
    if (declaration != nullptr) {
        return declaration->span;
    }
    const int unit = UnitNamed(model, name);
    const Span declared = DeclaredAt(model, name);
    return unit == NONE ? declared : Span{UnitOf(model, unit).span.begin, declared.end};
}

}  // namespace

QString UnitTitle(const Model& model, int unit) {
    const int name = unit == NONE ? NONE : UnitOf(model, unit).name;
    return name == NONE ? QStringLiteral("a unit without a name")
                        : QStringLiteral("%1 `%2`").arg(KindText(NameOf(model, name).kind),
                                                        TextOfName(model, name));
}

QString RoleText(const Model& model, int name) {
    const NameFact& fact = NameOf(model, name);
    if (fact.isBuiltIn) {
        const BuiltInRow* const row = BuiltInRowOf(TextOfName(model, name));
        return row == nullptr ? QString() : BuiltInRole(*row);
    }
    switch (fact.kind) {
        case NameKind::Variable:
            return VariableRole(model, fact);
        case NameKind::Label:
            return LabelRole(model, name);
        default:
            return QString();
    }
}

QString NameText(const Model& model, int name) {
    const bool isDeclared = !DeclaredAt(model, name).isEmpty();
    QStringList parts = {QStringLiteral("```st\n%1\n```").arg(DeclarationText(model, name)),
                         RoleText(model, name),
                         isDeclared ? RemarksOn(model, PieceOf(model, name)) : QString()};
    parts.removeAll(QString());
    return parts.join(QStringLiteral("\n\n"));
}

QString NameText(const BuiltInRow& row) {
    return QStringLiteral("```st\n%1\n```\n\n%2").arg(BuiltInText(row), BuiltInRole(row));
}
