#include "facts/collector.h"

#include "facts/catalogue.h"

#include "qyx_scanner.h"

#include <algorithm>

// ---------------------------------------------------------------------------------------------
// Places
// ---------------------------------------------------------------------------------------------

// A place of the compiler counts from 0, and the line feed before a line stands at column -1.
int Collector::offsetOf(TokenPos pos) const {
    return source_.offsetOf({pos.line + 1, pos.column + 1});
}

// The end of what was read last: Look stands after it and the white space that follows it.
int Collector::endOfRead() const {
    int end = offsetOf({g_InputCodeFileCurrentLineCount, g_InputCodeFileCurrentPosCount});
    while (end > 0 && IsWhite(source_.text().at(end - 1))) {
        --end;
    }
    return end;
}

// The current token. One that could not be read to its end reaches to where the reader came, and
// takes at least one character.
Span Collector::currentSpan() const {
    const int begin = offsetOf(TokenPosBeg);
    const bool isRead = !facts_.tokens.empty() && facts_.tokens.back().span.begin == begin;
    if (isRead) {
        return facts_.tokens.back().span;
    }
    return {begin, std::min(std::max(endOfRead(), begin + 1), source_.size())};
}

Span Collector::lastSpanOf(const Identity* identity) const {
    const auto found = std::find(identities_.rbegin(), identities_.rend(), identity);
    const auto after = static_cast<std::size_t>(identities_.rend() - found);
    return after == 0 ? Span() : facts_.tokens[after - 1].span;
}

// ---------------------------------------------------------------------------------------------
// Tokens
// ---------------------------------------------------------------------------------------------

namespace {

// Room for records costs no memory before they are there, while growing costs it twice.
constexpr int USUAL_LENGTH = 3;  // of the text for a token or an item, at least
constexpr int MOST_RESERVED = 1 << 21;

// The compiler keeps the code of the token before it where it reads a type.
Token CodeOfCurrent() {
    if (TokenSpelling == nullptr || TokenChar == TOKEN_FUNCTION ||
        TokenChar == TOKEN_FUNCTION_BLOCK) {
        return TokenChar;
    }
    const int row = TokenSpelling->row;
    return row == NO_ROW ? TOKEN_IDENTIFIER : TokensTable[row].code;
}

}  // namespace

Collector::Collector(const Source& source, Records records)
    : source_(source), isForLayout_(records == Records::ForLayout) {
    const auto count =
        static_cast<std::size_t>(std::min(source.size() / USUAL_LENGTH, MOST_RESERVED));
    facts_.tokens.reserve(count);
    identities_.reserve(count);
    facts_.items.reserve(isForLayout_ ? 0 : count);
}

void Collector::token() {
    const Span span = {offsetOf(TokenPosBeg), endOfRead()};
    facts_.tokens.push_back({span, CodeOfCurrent(), CurrentToken.type});
    identities_.push_back(TokenSpelling == nullptr ? nullptr : TokenSpelling->identity);
    noteExpression();
}

void Collector::commentBegun() {
    const int begin = offsetOf(TokenPosBeg);
    facts_.comments.push_back({{begin, begin}});
}

void Collector::commentEnded() {
    facts_.comments.back().span.end = endOfRead();
}

// ---------------------------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------------------------

Span Collector::addText(QStringView text) {
    const int begin = facts_.texts.size();
    facts_.texts.append(text.data(), static_cast<int>(text.size()));
    return {begin, facts_.texts.size()};
}

int Collector::addName(const Spelling& spelling, Span span, NameKind kind) {
    NameFact name = {};
    name.text = addText(spelling.text);
    name.span = span;
    name.kind = kind;
    name.unit = NONE;
    facts_.names.push_back(name);
    return static_cast<int>(facts_.names.size()) - 1;
}

// The function or function block of that name; a built-in is noted when it is used first.
int Collector::definitionOf(const Spelling& spelling) {
    const auto known = definitions_.constFind(spelling.identity);
    if (known != definitions_.constEnd()) {
        return *known;
    }
    const FunctionItem& function = *FunctionsList.find(spelling);
    const int name = addName(*function.spelling, {},
                             function.isFunction ? NameKind::Function : NameKind::FunctionBlock);
    facts_.names.back().isBuiltIn = true;
    facts_.names.back().type = function.isFunction ? function.resultType : TYP_NONE;
    definitions_.insert(spelling.identity, name);
    return name;
}

int Collector::labelOf(const LabelItem& label) {
    const auto known = labels_.constFind(label.spelling->identity);
    if (known != labels_.constEnd()) {
        return *known;
    }
    const int name = addName(*label.spelling, {}, NameKind::Label);
    labels_.insert(label.spelling->identity, name);
    return name;
}

void Collector::nameUsed(NameUse use, const Spelling& spelling) {
    static_assert(static_cast<int>(UseKind::Call) == static_cast<int>(NameUse::Call));
    if (isForLayout_ && use != NameUse::Call) {
        return;
    }
    const int name =
        use == NameUse::Call ? definitionOf(spelling) : variables_.value(spelling.identity, NONE);
    facts_.uses.push_back({lastSpanOf(spelling.identity), name, static_cast<UseKind>(use)});
}

void Collector::labelDefined(const LabelItem& label) {
    const int index = labelOf(label);
    NameFact& name = facts_.names[static_cast<std::size_t>(index)];
    name.span = (facts_.tokens.end() - 2)->span;
    name.text = addText(source_.text(name.span));
}

void Collector::labelUsed(const LabelItem& label) {
    facts_.uses.push_back({(facts_.tokens.end() - 2)->span, labelOf(label), UseKind::Goto});
}

// ---------------------------------------------------------------------------------------------
// Units and declarations
// ---------------------------------------------------------------------------------------------

void Collector::unitBegun() {
    variables_.clear();
    facts_.open.unit = static_cast<int>(facts_.units.size());
    facts_.units.push_back({currentSpan(), TokenChar, NONE, false});
    outside_ = facts_.units.back().span.begin;
}

// The keyword of the unit tells what the name is.
void Collector::unitNamed() {
    UnitFact& unit = facts_.units.back();
    const NameKind kind = unit.kind == TOKEN_FUNCTION         ? NameKind::Function
                          : unit.kind == TOKEN_FUNCTION_BLOCK ? NameKind::FunctionBlock
                                                              : NameKind::Program;
    unit.name = addName(*TokenSpelling, currentSpan(), kind);
    if (kind != NameKind::Program) {
        definitions_.insert(TokenSpelling->identity, unit.name);
    }
}

void Collector::unitEnded() {
    facts_.units.back().span.end = currentSpan().end;
    facts_.units.back().isEnded = true;
    facts_.open.unit = NONE;
}

void Collector::declarationBegun() {
    const int begin = currentSpan().begin;
    facts_.open.declaration = static_cast<int>(facts_.declarations.size());
    facts_.declarations.push_back({{begin, begin}, facts_.open.unit, NONE, false});
    outside_ = begin;
}

// A result stands where its function is named and has its type.
void Collector::variableDeclared(const VarItem& variable, Token section) {
    const NameFact* const unitName =
        section == TOKEN_RESULT
            ? &facts_.names[static_cast<std::size_t>(facts_.units.back().name)]
            : nullptr;
    const Span span =
        unitName != nullptr ? unitName->span : lastSpanOf(variable.spelling->identity);
    const int index = addName(*variable.spelling, span, NameKind::Variable);
    NameFact& name = facts_.names.back();
    name.section = section;
    name.type = variable.type;
    name.isConstant = variable.isConstant;
    name.isReference = variable.isReference;
    name.unit = facts_.open.unit;
    variables_.insert(variable.spelling->identity, index);
    if (section == TOKEN_RESULT) {
        facts_.names[static_cast<std::size_t>(facts_.units.back().name)].type = variable.type;
    } else {
        facts_.declarations.back().name = index;
    }
}

void Collector::declarationEnded() {
    facts_.declarations.back().span.end = currentSpan().end;
    facts_.declarations.back().isEnded = true;
    facts_.open.declaration = NONE;
    outside_ = facts_.units.back().span.begin;
}

// ---------------------------------------------------------------------------------------------
// Statements and items
// ---------------------------------------------------------------------------------------------

void Collector::statementBegun() {
    const int begin = currentSpan().begin;
    const int parent = facts_.open.statement;
    facts_.open.statement = static_cast<int>(facts_.statements.size());
    facts_.statements.push_back({{begin, begin}, TokenChar, facts_.open.unit, parent, false});
    parts_.push_back(begin);
}

void Collector::statementEnded() {
    StatementFact& statement = facts_.statements[static_cast<std::size_t>(facts_.open.statement)];
    statement.span.end = currentSpan().end;
    statement.isEnded = true;
    facts_.open.statement = statement.parent;
    parts_.pop_back();
}

int& Collector::currentPart() {
    return parts_.empty() ? outside_ : parts_.back();
}

void Collector::partBegun(TokenPos pos) {
    currentPart() = offsetOf(pos);
}

void Collector::itemWritten(std::string_view item) {
    const int begin = facts_.codes.size();
    facts_.codes.append(item.data(), static_cast<int>(item.size()));
    if (!isForLayout_) {
        facts_.items.push_back(
            {{begin, facts_.codes.size()}, currentPart(), facts_.open.statement});
    }
    facts_.codes.append(' ');
}

// ---------------------------------------------------------------------------------------------
// Operations
// ---------------------------------------------------------------------------------------------

namespace {

// Whether an expression outside of brackets begins after the token.
bool BeginsExpression(Token code) {
    constexpr Token BEGINS[] = {TOKEN_ASSIGN, TOKEN_IF,   TOKEN_ELSIF, TOKEN_WHILE,
                                TOKEN_UNTIL,  TOKEN_CASE, TOKEN_TO,    TOKEN_DOWNTO};
    return std::find(std::begin(BEGINS), std::end(BEGINS), code) != std::end(BEGINS);
}

}  // namespace

// An expression begins after the current token, within it or in place of the one before.
void Collector::noteExpression() {
    if (TokenChar == TOKEN_LEFT_PARENTHESIS || TokenChar == TOKEN_LEFT_BRACKET) {
        expressions_.push_back(facts_.tokens.size());
    } else if (TokenChar == TOKEN_COMMA || BeginsExpression(TokenChar)) {
        expressions_.back() = facts_.tokens.size();
    } else if (TokenChar == TOKEN_RIGHT_PARENTHESIS || TokenChar == TOKEN_RIGHT_BRACKET) {
        expressions_.resize(std::max<std::size_t>(expressions_.size() - 1, 1));
    }
}

// The left operand is all that has been read of the expression, or of the right operand of the
// operation that is open in it.
void Collector::operationBegun(Typ left) {
    const std::size_t op = facts_.tokens.size() - 1;
    const std::size_t inOperand = operations_.empty() ? 0 : operations_.back().op + 1;
    operations_.push_back({op, std::max(expressions_.back(), inOperand), left});
}

void Collector::operationEnded(Typ right) {
    const OpenOperation open = operations_.back();
    operations_.pop_back();
    const std::vector<TokenFact>& tokens = facts_.tokens;
    const TokenFact& op = tokens[open.op];
    const Span leftSpan = open.left == open.op
                              ? Span{op.span.begin, op.span.begin}
                              : Span{tokens[open.left].span.begin, tokens[open.op - 1].span.end};
    const Span rightSpan = {tokens[open.op + 1].span.begin, (tokens.end() - 2)->span.end};
    facts_.operations.push_back(
        {leftSpan, op.span, rightSpan, op.code, open.leftType, right, facts_.open.statement});
}

Facts Collector::take() {
    std::sort(facts_.operations.begin(), facts_.operations.end(),
              [](const OperationFact& a, const OperationFact& b) {
                  const Span one = a.span();
                  const Span other = b.span();
                  return one.begin != other.begin ? one.begin < other.begin : one.end > other.end;
              });
    return std::move(facts_);
}

// ---------------------------------------------------------------------------------------------
// Messages
// ---------------------------------------------------------------------------------------------

void Collector::expected(std::initializer_list<Token> codes) {
    facts_.error.expected.assign(codes.begin(), codes.end());
}

void Collector::typesRefused(Typ current, Typ next) {
    facts_.error.current = current;
    facts_.error.next = next;
}

void Collector::messageGiven(const Message& message) {
    if (isReadingOn_) {
        throw CompileStopped();
    }
    facts_.messages.push_back({message.isError,
                               ConstantOf(message.constant),
                               offsetOf(message.pos),
                               {message.pos.line + 1, message.pos.column + 1},
                               addText(message.text)});
    if (message.isError) {
        facts_.error.token = currentSpan();
        facts_.open.part = currentPart();
        facts_.open.inComment = IsComment();
        throw CompileStopped();
    }
}
