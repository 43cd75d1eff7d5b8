#include "lints/layout.h"

#include "lints/code.h"

namespace {

// What is known of a statement while its items are read.
struct Part {
    int region = NONE;    // that its condition is a part of
    int operand = NONE;   // that the next item is a part of
    int lastOwn = NONE;   // the last item so far that is no inner statement's
};

struct Reader {
    const Facts& facts;
    Layout layout;
    std::vector<Part> parts;
    int body = 0;  // where the statements of the unit begin
};

Part& PartOf(Reader& reader, int statement) {
    return reader.parts[static_cast<std::size_t>(statement)];
}

// The body of a REPEAT runs whenever the statement does.
void Begin(Reader& reader, int statement, int item) {
    StatementCode& code = reader.layout.statements[static_cast<std::size_t>(statement)];
    const StatementFact& fact = reader.facts.statements[static_cast<std::size_t>(statement)];
    const bool isOuter = fact.parent == NONE;
    code.begin = item;
    code.branch = isOuter ? reader.body : PartOf(reader, fact.parent).lastOwn + 1;
    const bool isRepeated =
        !isOuter &&
        reader.facts.statements[static_cast<std::size_t>(fact.parent)].kind == TOKEN_REPEAT;
    Part& part = PartOf(reader, statement);
    part.region = isRepeated ? PartOf(reader, fact.parent).region : code.branch;
    part.operand = part.region;
}

// The label after a jump of an IF begins its next condition, any other ends the right side of
// an OR.
void PassLabel(Reader& reader, int statement, int item) {
    Part& part = PartOf(reader, statement);
    const bool isNextBranch = StatementKindAt(reader.facts, item) == TOKEN_IF &&
                              part.lastOwn == item - 1 &&
                              OperationAt(reader.facts, item - 1) == Operation::Jump;
    if (isNextBranch) {
        part.region = item + 1;
    }
    part.operand = part.region;
}

void ReadItem(Reader& reader, int statement, int item) {
    StatementCode& code = reader.layout.statements[static_cast<std::size_t>(statement)];
    if (code.begin == NONE) {
        Begin(reader, statement, item);
    }
    const Operation operation = OperationAt(reader.facts, item);
    if (operation == Operation::Label) {
        PassLabel(reader, statement, item);
    }
    Part& part = PartOf(reader, statement);
    reader.layout.regions[static_cast<std::size_t>(item)] = part.operand;
    if (operation == Operation::JumpIfTrue) {
        part.operand = item + 1;
    }
    part.lastOwn = item;
    code.last = item;
}

// Labels outside of statements begin a unit and its body.
void ReadOutside(Reader& reader, int item) {
    if (OperationAt(reader.facts, item) == Operation::Label) {
        reader.body = item + 1;
    }
    reader.layout.regions[static_cast<std::size_t>(item)] = reader.body;
}

}  // namespace

Layout LayoutOf(const Facts& facts) {
    Reader reader = {facts, {}, {}};
    reader.layout.statements.resize(facts.statements.size());
    reader.layout.regions.assign(facts.items.size(), NONE);
    reader.parts.resize(facts.statements.size());
    for (std::size_t item = 0; item < facts.items.size(); ++item) {
        const int statement = facts.items[item].statement;
        if (statement == NONE) {
            ReadOutside(reader, static_cast<int>(item));
        } else {
            ReadItem(reader, statement, static_cast<int>(item));
        }
    }
    return std::move(reader.layout);
}
