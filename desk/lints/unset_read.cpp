// Variables of functions and function blocks that are read where a way leads on which nothing
// has set them.
//
// That a variable is set under one condition and read under another is no fault where the two go
// together, and nobody can tell in general. So a read that some ways reach with a value and some
// without is only reported if no condition stands between the two: none that the read is under,
// and none under which the unit or the loop was left. Loops are taken to run at least once.

#include "lints/flow_rules.h"
#include "lints/flow_spread.h"

#include <algorithm>
#include <climits>

namespace {

constexpr const char* ID = "unset-read";

// A unit with a group of its variables.
struct Look {
    const FlowScript& script;
    const FlowGraph& graph;
    const VariableGroup& group;
    std::vector<MaskTransfer> stores;  // by block
    std::vector<VariableMask> unset;   // by block, that come to it without a value on some way
    std::vector<VariableMask> set;     // by block, that come to it with a value on some way
    std::vector<int> doubts;  // by variable, the first item after which nothing is certain
};

// ---------------------------------------------------------------------------------------------
// Which variables
// ---------------------------------------------------------------------------------------------

// A declaration without a value is "name : type ;".
bool HasInitialValue(const Facts& facts, const NameFact& name) {
    constexpr std::ptrdiff_t AFTER_TYPE = 3;
    const auto found =
        std::lower_bound(facts.tokens.begin(), facts.tokens.end(), name.span.begin,
                         [](const TokenFact& token, int at) { return token.span.begin < at; });
    return facts.tokens.end() - found > AFTER_TYPE && (found + AFTER_TYPE)->code == TOKEN_ASSIGN;
}

bool IsStore(const PlacedUse& step) {
    return step.kind == FlowUse::Store && step.use != NONE;
}

// The compiler itself warns of a variable that nothing sets.
bool IsCandidate(const FlowScript& script, const FlowVariable& variable) {
    const NameFact& name = script.name(variable.name);
    const bool isOwn = name.section == TOKEN_RESULT ||
                       (name.section == TOKEN_VAR && !HasInitialValue(script.facts, name));
    const PlacedUse& first = variable.steps.front();
    const bool isSetAtOnce = first.kind == FlowUse::Store && first.block == 0;
    return isOwn && !isSetAtOnce &&
           std::any_of(variable.steps.begin(), variable.steps.end(), IsStore);
}

std::vector<const FlowVariable*> CandidatesOf(const FlowScript& script,
                                              const std::vector<FlowVariable>& variables) {
    std::vector<const FlowVariable*> candidates;
    for (const FlowVariable& variable : variables) {
        if (IsCandidate(script, variable)) {
            candidates.push_back(&variable);
        }
    }
    return candidates;
}

// ---------------------------------------------------------------------------------------------
// What comes where
// ---------------------------------------------------------------------------------------------

// A read ends the doubt: what follows from it is not reported again. False if it is too much.
bool FindStates(Look& look, FlowWays& ways) {
    const std::size_t count = look.graph.blocks.size();
    std::vector<MaskTransfer> uses(count);
    look.stores.assign(count, MaskTransfer());
    for (std::size_t index = 0; index < look.group.size(); ++index) {
        for (const PlacedUse& step : look.group[index]->steps) {
            const auto block = static_cast<std::size_t>(step.block);
            uses[block].kill |= BitOf(index);
            look.stores[block].make |= step.kind == FlowUse::Load ? 0 : BitOf(index);
        }
    }
    std::vector<VariableMask> begin(count, 0);
    look.set = SpreadForwards(ways, look.stores, begin);
    begin.front() = ~VariableMask(0);
    look.unset = SpreadForwards(ways, uses, begin);
    return !look.set.empty() && !look.unset.empty();
}

bool IsLeaving(Token kind) {
    return kind == TOKEN_EXIT || kind == TOKEN_BREAK || kind == TOKEN_CONTINUE;
}

void DoubtFrom(Look& look, VariableMask variables, int item) {
    for (std::size_t index = 0; index < look.group.size(); ++index) {
        if ((variables & BitOf(index)) != 0) {
            look.doubts[index] = std::min(look.doubts[index], item);
        }
    }
}

// A jump that leaves with a value or without one may take away all ways of either kind; what a
// GOTO does to the order of things is not looked into.
void FindDoubts(Look& look) {
    look.doubts.assign(look.group.size(), INT_MAX);
    for (std::size_t index = 0; index < look.graph.blocks.size(); ++index) {
        const int last = look.graph.blocks[index].end - 1;
        const Token kind = look.script.code.kind(last);
        if (kind == TOKEN_GOTO) {
            DoubtFrom(look, ~VariableMask(0), 0);
        } else if (IsLeaving(kind)) {
            const VariableMask either =
                look.unset[index] & look.set[index] & ~look.stores[index].make;
            DoubtFrom(look, either, last);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// What is reported
// ---------------------------------------------------------------------------------------------

// Whether the way to a read forks within what runs together with it.
bool IsCertain(const Look& look, std::size_t index, const PlacedUse& step) {
    const int region = look.script.layout.regions[static_cast<std::size_t>(step.item)];
    const auto block = static_cast<std::size_t>(look.graph.blockOf(region));
    return (look.set[block] & BitOf(index)) == 0 && step.item < look.doubts[index];
}

// The compiler warns of what is read above all that sets it.
bool IsBelowStore(const FlowVariable& variable, const PlacedUse& step) {
    const auto store = std::find_if(variable.steps.begin(), variable.steps.end(), IsStore);
    return step.use == NONE || store->item < step.item;
}

Diagnostic DiagnosticOfRead(const Look& look, const FlowVariable& variable, const PlacedUse& step,
                            bool isSetSomewhere) {
    const QString text =
        isSetSomewhere
            ? QStringLiteral("The variable %1 is read here, but not set on every way to here")
            : QStringLiteral("The variable %1 is read here, but nothing sets it before");
    return FlowWarning(ID, text.arg(Quoted(look.script, variable.name)),
                       look.script.use(step.use).span,
                       QStringLiteral("set it on every way, or give it an initial value"));
}

// The result is read where the function ends: at EXIT or END_FUNCTION.
Diagnostic DiagnosticOfResult(const Look& look, const PlacedUse& step, bool isSetSomewhere) {
    const QString text =
        isSetSomewhere
            ? QStringLiteral("The function %1 ends here, but \"RESULT\" is not set on every way")
            : QStringLiteral("The function %1 ends here, but nothing sets \"RESULT\" before");
    const int name = look.script.unit(look.graph.unit).name;
    return FlowWarning(ID, text.arg(Quoted(look.script, name)),
                       TokenAt(look.script.facts, look.script.item(step.item).place),
                       QStringLiteral("set `RESULT` before the first condition"));
}

void TellOf(const Look& look, std::size_t index, const PlacedUse& step, bool isSetSomewhere,
            std::vector<Diagnostic>& found) {
    const FlowVariable& variable = *look.group[index];
    const bool isSure = !isSetSomewhere || IsCertain(look, index, step);
    if (!isSure || !IsBelowStore(variable, step)) {
        return;
    }
    found.push_back(step.use == NONE ? DiagnosticOfResult(look, step, isSetSomewhere)
                                     : DiagnosticOfRead(look, variable, step, isSetSomewhere));
}

void FindInVariable(const Look& look, std::size_t index, std::vector<Diagnostic>& found) {
    int current = NONE;
    bool isUnset = false;
    bool isSet = false;
    for (const PlacedUse& step : look.group[index]->steps) {
        const auto block = static_cast<std::size_t>(step.block);
        if (step.block != current) {
            current = step.block;
            isUnset = (look.unset[block] & BitOf(index)) != 0;
            isSet = (look.set[block] & BitOf(index)) != 0;
        }
        if (step.kind == FlowUse::Load && isUnset) {
            TellOf(look, index, step, isSet, found);
        }
        isUnset = false;
        isSet = isSet || step.kind != FlowUse::Load;
    }
}

void FindInUnit(const FlowScript& script, const UnitFlow& unit, std::vector<Diagnostic>& found) {
    const FlowGraph graph = WithLoopsEntered(script.code, unit.graph);
    FlowWays ways = WaysOf(graph, false);
    for (const VariableGroup& group : GroupsOf(CandidatesOf(script, unit.variables))) {
        Look look = {script, graph, group, {}, {}, {}, {}};
        if (!FindStates(look, ways)) {
            return;
        }
        FindDoubts(look);
        for (std::size_t index = 0; index < group.size(); ++index) {
            FindInVariable(look, index, found);
        }
    }
}

}  // namespace

void FindUnsetReads(const FlowScript& script, std::vector<Diagnostic>& found) {
    for (const UnitFlow& unit : script.units) {
        if (script.unit(unit.graph.unit).kind != TOKEN_PROGRAM) {
            FindInUnit(script, unit, found);
        }
    }
}
