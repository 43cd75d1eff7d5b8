#include "lints/flow_layout.h"

namespace {

// What is known of a statement while its items are read.
struct Part {
    int region = NONE;   // that its condition is a part of
    int operand = NONE;  // that the next item is a part of
    int lastOwn = NONE;  // the last item so far that is no inner statement's
};

struct Reader {
    const FlowCode& code;
    FlowLayout layout;
    std::vector<Part> parts;
    int body = 0;  // where the statements of the unit begin
};

Part& PartOf(Reader& reader, int statement) {
    return reader.parts[static_cast<std::size_t>(statement)];
}

// The body of a REPEAT runs whenever the statement does.
void Begin(Reader& reader, int statement, int item) {
    StatementItems& code = reader.layout.statements[static_cast<std::size_t>(statement)];
    const StatementFact& fact = reader.code.facts.statements[static_cast<std::size_t>(statement)];
    const bool isOuter = fact.parent == NONE;
    code.begin = item;
    code.branch = isOuter ? reader.body : PartOf(reader, fact.parent).lastOwn + 1;
    const bool isRepeated =
        !isOuter &&
        reader.code.facts.statements[static_cast<std::size_t>(fact.parent)].kind == TOKEN_REPEAT;
    Part& part = PartOf(reader, statement);
    part.region = isRepeated ? PartOf(reader, fact.parent).region : code.branch;
    part.operand = part.region;
}

// The label after a jump of an IF begins its next condition, any other ends the right side of
// an OR.
void PassLabel(Reader& reader, int statement, int item) {
    Part& part = PartOf(reader, statement);
    const bool isNextBranch = reader.code.kind(item) == TOKEN_IF && part.lastOwn == item - 1 &&
                              reader.code.operation(item - 1) == FlowKind::Jump;
    if (isNextBranch) {
        part.region = item + 1;
    }
    part.operand = part.region;
}

void ReadItem(Reader& reader, int statement, int item) {
    StatementItems& code = reader.layout.statements[static_cast<std::size_t>(statement)];
    if (code.begin == NONE) {
        Begin(reader, statement, item);
    }
    const FlowKind operation = reader.code.operation(item);
    if (operation == FlowKind::Label) {
        PassLabel(reader, statement, item);
    }
    Part& part = PartOf(reader, statement);
    reader.layout.regions[static_cast<std::size_t>(item)] = part.operand;
    if (operation == FlowKind::JumpIfTrue) {
        part.operand = item + 1;
    }
    part.lastOwn = item;
    code.last = item;
}

// Labels outside of statements begin a unit and its body.
void ReadOutside(Reader& reader, int item) {
    if (reader.code.operation(item) == FlowKind::Label) {
        reader.body = item + 1;
    }
    reader.layout.regions[static_cast<std::size_t>(item)] = reader.body;
}

}  // namespace

FlowLayout FlowLayoutOf(const FlowCode& code) {
    const Facts& facts = code.facts;
    Reader reader = {code, {}, {}};
    reader.layout.statements.resize(facts.statements.size());
    reader.layout.regions.assign(facts.items.size(), NONE);
    reader.parts.resize(facts.statements.size());
    for (int item = 0; item < code.count(); ++item) {
        if (code.statement(item) == NONE) {
            ReadOutside(reader, item);
        } else {
            ReadItem(reader, code.statement(item), item);
        }
    }
    return std::move(reader.layout);
}
