// Stores whose value nothing reads.
//
// What a variable holds at the end of the program may be looked at or kept; what it holds at the
// end of a function or function block may be kept for the next call. Variables that others see at
// any time are left alone. A constant that some ways overwrite later is a default, and a call
// whose value is not used may be made for what it does.

#include "lints/flow_rules.h"
#include "lints/flow_spread.h"

#include <algorithm>

namespace {

constexpr const char* ID = "unused-store";

// A unit with a group of its variables.
struct Look {
    const FlowScript& script;
    const FlowGraph& graph;
    const VariableGroup& group;
    std::vector<VariableMask> needed;  // by block, whose values are read after it on some way
};

bool IsProgram(const FlowScript& script, const FlowGraph& graph) {
    return script.unit(graph.unit).kind == TOKEN_PROGRAM;
}

// ---------------------------------------------------------------------------------------------
// Which variables
// ---------------------------------------------------------------------------------------------

bool IsRead(const PlacedUse& step) {
    return step.kind != FlowUse::Store;
}

// Whether it is a store by an assignment.
bool IsAssigned(const FlowScript& script, const PlacedUse& step) {
    return step.kind == FlowUse::Store && step.use != NONE &&
           script.code.kind(step.item) != TOKEN_FOR;
}

// The step after one in its block, or null.
const PlacedUse* NextInBlock(const FlowVariable& variable, const PlacedUse& step) {
    const PlacedUse* const next = &step + 1;
    const bool isThere = next != variable.steps.data() + variable.steps.size();
    return isThere && next->block == step.block ? next : nullptr;
}

bool MayBeUnused(const FlowScript& script, const FlowVariable& variable, const PlacedUse& step) {
    const PlacedUse* const next = NextInBlock(variable, step);
    return IsAssigned(script, step) && (next == nullptr || !IsRead(*next));
}

bool IsOfSection(const FlowScript& script, const FlowGraph& graph, const FlowVariable& variable) {
    const Token section = script.name(variable.name).section;
    return section == TOKEN_VAR || section == TOKEN_RESULT ||
           section == (IsProgram(script, graph) ? TOKEN_VAR_OUTPUT : TOKEN_VAR_ARG);
}

// What is only read where no way leads is not reported: the cause is another.
bool IsCandidate(const FlowScript& script, const FlowGraph& graph, const FlowVariable& variable) {
    const auto begin = variable.steps.begin();
    const auto end = variable.steps.end();
    return IsOfSection(script, graph, variable) &&
           std::any_of(
               begin, end,
               [&](const PlacedUse& step) { return MayBeUnused(script, variable, step); }) &&
           std::none_of(begin, end, [&](const PlacedUse& step) {
               return IsRead(step) &&
                      !graph.blocks[static_cast<std::size_t>(step.block)].isReached;
           });
}

std::vector<const FlowVariable*> CandidatesOf(const FlowScript& script, const FlowGraph& graph,
                                              const std::vector<FlowVariable>& variables) {
    std::vector<const FlowVariable*> candidates;
    for (const FlowVariable& variable : variables) {
        if (IsCandidate(script, graph, variable)) {
            candidates.push_back(&variable);
        }
    }
    return candidates;
}

// ---------------------------------------------------------------------------------------------
// What is needed
// ---------------------------------------------------------------------------------------------

// The first step in a block decides; an argument has a new value at the begin of each call.
std::vector<MaskTransfer> TransfersOf(const Look& look) {
    std::vector<MaskTransfer> transfers(look.graph.blocks.size());
    for (std::size_t index = 0; index < look.group.size(); ++index) {
        int current = NONE;
        for (const PlacedUse& step : look.group[index]->steps) {
            MaskTransfer& transfer = transfers[static_cast<std::size_t>(step.block)];
            if (step.block != current) {
                (IsRead(step) ? transfer.make : transfer.kill) |= BitOf(index);
            }
            current = step.block;
        }
        if (look.script.name(look.group[index]->name).section == TOKEN_VAR_ARG) {
            transfers.front().make &= ~BitOf(index);
            transfers.front().kill |= BitOf(index);
        }
    }
    return transfers;
}

// What is needed at the end of the program, and in loops that have none; nothing at all if there
// are no visits left.
std::vector<VariableMask> NeededByOthers(const FlowScript& script, const FlowGraph& graph,
                                         FlowWays& ways) {
    std::vector<VariableMask> needed(graph.blocks.size(), 0);
    for (std::size_t index = 0; index < needed.size(); ++index) {
        needed[index] = graph.blocks[index].isEnd() ? 1 : 0;
    }
    needed = SpreadBackwards(ways, std::vector<MaskTransfer>(needed.size()), needed);
    for (std::size_t index = 0; index < needed.size(); ++index) {
        const bool isEnd = graph.blocks[index].isEnd();
        const bool isSeen = isEnd ? IsProgram(script, graph) : needed[index] == 0;
        needed[index] = isSeen ? ~VariableMask(0) : 0;
    }
    return needed;
}

// ---------------------------------------------------------------------------------------------
// What is stored
// ---------------------------------------------------------------------------------------------

// Whether a predicate holds for any, or all, of the items of a statement before a store.
template <typename Predicate>
bool AnyBefore(const FlowScript& script, int store, Predicate predicate) {
    const int statement = script.item(store).statement;
    for (int item = store - 1; item >= 0 && script.item(item).statement == statement; --item) {
        if (predicate(item)) {
            return true;
        }
    }
    return false;
}

bool HasCall(const FlowScript& script, const PlacedUse& store) {
    return AnyBefore(script, store.item,
                     [&](int item) { return script.code.operation(item) == FlowKind::Call; });
}

// A literal with its sign, TRUE or FALSE: "MOV 5 #A0", "SUB 0 #A0", "EQ 1 #A0", "TST #A0"
bool IsPartOfConstant(std::string_view code) {
    const bool isLiteral =
        code.substr(0, 4) == "MOV " && ((code[4] >= '0' && code[4] <= '9') || code[4] == '\'');
    return isLiteral || code == "SUB 0 #A0" || code == "EQ 1 #A0" || code == "TST #A0";
}

bool IsConstant(const FlowScript& script, const PlacedUse& store) {
    return !AnyBefore(script, store.item,
                      [&](int item) { return !IsPartOfConstant(script.code.text(item)); });
}

// ---------------------------------------------------------------------------------------------
// What is reported
// ---------------------------------------------------------------------------------------------

Diagnostic DiagnosticOf(const Look& look, const PlacedUse& step, const QString& text) {
    const UseFact& use = look.script.use(step.use);
    return FlowWarning(ID, text.arg(Quoted(look.script, use.name)), use.span);
}

// The help marks the value that takes the place.
Diagnostic DiagnosticOf(const Look& look, const PlacedUse& step, const QString& text,
                        const PlacedUse& next) {
    const UseFact& use = look.script.use(step.use);
    return FlowWarning(ID, text.arg(Quoted(look.script, use.name)), use.span,
                       QStringLiteral("the next value is set here"),
                       look.script.use(next.use).span);
}

// A variable that is never read is reported once; one that only takes values of calls is there to
// take them.
void TellOfUnread(const Look& look, const FlowVariable& variable,
                  std::vector<Diagnostic>& found) {
    const bool isToBeLeft =
        std::any_of(variable.steps.begin(), variable.steps.end(), [&](const PlacedUse& step) {
            return !look.graph.blocks[static_cast<std::size_t>(step.block)].isReached ||
                   HasCall(look.script, step);
        });
    if (!isToBeLeft) {
        found.push_back(
            DiagnosticOf(look, variable.steps.front(),
                         QStringLiteral("The variable %1 is assigned but never read")));
    }
}

// The store in the same block whose value takes the place of this one, or null.
const PlacedUse* OverwriterOf(const FlowVariable& variable, const PlacedUse& step) {
    const PlacedUse* const next = NextInBlock(variable, step);
    const bool isStore = next != nullptr && next->kind == FlowUse::Store && next->use != NONE;
    return isStore ? next : nullptr;
}

// What a program holds at its end counts as read, so that there each value that is not has
// another after it.
Diagnostic DiagnosticOfUnused(const Look& look, const FlowVariable& variable,
                              const PlacedUse& step) {
    const QString overwritten =
        QStringLiteral("The variable %1 gets another value before this one is read");
    const PlacedUse* const next = OverwriterOf(variable, step);
    if (next != nullptr) {
        return DiagnosticOf(look, step, overwritten, *next);
    }
    return DiagnosticOf(look, step,
                        IsProgram(look.script, look.graph)
                            ? overwritten
                            : QStringLiteral("Nothing reads this value of the variable %1"));
}

bool IsUnused(const Look& look, std::size_t index, const PlacedUse& step) {
    const auto block = static_cast<std::size_t>(step.block);
    const FlowVariable& variable = *look.group[index];
    const bool isNeeded = (look.needed[block] & BitOf(index)) != 0;
    const bool isOverwritten = OverwriterOf(variable, step) != nullptr;
    return MayBeUnused(look.script, variable, step) && look.graph.blocks[block].isReached &&
           (isOverwritten || (!isNeeded && !IsConstant(look.script, step))) &&
           !HasCall(look.script, step);
}

void FindInVariable(const Look& look, std::size_t index, std::vector<Diagnostic>& found) {
    const FlowVariable& variable = *look.group[index];
    const bool isRead = std::any_of(variable.steps.begin(), variable.steps.end(), IsRead);
    if (!isRead && !IsProgram(look.script, look.graph)) {
        TellOfUnread(look, variable, found);
        return;
    }
    for (const PlacedUse& step : variable.steps) {
        if (IsUnused(look, index, step)) {
            found.push_back(DiagnosticOfUnused(look, variable, step));
        }
    }
}

void FindInUnit(const FlowScript& script, const UnitFlow& unit, std::vector<Diagnostic>& found) {
    FlowWays ways = WaysOf(unit.graph, !IsProgram(script, unit.graph));
    const std::vector<VariableMask> byOthers = NeededByOthers(script, unit.graph, ways);
    for (const VariableGroup& group :
         GroupsOf(CandidatesOf(script, unit.graph, unit.variables))) {
        Look look = {script, unit.graph, group, {}};
        look.needed =
            byOthers.empty() ? byOthers : SpreadBackwards(ways, TransfersOf(look), byOthers);
        if (look.needed.empty()) {
            return;
        }
        for (std::size_t index = 0; index < group.size(); ++index) {
            FindInVariable(look, index, found);
        }
    }
}

// Whether a definition calls itself: then a call within may read what it has stored.
std::vector<bool> RecursiveNames(const FlowScript& script) {
    std::vector<bool> isRecursive(script.facts.names.size(), false);
    std::size_t unit = 0;
    for (const UseFact& use : script.facts.uses) {
        while (use.span.begin >= script.facts.units[unit].span.end) {
            ++unit;
        }
        const int name = script.facts.units[unit].name;
        if (use.kind == UseKind::Call && use.name == name) {
            isRecursive[static_cast<std::size_t>(name)] = true;
        }
    }
    return isRecursive;
}

}  // namespace

void FindUnusedStores(const FlowScript& script, std::vector<Diagnostic>& found) {
    const std::vector<bool> isRecursive = RecursiveNames(script);
    for (const UnitFlow& unit : script.units) {
        if (!isRecursive[static_cast<std::size_t>(script.unit(unit.graph.unit).name)]) {
            FindInUnit(script, unit, found);
        }
    }
}
