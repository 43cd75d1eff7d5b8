#include "language/rename.h"

#include "check/edits.h"
#include "check/tokens.h"
#include "explain/words.h"
#include "facts/compile.h"
#include "language/declarations.h"
#include "language/rename_proof.h"
#include "machine/code.h"

#include "qyx_scanner.h"

#include <algorithm>

namespace {

QString Code(const QString& text) {
    return u'`' + text + u'`';
}

// ---------------------------------------------------------------------------------------------
// What is renamed
// ---------------------------------------------------------------------------------------------

QString WhyBroken(const Model& model) {
    const auto error =
        std::find_if(model.diagnostics.begin(), model.diagnostics.end(),
                     [](const Diagnostic& each) { return each.level == Level::Error; });
    const QString where = error == model.diagnostics.end()
                              ? QString()
                              : QStringLiteral(": line %1: %2")
                                    .arg(error->placeIn(model.source).line)
                                    .arg(error->message);
    return QStringLiteral("only in a script that compiles can a name be changed") + where;
}

QString WhyFixed(const Model& model, int name) {
    const NameFact& fact = NameOf(model, name);
    if (fact.isBuiltIn) {
        return Code(TextOfName(model, name)) + QStringLiteral(" is built in");
    }
    return IsResult(fact) ? QStringLiteral("`RESULT` is a word of the language") : QString();
}

// ---------------------------------------------------------------------------------------------
// The new name
// ---------------------------------------------------------------------------------------------

bool IsNameForm(const QString& text) {
    return !text.isEmpty() && IsAlphaR(text.at(0)) &&
           std::all_of(text.begin(), text.end(), IsAlphaOrDigitR);
}

bool IsType(const QString& text) {
    return std::any_of(std::begin(TypsTable), std::end(TypsTable),
                       [&text](const typ& row) { return IsSameName(QString(row.name), text); });
}

QString WhyNoName(const Model& model, int name, const QString& text) {
    if (!IsNameForm(text)) {
        return Code(text) + QStringLiteral(
                                " is no name: a name begins with a letter or `_` and "
                                "goes on with letters, digits and `_`");
    }
    if (Lookup(text) != NO_ROW || IsType(text)) {
        return Code(text) + QStringLiteral(" is a reserved word");
    }
    if (BuiltInRowOf(text) != nullptr) {
        return Code(text) + QStringLiteral(" is the name of a built-in");
    }
    const bool isLabel = NameOf(model, name).kind == NameKind::Label;
    return isLabel && IsGeneratedLabel(text.toUpper())
               ? Code(text) + QStringLiteral(" looks like a label that the compiler makes")
               : QString();
}

bool OccursIn(const Model& model, int name, int unit) {
    const Span extent = ExtentOfUnit(model, unit);
    const std::vector<Occurrence> all = OccurrencesOf(model, name);
    return std::any_of(all.begin(), all.end(), [extent](const Occurrence& each) {
        return each.span.begin >= extent.begin && each.span.begin < extent.end;
    });
}

// Whether two names, were they the same, would be taken for each other somewhere.
bool Collide(const Model& model, int one, int other) {
    const NameFact& first = NameOf(model, one);
    const NameFact& second = NameOf(model, other);
    if (first.kind == NameKind::Program || second.kind == NameKind::Program) {
        return UnitNamed(model, one) != NONE && UnitNamed(model, other) != NONE;
    }
    if (first.kind == NameKind::Variable && second.kind == NameKind::Variable) {
        return first.unit == second.unit;
    }
    if (first.kind == NameKind::Label && second.kind == NameKind::Variable) {
        return OccursIn(model, one, second.unit);
    }
    if (first.kind == NameKind::Variable && second.kind == NameKind::Label) {
        return OccursIn(model, other, first.unit);
    }
    return true;
}

QString WhoHas(const Model& model, int name) {
    const NameFact& fact = NameOf(model, name);
    const int unit = UnitNamed(model, name);
    const QString who = unit == NONE ? RoleText(model, name) : UnitTitle(model, unit);
    return QStringLiteral("%1, line %2").arg(who).arg(model.source.placeOf(fact.span.begin).line);
}

QString WhyTaken(const Model& model, int name, const QString& text) {
    const int count = static_cast<int>(model.facts.names.size());
    for (int other = 0; other < count; ++other) {
        const bool isTaken = other != name && IsSameName(TextOfName(model, other), text) &&
                             Collide(model, name, other);
        if (isTaken) {
            return QStringLiteral("%1 is taken: %2").arg(Code(text), WhoHas(model, other));
        }
    }
    return QString();
}

// ---------------------------------------------------------------------------------------------
// The proof
// ---------------------------------------------------------------------------------------------

QString WhyNotProven(const Facts& before, const CompileResult& result, const NameChange& change) {
    if (!result.facts) {
        return QStringLiteral("the renamed script was not compiled: ") + result.failure;
    }
    const Facts& after = *result.facts;
    if (!after.isCompiled()) {
        return QStringLiteral("the renamed script would not compile: ") +
               after.textOf(after.messages.back().text).toString();
    }
    return IsSameButForName(before, after, change)
               ? QString()
               : QStringLiteral("the renamed script would not mean the same");
}

QString RenamedText(const Model& model, const std::vector<Span>& places, const QString& name) {
    Edits edits;
    for (const Span place : places) {
        edits.add({place, name});
    }
    return edits.applyTo(model.source.text());
}

}  // namespace

RenameTarget RenameTargetAt(const Model& model, int offset) {
    const std::optional<Occurrence> occurrence = OccurrenceAt(model, offset);
    if (!occurrence) {
        return {{}, NONE, QStringLiteral("there is no name to be changed here")};
    }
    const QString fixed = WhyFixed(model, occurrence->name);
    const QString refusal = fixed.isEmpty() && IsBroken(model) ? WhyBroken(model) : fixed;
    return {occurrence->span, occurrence->name, refusal};
}

Renaming RenameTo(const Model& model, int offset, const QString& newName) {
    const RenameTarget target = RenameTargetAt(model, offset);
    if (!target.refusal.isEmpty()) {
        return {{}, target.refusal};
    }
    const QString noName = WhyNoName(model, target.name, newName);
    const QString refusal = noName.isEmpty() ? WhyTaken(model, target.name, newName) : noName;
    if (!refusal.isEmpty()) {
        return {{}, refusal};
    }
    std::vector<Span> places;
    for (const Occurrence& each : OccurrencesOf(model, target.name)) {
        places.push_back(each.span);
    }
    const Source renamed(model.source.name(), RenamedText(model, places, newName));
    const NameChange change = {target.name, TextOfName(model, target.name), newName};
    const QString failure = WhyNotProven(model.facts, CompileWithin(PATIENCE, renamed), change);
    return failure.isEmpty() ? Renaming{places, QString()} : Renaming{{}, failure};
}
