// Statements that no way leads to.

#include "lints/flow_rules.h"

#include <algorithm>
#include <unordered_map>

namespace {

constexpr const char* ID = "unreachable-code";

// Whether items are reached, as the number of those before each; items of units without a graph
// are.
struct Reached {
    std::vector<int> before;

    bool isAny(int begin, int last) const {
        return before[static_cast<std::size_t>(last) + 1] !=
               before[static_cast<std::size_t>(begin)];
    }
};

Reached ReachedItems(const FlowScript& script) {
    std::vector<int> counts(script.facts.items.size() + 1, 1);
    for (const UnitFlow& unit : script.units) {
        for (const FlowBlock& block : unit.graph.blocks) {
            std::fill(counts.begin() + block.begin, counts.begin() + block.end,
                      block.isReached ? 1 : 0);
        }
    }
    Reached reached = {std::vector<int>(counts.size(), 0)};
    for (std::size_t item = 0; item + 1 < counts.size(); ++item) {
        reached.before[item + 1] = reached.before[item] + counts[item];
    }
    return reached;
}

// What keeps the way from a statement: the jump before it or what else stands there.
QString MessageAfter(const FlowScript& script, int previous) {
    const Token kind = previous == NONE ? TOKEN_UNKNOWN : script.statement(previous).kind;
    if (kind == TOKEN_EXIT || kind == TOKEN_BREAK || kind == TOKEN_CONTINUE ||
        kind == TOKEN_GOTO) {
        const Span word = TokenAt(script.facts, script.statement(previous).span.begin);
        return QStringLiteral("This statement is never reached: %1 stands before it")
            .arg(QLatin1Char('"') + script.source.text(word).toString().toUpper() +
                 QLatin1Char('"'));
    }
    return QStringLiteral("This statement is never reached");
}

bool IsUnreached(const FlowScript& script, const Reached& reached, int statement) {
    const StatementItems& code = script.layout.of(statement);
    return !reached.isAny(code.begin, code.last);
}

}  // namespace

// Of a run of statements the first is reported, of those within a statement none.
void FindUnreachableCode(const FlowScript& script, std::vector<Diagnostic>& found) {
    const Reached reached = ReachedItems(script);
    std::unordered_map<int, int> lastOf;  // by branch, the statement before
    for (int statement = 0; statement < static_cast<int>(script.facts.statements.size());
         ++statement) {
        const auto added = lastOf.emplace(script.layout.of(statement).branch, NONE);
        const int previous = added.first->second;
        added.first->second = statement;
        const StatementFact& fact = script.statement(statement);
        const bool isFirst = (previous == NONE || !IsUnreached(script, reached, previous)) &&
                             (fact.parent == NONE || !IsUnreached(script, reached, fact.parent));
        if (isFirst && IsUnreached(script, reached, statement)) {
            found.push_back(FlowWarning(ID, MessageAfter(script, previous),
                                        TokenAt(script.facts, fact.span.begin)));
        }
    }
}
