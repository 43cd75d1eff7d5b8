#include "lints/flow.h"

#include "lints/flow_rules.h"

#include <algorithm>

std::vector<Diagnostic> FlowLints(const Source& source, const Facts& facts) {
    std::vector<Diagnostic> found;
    if (!facts.isCompiled()) {
        return found;
    }
    const FlowCode code(facts);
    const FlowScript script = {source, facts, code, FlowLayoutOf(code), UnitFlowsOf(code)};
    FindUnsetReads(script, found);
    FindUnusedStores(script, found);
    FindUnreachableCode(script, found);
    FindChangedLoopVariables(script, found);
    std::stable_sort(found.begin(), found.end(), [](const Diagnostic& a, const Diagnostic& b) {
        return a.span.begin < b.span.begin;
    });
    return found;
}
