// Statements: assignments, loops, CASE, jumps and calls.

#include "check/rules_table.h"

#include "qyx_types.h"

#include <algorithm>

namespace {

using Maybe = std::optional<Help>;

// ---------------------------------------------------------------------------------------------
// "=" and ":="
// ---------------------------------------------------------------------------------------------

// The index of the ";" to which a simple statement goes on from a piece, NONE if it does not.
int SemicolonFrom(const Context& context, int index) {
    while (!PieceAt(context, index).span.isEmpty() && !IsBoundary(PieceAt(context, index).code) &&
           !PieceAt(context, index)
                .isOneOf({TOKEN_SEMICOLON, TOKEN_THEN, TOKEN_DO, TOKEN_OF, TOKEN_ASSIGN})) {
        ++index;
    }
    return PieceAt(context, index).is(TOKEN_SEMICOLON) ? index : NONE;
}

bool EndsWithSemicolon(const Context& context) {
    return SemicolonFrom(context, context.here) != NONE;
}

// The text from a piece to the one before another.
QString TextBetween(const Context& context, int begin, int end) {
    return context.source
        .text({PieceAt(context, begin).span.begin, PieceAt(context, end - 1).span.end})
        .toString();
}

Maybe EqualsForAssign(const Context& context) {
    if (!Near(context, 0).is(TOKEN_EQUAL)) {
        return std::nullopt;
    }
    if (IsDeclaring(context) && Expects(context, TOKEN_SEMICOLON)) {
        return SayAndOffer(QStringLiteral("an initial value follows `:=`, not `=`"), {},
                           {InPlaceOf(Near(context, 0), QStringLiteral(":="))});
    }
    if (!Expects(context, TOKEN_ASSIGN)) {
        return std::nullopt;
    }
    const Mend assign = {InPlaceOf(Near(context, 0), QStringLiteral(":="))};
    return SayAndMend(QStringLiteral("`=` compares; a value is assigned with `:=`"), {},
                      EndsWithSemicolon(context) ? assign : Mend(), assign);
}

bool IsInCondition(const Context& context) {
    const StatementFact* const construct = OpenConstruct(context);
    return IsError(context, TXT_TYPE_OF_EXPRESSION_MUST_BE_BOOLEAN) ||
           (ExpectsOneOf(context, {TOKEN_THEN, TOKEN_DO, TOKEN_END_REPEAT}) &&
            construct->kind != TOKEN_FOR);
}

Maybe AssignForEquals(const Context& context) {
    const bool isWithin =
        Expects(context, TOKEN_RIGHT_PARENTHESIS) && !CallAround(context, context.here) &&
        OpenConstruct(context) != nullptr && OpenStatement(context) == OpenConstruct(context);
    if (!Near(context, 0).is(TOKEN_ASSIGN) || (!IsInCondition(context) && !isWithin)) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("`:=` assigns; values are compared with `=`"), {},
                       {InPlaceOf(Near(context, 0), QStringLiteral("="))});
}

Maybe ChainedAssignment(const Context& context) {
    const Piece target = Near(context, -3);
    const Piece second = Near(context, -1);
    if (!Expects(context, TOKEN_SEMICOLON) || !Near(context, 0).is(TOKEN_ASSIGN) ||
        !target.is(TOKEN_IDENTIFIER) || !Near(context, -2).is(TOKEN_ASSIGN) ||
        !second.is(TOKEN_IDENTIFIER)) {
        return std::nullopt;
    }
    const int end = SemicolonFrom(context, context.here + 1);
    Mend split;
    if (end > context.here + 1) {
        const QString value = TextBetween(context, context.here + 1, end);
        split = {{{target.span.begin, PieceAt(context, end).span.end},
                  QStringLiteral("%2 := %3; %1 := %2;").arg(target.text, second.text, value)}};
    }
    return SayAndOffer(
        QStringLiteral("each assignment is a statement: write `%2 := ...; %1 := %2;`")
            .arg(target.text, second.text),
        {}, split);
}

// ---------------------------------------------------------------------------------------------
// Loops and jumps
// ---------------------------------------------------------------------------------------------

// Takes out the step, which has that many pieces after its word; nothing unless DO follows.
Mend WithoutStep(const Context& context, int count) {
    const Span step = {Near(context, 0).span.begin, Near(context, count).span.end};
    return Near(context, count + 1).is(TOKEN_DO) ? Mend{TakeOut(context.source, step)} : Mend();
}

Mend DownwardsWithoutStep(const Context& context) {
    Mend mend = WithoutStep(context, 2);
    int index = context.here;
    while (!PieceAt(context, index).span.isEmpty() &&
           !PieceAt(context, index).isOneOf({TOKEN_TO, TOKEN_DOWNTO, TOKEN_FOR})) {
        --index;
    }
    if (!mend.empty() && PieceAt(context, index).is(TOKEN_TO)) {
        mend.push_back(InPlaceOf(PieceAt(context, index), TextOf(TOKEN_DOWNTO)));
    }
    return mend;
}

Maybe StepOfFor(const Context& context) {
    const Piece word = Near(context, 0);
    if (!Expects(context, TOKEN_DO) || !word.isSpelledOneOf({"BY"_L1, "STEP"_L1})) {
        return std::nullopt;
    }
    const bool isOne = Near(context, 1).text == QLatin1String("1");
    const bool isBack =
        Near(context, 1).is(TOKEN_MINUS) && Near(context, 2).text == QLatin1String("1");
    const Mend offer = isOne    ? WithoutStep(context, 1)
                       : isBack ? DownwardsWithoutStep(context)
                                : Mend();
    return SayAndOffer(
        (isOne    ? QStringLiteral("the step is always 1: leave out `%1 1`")
         : isBack ? QStringLiteral("there is no `%1`: count down with `DOWNTO` in place of "
                                   "`TO`")
                  : QStringLiteral("there is no `%1`, the step is always 1: use a `WHILE` "
                                   "loop for any other"))
            .arg(word.text),
        {}, offer);
}

Maybe BoundsOfFor(const Context& context) {
    const StatementFact* const loop = OpenConstruct(context);
    const Piece found = Near(context, 0);
    const bool isRange = IsError(context, TXT_FOR_LOOP_CONTROL_VARIABLE_MUST_HAVE_ORDINAL_TYPE) &&
                         found.text.startsWith(QLatin1Char('.')) &&
                         Near(context, -1).text.endsWith(QLatin1Char('.'));
    const bool isIn = Expects(context, TOKEN_ASSIGN) && found.isSpelled("IN"_L1);
    const bool isList = Expects(context, TOKEN_TO) &&
                        found.isOneOf({TOKEN_COMMA, TOKEN_SEMICOLON, TOKEN_DOT_DOT});
    if (loop == nullptr || loop->kind != TOKEN_FOR || (!isRange && !isIn && !isList)) {
        return std::nullopt;
    }
    return Say(QStringLiteral("the bounds of a `FOR` are written `FOR i := 1 TO 10 DO`"));
}

Maybe RealInFor(const Context& context) {
    if (!IsError(context, TXT_FOR_LOOP_CONTROL_VARIABLE_MUST_HAVE_ORDINAL_TYPE)) {
        return std::nullopt;
    }
    const NameFact* const variable = VariableNamed(context, Near(context, 0).text);
    if (Near(context, -1).is(TOKEN_FOR) && variable != nullptr) {
        return Say(QStringLiteral("a `FOR` counts with an integer: %1 is %2, declare it as `INT`")
                       .arg(Code(Near(context, 0)), Code(QString(TypToStr(variable->type)))));
    }
    return Say(
        QStringLiteral("the bounds of a `FOR` are integers: assign the value to an integer "
                       "variable first and use that"));
}

bool IsLoop(Token kind) {
    return kind == TOKEN_FOR || kind == TOKEN_WHILE || kind == TOKEN_REPEAT;
}

// The CASE that hides the loops around it from a jump, and the first of those loops, or null.
struct Hidden {
    const StatementFact* branch;
    const StatementFact* loop;
};

Hidden HiddenLoop(const Context& context) {
    Hidden hidden = {nullptr, nullptr};
    int level = 0;
    for (const StatementFact* each = OpenConstruct(context); each != nullptr;
         each = OpenConstruct(context, ++level)) {
        if (each->kind == TOKEN_CASE && hidden.branch == nullptr) {
            hidden.branch = each;
        }
        if (IsLoop(each->kind)) {
            hidden.loop = each;
            break;
        }
    }
    return hidden;
}

bool IsJump(const Context& context) {
    return IsErrorOneOf(context, {TXT_BREAK_OUTSIDE_OF_LOOP, TXT_CONTINUE_OUTSIDE_OF_LOOP});
}

Maybe JumpOutOfCase(const Context& context) {
    const Hidden hidden = IsJump(context) ? HiddenLoop(context) : Hidden();
    if (hidden.branch == nullptr || hidden.loop == nullptr) {
        return std::nullopt;
    }
    return Say(QStringLiteral("%1 does not reach out of this `CASE` to the %2 of line %3: set a "
                              "variable here and test it after `END_CASE`")
                   .arg(Code(Near(context, -1)), Code(hidden.loop->kind))
                   .arg(LineOf(context, hidden.loop->span)),
               WordOf(*hidden.branch));
}

// Takes out the word before the error and the ";" that ends its statement; a branch that has no
// other statement keeps the ";".
Mend WithoutStatement(const Context& context) {
    const bool isAlone = Near(context, -2).is(TOKEN_COLON);
    const Piece last = Near(context, isAlone ? -1 : 0);
    const bool isEnded = Near(context, 0).is(TOKEN_SEMICOLON);
    const Span statement = {Near(context, -1).span.begin, last.span.end};
    return isEnded ? Mend{TakeOut(context.source, statement)} : Mend();
}

Maybe BreakInBranch(const Context& context) {
    const Hidden hidden =
        IsError(context, TXT_BREAK_OUTSIDE_OF_LOOP) ? HiddenLoop(context) : Hidden();
    if (hidden.branch == nullptr) {
        return std::nullopt;
    }
    const bool isOfBranch = OpenConstruct(context) == hidden.branch;
    return SayAndOffer(
        QStringLiteral("a branch of `CASE` ends before the next label by itself: leave out "
                       "the `BREAK`"),
        {}, isOfBranch ? WithoutStatement(context) : Mend());
}

Maybe BreakWithoutLoop(const Context& context) {
    if (!IsError(context, TXT_BREAK_OUTSIDE_OF_LOOP)) {
        return std::nullopt;
    }
    const Token kind = OpenUnit(context)->kind;
    return Say(
        QStringLiteral("no loop is open here; `EXIT` leaves the whole %1").arg(Code(kind)));
}

// What stands for RETURN with a value, which goes on to its ";".
Mend ResultAndExit(const Context& context, const Piece& word) {
    const int end = SemicolonFrom(context, context.here);
    return end == NONE ? Mend()
                       : Mend{InPlaceOf(word, QStringLiteral("RESULT :=")),
                              PutInAfter(PieceAt(context, end), QStringLiteral(" EXIT;"))};
}

Maybe Return(const Context& context) {
    const Piece word = UnknownWord(context);
    if (!word.isSpelled("RETURN"_L1)) {
        return std::nullopt;
    }
    if (IsIn(context, TOKEN_FUNCTION) && !Near(context, 0).is(TOKEN_SEMICOLON)) {
        return SayAndOffer(
            QStringLiteral("there is no `RETURN`: assign the value to `RESULT`, then write "
                           "`EXIT;` to leave the function"),
            word.span, ResultAndExit(context, word));
    }
    return SayAndOffer(QStringLiteral("there is no `RETURN`: `EXIT` leaves the %1")
                           .arg(Code(OpenUnit(context)->kind)),
                       word.span,
                       Near(context, 0).is(TOKEN_SEMICOLON)
                           ? Mend{InPlaceOf(word, QStringLiteral("EXIT"))}
                           : Mend());
}

// ---------------------------------------------------------------------------------------------
// CASE
// ---------------------------------------------------------------------------------------------

bool IsInCase(const Context& context) {
    const StatementFact* const construct = OpenConstruct(context);
    return construct != nullptr && construct->kind == TOKEN_CASE;
}

// The value of a constant as its declaration has it, empty if the name is none.
QString ValueOfConstant(const Context& context, const Piece& name) {
    const NameFact* const variable = VariableNamed(context, name.text);
    if (variable == nullptr || !variable->isConstant) {
        return QString();
    }
    const int end = context.source.text().indexOf(QLatin1Char(';'), variable->span.end);
    const QString declared =
        context.source.text().mid(variable->span.end, end - variable->span.end);
    const int assign = declared.indexOf(QLatin1String(":="));
    return assign < 0 ? QString() : declared.mid(assign + 2).trimmed();
}

// ELSE in place of a name and its ":".
Mend ElseForLabel(const Context& context, const Piece& name) {
    const Piece colon = PieceAt(context, IndexOf(context, name.span.end));
    return colon.is(TOKEN_COLON)
               ? Mend{{{name.span.begin, colon.span.end}, QStringLiteral("ELSE")}}
               : Mend();
}

// What stands for a name that is a label.
Help NumberForName(const Context& context, const Piece& name) {
    if (IsWordForElse(name.text) && VariableNamed(context, name.text) == nullptr) {
        return SayAndOffer(
            QStringLiteral("the branch for all other values is `ELSE`, without a `:`"), name.span,
            ElseForLabel(context, name));
    }
    if (VariableNamed(context, name.text) == nullptr) {
        return Say(
            QStringLiteral("a label of `CASE` is a number: write one for %1").arg(Code(name)),
            name.span);
    }
    const QString value = ValueOfConstant(context, name);
    if (value.isEmpty()) {
        return Say(QStringLiteral("a label of `CASE` is a number; compare with %1 in an `IF`")
                       .arg(Code(name)),
                   name.span);
    }
    return SayAndOffer(
        QStringLiteral("a label of `CASE` is a number: write `%1` for %2").arg(value, Code(name)),
        name.span, {InPlaceOf(name, value)});
}

Maybe NameAsLabel(const Context& context) {
    const bool isLabel =
        IsError(context, TXT_ORDINAL_TYPE_REQUIRED) && !Near(context, 0).is(TOKEN_OF);
    const bool isLater =
        IsErrorOneOf(context, {TXT_DUPLICATE_VARIABLE_NAME, TXT_LABEL_ALREADY_DEFINED}) &&
        !IsDeclaring(context) && Near(context, 0).is(TOKEN_COLON);
    const Piece name = Near(context, isLater ? -1 : 0);
    if (!IsInCase(context) || (!isLabel && !isLater) || !name.is(TOKEN_IDENTIFIER)) {
        return std::nullopt;
    }
    return NumberForName(context, name);
}

Maybe NoLabel(const Context& context) {
    const Piece found = Near(context, 0);
    if (!IsError(context, TXT_ORDINAL_TYPE_REQUIRED) || !IsInCase(context) ||
        !found.isOneOf({TOKEN_END_CASE, TOKEN_ELSE, TOKEN_STRING, TOKEN_TRUE, TOKEN_FALSE})) {
        return std::nullopt;
    }
    return Say(found.isOneOf({TOKEN_END_CASE, TOKEN_ELSE})
                   ? QStringLiteral("a `CASE` has at least one branch, as in `1: ...;`")
                   : QStringLiteral("a label of `CASE` is a number, as in `1: ...;`"));
}

Maybe SelectorOfCase(const Context& context) {
    const Piece name = Near(context, -1);
    const NameFact* const variable = VariableNamed(context, name.text);
    if (!IsError(context, TXT_ORDINAL_TYPE_REQUIRED) || !Near(context, -2).is(TOKEN_CASE) ||
        variable == nullptr) {
        return std::nullopt;
    }
    const QString type = Code(QString(TypToStr(variable->type)));
    return Say(variable->type == TYP_BOOL
                   ? QStringLiteral("%1 is %2, and `CASE` asks for an integer: use `IF`")
                         .arg(Code(name), type)
                   : QStringLiteral("%1 is %2, and `CASE` asks for an integer: assign it to an "
                                    "`INT` first and use that")
                         .arg(Code(name), type));
}

Maybe ColonAfterElse(const Context& context) {
    if (!Near(context, 0).is(TOKEN_COLON) || !Near(context, -1).is(TOKEN_ELSE)) {
        return std::nullopt;
    }
    return SayAndMend(QStringLiteral("no `:` follows `ELSE`"), {},
                      {BlankOut(context.source, Near(context, 0).span)},
                      {TakeOut(context.source, Near(context, 0).span)});
}

Maybe NoColonAfterLabel(const Context& context) {
    const Piece found = Near(context, 0);
    const bool isOther = found.is(TOKEN_SEMICOLON) || found.is(TOKEN_ASSIGN) ||
                         found.text == QLatin1String("=>") || CanBeginStatement(found);
    if (!IsInCase(context) || !Expects(context, TOKEN_COLON) || !isOther) {
        return std::nullopt;
    }
    const bool isForeign = found.is(TOKEN_ASSIGN) || found.text == QLatin1String("=>");
    return SayAndOffer(QStringLiteral("a `:` follows a label of `CASE`, as in `%1: ...;`")
                           .arg(Near(context, -1).text),
                       {},
                       {isForeign ? InPlaceOf(found, QStringLiteral(":"))
                                  : PutInAfter(Near(context, -1), QStringLiteral(":"))});
}

// ---------------------------------------------------------------------------------------------
// Other statements
// ---------------------------------------------------------------------------------------------

Maybe DeclarationAmongStatements(const Context& context) {
    const Piece type = UnknownWord(context);
    const int index = context.here - (Near(context, -1).span.begin == type.span.begin ? 1 : 0);
    if (!IsTypeName(type) || !PieceAt(context, index - 1).is(TOKEN_COLON) ||
        !PieceAt(context, index - 2).is(TOKEN_IDENTIFIER)) {
        return std::nullopt;
    }
    return Say(QStringLiteral("declare %1 in a section, before `END_VAR`")
                   .arg(Code(PieceAt(context, index - 2))),
               {PieceAt(context, index - 2).span.begin, type.span.end});
}

Maybe LabelLikeVariable(const Context& context) {
    const Piece name = Near(context, -1);
    const NameFact* const variable = VariableNamed(context, name.text);
    if (!IsError(context, TXT_DUPLICATE_VARIABLE_NAME) || IsDeclaring(context) ||
        !Near(context, 0).is(TOKEN_COLON) || variable == nullptr) {
        return std::nullopt;
    }
    return SayAndOffer(
        QStringLiteral("%1 and `:` make a label, and a variable of that name is declared on "
                       "line %2; a value is assigned with `:=`")
            .arg(Code(name))
            .arg(LineOf(context, variable->span)),
        {},
        EndsWithSemicolon(context) ? Mend{InPlaceOf(Near(context, 0), QStringLiteral(":="))}
                                   : Mend());
}

Maybe AssignedConstant(const Context& context) {
    const Piece name = Near(context, -1);
    const NameFact* const variable = VariableNamed(context, name.text);
    if (!IsError(context, TXT_LEFT_SIDE_CANNOT_BE_ASSIGNED_TO) || variable == nullptr) {
        return std::nullopt;
    }
    const Piece word = PieceAt(context, IndexOf(context, variable->span.begin) - 1);
    return SayAndOffer(
        QStringLiteral("%1 is a constant: leave out the `CONSTANT` of line %2 if it is to "
                       "change")
            .arg(Code(name))
            .arg(LineOf(context, word.span)),
        word.span, word.is(TOKEN_CONSTANT) ? Mend{TakeOut(context.source, word.span)} : Mend());
}

// The operator of "++", "+=" and the like; empty for any other piece.
QString OperatorOfUpdate(const Piece& piece) {
    for (const char* const text : {"++", "--", "+=", "-=", "*=", "/="}) {
        if (piece.text == QLatin1String(text)) {
            return piece.text.left(1).toString();
        }
    }
    return QString();
}

// The assignment for "+=" and the like, the value in parentheses if it has operators.
Mend UpdateByValue(const Context& context, const QString& sign) {
    const int end = SemicolonFrom(context, context.here + 1);
    const int count = end - context.here - 1;
    if (count < 1) {
        return {};
    }
    Mend mend = {InPlaceOf(Near(context, 0),
                           QStringLiteral(":= %1 %2").arg(Near(context, -1).text, sign))};
    if (count > 1) {
        mend.push_back(PutInBefore(Near(context, 1), QStringLiteral("(")));
        mend.push_back(PutInAfter(PieceAt(context, end - 1), QStringLiteral(")")));
    }
    return mend;
}

Maybe Update(const Context& context) {
    const QString sign = OperatorOfUpdate(Near(context, 0));
    const bool isBefore = Expects(context, TOKEN_IDENTIFIER) &&
                          Near(context, 1).is(TOKEN_IDENTIFIER) &&
                          Near(context, 2).is(TOKEN_SEMICOLON);
    const bool isAfter = Expects(context, TOKEN_ASSIGN) && Near(context, -1).is(TOKEN_IDENTIFIER);
    if (sign.isEmpty() || (!isBefore && !isAfter)) {
        return std::nullopt;
    }
    const Piece name = Near(context, isBefore ? 1 : -1);
    const bool isStep = Near(context, 0).text.endsWith(sign);
    const Mend offer = !isStep ? UpdateByValue(context, sign)
                               : Mend{{{std::min(name.span.begin, Near(context, 0).span.begin),
                                        std::max(name.span.end, Near(context, 0).span.end)},
                                       QStringLiteral("%1 := %1 %2 1").arg(name.text, sign)}};
    return SayAndOffer(QStringLiteral("write `%1 := %1 %2 %3;`")
                           .arg(name.text.toString(), sign,
                                isStep ? QStringLiteral("1") : QStringLiteral("...")),
                       {}, offer);
}

Maybe ValueWithoutTarget(const Context& context) {
    const Piece found = Near(context, 0);
    const Piece name = Near(context, -1);
    const bool isVariable = VariableNamed(context, name.text) != nullptr;
    const bool isValue = found.isOneOf({TOKEN_SEMICOLON, TOKEN_PLUS, TOKEN_MINUS, TOKEN_MULTIPLY,
                                        TOKEN_DIVIDE, TOKEN_LEFT_PARENTHESIS});
    if (!Expects(context, TOKEN_ASSIGN) || IsDeclaring(context) || !isVariable || !isValue) {
        return std::nullopt;
    }
    return Say(
        found.is(TOKEN_LEFT_PARENTHESIS)
            ? QStringLiteral("%1 is a variable and cannot be called").arg(Code(name))
            : QStringLiteral("a value alone is no statement: assign it, as in `%1 := ...;`")
                  .arg(name.text));
}

// ---------------------------------------------------------------------------------------------
// Calls
// ---------------------------------------------------------------------------------------------

Maybe ResultByName(const Context& context) {
    const UnitFact* const unit = OpenUnit(context);
    const Piece name = Near(context, -1);
    if (unit == nullptr || !Near(context, 0).is(TOKEN_ASSIGN) || name.span.isEmpty() ||
        unit->kind != TOKEN_FUNCTION || !name.isSpelled(NameOf(context, *unit))) {
        return std::nullopt;
    }
    return SayAndMend(
        QStringLiteral("the result of a function is assigned to `RESULT`, not to %1")
            .arg(Code(name)),
        name.span, {{name.span, QStringLiteral("RESULT")}});
}

Maybe ResultOutside(const Context& context) {
    const Piece word = UnknownWord(context);
    if (!word.is(TOKEN_RESULT)) {
        return std::nullopt;
    }
    return Say(IsIn(context, TOKEN_PROGRAM)
                   ? QStringLiteral("`RESULT` exists in functions alone; a program has "
                                    "`VAR_OUTPUT`")
                   : QStringLiteral("a function block has no result: give a value back in "
                                    "`VAR_REF`, or make it a `FUNCTION`"),
               word.span);
}

// A parameter that is given under a name.
struct NamedValue {
    QString name;
    Span sign;  // the name with the sign after it
    QString value;
};

// The index of the comma or the ")" that ends a parameter, NONE if the statement ends before.
int EndOfParameter(const Context& context, int index) {
    int depth = 0;
    for (;; ++index) {
        const Piece piece = PieceAt(context, index);
        if (depth == 0 && piece.isOneOf({TOKEN_COMMA, TOKEN_RIGHT_PARENTHESIS})) {
            return index;
        }
        if (piece.span.isEmpty() || piece.is(TOKEN_SEMICOLON)) {
            return NONE;
        }
        depth += piece.is(TOKEN_LEFT_PARENTHESIS)    ? 1
                 : piece.is(TOKEN_RIGHT_PARENTHESIS) ? -1
                                                     : 0;
    }
}

bool IsSignOfParameter(const Piece& piece) {
    return piece.is(TOKEN_ASSIGN) || piece.text == QLatin1String("=>");
}

// The parameters of the call around the error; none unless each has a name and a value.
std::vector<NamedValue> NamedValues(const Context& context) {
    std::vector<NamedValue> values;
    int index = CallAround(context, context.here)->name + 1;
    while (!PieceAt(context, index).is(TOKEN_RIGHT_PARENTHESIS)) {
        const Piece name = PieceAt(context, index + 1);
        const Piece sign = PieceAt(context, index + 2);
        const int end = EndOfParameter(context, index + 1);
        if (!name.is(TOKEN_IDENTIFIER) || !IsSignOfParameter(sign) || end <= index + 3) {
            return {};
        }
        const Span value = {PieceAt(context, index + 3).span.begin,
                            PieceAt(context, end - 1).span.end};
        values.push_back({name.text.toString(),
                          {name.span.begin, sign.span.end},
                          context.source.text(value).toString()});
        index = end;
    }
    return values;
}

// The call with each value in its place; what is not given goes by the name of the parameter.
QString CallByPosition(const Callee& callee, const std::vector<NamedValue>& values) {
    QStringList actuals;
    for (const Formal& formal : callee.formals) {
        const auto given =
            std::find_if(values.begin(), values.end(), [&](const NamedValue& each) {
                return each.name.compare(formal.name, Qt::CaseInsensitive) == 0;
            });
        actuals.append(given == values.end() ? formal.name : given->value);
    }
    return QStringLiteral("%1(%2)").arg(callee.name, actuals.join(QStringLiteral(", ")));
}

bool AreAllGiven(const Callee& callee, const std::vector<NamedValue>& values) {
    return values.size() == callee.formals.size() &&
           std::all_of(callee.formals.begin(), callee.formals.end(), [&](const Formal& formal) {
               return std::any_of(values.begin(), values.end(), [&](const NamedValue& each) {
                   return each.name.compare(formal.name, Qt::CaseInsensitive) == 0;
               });
           });
}

// The index of the ")" of a call whose parameters all have their ends.
int EndOfCall(const Context& context, int name) {
    int index = name + 1;
    do {
        index = EndOfParameter(context, index + 1);
    } while (PieceAt(context, index).is(TOKEN_COMMA));
    return index;
}

// Leaves out the names; nothing unless all parameters are there in their order.
Mend MendOfNames(const Context& context, const Callee& callee,
                 const std::vector<NamedValue>& values) {
    Mend mend;
    for (const NamedValue& value : values) {
        mend.push_back(BlankOut(context.source, value.sign));
    }
    const bool isInOrder =
        std::equal(values.begin(), values.end(), callee.formals.begin(), callee.formals.end(),
                   [](const NamedValue& value, const Formal& formal) {
                       return value.name.compare(formal.name, Qt::CaseInsensitive) == 0;
                   });
    return isInOrder ? mend : Mend();
}

Maybe NamedParameter(const Context& context) {
    const bool isSign =
        Near(context, 0).is(TOKEN_ASSIGN) || Near(context, 0).text == QLatin1String("=>");
    const bool isParameter = Near(context, -1).is(TOKEN_IDENTIFIER) &&
                             Near(context, -2).isOneOf({TOKEN_LEFT_PARENTHESIS, TOKEN_COMMA});
    const bool isCompared = Near(context, 0).text == QLatin1String("=>") &&
                            VariableNamed(context, Near(context, -1).text) != nullptr;
    if (!isSign || !isParameter || isCompared || !CallAround(context, context.here)) {
        return std::nullopt;
    }
    const std::vector<NamedValue> values = NamedValues(context);
    const int name = CallAround(context, context.here)->name;
    const std::optional<Callee> callee = CalleeNamed(context, PieceAt(context, name).text);
    const Span span = {Near(context, -1).span.begin, Near(context, 0).span.end};
    if (!callee || callee->span.isEmpty() || values.empty()) {
        return SayAndOffer(QStringLiteral("parameters go by position: leave out `%1 %2`")
                               .arg(Near(context, -1).text, Near(context, 0).text),
                           span, {TakeOut(context.source, span)});
    }
    const QString call = CallByPosition(*callee, values);
    const Span whole = {PieceAt(context, name).span.begin,
                        PieceAt(context, EndOfCall(context, name)).span.end};
    return SayAndMend(QStringLiteral("parameters go by position: write `%1`").arg(call), span,
                      MendOfNames(context, *callee, values),
                      AreAllGiven(*callee, values) ? Mend{{whole, call}} : Mend());
}

Maybe CallOfInstance(const Context& context) {
    const Piece word = UnknownWord(context);
    const bool isNamed = Near(context, 0).is(TOKEN_LEFT_PARENTHESIS) &&
                         Near(context, 1).is(TOKEN_IDENTIFIER) &&
                         Near(context, 2).is(TOKEN_ASSIGN);
    if (word.span.isEmpty() || !isNamed ||
        OpenStatement(context)->span.begin != word.span.begin) {
        return std::nullopt;
    }
    return Say(QStringLiteral("there is no function block %1 above, and function blocks have no "
                              "instances")
                   .arg(Code(word)),
               word.span);
}

// How a call is written, by the names or the types of the formal parameters.
QString FormOf(const Callee& callee) {
    QStringList formals;
    for (const Formal& formal : callee.formals) {
        const QString type = QString(TypToStr(formal.type));
        formals += formal.name.isEmpty() ? type : formal.name + QStringLiteral(" : ") + type;
    }
    return callee.name + QLatin1Char('(') + formals.join(QStringLiteral(", ")) + QLatin1Char(')');
}

// The call that ends before the error, by the index of its name, and its number of parameters.
struct EndedCall {
    int name;
    int count;
};

EndedCall CallBefore(const Context& context) {
    const int last = context.here - 1;
    if (!PieceAt(context, last).is(TOKEN_RIGHT_PARENTHESIS)) {
        return {last, 0};
    }
    const int opening = OpeningBefore(context, last);
    const bool isEmpty = opening == last - 1;
    const std::optional<CallPlace> call = CallAround(context, last);
    return {opening - 1, isEmpty || !call ? 0 : call->parameter + 1};
}

Maybe CountOfParameters(const Context& context) {
    const EndedCall call = CallBefore(context);
    const std::optional<Callee> callee = CalleeNamed(context, PieceAt(context, call.name).text);
    const bool isCount =
        IsErrorOneOf(context, {TXT_NOT_ENOUGH_ACTUAL_PARAMETERS, TXT_TOO_MANY_ACTUAL_PARAMETERS});
    if (!isCount || !callee) {
        return std::nullopt;
    }
    const auto count = static_cast<int>(callee->formals.size());
    return Say(QStringLiteral("%1 has %2 parameter%3, and the call gives %4: `%5`")
                   .arg(Code(callee->name))
                   .arg(count)
                   .arg(count == 1 ? QString() : QStringLiteral("s"))
                   .arg(call.count)
                   .arg(FormOf(*callee)),
               PieceAt(context, call.name).span);
}

// The formal parameter of the call around a piece, and the callee; none for what is unknown.
struct Passed {
    Callee callee;
    Formal formal;
};

std::optional<Passed> PassedAt(const Context& context, int index) {
    const std::optional<CallPlace> call = CallAround(context, index);
    const std::optional<Callee> callee =
        call ? CalleeNamed(context, PieceAt(context, call->name).text) : std::nullopt;
    if (!callee || call->parameter >= static_cast<int>(callee->formals.size())) {
        return std::nullopt;
    }
    return Passed{*callee, callee->formals[static_cast<std::size_t>(call->parameter)]};
}

Maybe TypeOfReference(const Context& context) {
    const std::optional<Passed> passed = PassedAt(context, context.here);
    const NameFact* const variable = VariableNamed(context, Near(context, 0).text);
    if (!IsError(context, TXT_TYPES_ACTUAL_FORMAL_MUST_BE_IDENTICAL) || !passed ||
        variable == nullptr) {
        return std::nullopt;
    }
    return Say(QStringLiteral("%1 is %2, but %3 of %4 is %5 and passed by reference: pass a "
                              "variable of just that type")
                   .arg(Code(Near(context, 0)), Code(QString(TypToStr(variable->type))),
                        Code(passed->formal.name), Code(passed->callee.name),
                        Code(QString(TypToStr(passed->formal.type)))));
}

Maybe ValueForReference(const Context& context) {
    const std::optional<Passed> passed = PassedAt(context, context.here);
    if (!Expects(context, TOKEN_IDENTIFIER) || !passed || !passed->formal.isReference) {
        return std::nullopt;
    }
    return Say(QStringLiteral("%1 of %2 is passed by reference: pass a variable, not a value")
                   .arg(Code(passed->formal.name), Code(passed->callee.name)));
}

Maybe BlockAsValue(const Context& context) {
    const Piece name = Near(context, 0);
    const std::optional<Callee> callee = CalleeNamed(context, name.text);
    const bool isValue = IsError(context, TXT_AND_FUNCTION_BLOCK) ||
                         (Expects(context, TOKEN_NUMBER) && !IsDeclaring(context));
    if (!isValue || !callee || callee->isFunction) {
        return std::nullopt;
    }
    return Say(QStringLiteral("%1 is a function block and gives no value: call it in a statement "
                              "of its own")
                   .arg(Code(name)));
}

}  // namespace

Rules RulesOfStatements() {
    return {{"equals-for-assign"_L1, EqualsForAssign},
            {"named-parameter"_L1, NamedParameter},
            {"assign-for-equals"_L1, AssignForEquals},
            {"chained-assignment"_L1, ChainedAssignment},
            {"step-of-for"_L1, StepOfFor},
            {"bounds-of-for"_L1, BoundsOfFor},
            {"real-in-for"_L1, RealInFor},
            {"jump-out-of-case"_L1, JumpOutOfCase},
            {"break-in-branch"_L1, BreakInBranch},
            {"break-without-loop"_L1, BreakWithoutLoop},
            {"return"_L1, Return},
            {"name-as-label"_L1, NameAsLabel},
            {"no-label"_L1, NoLabel},
            {"selector-of-case"_L1, SelectorOfCase},
            {"colon-after-else"_L1, ColonAfterElse},
            {"no-colon-after-label"_L1, NoColonAfterLabel},
            {"declaration-among-statements"_L1, DeclarationAmongStatements},
            {"label-like-variable"_L1, LabelLikeVariable},
            {"assigned-constant"_L1, AssignedConstant},
            {"update"_L1, Update},
            {"value-without-target"_L1, ValueWithoutTarget},
            {"result-by-name"_L1, ResultByName},
            {"result-outside"_L1, ResultOutside},
            {"call-of-instance"_L1, CallOfInstance},
            {"count-of-parameters"_L1, CountOfParameters},
            {"type-of-reference"_L1, TypeOfReference},
            {"value-for-reference"_L1, ValueForReference},
            {"block-as-value"_L1, BlockAsValue}};
}
