// EXIT, CASE and labels.

#include "check/context.h"
#include "lints/case_ranges.h"
#include "lints/lints_table.h"

#include "qyx_text.h"

#include <QHash>

#include <algorithm>
#include <map>
#include <optional>

namespace {

// ---------------------------------------------------------------------------------------------
// EXIT
// ---------------------------------------------------------------------------------------------

// The innermost loop or CASE that holds a statement, NONE if none does.
int InnermostConstruct(const Subject& subject, int statement) {
    int outer = subject.statement(statement).parent;
    while (outer != NONE && !IsLoop(subject.statement(outer)) &&
           subject.statement(outer).kind != TOKEN_CASE) {
        outer = subject.statement(outer).parent;
    }
    return outer;
}

// Whether the tokens between two statements of one statement begin no other branch of it.
bool AreInOneBranch(const Subject& subject, int before, int after) {
    const int end = subject.tokens.at(subject.statement(after).span.begin);
    int index = subject.tokens.at(subject.statement(before).span.end);
    while (index < end && !subject.tokens.isOneOf(index, {TOKEN_ELSIF, TOKEN_ELSE})) {
        ++index;
    }
    return index == end;
}

// The next statement of the same parent and branch, NONE if there is none.
int NextInBranch(const Subject& subject, int statement) {
    const StatementFact& of = subject.statement(statement);
    const std::vector<StatementFact>& all = subject.facts.statements;
    const auto found =
        std::lower_bound(all.begin() + statement + 1, all.end(), of.span.end,
                         [](const StatementFact& each, int at) { return each.span.begin < at; });
    const int next = static_cast<int>(found - all.begin());
    const bool isSibling =
        found != all.end() && found->parent == of.parent && found->unit == of.unit;
    return isSibling && AreInOneBranch(subject, statement, next) ? next : NONE;
}

// Whether something is done after a loop: then to leave the loop is not to leave the unit. It is
// where another EXIT follows.
bool IsFollowed(const Subject& subject, int loop) {
    for (int at = loop; at != NONE; at = subject.statement(at).parent) {
        const bool isInConstruct = at != loop && (IsLoop(subject.statement(at)) ||
                                                  subject.statement(at).kind == TOKEN_CASE);
        const int next = NextInBranch(subject, at);
        if (isInConstruct || next != NONE) {
            return isInConstruct || subject.statement(next).kind != TOKEN_EXIT;
        }
    }
    return false;
}

// By statement, whether those before it in its branch give the function its result. Of statements
// in none it is not told.
std::vector<bool> AfterResult(const Subject& subject) {
    const std::size_t count = subject.facts.statements.size();
    std::vector<bool> areAfter(count, false);
    std::vector<int> lastOf(count, NONE);  // by parent
    for (std::size_t at = 0; at < count; ++at) {
        const int statement = static_cast<int>(at);
        const int parent = subject.statement(statement).parent;
        if (parent == NONE) {
            continue;
        }
        int& before = lastOf[static_cast<std::size_t>(parent)];
        areAfter[at] = before != NONE && AreInOneBranch(subject, before, statement) &&
                       (areAfter[static_cast<std::size_t>(before)] ||
                        subject.statement(before).kind == TOKEN_RESULT);
        before = statement;
    }
    return areAfter;
}

// By statement, whether it stands in a CASE.
std::vector<bool> InCase(const Subject& subject) {
    std::vector<bool> areIn;
    for (const StatementFact& each : subject.facts.statements) {
        areIn.push_back(each.parent != NONE &&
                        (subject.statement(each.parent).kind == TOKEN_CASE ||
                         areIn[static_cast<std::size_t>(each.parent)]));
    }
    return areIn;
}

Diagnostic ExitInCase(const Subject& subject, const StatementFact& exit) {
    return Finding(TokenAt(subject.facts, exit.span.begin),
                   QStringLiteral("\"EXIT\" ends the whole of %1 and leaves the value of the"
                                  " \"CASE\" on the stack")
                       .arg(Quoted(UnitOf(subject, exit))),
                   QStringLiteral("a branch ends by itself; to leave %1, set a variable and"
                                  " `EXIT` after `END_CASE`")
                       .arg(Code(UnitOf(subject, exit))));
}

Diagnostic ExitInLoop(const Subject& subject, const StatementFact& exit) {
    return Finding(TokenAt(subject.facts, exit.span.begin),
                   QStringLiteral("\"EXIT\" ends the whole of %1, not the loop alone")
                       .arg(Quoted(UnitOf(subject, exit))),
                   QStringLiteral("`BREAK` leaves the loop"));
}

// What is asked about an EXIT, for all of a script.
struct ExitFacts {
    std::vector<bool> areAfterResult;  // by statement
    std::vector<bool> areInCase;
    QHash<int, bool> areFollowed;  // by loop, as far as it was asked
};

bool IsFollowed(const Subject& subject, ExitFacts& facts, int loop) {
    const auto known = facts.areFollowed.constFind(loop);
    return known != facts.areFollowed.constEnd()
               ? *known
               : *facts.areFollowed.insert(loop, IsFollowed(subject, loop));
}

// What is found of an EXIT in a loop or CASE. After its result a function is meant to end.
std::optional<Diagnostic> FindingOfExit(const Subject& subject, ExitFacts& facts, int exit,
                                        int outer) {
    const auto index = static_cast<std::size_t>(exit);
    const StatementFact& fact = subject.statement(exit);
    const bool isMeant = facts.areAfterResult[index];
    if (subject.statement(outer).kind == TOKEN_CASE || (isMeant && facts.areInCase[index])) {
        return ExitInCase(subject, fact);
    }
    if (isMeant || !IsFollowed(subject, facts, outer)) {
        return std::nullopt;
    }
    return ExitInLoop(subject, fact);
}

std::vector<Diagnostic> FindExits(const Subject& subject) {
    std::vector<Diagnostic> findings;
    ExitFacts facts = {AfterResult(subject), InCase(subject), {}};
    for (int index = 0; index < static_cast<int>(subject.facts.statements.size()); ++index) {
        const bool isExit = subject.statement(index).kind == TOKEN_EXIT;
        const int outer = isExit ? InnermostConstruct(subject, index) : NONE;
        const std::optional<Diagnostic> found =
            outer == NONE ? std::nullopt : FindingOfExit(subject, facts, index, outer);
        if (found) {
            findings.push_back(*found);
        }
    }
    return findings;
}

// ---------------------------------------------------------------------------------------------
// Labels
// ---------------------------------------------------------------------------------------------

// A label that no GOTO names.
struct UnusedLabel {
    const NameFact& name;
    bool isBranch;  // stands where a label of a CASE could
};

std::vector<UnusedLabel> UnusedLabels(const Subject& subject) {
    std::vector<UnusedLabel> labels;
    const QSet<int> used = LabelsOfGotos(subject);
    for (std::size_t index = 0; index < subject.facts.names.size(); ++index) {
        const NameFact& name = subject.facts.names[index];
        if (name.kind != NameKind::Label || used.contains(static_cast<int>(index))) {
            continue;
        }
        const int parent = subject.statement(StatementAt(subject, name.span.begin)).parent;
        labels.push_back({name, parent != NONE && subject.statement(parent).kind == TOKEN_CASE});
    }
    return labels;
}

std::vector<Diagnostic> FindLabelsInCase(const Subject& subject) {
    std::vector<Diagnostic> findings;
    for (const UnusedLabel& each : UnusedLabels(subject)) {
        if (each.isBranch) {
            const QStringView name = subject.textOf(each.name);
            findings.push_back(Finding(
                each.name.span,
                QStringLiteral("%1 begins no branch of the \"CASE\": it is a label for \"GOTO\"")
                    .arg(Quoted(QString(name.toString() + u':'))),
                IsWordForElse(name)
                    ? QStringLiteral("the branch for all other values is `ELSE`, without a `:`")
                    : QStringLiteral("a branch begins with numbers: write the value of %1")
                          .arg(Code(name))));
        }
    }
    return findings;
}

std::vector<Diagnostic> FindUnusedLabels(const Subject& subject) {
    std::vector<Diagnostic> findings;
    for (const UnusedLabel& each : UnusedLabels(subject)) {
        if (!each.isBranch) {
            findings.push_back(Finding(each.name.span,
                                       QStringLiteral("No \"GOTO\" names the label %1")
                                           .arg(Quoted(subject.textOf(each.name))),
                                       QStringLiteral("leave the label out")));
        }
    }
    return findings;
}

// ---------------------------------------------------------------------------------------------
// CASE
// ---------------------------------------------------------------------------------------------

// Ranges that are not within others, by their lower ends.
using OuterRanges = std::map<double, const CaseRange*>;

const CaseRange* RangeAround(const OuterRanges& outer, const CaseRange& range) {
    const auto next = outer.upper_bound(range.low);
    const CaseRange* const before = next == outer.begin() ? nullptr : std::prev(next)->second;
    return before != nullptr && before->high >= range.high ? before : nullptr;
}

std::vector<Diagnostic> FindHiddenRanges(const Subject& subject) {
    std::vector<Diagnostic> findings;
    for (const auto& [statement, ranges] : RangesOfCases(subject)) {
        OuterRanges outer;
        for (const CaseRange& range : ranges) {
            const CaseRange* const around = RangeAround(outer, range);
            if (around == nullptr) {
                outer.emplace(range.low, &range);
                continue;
            }
            findings.push_back(Finding(
                range.span, QStringLiteral("No value reaches %1: %2 on line %3 takes all of it")
                                .arg(Quoted(subject.source.text(range.span)),
                                     Quoted(subject.source.text(around->span)))
                                .arg(subject.lineOf(around->span.begin))));
        }
    }
    return findings;
}

}  // namespace

Lints LintsOfStatements() {
    return {{QLatin1String("exit-in-loop"), FindExits},
            {QLatin1String("label-in-case"), FindLabelsInCase},
            {QLatin1String("unused-label"), FindUnusedLabels},
            {QLatin1String("hidden-case-range"), FindHiddenRanges}};
}
