#include "lints/subject.h"

#include <algorithm>

Diagnostic Finding(Span span, const QString& message) {
    Diagnostic diagnostic;
    diagnostic.level = Level::Warning;
    diagnostic.message = message;
    diagnostic.span = span;
    return diagnostic;
}

Diagnostic Finding(Span span, const QString& message, const QString& help) {
    return Finding(span, message, help, {});
}

Diagnostic Finding(Span span, const QString& message, const QString& help, Span helpSpan) {
    Diagnostic diagnostic = Finding(span, message);
    diagnostic.helps.push_back({QString(), help, helpSpan});
    return diagnostic;
}

QString OneLine(const Subject& subject, Span span) {
    QString line;
    int end = span.begin;
    for (int index = subject.tokens.at(span.begin); subject.tokens.span(index).begin < span.end;
         ++index) {
        const Span token = subject.tokens.span(index);
        line += token.begin > end ? QStringLiteral(" ") : QString();
        line += subject.source.text(token).toString();
        end = token.end;
    }
    return line;
}

QString Shortened(const QString& text) {
    constexpr int longest = 40;
    constexpr int kept = 18;
    return text.size() <= longest ? text
                                  : text.left(kept) + QStringLiteral("...") + text.right(kept);
}

bool IsLoop(const StatementFact& statement) {
    return statement.kind == TOKEN_FOR || statement.kind == TOKEN_WHILE ||
           statement.kind == TOKEN_REPEAT;
}

bool IsReal(Typ type) {
    return type == TYP_REAL || type == TYP_LREAL;
}

int StatementAt(const Subject& subject, int offset) {
    const std::vector<StatementFact>& all = subject.facts.statements;
    const auto found =
        std::lower_bound(all.begin(), all.end(), offset,
                         [](const StatementFact& each, int at) { return each.span.begin < at; });
    const bool isThere = found != all.end() && found->span.begin == offset;
    return isThere ? static_cast<int>(found - all.begin()) : NONE;
}

const UseFact* UseAt(const Subject& subject, int token) {
    const std::vector<UseFact>& uses = subject.facts.uses;
    const int begin = subject.tokens.span(token).begin;
    const auto found =
        std::lower_bound(uses.begin(), uses.end(), begin,
                         [](const UseFact& each, int at) { return each.span.begin < at; });
    return found != uses.end() && found->span.begin == begin ? &*found : nullptr;
}

QStringView UnitOf(const Subject& subject, const StatementFact& statement) {
    const UnitFact& unit = subject.facts.units[static_cast<std::size_t>(statement.unit)];
    return subject.textOf(subject.name(unit.name));
}

int AssignOf(const Subject& subject, const NameFact& name) {
    return subject.tokens.at(name.span.begin) + 3;
}

QSet<int> LabelsOfGotos(const Subject& subject) {
    QSet<int> labels;
    for (const UseFact& use : subject.facts.uses) {
        if (use.kind == UseKind::Goto) {
            labels.insert(use.name);
        }
    }
    return labels;
}
