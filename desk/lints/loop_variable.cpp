// Variables of FOR that the body of the loop changes.

#include "lints/flow_rules.h"
#include "lints/subject.h"

#include <algorithm>
#include <unordered_map>

namespace {

constexpr const char* ID = "loop-variable-changed";

// ---------------------------------------------------------------------------------------------
// Parameters by reference
// ---------------------------------------------------------------------------------------------

// A call whose parameters are being read.
struct OpenCall {
    const std::vector<int>* parameters;  // by reference, the names
    std::size_t next;
};

// Follows the uses of the script and knows which parameter a reference is passed for.
struct Parameters {
    std::unordered_map<int, std::vector<int>> byReference;  // by the name of the definition
    std::vector<OpenCall> open;
    std::vector<bool> isChanged;  // by name
};

Parameters ParametersOf(const FlowScript& script) {
    Parameters all;
    all.isChanged.assign(script.facts.names.size(), false);
    for (std::size_t name = 0; name < script.facts.names.size(); ++name) {
        const NameFact& fact = script.facts.names[name];
        if (fact.kind == NameKind::Variable && fact.section == TOKEN_VAR_REF) {
            all.byReference[script.unit(fact.unit).name].push_back(static_cast<int>(name));
        }
    }
    return all;
}

void BeginCall(Parameters& all, int definition) {
    const auto found = all.byReference.find(definition);
    if (found != all.byReference.end()) {
        all.open.push_back({&found->second, 0});
    }
}

// The parameter that the next reference is passed for. Calls within parameters end before the
// next parameter.
int TakeParameter(Parameters& all) {
    OpenCall& call = all.open.back();
    const int name = (*call.parameters)[call.next];
    ++call.next;
    if (call.next == call.parameters->size()) {
        all.open.pop_back();
    }
    return name;
}

// Whether a use changes its variable. A definition is known when it is called, but for one that
// calls itself.
bool Changes(Parameters& all, const UseFact& use) {
    if (use.kind == UseKind::Call) {
        BeginCall(all, use.name);
        return false;
    }
    const bool isChange = use.kind == UseKind::Write ||
                          (use.kind == UseKind::Reference &&
                           all.isChanged[static_cast<std::size_t>(TakeParameter(all))]);
    if (isChange) {
        all.isChanged[static_cast<std::size_t>(use.name)] = true;
    }
    return isChange;
}

// ---------------------------------------------------------------------------------------------
// Loops
// ---------------------------------------------------------------------------------------------

// A statement that the current use stands in.
struct OpenStatement {
    int statement;
    int variable;  // of a FOR, NONE before it is known and for others
};

struct Loops {
    std::vector<OpenStatement> open;
    std::unordered_map<int, int> counts;  // of loops around, by variable
    int next = 0;                         // the statement that may begin
};

void Close(const FlowScript& script, Loops& loops, int place) {
    while (!loops.open.empty() &&
           script.statement(loops.open.back().statement).span.end <= place) {
        if (loops.open.back().variable != NONE) {
            --loops.counts[loops.open.back().variable];
        }
        loops.open.pop_back();
    }
}

void MoveTo(const FlowScript& script, Loops& loops, int place) {
    const int count = static_cast<int>(script.facts.statements.size());
    while (loops.next < count && script.statement(loops.next).span.begin <= place) {
        Close(script, loops, script.statement(loops.next).span.begin);
        loops.open.push_back({loops.next, NONE});
        ++loops.next;
    }
    Close(script, loops, place);
}

// Whether the use is that of a FOR for its variable, which then counts for what is within.
bool BeginsLoop(const FlowScript& script, Loops& loops, const UseFact& use) {
    OpenStatement& statement = loops.open.back();
    const bool isBegin = use.kind == UseKind::Write && statement.variable == NONE &&
                         script.statement(statement.statement).kind == TOKEN_FOR;
    if (isBegin) {
        statement.variable = use.name;
        ++loops.counts[use.name];
    }
    return isBegin;
}

// The loops around the current statement that have the variable.
int LoopsAround(const Loops& loops, int variable) {
    const auto found = loops.counts.find(variable);
    const int own = loops.open.back().variable == variable ? 1 : 0;
    return found == loops.counts.end() ? 0 : found->second - own;
}

// The last statements of the runs of statements, by the first item of the run.
std::unordered_map<int, int> LastStatements(const FlowScript& script) {
    std::unordered_map<int, int> last;
    for (std::size_t statement = 0; statement < script.layout.statements.size(); ++statement) {
        last[script.layout.statements[statement].branch] = static_cast<int>(statement);
    }
    return last;
}

// The outermost loop around the current statement that has the variable; one is there.
int OutermostLoop(const Loops& loops, int variable) {
    return std::find_if(
               loops.open.begin(), loops.open.end(),
               [variable](const OpenStatement& each) { return each.variable == variable; })
        ->statement;
}

int InnermostLoop(const FlowScript& script, int statement) {
    int outer = script.statement(statement).parent;
    while (!IsLoop(script.statement(outer))) {
        outer = script.statement(outer).parent;
    }
    return outer;
}

// Whether the label of a GOTO stands outside of a loop.
bool LeadsOutOf(const FlowScript& script, const StatementFact& jump, const StatementFact& loop) {
    const std::vector<UseFact>& uses = script.facts.uses;
    const auto use = std::lower_bound(
        uses.begin(), uses.end(), jump.span.begin,
        [](const UseFact& each, int offset) { return each.span.begin < offset; });
    const Span label = script.name(use->name).span;
    return label.begin < loop.span.begin || label.begin >= loop.span.end;
}

// Whether a statement within a loop, the last of its run, leaves that loop.
bool Leaves(const FlowScript& script, int statement, int loop) {
    const StatementFact& fact = script.statement(statement);
    switch (fact.kind) {
        case TOKEN_EXIT:
            return true;
        case TOKEN_BREAK:
            return InnermostLoop(script, statement) == loop;
        case TOKEN_GOTO:
            return LeadsOutOf(script, fact, script.statement(loop));
        default:
            return false;
    }
}

Diagnostic DiagnosticOf(const FlowScript& script, const UseFact& use) {
    return FlowWarning(
        ID,
        QStringLiteral("The variable %1 of a \"FOR\" loop is changed within the loop")
            .arg(Quoted(script, use.name)),
        use.span,
        QStringLiteral("`BREAK` leaves a loop; to count in another way write a `WHILE`"));
}

}  // namespace

// A change after which the loop is left, at the end of the run of statements, does not count.
void FindChangedLoopVariables(const FlowScript& script, std::vector<Diagnostic>& found) {
    const std::unordered_map<int, int> last = LastStatements(script);
    Parameters parameters = ParametersOf(script);
    Loops loops;
    for (const UseFact& use : script.facts.uses) {
        MoveTo(script, loops, use.span.begin);
        const bool isChange = Changes(parameters, use);
        const int around = BeginsLoop(script, loops, use)
                               ? LoopsAround(loops, use.name)
                               : isChange * LoopsAround(loops, use.name);
        const int branch = script.layout.of(loops.open.back().statement).branch;
        if (around > 0 && !Leaves(script, last.at(branch), OutermostLoop(loops, use.name))) {
            found.push_back(DiagnosticOf(script, use));
        }
    }
}
