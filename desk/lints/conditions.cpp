// Conditions that never change.

#include "check/context.h"
#include "lints/grouping.h"
#include "lints/lints_table.h"
#include "lints/literals.h"

#include <QHash>
#include <QPair>

#include <algorithm>
#include <optional>

namespace {

// ---------------------------------------------------------------------------------------------
// Where conditions stand
// ---------------------------------------------------------------------------------------------

struct Condition {
    Token keyword;  // IF, ELSIF, WHILE, UNTIL
    int begin;      // the tokens from one to before another
    int end;
    int loop;  // the token that begins the loop of a WHILE or UNTIL
};

Token EndOfCondition(Token keyword) {
    switch (keyword) {
        case TOKEN_IF:
        case TOKEN_ELSIF:
            return TOKEN_THEN;
        case TOKEN_WHILE:
            return TOKEN_DO;
        case TOKEN_UNTIL:
            return TOKEN_END_REPEAT;
        default:
            return TOKEN_UNKNOWN;
    }
}

// Whether a token is part of what can be told without running the subject.
bool IsConstant(const Subject& subject, int token) {
    return !subject.tokens.isOneOf(token, {TOKEN_IDENTIFIER, TOKEN_RESULT, TOKEN_TICK});
}

// Keeps the tokens of the REPEATs that are open before a token; gives that of the loop of an
// UNTIL or WHILE.
int LoopOf(const Subject& subject, int token, std::vector<int>& repeats) {
    if (subject.tokens.is(token, TOKEN_REPEAT)) {
        repeats.push_back(token);
    } else if (subject.tokens.is(token, TOKEN_UNTIL)) {
        const int repeat = repeats.back();
        repeats.pop_back();
        return repeat;
    }
    return token;
}

std::vector<Condition> ConstantConditions(const Subject& subject) {
    std::vector<Condition> conditions;
    std::vector<int> repeats;
    for (int index = 0; index < subject.tokens.count(); ++index) {
        const int loop = LoopOf(subject, index, repeats);
        const Token keyword = subject.tokens.code(index);
        const Token last = EndOfCondition(keyword);
        int end = index + 1;
        while (last != TOKEN_UNKNOWN && IsConstant(subject, end) &&
               !subject.tokens.is(end, last)) {
            ++end;
        }
        if (last != TOKEN_UNKNOWN && subject.tokens.is(end, last)) {
            conditions.push_back({keyword, index + 1, end, loop});
        }
    }
    return conditions;
}

// ---------------------------------------------------------------------------------------------
// What they come to
// ---------------------------------------------------------------------------------------------

// Truth values of pieces of the script that hold no names; nothing for what is not worked out.
class Evaluation {
public:
    explicit Evaluation(const Subject& subject) : subject_(subject) {
        for (const OperationFact& each : subject.facts.operations) {
            operations_.insert({each.span().begin, each.span().end}, &each);
        }
    }

    std::optional<bool> truthOf(Span span) const;

private:
    const Subject& subject_;
    QHash<QPair<int, int>, const OperationFact*> operations_;

    Span withoutParentheses(Span span) const;
    std::optional<bool> truthOf(const OperationFact& operation) const;
    std::optional<bool> comparison(const OperationFact& operation) const;
};

Span Evaluation::withoutParentheses(Span span) const {
    int first = subject_.tokens.at(span.begin);
    int last = subject_.tokens.at(span.end) - 1;
    const auto key = [&] {
        return QPair<int, int>(subject_.tokens.span(first).begin, subject_.tokens.span(last).end);
    };
    while (!operations_.contains(key()) && subject_.tokens.is(first, TOKEN_LEFT_PARENTHESIS)) {
        ++first;
        --last;
    }
    return {key().first, key().second};
}

std::optional<bool> Evaluation::truthOf(Span span) const {
    const Span inner = withoutParentheses(span);
    const int token = subject_.tokens.at(inner.begin);
    const OperationFact* const operation = operations_.value({inner.begin, inner.end});
    if (operation != nullptr) {
        return truthOf(*operation);
    }
    const bool isTrue = subject_.tokens.is(token, TOKEN_TRUE);
    return isTrue || subject_.tokens.is(token, TOKEN_FALSE) ? std::optional(isTrue)
                                                            : std::nullopt;
}

std::optional<bool> Evaluation::truthOf(const OperationFact& operation) const {
    if (IsComparison(operation.code)) {
        return comparison(operation);
    }
    const std::optional<bool> right = truthOf(operation.right);
    const std::optional<bool> left =
        operation.code == TOKEN_NOT ? std::optional(true) : truthOf(operation.left);
    if (!left || !right) {
        return std::nullopt;
    }
    switch (operation.code) {
        case TOKEN_AND:
            return *left && *right;
        case TOKEN_OR:
            return *left || *right;
        default:  // XOR, and NOT for TRUE XOR
            return *left != *right;
    }
}

// Of two numbers.
std::optional<bool> Evaluation::comparison(const OperationFact& operation) const {
    const auto numberOf = [this](Span span) {
        const Span inner = withoutParentheses(span);
        return SignedNumber(subject_, subject_.tokens.at(inner.begin),
                            subject_.tokens.at(inner.end));
    };
    const std::optional<Number> left = numberOf(operation.left);
    const std::optional<Number> right = numberOf(operation.right);
    if (!left || !right) {
        return std::nullopt;
    }
    switch (operation.code) {
        case TOKEN_EQUAL:
            return left->value == right->value;
        case TOKEN_NOT_EQUAL:
            return left->value != right->value;
        case TOKEN_LESS:
            return left->value < right->value;
        case TOKEN_GREATER:
            return left->value > right->value;
        case TOKEN_LESS_OR_EQUAL:
            return left->value <= right->value;
        default:
            return left->value >= right->value;
    }
}

// ---------------------------------------------------------------------------------------------
// Loops
// ---------------------------------------------------------------------------------------------

// The numbers of statements that can end a loop, before each statement and after the last.
std::vector<int> CountLeaving(const Subject& subject) {
    std::vector<int> counts = {0};
    for (const StatementFact& each : subject.facts.statements) {
        const bool isLeaving =
            each.kind == TOKEN_BREAK || each.kind == TOKEN_EXIT || each.kind == TOKEN_GOTO;
        counts.push_back(counts.back() + (isLeaving ? 1 : 0));
    }
    return counts;
}

// Whether a statement within the loop can end it.
bool CanBeLeft(const Subject& subject, const std::vector<int>& leaving, int loop) {
    const std::vector<StatementFact>& all = subject.facts.statements;
    const int first = StatementAt(subject, subject.tokens.span(loop).begin);
    const auto end =
        std::lower_bound(all.begin() + first, all.end(), subject.statement(first).span.end,
                         [](const StatementFact& each, int at) { return each.span.begin < at; });
    return leaving[static_cast<std::size_t>(end - all.begin())] !=
           leaving[static_cast<std::size_t>(first)];
}

// ---------------------------------------------------------------------------------------------
// Findings
// ---------------------------------------------------------------------------------------------

QString Consequence(const Condition& condition, std::optional<bool> truth) {
    if (!truth) {
        return QStringLiteral("The condition is always the same");
    }
    if (condition.keyword == TOKEN_WHILE) {
        return *truth ? QStringLiteral("The loop never ends")
                      : QStringLiteral("The loop never runs");
    }
    if (condition.keyword == TOKEN_UNTIL) {
        return *truth ? QStringLiteral("The loop runs once")
                      : QStringLiteral("The loop never ends");
    }
    return *truth ? QStringLiteral("The condition is always true")
                  : QStringLiteral("The condition is never true");
}

// A loop that is left from within is meant to have no condition.
bool IsMeant(const Subject& subject, const std::vector<int>& leaving, const Condition& condition,
             std::optional<bool> truth) {
    const bool isOfLoop = condition.keyword == TOKEN_WHILE || condition.keyword == TOKEN_UNTIL;
    const bool neverRuns = condition.keyword == TOKEN_WHILE && truth == false;
    return isOfLoop && !neverRuns && CanBeLeft(subject, leaving, condition.loop);
}

std::vector<Diagnostic> FindConstantConditions(const Subject& subject) {
    std::vector<Diagnostic> findings;
    const std::vector<Condition> conditions = ConstantConditions(subject);
    if (conditions.empty()) {
        return findings;
    }
    const Evaluation evaluation(subject);
    const std::vector<int> leaving = CountLeaving(subject);
    for (const Condition& condition : conditions) {
        const Span span = {subject.tokens.span(condition.begin).begin,
                           subject.tokens.span(condition.end - 1).end};
        const std::optional<bool> truth = evaluation.truthOf(span);
        if (!IsMeant(subject, leaving, condition, truth)) {
            findings.push_back(Finding(span, Consequence(condition, truth)));
        }
    }
    return findings;
}

}  // namespace

Lints LintsOfConditions() {
    return {{QLatin1String("constant-condition"), FindConstantConditions}};
}
