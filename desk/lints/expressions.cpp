// Operators: how they are grouped and what they compare.

#include "check/context.h"
#include "lints/grouping.h"
#include "lints/lints_table.h"
#include "lints/literals.h"

#include "qyx_text.h"
#include "qyx_types.h"

namespace {

std::vector<Diagnostic> FindSurprises(const Subject& subject, bool areConditions) {
    std::vector<Diagnostic> findings;
    const Grouping grouping(subject);
    for (const OperationFact* each : grouping.surprises(areConditions)) {
        findings.push_back(
            Finding(each->span(),
                    QStringLiteral("This is grouped as %1").arg(Quoted(grouping.spelled(*each))),
                    QStringLiteral("write the parentheses that are meant")));
    }
    return findings;
}

std::vector<Diagnostic> FindGroupings(const Subject& subject) {
    return FindSurprises(subject, false);
}

std::vector<Diagnostic> FindConditions(const Subject& subject) {
    return FindSurprises(subject, true);
}

// ---------------------------------------------------------------------------------------------
// Comparisons
// ---------------------------------------------------------------------------------------------

// What a comparison with TRUE or FALSE is meant to ask of a number. The order of truth values
// asks nothing.
QString NumberHelp(const QString& left, Token comparison, bool isTrue) {
    if (comparison != TOKEN_EQUAL && comparison != TOKEN_NOT_EQUAL) {
        return QStringLiteral("compare it with a number");
    }
    const bool isMeantTrue = (comparison == TOKEN_EQUAL) == isTrue;
    const QString meant = left + (isMeantTrue ? QStringLiteral(" <> 0") : QStringLiteral(" = 0"));
    return QStringLiteral("compare it with a number, as in %1").arg(Code(meant));
}

// The compiler takes a BOOL on the right of a comparison alone.
Diagnostic NumberAndBool(const Subject& subject, const OperationFact& comparison) {
    const int right = subject.tokens.at(comparison.right.begin);
    const bool isTrue = subject.tokens.is(right, TOKEN_TRUE);
    const QString left = Shortened(OneLine(subject, comparison.left));
    if (!isTrue && !subject.tokens.is(right, TOKEN_FALSE)) {
        return Finding(
            comparison.span(),
            QStringLiteral("The number %1 is compared with a \"BOOL\", which is 1 or 0")
                .arg(Quoted(left)));
    }
    return Finding(
        comparison.span(),
        QStringLiteral("The number %1 is compared with %2").arg(Quoted(left)).arg(isTrue ? 1 : 0),
        NumberHelp(left, comparison.code, isTrue));
}

std::vector<Diagnostic> FindBoolsAndNumbers(const Subject& subject) {
    std::vector<Diagnostic> findings;
    for (const OperationFact& each : subject.facts.operations) {
        const bool isNumber = each.leftType != TYP_NONE && IsTypDigit(each.leftType);
        if (IsComparison(each.code) && isNumber && IsTypBoolean(each.rightType)) {
            findings.push_back(NumberAndBool(subject, each));
        }
    }
    return findings;
}

bool IsZero(const Subject& subject, Span span) {
    const std::optional<Number> number =
        SignedNumber(subject, subject.tokens.at(span.begin), subject.tokens.at(span.end));
    return number && number->value == 0.0;
}

// Zero is exact where it means that there is nothing, or that something can be divided by.
bool IsInexact(const Subject& subject, const OperationFact& comparison) {
    const bool hasReal = IsReal(comparison.leftType) || IsReal(comparison.rightType);
    return hasReal && !IsTypBoolean(comparison.rightType) && !IsZero(subject, comparison.left) &&
           !IsZero(subject, comparison.right);
}

std::vector<Diagnostic> FindRealEqualities(const Subject& subject) {
    std::vector<Diagnostic> findings;
    for (const OperationFact& each : subject.facts.operations) {
        const bool isEquality = each.code == TOKEN_EQUAL || each.code == TOKEN_NOT_EQUAL;
        if (isEquality && IsInexact(subject, each)) {
            findings.push_back(Finding(
                each.span(),
                QStringLiteral("Reals are compared with %1, and what is computed is hardly ever"
                               " equal")
                    .arg(Quoted(subject.source.text(each.op))),
                QStringLiteral("compare their distance, as in `fabs(x - y) %1 0.001`")
                    .arg(each.code == TOKEN_EQUAL ? "<"_L1 : ">="_L1)));
        }
    }
    return findings;
}

}  // namespace

Lints LintsOfExpressions() {
    return {{QLatin1String("surprising-grouping"), FindGroupings},
            {QLatin1String("surprising-condition"), FindConditions},
            {QLatin1String("bool-and-number"), FindBoolsAndNumbers},
            {QLatin1String("real-equality"), FindRealEqualities}};
}
