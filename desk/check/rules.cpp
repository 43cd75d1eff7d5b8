#include "check/rules.h"

#include "check/rules_table.h"

namespace {

const Rules& AllRules() {
    static const Rules rules = [] {
        Rules all;
        for (const auto group : {RulesOfText, RulesOfStructure, RulesOfDeclarations,
                                 RulesOfStatements, RulesOfOperators, RulesOfNames}) {
            const Rules rows = group();
            all.insert(all.end(), rows.begin(), rows.end());
        }
        return all;
    }();
    return rules;
}

}  // namespace

std::vector<Help> HelpsForError(const Source& source, const Facts& facts) {
    if (facts.isCompiled()) {
        return {};
    }
    const Context context = ContextOf(source, facts);
    for (const Rule& rule : AllRules()) {
        if (std::optional<Help> help = rule.help(context)) {
            help->id = rule.id;
            return {*help};
        }
    }
    return {};
}

std::vector<QString> RuleIds() {
    std::vector<QString> ids;
    for (const Rule& rule : AllRules()) {
        ids.emplace_back(rule.id);
    }
    return ids;
}
