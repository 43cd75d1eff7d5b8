// Numbers that the type of a variable does not hold.

#include "check/context.h"
#include "lints/case_ranges.h"
#include "lints/lints_table.h"
#include "lints/literals.h"

#include "qyx_text.h"
#include "qyx_types.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace {

struct Range {
    Typ type;
    double low;
    double high;
};

constexpr double FLOAT_MAX = static_cast<double>(std::numeric_limits<float>::max());
constexpr double DOUBLE_MAX = std::numeric_limits<double>::max();
constexpr Range RANGES[] = {
    {TYP_SINT, -128, 127},
    {TYP_USINT, 0, 255},
    {TYP_INT, -32768, 32767},
    {TYP_UINT, 0, 65535},
    {TYP_DINT, -2147483648.0, 2147483647},
    {TYP_UDINT, 0, 4294967295.0},
    {TYP_REAL, -FLOAT_MAX, FLOAT_MAX},
    {TYP_LREAL, -DOUBLE_MAX, DOUBLE_MAX},
};

const Range* RangeOf(Typ type) {
    const auto* const found =
        std::find_if(std::begin(RANGES), std::end(RANGES),
                     [type](const Range& each) { return each.type == type; });
    return found == std::end(RANGES) ? nullptr : found;
}

bool IsIntegers(const Range& range) {
    return range.type != TYP_REAL && range.type != TYP_LREAL;
}

// A number with a base stands for bits: any that fit are meant.
bool IsInRange(const Number& number, const Range& range) {
    const bool isBits = number.hasBase && !number.isNegative && IsIntegers(range);
    const double high = isBits ? range.high - range.low : range.high;
    return number.value >= range.low && number.value <= high;
}

QString RangeText(const Range& range) {
    if (!IsIntegers(range)) {
        return QStringLiteral("no number of type \"%1\" is as large").arg(TypToStr(range.type));
    }
    return QStringLiteral("%1 \"%2\" is from %3 to %4")
        .arg(range.type == TYP_INT ? "an"_L1 : "a"_L1)
        .arg(TypToStr(range.type))
        .arg(static_cast<qint64>(range.low))
        .arg(static_cast<qint64>(range.high));
}

Span SpanOf(const Subject& subject, int begin, int end) {
    return {subject.tokens.span(begin).begin, subject.tokens.span(end - 1).end};
}

// A number, all that is stored into a variable or compared with it, by the tokens from one to
// before another.
void CheckStored(const Subject& subject, const NameFact& name, int begin, int end,
                 std::vector<Diagnostic>& findings) {
    const Range* const range = RangeOf(name.type);
    const std::optional<Number> number = SignedNumber(subject, begin, end);
    if (range == nullptr || !number || IsInRange(*number, *range)) {
        return;
    }
    const Span span = SpanOf(subject, begin, end);
    findings.push_back(Finding(span, QStringLiteral("%1 does not fit into %2: %3")
                                         .arg(Quoted(Shortened(OneLine(subject, span))),
                                              Quoted(subject.textOf(name)), RangeText(*range))));
}

// The initial values and the assignments.
void CheckAssignments(const Subject& subject, std::vector<Diagnostic>& findings) {
    const auto checkAfterAssign = [&](const NameFact& name, int assign, Span of) {
        if (subject.tokens.is(assign, TOKEN_ASSIGN)) {
            CheckStored(subject, name, assign + 1, subject.tokens.at(of.end) - 1, findings);
        }
    };
    for (const DeclarationFact& each : subject.facts.declarations) {
        const NameFact& name = subject.name(each.name);
        checkAfterAssign(name, AssignOf(subject, name), each.span);
    }
    for (const UseFact& use : subject.facts.uses) {
        const int statement = StatementAt(subject, use.span.begin);
        if (use.kind == UseKind::Write && statement != NONE) {
            checkAfterAssign(subject.name(use.name), subject.tokens.at(use.span.end),
                             subject.statement(statement).span);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// FOR
// ---------------------------------------------------------------------------------------------

// The tokens of the head of a FOR.
struct ForHead {
    int assign;
    int to;  // TO or DOWNTO
    int doing;
};

ForHead HeadOf(const Subject& subject, int begin) {
    ForHead head = {begin + 2, begin + 2, begin + 2};
    while (!subject.tokens.isOneOf(head.to, {TOKEN_TO, TOKEN_DOWNTO})) {
        ++head.to;
    }
    head.doing = head.to;
    while (!subject.tokens.is(head.doing, TOKEN_DO)) {
        ++head.doing;
    }
    return head;
}

// The loop ends once the variable is past its bound, and past the end of its type it never is.
void CheckEnd(const Subject& subject, const NameFact& name, const ForHead& head,
              std::vector<Diagnostic>& findings) {
    const Range* const range = RangeOf(name.type);
    const std::optional<Number> bound = SignedNumber(subject, head.to + 1, head.doing);
    if (range == nullptr || !bound) {
        return;
    }
    const bool isUp = subject.tokens.is(head.to, TOKEN_TO);
    if (bound->value == (isUp ? range->high : range->low)) {
        findings.push_back(
            Finding(SpanOf(subject, head.to + 1, head.doing),
                    QStringLiteral("The loop never ends by its bound: %1 never gets %2 it, as %3")
                        .arg(Quoted(subject.textOf(name)), isUp ? "above"_L1 : "below"_L1,
                             RangeText(*range)),
                    QStringLiteral("count with a wider type, or do the last round after the"
                                   " loop")));
    }
}

void CheckFor(const Subject& subject, const StatementFact& loop,
              std::vector<Diagnostic>& findings) {
    const int begin = subject.tokens.at(loop.span.begin);
    const UseFact* const variable = UseAt(subject, begin + 1);
    if (variable == nullptr) {
        return;
    }
    const NameFact& name = subject.name(variable->name);
    const ForHead head = HeadOf(subject, begin);
    CheckStored(subject, name, head.assign + 1, head.to, findings);
    CheckStored(subject, name, head.to + 1, head.doing, findings);
    CheckEnd(subject, name, head, findings);
}

// ---------------------------------------------------------------------------------------------
// CASE
// ---------------------------------------------------------------------------------------------

// The variable that is all of the selector of a CASE, null if it is anything else.
const NameFact* SelectorOf(const Subject& subject, const StatementFact& statement) {
    const int token = subject.tokens.at(statement.span.begin) + 1;
    const UseFact* const use = UseAt(subject, token);
    const bool isAll = use != nullptr && subject.tokens.is(token + 1, TOKEN_OF);
    return isAll ? &subject.name(use->name) : nullptr;
}

// The ends of a range one by one.
void CheckLabel(const Subject& subject, const NameFact& selector, const CaseRange& label,
                std::vector<Diagnostic>& findings) {
    const int begin = subject.tokens.at(label.span.begin);
    const int end = subject.tokens.at(label.span.end);
    int dots = begin;
    while (dots < end && !subject.tokens.is(dots, TOKEN_DOT_DOT)) {
        ++dots;
    }
    CheckStored(subject, selector, begin, dots, findings);
    if (dots < end) {
        CheckStored(subject, selector, dots + 1, end, findings);
    }
}

void CheckCases(const Subject& subject, std::vector<Diagnostic>& findings) {
    for (const auto& [statement, labels] : RangesOfCases(subject)) {
        const NameFact* const selector = SelectorOf(subject, subject.statement(statement));
        for (const CaseRange& label : labels) {
            if (selector != nullptr) {
                CheckLabel(subject, *selector, label, findings);
            }
        }
    }
}

std::vector<Diagnostic> FindOutOfRange(const Subject& subject) {
    std::vector<Diagnostic> findings;
    CheckAssignments(subject, findings);
    for (const StatementFact& each : subject.facts.statements) {
        if (each.kind == TOKEN_FOR) {
            CheckFor(subject, each, findings);
        }
    }
    CheckCases(subject, findings);
    return findings;
}

}  // namespace

Lints LintsOfRanges() {
    return {{QLatin1String("constant-out-of-range"), FindOutOfRange}};
}
