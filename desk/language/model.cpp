#include "language/model.h"

#include "facts/compile.h"

namespace {

// All records have their place in `span`.
template <typename Record>
void BringBack(const Edits& edits, std::vector<Record>& records) {
    for (Record& record : records) {
        record.span = edits.original(record.span);
    }
}

void BringBackOperations(const Edits& edits, std::vector<OperationFact>& operations) {
    for (OperationFact& operation : operations) {
        operation.left = edits.original(operation.left);
        operation.op = edits.original(operation.op);
        operation.right = edits.original(operation.right);
    }
}

// Where items and messages stand.
template <typename Record>
void BringPlacesBack(const Edits& edits, std::vector<Record>& records) {
    for (Record& record : records) {
        record.place = edits.originalBegin(record.place);
    }
}

void BringBack(const Edits& edits, Facts& facts) {
    BringBack(edits, facts.units);
    BringBack(edits, facts.names);
    BringBack(edits, facts.uses);
    BringBack(edits, facts.declarations);
    BringBack(edits, facts.statements);
    BringBackOperations(edits, facts.operations);
    BringPlacesBack(edits, facts.items);
    BringPlacesBack(edits, facts.messages);
    facts.error.token = edits.original(facts.error.token);
    if (facts.open.part != NONE) {
        facts.open.part = edits.originalBegin(facts.open.part);
    }
}

}  // namespace

ModelBuild::ModelBuild(const Source& source, int maxErrors, FindMore findMore)
    : check_(source, maxErrors, std::move(findMore)), source_(source) {}

bool ModelBuild::take(const Facts& facts) {
    keep(facts);
    edits_ = check_.edits();
    return check_.take(facts);
}

// The first text that is compiled is the script itself.
void ModelBuild::keep(const Facts& facts) {
    std::vector<TokenFact> tokens = std::move(facts_.tokens);
    std::vector<CommentFact> comments = std::move(facts_.comments);
    facts_ = facts;
    if (hasTokens_) {
        facts_.tokens = std::move(tokens);
        facts_.comments = std::move(comments);
    }
    hasTokens_ = true;
}

Model ModelBuild::model() const {
    Model model = {source_, facts_, check_.report().diagnostics, edits_.all().empty()};
    BringBack(edits_, model.facts);
    for (const Edit& edit : edits_.all()) {
        model.changes.push_back(edit.span);
    }
    return model;
}

Model ModelOf(const Source& source, int maxErrors, const FindMore& findMore) {
    ModelBuild build(source, maxErrors, findMore);
    while (true) {
        const CompileResult result = CompileAndWait(build.next());
        if (!result.facts || !build.take(*result.facts)) {
            return build.model();
        }
    }
}
