#include "lints/flow_steps.h"

#include <algorithm>

namespace {

// The compiler writes the loads and stores in the order in which it meets the names, so the next
// item of a kind belongs to the next use of that kind.
struct Reader {
    const FlowCode& code;
    std::vector<FlowStep> steps;
    std::size_t nextRead;  // and reference
    std::size_t nextWrite;
    std::vector<int> variablesOfFor;  // by the statement
    std::vector<int> results;         // the variables, in the order of the functions
    std::size_t nextResult;
    bool fits;
};

bool IsWrite(const UseFact& use) {
    return use.kind == UseKind::Write;
}

bool IsReadOrReference(const UseFact& use) {
    return use.kind == UseKind::Read || use.kind == UseKind::Reference;
}

// The next use of a kind from an index on, which then stands after it; NONE if there is none.
int NextUse(const Facts& facts, std::size_t& from, bool isOfKind(const UseFact&)) {
    const auto begin = facts.uses.begin();
    const auto found =
        std::find_if(begin + static_cast<std::ptrdiff_t>(from), facts.uses.end(), isOfKind);
    from = static_cast<std::size_t>(found - begin);
    return found == facts.uses.end() ? NONE : static_cast<int>(from++);
}

void AddUse(Reader& reader, FlowUse kind, int item) {
    const bool isStore = kind == FlowUse::Store;
    const int use = isStore ? NextUse(reader.code.facts, reader.nextWrite, IsWrite)
                            : NextUse(reader.code.facts, reader.nextRead, IsReadOrReference);
    if (use == NONE) {
        reader.fits = false;
        return;
    }
    const int name = reader.code.facts.uses[static_cast<std::size_t>(use)].name;
    reader.steps.push_back({kind, item, name, use});
}

// The variable of a FOR is the one that the first store of the statement is made to.
void AddStore(Reader& reader, int item) {
    AddUse(reader, FlowUse::Store, item);
    if (reader.code.kind(item) == TOKEN_FOR && reader.fits) {
        const int statement = reader.code.statement(item);
        reader.variablesOfFor[static_cast<std::size_t>(statement)] = reader.steps.back().name;
    }
}

void AddPartOfFor(Reader& reader, FlowUse kind, int item) {
    const int statement = reader.code.statement(item);
    const int name = reader.variablesOfFor[static_cast<std::size_t>(statement)];
    reader.steps.push_back({kind, item, name, NONE});
}

// Outside of statements the end of a function loads the result; EXIT does so within.
void AddLoadOfResult(Reader& reader, int item) {
    if (reader.nextResult == reader.results.size()) {
        reader.fits = false;
        return;
    }
    reader.steps.push_back({FlowUse::Load, item, reader.results[reader.nextResult], NONE});
    const bool isEndOfUnit = reader.code.kind(item) == TOKEN_UNKNOWN;
    reader.nextResult += isEndOfUnit ? 1 : 0;
}

void AddLoad(Reader& reader, int item) {
    const Token kind = reader.code.kind(item);
    const bool isOfFor = reader.code.isTestOfFor(item) || reader.code.isStepOfFor(item);
    if (kind == TOKEN_UNKNOWN || kind == TOKEN_EXIT) {
        AddLoadOfResult(reader, item);
    } else if (kind == TOKEN_FOR && isOfFor) {
        AddPartOfFor(reader, FlowUse::Load, item);
    } else {
        AddUse(reader, FlowUse::Load, item);
    }
}

// Outside of statements parameters are stored, which no use asks for.
void AddItem(Reader& reader, int item) {
    const FlowKind operation = reader.code.operation(item);
    if (operation == FlowKind::Load) {
        AddLoad(reader, item);
    } else if (reader.code.kind(item) == TOKEN_UNKNOWN) {
        return;
    } else if (operation == FlowKind::Address) {
        AddUse(reader, FlowUse::Reference, item);
    } else if (operation == FlowKind::Store && reader.code.isStepOfFor(item)) {
        AddPartOfFor(reader, FlowUse::Store, item);
    } else if (operation == FlowKind::Store) {
        AddStore(reader, item);
    }
}

std::vector<int> ResultsOf(const Facts& facts) {
    std::vector<int> results;
    for (std::size_t name = 0; name < facts.names.size(); ++name) {
        const NameFact& fact = facts.names[name];
        if (fact.kind == NameKind::Variable && fact.section == TOKEN_RESULT) {
            results.push_back(static_cast<int>(name));
        }
    }
    return results;
}

}  // namespace

std::vector<FlowStep> FlowStepsOf(const FlowCode& code) {
    const Facts& facts = code.facts;
    Reader reader = {code, {}, 0, 0, {}, ResultsOf(facts), 0, true};
    reader.variablesOfFor.assign(facts.statements.size(), NONE);
    for (int item = 0; item < code.count() && reader.fits; ++item) {
        AddItem(reader, item);
    }
    const bool isAllUsed = NextUse(facts, reader.nextRead, IsReadOrReference) == NONE &&
                           NextUse(facts, reader.nextWrite, IsWrite) == NONE;
    return reader.fits && isAllUsed ? std::move(reader.steps) : std::vector<FlowStep>();
}
