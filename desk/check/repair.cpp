// How it goes: FindRepair asks what was going on at the error. Within a declaration, a statement,
// the head of a unit or between units there is a routine each, and one for what is missing or out
// of place in the structure.

#include "check/repair.h"

#include "check/scene.h"

#include "qyx_messages.h"
#include "qyx_types.h"

#include <algorithm>

namespace {

constexpr Typ UNKNOWN_TYPE = TYP_LREAL;  // takes every number

QString NameOf(Typ type) {
    return QString(TypToStr(type));
}

QString TextOf(Token code) {
    return QString(TokensTable[Lookup(code)].text);
}

// ---------------------------------------------------------------------------------------------
// Where a simple piece ends
// ---------------------------------------------------------------------------------------------

// Whether a statement seems to begin at the token: it is the first of its line and what follows
// it fits.
bool SeemsToBeginStatement(const Scene& scene, int index) {
    const Tokens& tokens = scene.tokens;
    if (!tokens.isFirstOnLine(index)) {
        return false;
    }
    const bool isTarget = tokens.isOneOf(index, {TOKEN_IDENTIFIER, TOKEN_RESULT, TOKEN_TICK});
    return IsBoundary(tokens.code(index)) ||
           (isTarget && tokens.isOneOf(index + 1, {TOKEN_ASSIGN, TOKEN_LEFT_PARENTHESIS})) ||
           (tokens.is(index, TOKEN_IDENTIFIER) && scene.isExpected(TOKEN_SEMICOLON));
}

// Whether a declaration seems to begin at the token.
bool SeemsToBeginDeclaration(const Scene& scene, int index) {
    return scene.tokens.isFirstOnLine(index) &&
           (scene.tokens.is(index, TOKEN_CONSTANT) || (scene.tokens.is(index, TOKEN_IDENTIFIER) &&
                                                       scene.tokens.is(index + 1, TOKEN_COLON)));
}

// The last token of the simple statement or declaration that begins at `first` and holds the
// error: its ";", or the one before that with which the next one begins.
template <typename SeemsToBegin>
int LastOfPiece(const Scene& scene, int first, SeemsToBegin seemsToBegin) {
    const Tokens& tokens = scene.tokens;
    for (int index = std::max(first, scene.error - 1); tokens.isThere(index); ++index) {
        if (index > first && (seemsToBegin(scene, index) || IsBoundary(tokens.code(index)))) {
            return index - 1;
        }
        if (index >= scene.error && tokens.is(index, TOKEN_SEMICOLON)) {
            return index;
        }
    }
    return tokens.count() - 1;
}

// The end of a piece by its last token. What could not be read belongs to it; a string that is
// left open, which is no token, takes the rest of its line.
int EndOfPiece(const Scene& scene, int last) {
    const int end = scene.tokens.span(last).end;
    const Span unread = scene.facts.error.token;
    if (scene.isError(TXT_UNTERMINATED_STRING)) {
        return scene.source.lineAt(scene.source.placeOf(unread.begin).line).end;
    }
    const Span rest = {end, scene.source.lineAt(scene.source.placeOf(end - 1).line).end};
    if (scene.source.text(rest).trimmed().startsWith(u'\'')) {
        return rest.end;
    }
    const bool isRead = scene.tokens.span(scene.error).begin == unread.begin;
    return isRead ? end : std::max(end, unread.end);
}

// ---------------------------------------------------------------------------------------------
// Names that are not declared
// ---------------------------------------------------------------------------------------------

// The name that the error is about, if it is that of nothing; it may be the token before the
// current one.
int UndeclaredName(const Scene& scene) {
    if (scene.isError(TXT_UNRECOGNIZED_KEYWORD)) {
        for (const int index : {scene.error, scene.error - 1}) {
            if (scene.isUndeclared(index)) {
                return index;
            }
        }
    }
    return NONE;
}

bool IsConditionWord(const Scene& scene, int index) {
    return scene.tokens.isOneOf(
        index, {TOKEN_IF, TOKEN_ELSIF, TOKEN_WHILE, TOKEN_UNTIL, TOKEN_THEN, TOKEN_DO,
                TOKEN_END_REPEAT, TOKEN_AND, TOKEN_OR, TOKEN_XOR, TOKEN_NOT});
}

// A type with which the use of an unknown name is most likely right.
Typ LikelyType(const Scene& scene, int name) {
    if (scene.tokens.is(name - 1, TOKEN_FOR)) {
        return TYP_DINT;
    }
    const bool isTarget = scene.tokens.is(name + 1, TOKEN_ASSIGN);
    const bool isBool = isTarget ? scene.tokens.isOneOf(name + 2, {TOKEN_TRUE, TOKEN_FALSE})
                                 : IsConditionWord(scene, name - 1) &&
                                       (IsConditionWord(scene, name + 1) ||
                                        scene.tokens.is(name + 1, TOKEN_RIGHT_PARENTHESIS));
    if (isBool) {
        return TYP_BOOL;
    }
    return isTarget ? UNKNOWN_TYPE : TYP_SINT;
}

// The last END_VAR of the open unit's sections, NONE if it has none.
int LastSectionEnd(const Scene& scene) {
    int last = NONE;
    for (int index = scene.tokens.at(scene.unit().span.begin); index < scene.error; ++index) {
        last = scene.tokens.is(index, TOKEN_END_VAR) ? index : last;
    }
    return last;
}

// How many parameters the call gives whose name stands there; NONE if it is not ended.
int CountOfParameters(const Scene& scene, int name) {
    int depth = 0;
    int count = scene.tokens.is(name + 2, TOKEN_RIGHT_PARENTHESIS) ? 0 : 1;
    for (int index = name + 1; scene.tokens.isThere(index); ++index) {
        depth += scene.tokens.is(index, TOKEN_LEFT_PARENTHESIS)    ? 1
                 : scene.tokens.is(index, TOKEN_RIGHT_PARENTHESIS) ? -1
                                                                   : 0;
        count += depth == 1 && scene.tokens.is(index, TOKEN_COMMA) ? 1 : 0;
        const bool isNamed = depth == 1 && scene.tokens.is(index, TOKEN_ASSIGN);
        if (depth == 0 || isNamed || scene.tokens.is(index, TOKEN_SEMICOLON)) {
            return depth == 0 ? count : NONE;
        }
    }
    return NONE;
}

// A type that a variable may have: the given one, or one that takes every number.
Typ DeclarableType(Typ type) {
    const bool isNone = type == TYP_NONE || type == TYP_STRING || type == TYP_ARRAY;
    return isNone ? UNKNOWN_TYPE : type;
}

// Defines a function of that name, which takes numbers, before the unit that calls it.
Repair DefineFunction(const Scene& scene, int name, int count) {
    const QString text = scene.tokens.text(name).toString();
    const Conversion conversion = ConversionOf(text);
    const Typ result = DeclarableType(conversion.to);
    QString formals;
    for (int each = 0; each < count; ++each) {
        formals +=
            QStringLiteral(" _%1:%2;").arg(each).arg(NameOf(DeclarableType(conversion.from)));
    }
    const QString head = QStringLiteral("FUNCTION %1:%2 VAR_ARG").arg(text, NameOf(result));
    const QString value = result == TYP_BOOL ? QStringLiteral("FALSE") : QStringLiteral("0");
    Repair repair =
        PutIn(scene.unit().span.begin, head + formals + QStringLiteral(" END_VAR RESULT:=") +
                                           value + QStringLiteral("; END_FUNCTION"));
    if (result != conversion.to || count != 1) {
        repair.doubtfulDefinitions.append(text);
    }
    return repair;
}

bool IsDefinedBelow(const Scene& scene, int name) {
    const QString text = scene.tokens.text(name).toString();
    for (int index = scene.error; scene.tokens.isThere(index); ++index) {
        if (scene.tokens.isOneOf(index, {TOKEN_FUNCTION, TOKEN_FUNCTION_BLOCK}) &&
            scene.tokens.isText(index + 1, text)) {
            return true;
        }
    }
    return false;
}

// Declares the name after the sections of the unit. A name that is called is no variable, and a
// call that is a statement is taken out.
Repair DeclareName(const Scene& scene, int name) {
    const int sectionEnd = LastSectionEnd(scene);
    if (scene.tokens.is(name + 1, TOKEN_LEFT_PARENTHESIS)) {
        const bool isValue = scene.tokens.span(name).begin != scene.statement()->span.begin;
        const int count =
            isValue && !IsDefinedBelow(scene, name) ? CountOfParameters(scene, name) : NONE;
        return count == NONE ? Repair() : DefineFunction(scene, name, count);
    }
    if (sectionEnd == NONE) {
        return {};
    }
    const QString text = scene.tokens.text(name).toString();
    Repair repair =
        PutIn(scene.tokens.span(sectionEnd).end,
              QStringLiteral("VAR %1:%2; END_VAR").arg(text, NameOf(LikelyType(scene, name))));
    repair.doubtfulNames.append(text);
    return repair;
}

// ---------------------------------------------------------------------------------------------
// Declarations
// ---------------------------------------------------------------------------------------------

// Whether the section ends somewhere before the next part of the structure.
bool HasSectionEnd(const Scene& scene, int from) {
    for (int index = from; scene.tokens.isThere(index); ++index) {
        if (IsBoundary(scene.tokens.code(index))) {
            return scene.tokens.is(index, TOKEN_END_VAR);
        }
    }
    return false;
}

// Whether the statements begin where the compiler looks for a declaration. A word before ":" is
// meant as a name, whatever it is.
bool IsAfterSection(const Scene& scene, int first) {
    if (scene.tokens.is(first + 1, TOKEN_COLON)) {
        return false;
    }
    const bool isStatement =
        IsBoundary(scene.tokens.code(first)) ||
        scene.tokens.isOneOf(first, {TOKEN_RESULT, TOKEN_TICK}) ||
        scene.tokens.isOneOf(first + 1, {TOKEN_ASSIGN, TOKEN_LEFT_PARENTHESIS});
    return isStatement && !HasSectionEnd(scene, first);
}

// What follows the type in a declaration of that section.
QString RestOfDeclaration(Token section, const NameFact* name) {
    if (section == TOKEN_VAR_YXGLOBAL) {
        return QStringLiteral("(0);");
    }
    if (section == TOKEN_VAR_YXREGISTER) {
        return QStringLiteral("(0,0,0,0);");
    }
    if (name == nullptr || !name->isConstant) {
        return QStringLiteral(";");
    }
    return name->type == TYP_BOOL ? QStringLiteral(":=FALSE;") : QStringLiteral(":=0;");
}

// The keyword of the section that is open.
Token OpenSection(const Scene& scene, int from) {
    while (from > 0 && !IsSectionBegin(scene.tokens.code(from))) {
        --from;
    }
    return scene.tokens.code(from);
}

// A type that a variable may have, named among the tokens.
Typ DeclarableTypeAmong(const Scene& scene, int first, int last) {
    for (int index = first; index <= last; ++index) {
        const Typ type = scene.tokens.typeNamed(index);
        if (type != TYP_NONE && type != TYP_STRING && type != TYP_ARRAY) {
            return type;
        }
    }
    return TYP_NONE;
}

// The new names of a declaration: those before its type.
QStringList NamesDeclared(const Scene& scene, int first, int last) {
    QStringList names;
    for (int index = first; index <= last; ++index) {
        const bool isEnd = scene.tokens.isOneOf(index, {TOKEN_COLON, TOKEN_ASSIGN}) ||
                           scene.tokens.typeNamed(index) != TYP_NONE;
        if (isEnd) {
            break;
        }
        if (scene.isUndeclared(index)) {
            names.append(scene.tokens.text(index).toString());
        }
    }
    return names;
}

// The names in parentheses after the ":" of a declaration, as those of an enumeration.
QStringList NamesListed(const Scene& scene, int first, int last) {
    QStringList names;
    while (first < last && !scene.tokens.is(first, TOKEN_COLON)) {
        ++first;
    }
    for (int index = first + 1; index <= last; ++index) {
        const bool isListed =
            scene.tokens.isOneOf(index - 1, {TOKEN_LEFT_PARENTHESIS, TOKEN_COMMA});
        if (isListed && scene.isUndeclared(index)) {
            names.append(scene.tokens.text(index).toString());
        }
    }
    return names;
}

// Declares again what the declaration was to declare. Of an unknown type all that is said of the
// names is doubtful.
Repair RedeclareNames(const Scene& scene, int first, int last, Span span) {
    const QStringList names = NamesDeclared(scene, first, last);
    const Typ type = DeclarableTypeAmong(scene, first, last);
    const QString rest = RestOfDeclaration(OpenSection(scene, first), nullptr);
    QString text;
    for (const QString& name : names) {
        text += name + u':' + NameOf(type == TYP_NONE ? UNKNOWN_TYPE : type) + rest;
    }
    Repair repair = TakeOut(scene, span, text);
    if (type == TYP_NONE) {
        repair.doubtfulNames = names + NamesListed(scene, first, last);
    }
    if (scene.isError(TXT_ARRAY_DISABLED_IN_CURRENT_VERTION)) {
        repair.arrays = names;
    }
    return repair;
}

// Keeps the name with its type, which are known, and nothing else.
Repair KeepName(const Scene& scene, const NameFact& name, Span span) {
    const QString text = (name.isConstant ? QStringLiteral("CONSTANT ") : QString()) +
                         scene.facts.textOf(name.text).toString() + u':' + NameOf(name.type) +
                         RestOfDeclaration(name.section, &name);
    return TakeOut(scene, span, text);
}

// A name that is taken cannot be declared; what is said of it may follow from that.
Repair DropDeclaration(const Scene& scene, int first, Span span) {
    Repair repair = TakeOut(scene, span);
    const int name = scene.tokens.is(first, TOKEN_CONSTANT) ? first + 1 : first;
    if (!scene.isError(TXT_DUPLICATE_VARIABLE_NAME)) {
        repair.doubtfulNames.append(scene.tokens.text(name).toString());
    }
    return repair;
}

Repair RepairDeclaration(const Scene& scene, const DeclarationFact& declaration) {
    const int first = scene.tokens.at(declaration.span.begin);
    if (IsAfterSection(scene, first)) {
        return PutIn(declaration.span.begin, QStringLiteral("END_VAR"));
    }
    const int last = LastOfPiece(scene, first, SeemsToBeginDeclaration);
    const Span span = {declaration.span.begin, EndOfPiece(scene, last)};
    if (declaration.name != NONE) {
        return KeepName(scene, scene.facts.names[static_cast<std::size_t>(declaration.name)],
                        span);
    }
    const bool isTaken = scene.isError(TXT_DUPLICATE_VARIABLE_NAME) ||
                         scene.isError(TXT_USING_RESERVED_WORD) ||
                         scene.isError(TXT_USING_FUNCTION_NAME);
    return isTaken ? DropDeclaration(scene, first, span)
                   : RedeclareNames(scene, first, last, span);
}

// ---------------------------------------------------------------------------------------------
// Heads of compound statements
// ---------------------------------------------------------------------------------------------

// A part of a head: what follows a token, up to one of the words that end it. Where that word is
// missing the part ends before the error, and the word is put in.
struct HeadPart {
    int before;  // the token before the part
    std::initializer_list<Token> ends;
    QString neutral;
    QString missingEnd;  // what is put in for the missing word
};

// The word that ends the part, which a `;` may stand before; NONE if there is none.
int EndOfHeadPart(const Scene& scene, const HeadPart& part) {
    const bool isAfterSemicolon = scene.tokens.is(scene.error, TOKEN_SEMICOLON) &&
                                  scene.tokens.isOneOf(scene.error + 1, part.ends);
    return isAfterSemicolon ? scene.error + 1 : scene.findInStatement(part.before + 1, part.ends);
}

Repair RepairHeadPart(const Scene& scene, const HeadPart& part) {
    const int first = part.before + 1;
    const int begin = scene.tokens.span(part.before).end;
    const int end = EndOfHeadPart(scene, part);
    if (end == first) {
        return PutIn(begin, part.neutral);
    }
    if (end != NONE) {
        return TakeOut(scene, SpanOver(scene, first, end - 1), part.neutral);
    }
    const QString text = part.neutral + u' ' + part.missingEnd;
    return scene.error <= first ? PutIn(begin, text)
                                : TakeOut(scene, SpanOver(scene, first, scene.error - 1), text);
}

// The END_ word that closes the statements that are open before the token, so many within each
// other; NONE if the unit ends before.
int EndOfOpen(const Scene& scene, int from, int depth) {
    for (int index = from; scene.tokens.isThere(index); ++index) {
        const Token code = scene.tokens.code(index);
        depth += IsCompoundBegin(code) ? 1 : IsCompoundEnd(code) ? -1 : 0;
        if (depth == 0) {
            return index;
        }
        if (IsUnitEnd(code) || IsUnitBegin(code)) {
            return NONE;
        }
    }
    return NONE;
}

// The END_ word of the statement that begins at the token, NONE if it has none.
int MatchingEnd(const Scene& scene, int begin) {
    return IsCompoundBegin(scene.tokens.code(begin)) ? EndOfOpen(scene, begin + 1, 1) : NONE;
}

// A FOR without a variable that can count becomes a loop that needs none.
Repair ReplaceFor(const Scene& scene, int begin) {
    const int end = scene.findInStatement(begin + 1, {TOKEN_DO});
    const int matching = MatchingEnd(scene, begin);
    if (end == NONE || !scene.tokens.is(matching, TOKEN_END_FOR)) {
        return {};
    }
    Repair repair =
        TakeOut(scene, SpanOver(scene, begin, end - 1), QStringLiteral("WHILE FALSE"));
    const Repair closing =
        TakeOut(scene, scene.tokens.span(matching), QStringLiteral("END_WHILE"));
    repair.edits.push_back(closing.edits.front());
    return repair;
}

Repair RepairForHead(const Scene& scene, int begin, int part) {
    const QString zero = QStringLiteral("0");
    if (scene.tokens.isOneOf(part, {TOKEN_TO, TOKEN_DOWNTO})) {
        return RepairHeadPart(scene, {part, {TOKEN_DO}, zero, QStringLiteral("DO")});
    }
    const int assign = begin + 2;
    const bool isVariableGood =
        scene.tokens.is(assign, TOKEN_ASSIGN) && scene.error > assign &&
        !scene.isError(TXT_FOR_LOOP_CONTROL_VARIABLE_MUST_HAVE_ORDINAL_TYPE);
    if (!isVariableGood) {
        return ReplaceFor(scene, begin);
    }
    const bool hasBound = scene.findInStatement(assign + 1, {TOKEN_TO, TOKEN_DOWNTO}) != NONE;
    return hasBound
               ? RepairHeadPart(scene, {assign, {TOKEN_TO, TOKEN_DOWNTO}, zero, QString()})
               : RepairHeadPart(
                     scene, {assign, {TOKEN_DO}, QStringLiteral("0 TO 0"), QStringLiteral("DO")});
}

// A label that most likely no other CASE label is.
QString UniqueCaseLabel(const Scene& scene) {
    constexpr qint64 greatest = 4'294'967'295;
    return QString::number(greatest - scene.facts.error.token.begin);
}

Repair RepairCaseHead(const Scene& scene, int part) {
    if (scene.tokens.is(part, TOKEN_CASE)) {
        return RepairHeadPart(scene,
                              {part, {TOKEN_OF}, QStringLiteral("0"), QStringLiteral("OF")});
    }
    const QString label = UniqueCaseLabel(scene);
    const int colon = scene.findInStatement(part, {TOKEN_COLON});
    if (colon != NONE) {
        return TakeOut(scene, SpanOver(scene, part, std::max(part, colon - 1)), label);
    }
    return TakeOut(scene, SpanOver(scene, part, std::max(part, scene.error - 1)), label + u':');
}

Repair RepairCondition(const Scene& scene, int part) {
    const QString truth = QStringLiteral("TRUE");
    switch (scene.tokens.code(part)) {
        case TOKEN_WHILE:
            return RepairHeadPart(scene, {part, {TOKEN_DO}, truth, QStringLiteral("DO")});
        case TOKEN_UNTIL:
            return RepairHeadPart(
                scene, {part, {TOKEN_END_REPEAT}, truth, QStringLiteral("END_REPEAT")});
        default:
            return RepairHeadPart(scene, {part, {TOKEN_THEN}, truth, QStringLiteral("THEN")});
    }
}

// The UNTIL whose condition ran into a token that does not end it: the part of that begins there.
int UntilBefore(const Scene& scene, int index) {
    while (index > 0 && !scene.tokens.is(index, TOKEN_UNTIL)) {
        --index;
    }
    return index;
}

Repair RepairHead(const Scene& scene, const StatementFact& statement) {
    const int begin = scene.tokens.at(statement.span.begin);
    const int part = scene.tokens.at(scene.facts.open.part);
    if (IsCompoundEnd(scene.tokens.code(scene.error - 1)) && scene.isExpected(TOKEN_SEMICOLON)) {
        return PutIn(scene.tokens.span(scene.error - 1).end, QStringLiteral(";"));
    }
    switch (statement.kind) {
        case TOKEN_FOR:
            return RepairForHead(scene, begin, part);
        case TOKEN_CASE:
            return RepairCaseHead(scene, part);
        case TOKEN_REPEAT:
            return RepairCondition(scene, UntilBefore(scene, scene.error));
        default:
            return RepairCondition(scene, part);
    }
}

// ---------------------------------------------------------------------------------------------
// Structure
// ---------------------------------------------------------------------------------------------

// Whether the word goes on with, or ends, a statement of that kind.
bool BelongsTo(Token word, Token kind) {
    return word == EndOf(kind) ||
           (kind == TOKEN_IF && (word == TOKEN_ELSIF || word == TOKEN_ELSE)) ||
           (kind == TOKEN_CASE && word == TOKEN_ELSE) ||
           (kind == TOKEN_REPEAT && word == TOKEN_UNTIL);
}

// What ends a compound statement that has no end.
Repair CloseStatement(const Scene& scene, Token kind) {
    const QString condition = kind == TOKEN_REPEAT ? QStringLiteral("UNTIL TRUE ") : QString();
    return PutIn(scene.tokens.span(scene.error).begin, condition + TextOf(EndOf(kind)) + u';');
}

// The last token of what belongs to a word that ends, or goes on with, a statement.
int LastOfWord(const Scene& scene, int word) {
    int last = NONE;
    if (scene.tokens.is(word, TOKEN_ELSIF)) {
        last = scene.findInStatement(word + 1, {TOKEN_THEN});
    } else if (scene.tokens.is(word, TOKEN_UNTIL)) {
        last = scene.findInStatement(word + 1, {TOKEN_END_REPEAT, TOKEN_SEMICOLON});
    }
    last = std::max(last, word);
    return scene.tokens.is(last + 1, TOKEN_SEMICOLON) ? last + 1 : last;
}

// Takes out a word that nothing before it asks for, with what belongs to it.
Repair TakeOutStray(const Scene& scene, int word) {
    return TakeOut(scene, SpanOver(scene, word, LastOfWord(scene, word)));
}

// A section among the statements, up to its END_VAR.
Repair TakeOutSection(const Scene& scene, int word) {
    int last = word;
    QStringList names;
    while (scene.tokens.isThere(last + 1) && !scene.tokens.is(last, TOKEN_END_VAR)) {
        ++last;
        if (scene.tokens.is(last + 1, TOKEN_COLON)) {
            names.append(scene.tokens.text(last).toString());
        }
    }
    Repair repair = TakeOut(scene, SpanOver(scene, word, last));
    repair.doubtfulNames = names;
    return repair;
}

// The end of another kind of unit becomes that of the open one; at the begin of the next unit the
// end is missing.
Repair CloseUnit(const Scene& scene, int word) {
    const QString end = TextOf(EndOf(scene.unit().kind));
    return IsUnitEnd(scene.tokens.code(word)) ? TakeOut(scene, scene.tokens.span(word), end)
                                              : PutIn(scene.tokens.span(word).begin, end);
}

// A word of the structure where a statement should begin: the end of an open statement is
// missing, or nothing asks for the word. `parent` is the statement that should go on, or null.
Repair RepairStructure(const Scene& scene, int word, const StatementFact* parent) {
    const Token code = scene.tokens.code(word);
    if (IsSectionBegin(code)) {
        return TakeOutSection(scene, word);
    }
    if (IsUnitBegin(code) || IsUnitEnd(code)) {
        return parent != nullptr ? CloseStatement(scene, parent->kind) : CloseUnit(scene, word);
    }
    if (code == TOKEN_END_REPEAT && parent != nullptr && parent->kind == TOKEN_REPEAT) {
        return PutIn(scene.tokens.span(word).begin, QStringLiteral("UNTIL TRUE"));
    }
    const StatementFact* owner = parent;
    while (owner != nullptr && !BelongsTo(code, owner->kind)) {
        owner = scene.parentOf(*owner);
    }
    const bool isStray = owner == nullptr || owner == parent;
    return isStray ? TakeOutStray(scene, word) : CloseStatement(scene, parent->kind);
}

// ---------------------------------------------------------------------------------------------
// Statements
// ---------------------------------------------------------------------------------------------

bool IsStructureWord(Token code) {
    return IsBoundary(code) && !IsCompoundBegin(code) && !IsJump(code);
}

// A head whose keyword is lost, up to the word that ends it.
struct LostHead {
    Token word;
    Token end;  // the END_ word that shows which keyword it was
    QLatin1String neutral;
};

constexpr LostHead LOST_HEADS[] = {
    {TOKEN_THEN, TOKEN_END_IF, "IF TRUE THEN"_L1},
    {TOKEN_OF, TOKEN_END_CASE, "CASE 0 OF"_L1},
    {TOKEN_DO, TOKEN_END_WHILE, "WHILE FALSE DO"_L1},
    {TOKEN_DO, TOKEN_END_FOR, "WHILE FALSE DO"_L1},
};

// The END_ word of a head that ends with that word; NONE if there are only those of the
// statements that hold it, as with a misspelt ELSIF.
int EndOfLostHead(const Scene& scene, const StatementFact& statement, int word) {
    int open = 1;
    for (const StatementFact* outer = scene.parentOf(statement); outer != nullptr;
         outer = scene.parentOf(*outer)) {
        ++open;
    }
    return EndOfOpen(scene, word + 1, open) == NONE ? NONE : EndOfOpen(scene, word + 1, 1);
}

// What seems to be the head of a compound statement becomes one; no edit if it does not seem so.
Repair RepairLostHead(const Scene& scene, const StatementFact& statement) {
    const int first = scene.tokens.at(statement.span.begin);
    const int word = scene.findInStatement(first, {TOKEN_THEN, TOKEN_OF, TOKEN_DO});
    const int end = word == NONE ? NONE : EndOfLostHead(scene, statement, word);
    for (const LostHead& head : LOST_HEADS) {
        if (end == NONE || !scene.tokens.is(word, head.word) || !scene.tokens.is(end, head.end)) {
            continue;
        }
        Repair repair = TakeOut(scene, SpanOver(scene, first, word), head.neutral);
        if (head.end == TOKEN_END_FOR) {
            const Span closing = scene.tokens.span(end);
            repair.edits.push_back(
                TakeOut(scene, closing, TextOf(TOKEN_END_WHILE)).edits.front());
        }
        return repair;
    }
    return {};
}

Repair RepairSimpleStatement(const Scene& scene, const StatementFact& statement) {
    const int first = scene.tokens.at(statement.span.begin);
    const Repair head = RepairLostHead(scene, statement);
    if (!head.edits.empty()) {
        return head;
    }
    const int last = LastOfPiece(scene, first, SeemsToBeginStatement);
    return TakeOut(scene, {statement.span.begin, EndOfPiece(scene, last)});
}

// Whether a label of a CASE stands where a statement within another one within it should begin.
bool IsLabelOfOuterCase(const Scene& scene, int first, const StatementFact* parent) {
    const bool isLabel =
        scene.tokens.is(first, TOKEN_NUMBER) &&
        scene.tokens.isOneOf(first + 1, {TOKEN_COLON, TOKEN_COMMA, TOKEN_DOT_DOT});
    const StatementFact* owner = parent;
    while (owner != nullptr && owner->kind != TOKEN_CASE) {
        owner = scene.parentOf(*owner);
    }
    return isLabel && owner != nullptr && owner != parent;
}

Repair RepairStatement(const Scene& scene, const StatementFact& statement) {
    const int first = scene.tokens.at(statement.span.begin);
    const StatementFact* const parent = scene.parentOf(statement);
    if (IsStructureWord(scene.tokens.code(first))) {
        return RepairStructure(scene, first, parent);
    }
    if (IsLabelOfOuterCase(scene, first, parent)) {
        return CloseStatement(scene, parent->kind);
    }
    return IsCompoundBegin(statement.kind) ? RepairHead(scene, statement)
                                           : RepairSimpleStatement(scene, statement);
}

// Whether a word that is none of the language stands where a section would begin.
bool IsUnknownSection(const Scene& scene, int word) {
    return scene.isUndeclared(word) && scene.tokens.is(word + 1, TOKEN_IDENTIFIER) &&
           scene.tokens.is(word + 2, TOKEN_COLON) && HasSectionEnd(scene, word + 1);
}

Repair RenameSection(const Scene& scene, int word) {
    return TakeOut(scene, scene.tokens.span(word), TextOf(TOKEN_VAR));
}

// The word that is meant by END and the word after it, TOKEN_UNKNOWN if none is.
Token EndInTwoWords(const Scene& scene, int first) {
    const bool isEnd = scene.tokens.isText(first, QStringLiteral("END"));
    return isEnd && scene.isUndeclared(first) ? EndOf(scene.tokens.code(first + 1))
                                              : TOKEN_UNKNOWN;
}

// With a name that is declared nowhere the statement is as it should be.
Repair RepairNameOrStatement(const Scene& scene, const StatementFact& statement) {
    const int first = scene.tokens.at(statement.span.begin);
    if (IsUnknownSection(scene, first)) {
        return RenameSection(scene, first);
    }
    if (const Token end = EndInTwoWords(scene, first); end != TOKEN_UNKNOWN) {
        return TakeOut(scene, SpanOver(scene, first, first + 1), TextOf(end));
    }
    const int name = UndeclaredName(scene);
    if (name == NONE) {
        return RepairStatement(scene, statement);
    }
    Repair repair = DeclareName(scene, name);
    if (repair.edits.empty()) {
        repair = RepairStatement(scene, statement);
        repair.doubtfulNames.append(scene.tokens.text(name).toString());
    }
    return repair;
}

// ---------------------------------------------------------------------------------------------
// Units
// ---------------------------------------------------------------------------------------------

// A name for a unit that has none, or one that is taken.
QString NewUnitName(const Scene& scene) {
    return QStringLiteral("Unit_%1").arg(scene.unit().span.begin);
}

// The head of a unit anew, up to its first section or its end.
Repair RepairUnitHead(const Scene& scene) {
    const int first = scene.tokens.at(scene.unit().span.begin);
    int last = first;
    while (scene.tokens.isThere(last + 1) && !IsBoundary(scene.tokens.code(last + 1))) {
        ++last;
    }
    const QString name = scene.isUndeclared(first + 1) || scene.unit().name != NONE
                             ? scene.tokens.text(first + 1).toString()
                             : NewUnitName(scene);
    const Typ type = DeclarableTypeAmong(scene, first, last);
    const QString result = scene.unit().kind == TOKEN_FUNCTION
                               ? u':' + NameOf(type == TYP_NONE ? UNKNOWN_TYPE : type)
                               : QString();
    Repair repair = TakeOut(scene, SpanOver(scene, first, last),
                            TextOf(scene.unit().kind) + u' ' + name + result);
    repair.doubtfulDefinitions.append(scene.tokens.text(first + 1).toString());
    repair.doubtfulNames.append(TextOf(TOKEN_RESULT));
    return repair;
}

// The section that is meant by one that the unit may not have.
Token AllowedSection(const Scene& scene) {
    const bool isProgram = scene.unit().kind == TOKEN_PROGRAM;
    if (scene.isError(TXT_ARGUMENTS_MUST_BE_ON_TOP)) {
        return TOKEN_VAR;
    }
    if (scene.tokens.isOneOf(scene.error, {TOKEN_VAR_INPUT, TOKEN_VAR_ARG})) {
        return isProgram ? TOKEN_VAR_INPUT : TOKEN_VAR_ARG;
    }
    return scene.tokens.is(scene.error, TOKEN_VAR_OUTPUT) ? TOKEN_VAR_REF : TOKEN_VAR;
}

// A section that the unit may not have gets the keyword of one that it may.
Repair RepairSectionKeyword(const Scene& scene) {
    const bool isProgram = scene.unit().kind == TOKEN_PROGRAM;
    const Token keyword = AllowedSection(scene);
    Repair repair = TakeOut(scene, scene.tokens.span(scene.error), TextOf(keyword));
    const bool isCertain = keyword == TOKEN_VAR_ARG ||
                           (keyword == TOKEN_VAR_REF && scene.unit().kind != TOKEN_FUNCTION);
    if (!isProgram && !isCertain && scene.unit().name != NONE) {
        const NameFact& name = scene.facts.names[static_cast<std::size_t>(scene.unit().name)];
        repair.doubtfulDefinitions.append(scene.facts.textOf(name.text).toString());
    }
    return repair;
}

// The jumps to labels that are not defined anywhere.
Repair TakeOutJumps(const Scene& scene) {
    Repair repair;
    for (const UseFact& use : scene.facts.uses) {
        const bool isDefined =
            use.kind != UseKind::Goto ||
            !scene.facts.names[static_cast<std::size_t>(use.name)].span.isEmpty();
        if (!isDefined) {
            const int name = scene.tokens.at(use.span.begin);
            repair.edits.push_back(
                TakeOut(scene, SpanOver(scene, name - 1, name + 1)).edits.front());
        }
    }
    return repair;
}

// Whether the compiler has read the head of the unit: its name, and the type of a function.
bool IsHeadRead(const Scene& scene) {
    const int name = scene.tokens.at(scene.unit().span.begin) + 1;
    const int last = scene.unit().kind == TOKEN_FUNCTION ? name + 2 : name;
    const bool isWhole = last == name || scene.tokens.typeNamed(last) != TYP_NONE;
    return isWhole && scene.error > last;
}

Repair RepairUnit(const Scene& scene) {
    if (scene.isError(TXT_LABEL_REFERENCED_BUT_NOT_SET)) {
        return TakeOutJumps(scene);
    }
    const bool isSection = scene.isError(TXT_DECLARATION_CANNOT_BE_HERE) ||
                           scene.isError(TXT_ARGUMENTS_MUST_BE_ON_TOP);
    if (isSection) {
        return RepairSectionKeyword(scene);
    }
    if (IsUnknownSection(scene, scene.error)) {
        return RenameSection(scene, scene.error);
    }
    const int sectionEnd = LastSectionEnd(scene);
    if (IsHeadRead(scene) && sectionEnd == NONE) {
        return PutIn(scene.tokens.span(scene.error).begin, QStringLiteral("VAR END_VAR"));
    }
    return sectionEnd == NONE ? RepairUnitHead(scene) : Repair();
}

bool IsTypeWord(const Scene& scene, int index) {
    return scene.tokens.isText(index, QStringLiteral("TYPE"));
}

// The word that ends the section or the types that begin at the token, with the `;` after it;
// NONE if it does not come before the next unit.
int LastOfOutside(const Scene& scene, int first) {
    const bool isSection = IsSectionBegin(scene.tokens.code(first));
    for (int index = first; scene.tokens.isThere(index); ++index) {
        const bool isEnd = isSection ? scene.tokens.is(index, TOKEN_END_VAR)
                                     : scene.tokens.isText(index, QStringLiteral("END_TYPE"));
        if (isEnd) {
            return scene.tokens.is(index + 1, TOKEN_SEMICOLON) ? index + 1 : index;
        }
        if (IsUnitBegin(scene.tokens.code(index))) {
            return NONE;
        }
    }
    return NONE;
}

// What is declared between two tokens for all units: variables, types, the names of enumerations;
// not the parts of structures.
QStringList NamesOutside(const Scene& scene, int first, int last) {
    QStringList names;
    bool isStructure = false;
    for (int index = first; index <= last; ++index) {
        isStructure = (isStructure || scene.tokens.isText(index, QStringLiteral("STRUCT"))) &&
                      !scene.tokens.isText(index, QStringLiteral("END_STRUCT"));
        const bool isListed =
            scene.tokens.isOneOf(index - 1, {TOKEN_LEFT_PARENTHESIS, TOKEN_COMMA}) ||
            scene.tokens.isOneOf(index + 1, {TOKEN_COLON, TOKEN_COMMA});
        if (!isStructure && isListed && scene.isUndeclared(index)) {
            names.append(scene.tokens.text(index).toString());
        }
    }
    return names;
}

// A section or types outside of the units: whatever uses them follows from that.
Repair TakeOutOutside(const Scene& scene, int last) {
    Repair repair = TakeOut(scene, SpanOver(scene, scene.error, last));
    repair.doubtfulDefinitions = NamesOutside(scene, scene.error, last);
    return repair;
}

// What stands between units goes, up to what can be told from it.
Repair RepairBetweenUnits(const Scene& scene) {
    const bool isOutside =
        IsSectionBegin(scene.tokens.code(scene.error)) || IsTypeWord(scene, scene.error);
    if (const int last = LastOfOutside(scene, scene.error); isOutside && last != NONE) {
        return TakeOutOutside(scene, last);
    }
    int next = scene.error + 1;
    while (scene.tokens.isThere(next) && !IsUnitBegin(scene.tokens.code(next)) &&
           !IsSectionBegin(scene.tokens.code(next)) && !IsTypeWord(scene, next)) {
        ++next;
    }
    const bool hasNext = scene.tokens.isThere(next) && scene.tokens.isThere(scene.error);
    return hasNext ? TakeOut(scene, SpanOver(scene, scene.error, next - 1)) : Repair();
}

}  // namespace

Repair FindRepair(const Source& source, const Facts& facts) {
    const Scene scene(source, facts);
    if (scene.isError(TXT_UNEXPECTED_END_OF_INPUT_FILE) || scene.isError(TXT_TOO_DEEP_NESTING)) {
        return {};
    }
    if (facts.open.unit == NONE) {
        return RepairBetweenUnits(scene);
    }
    if (scene.declaration() != nullptr) {
        return RepairDeclaration(scene, *scene.declaration());
    }
    return scene.statement() != nullptr ? RepairNameOrStatement(scene, *scene.statement())
                                        : RepairUnit(scene);
}

namespace {

// All statements of the open unit.
Span StatementsOfUnit(const Scene& scene) {
    int last = scene.error;
    while (scene.tokens.isThere(last) && !IsUnitEnd(scene.tokens.code(last))) {
        ++last;
    }
    const int first = LastSectionEnd(scene) + 1;
    return first > 0 && first < last ? SpanOver(scene, first, last - 1) : Span();
}

}  // namespace

Repair FindLargerRepair(const Source& source, const Facts& facts, Span piece) {
    const Scene scene(source, facts);
    if (facts.open.unit == NONE) {
        return {};
    }
    for (const StatementFact* statement = scene.statement(); statement != nullptr;
         statement = scene.parentOf(*statement)) {
        const int end = MatchingEnd(scene, scene.tokens.at(statement->span.begin));
        const bool isCompound = IsCompoundBegin(statement->kind) && end != NONE;
        if (isCompound && statement->span.begin < piece.begin) {
            const int last = scene.tokens.is(end + 1, TOKEN_SEMICOLON) ? end + 1 : end;
            return TakeOut(scene, SpanOver(scene, scene.tokens.at(statement->span.begin), last));
        }
    }
    const Span all = StatementsOfUnit(scene);
    return all.begin < piece.begin ? TakeOut(scene, all) : Repair();
}
