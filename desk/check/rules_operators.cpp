// Operators: signs of other languages, parentheses, and types that do not go together.

#include "check/rules_table.h"

#include "qyx_types.h"

#include <algorithm>

namespace {

using Maybe = std::optional<Help>;

bool CanBeginValue(const Piece& piece) {
    return piece.isOneOf({TOKEN_IDENTIFIER, TOKEN_NUMBER, TOKEN_TRUE, TOKEN_FALSE, TOKEN_RESULT,
                          TOKEN_TICK, TOKEN_LEFT_PARENTHESIS, TOKEN_NOT});
}

// ---------------------------------------------------------------------------------------------
// Signs
// ---------------------------------------------------------------------------------------------

Maybe SignPair(const Context& context) {
    const Piece pair = Near(context, 0);
    const bool isPair = pair.is(TOKEN_UNKNOWN) && pair.text.size() == 2 &&
                        QStringLiteral("+-*/<>=").contains(pair.text.front()) &&
                        QStringLiteral("+-").contains(pair.text.back());
    if (!isPair || !CanBeginValue(Near(context, 1)) || !CanEndValue(Near(context, -1)) ||
        OpenStatement(context) == nullptr || Expects(context, TOKEN_ASSIGN)) {
        return std::nullopt;
    }
    const QString apart = QStringLiteral("%1 %2").arg(pair.text.front()).arg(pair.text.back());
    return SayAndOffer(
        QStringLiteral("two signs that touch are one token: write `%1`").arg(apart), {},
        {InPlaceOf(pair, apart)});
}

// What a comparison of other languages is called here; empty for any other piece.
QString ComparisonFor(const Context& context) {
    const QStringView text = Near(context, 0).text;
    const bool isUnequal = text == QLatin1String("!") &&
                           TouchesPrevious(context, context.here + 1) &&
                           Near(context, 1).is(TOKEN_EQUAL);
    return isUnequal || text == QLatin1String("><") ? QStringLiteral("<>")
           : text == QLatin1String("==")            ? QStringLiteral("=")
           : text == QLatin1String("=<")            ? QStringLiteral("<=")
           : text == QLatin1String("=>")            ? QStringLiteral(">=")
                                                    : QString();
}

Maybe ForeignComparison(const Context& context) {
    const QString sign = ComparisonFor(context);
    if (sign.isEmpty() || !CanEndValue(Near(context, -1)) || OpenStatement(context) == nullptr ||
        Expects(context, TOKEN_ASSIGN)) {
        return std::nullopt;
    }
    const bool isUnequal = Near(context, 0).text == QLatin1String("!");
    const Span span = {Near(context, 0).span.begin, Near(context, isUnequal ? 1 : 0).span.end};
    return SayOfText(QStringLiteral("this comparison is written `%1`").arg(sign), span,
                     {{span, sign}});
}

QString LogicFor(const Context& context) {
    const Piece sign = Near(context, 0);
    const bool isBetween = CanEndValue(Near(context, -1));
    const bool isNot = sign.text == QLatin1String("!") || sign.text == QLatin1String("~");
    if (isNot && !isBetween && CanBeginValue(Near(context, 1))) {
        return QStringLiteral("NOT");
    }
    const bool isAnd = sign.text == QLatin1String("&") || sign.isSpelled("AND_THEN"_L1);
    const bool isOr = sign.text == QLatin1String("|") || sign.isSpelled("OR_ELSE"_L1);
    return !isBetween ? QString()
           : isAnd    ? QStringLiteral("AND")
           : isOr     ? QStringLiteral("OR")
                      : QString();
}

Maybe ForeignLogic(const Context& context) {
    const QString word = LogicFor(context);
    if (word.isEmpty() || OpenStatement(context) == nullptr) {
        return std::nullopt;
    }
    const bool isDouble = Near(context, 1).text == Near(context, 0).text &&
                          TouchesPrevious(context, context.here + 1);
    const Span span = {Near(context, 0).span.begin, Near(context, isDouble ? 1 : 0).span.end};
    return SayOfText(QStringLiteral("write `%1`").arg(word), span, {{span, u' ' + word + u' '}});
}

Maybe ForeignArithmetic(const Context& context) {
    const Piece sign = Near(context, 0);
    if (!CanEndValue(Near(context, -1)) || !CanBeginValue(Near(context, 1)) ||
        OpenStatement(context) == nullptr || Near(context, 1).text == QLatin1String(".")) {
        return std::nullopt;
    }
    if (sign.text == QLatin1String("%")) {
        return SayAndOffer(QStringLiteral("the remainder of a division is written `MOD`"), {},
                           {InPlaceOf(sign, QStringLiteral(" MOD "))});
    }
    if (sign.text == QLatin1String("^")) {
        return Say(QStringLiteral("a power is written `**`, an exclusive or `XOR`"));
    }
    if (sign.text == QLatin1String("<<") || sign.text == QLatin1String(">>")) {
        const QString word = TextOf(sign.text == QLatin1String("<<") ? TOKEN_SHL : TOKEN_SHR);
        return SayAndOffer(QStringLiteral("a shift is written `%1`").arg(word), {},
                           {InPlaceOf(sign, u' ' + word + u' ')});
    }
    if (sign.isSpelled("DIV"_L1)) {
        return SayAndOffer(QStringLiteral("`/` divides integers as well: write `/`"), {},
                           {InPlaceOf(sign, QStringLiteral("/"))});
    }
    return std::nullopt;
}

Maybe Dereference(const Context& context) {
    const Piece sign = Near(context, 0);
    const Piece name = Near(context, -1);
    if (sign.text != QLatin1String("^") || !name.is(TOKEN_IDENTIFIER) ||
        CanBeginValue(Near(context, 1)) || OpenStatement(context) == nullptr) {
        return std::nullopt;
    }
    return SayOfText(QStringLiteral("there are no pointers: write %1 alone, and pass a variable "
                                    "by reference, in `VAR_REF`")
                         .arg(Code(name)),
                     {name.span.begin, sign.span.end}, {BlankOut(context.source, sign.span)},
                     {TakeOut(context.source, sign.span)});
}

Maybe ConditionalOperator(const Context& context) {
    if (Near(context, 0).text != QLatin1String("?") || OpenStatement(context) == nullptr) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("there is no `? :`: choose the value with `IF ... THEN ... ELSE ... "
                       "END_IF;`"));
}

Maybe ShiftAsFunction(const Context& context) {
    const Piece word = Near(context, 0);
    const bool isWord =
        IsLogical(word) || word.isOneOf({TOKEN_SHL, TOKEN_SHR, TOKEN_ROL, TOKEN_ROR, TOKEN_MOD});
    if (!Expects(context, TOKEN_NUMBER) || !isWord ||
        !Near(context, 1).is(TOKEN_LEFT_PARENTHESIS)) {
        return std::nullopt;
    }
    const bool isPlain =
        Near(context, 3).is(TOKEN_COMMA) && Near(context, 5).is(TOKEN_RIGHT_PARENTHESIS);
    return SayAndOffer(QStringLiteral("%1 stands between its operands, as in `a %2 b`")
                           .arg(Code(word), word.text.toString()),
                       {},
                       isPlain ? Mend{InPlaceOf(word, QString()),
                                      InPlaceOf(Near(context, 3), u' ' + word.text.toString())}
                               : Mend());
}

// From the "[" of an index to its "]", empty if the statement ends before.
Span IndicesFrom(const Context& context, int opening) {
    int depth = 0;
    for (int index = opening;; ++index) {
        const Piece piece = PieceAt(context, index);
        if (piece.span.isEmpty() || piece.is(TOKEN_SEMICOLON)) {
            return {};
        }
        depth += piece.is(TOKEN_LEFT_BRACKET) ? 1 : piece.is(TOKEN_RIGHT_BRACKET) ? -1 : 0;
        if (depth == 0) {
            return {PieceAt(context, opening).span.begin, piece.span.end};
        }
    }
}

Maybe Index(const Context& context) {
    const Piece name = Near(context, -1);
    if (!Near(context, 0).is(TOKEN_LEFT_BRACKET) || !name.is(TOKEN_IDENTIFIER) ||
        OpenStatement(context) == nullptr) {
        return std::nullopt;
    }
    const Span indices = IndicesFrom(context, context.here);
    return SayAndLeaveOut(
        QStringLiteral("there are no arrays, so %1 has no elements: use a variable "
                       "for each value")
            .arg(Code(name)),
        {}, indices.isEmpty() ? Mend() : Mend{BlankOut(context.source, indices)});
}

Maybe Member(const Context& context) {
    const Piece name = Near(context, -1);
    const bool isMember = Near(context, 0).text == QLatin1String(".") &&
                          TouchesPrevious(context, context.here) && name.is(TOKEN_IDENTIFIER) &&
                          TouchesPrevious(context, context.here + 1) &&
                          Near(context, 1).is(TOKEN_IDENTIFIER);
    if (!isMember || OpenStatement(context) == nullptr) {
        return std::nullopt;
    }
    return Say(QStringLiteral("there are no structures and no instances, so nothing is reached "
                              "with `.`: use a variable of its own, such as `%1_%2`")
                   .arg(name.text, Near(context, 1).text),
               {name.span.begin, Near(context, 1).span.end});
}

// How a bit is set and cleared, where a number holds it.
Maybe BitAsTarget(const Piece& name, const Piece& bit, Span span) {
    constexpr unsigned last = 31;
    bool isNumber = false;
    const unsigned number = bit.text.mid(1).toString().toUInt(&isNumber);
    if (!isNumber || number > last) {
        return std::nullopt;
    }
    return SayOfText(
        QStringLiteral("a bit has no name of its own: set it with `%1 := %1 OR %2;`, "
                       "clear it with `%1 := %1 OR %2; %1 := %1 XOR %2;`")
            .arg(name.text)
            .arg(1U << number),
        span, {});
}

bool IsEndOfExpression(const Piece& piece) {
    return piece.isOneOf({TOKEN_SEMICOLON, TOKEN_THEN, TOKEN_DO, TOKEN_OF, TOKEN_END_REPEAT});
}

Maybe BitOfVariable(const Context& context) {
    const Piece name = Near(context, -1);
    const Piece bit = Near(context, 0);
    const bool isBit = bit.is(TOKEN_NUMBER) && bit.text.front() == QLatin1Char('.') &&
                       bit.text.size() > 1 && TouchesPrevious(context, context.here) &&
                       name.is(TOKEN_IDENTIFIER);
    if (!isBit || OpenStatement(context) == nullptr) {
        return std::nullopt;
    }
    const Span span = {name.span.begin, bit.span.end};
    const NameFact* const variable = VariableNamed(context, name.text);
    if (Expects(context, TOKEN_ASSIGN)) {
        const bool isInteger = variable != nullptr && IsTypOrdinal(variable->type);
        return isInteger ? BitAsTarget(name, bit, span) : std::nullopt;
    }
    const QString value =
        QStringLiteral("((%1 SHR %2) AND 1) = 1").arg(name.text, bit.text.mid(1));
    const bool isAlone =
        Near(context, -2)
            .isOneOf({TOKEN_ASSIGN, TOKEN_IF, TOKEN_ELSIF, TOKEN_WHILE, TOKEN_UNTIL}) &&
        IsEndOfExpression(Near(context, 1));
    return SayAndOffer(QStringLiteral("a bit has no name of its own: write `%1`").arg(value),
                       span, {{span, isAlone ? value : u'(' + value + u')'}});
}

// ---------------------------------------------------------------------------------------------
// Parentheses
// ---------------------------------------------------------------------------------------------

bool BeginsExpression(const Piece& piece) {
    return piece.span.isEmpty() ||
           piece.isOneOf({TOKEN_ASSIGN, TOKEN_IF, TOKEN_ELSIF, TOKEN_WHILE, TOKEN_UNTIL,
                          TOKEN_CASE, TOKEN_SEMICOLON, TOKEN_COMMA, TOKEN_THEN, TOKEN_DO,
                          TOKEN_NOT, TOKEN_TO, TOKEN_DOWNTO});
}

// The last piece before an index of which `isSought` holds, outside of parentheses that are
// closed there; NONE if the expression begins, or another AND, OR or XOR stands, before it.
template <typename Predicate>
int LastInExpression(const Context& context, int index, Predicate isSought) {
    for (--index; !BeginsExpression(PieceAt(context, index)); --index) {
        const Piece piece = PieceAt(context, index);
        if (isSought(piece)) {
            return index;
        }
        if (IsLogical(piece) || piece.is(TOKEN_LEFT_PARENTHESIS)) {
            return NONE;
        }
        if (piece.is(TOKEN_RIGHT_PARENTHESIS)) {
            index = OpeningBefore(context, index);
            if (index == NONE) {
                return NONE;
            }
        }
    }
    return NONE;
}

// Where the operands of a comparison begin: after what cannot belong to them.
int BeginOfOperand(const Context& context, int index) {
    const auto isBefore = [](const Piece& piece) {
        return IsLogical(piece) || piece.is(TOKEN_LEFT_PARENTHESIS) || BeginsExpression(piece);
    };
    while (!isBefore(PieceAt(context, index - 1))) {
        --index;
        if (PieceAt(context, index).is(TOKEN_RIGHT_PARENTHESIS)) {
            index = std::max(OpeningBefore(context, index), 0);
        }
    }
    return index;
}

// Whether the error is one that a comparison before AND, OR or XOR leads to.
bool MayComeOfComparison(const Context& context) {
    const Piece found = Near(context, 0);
    const bool isSecond = IsComparison(found) && !context.facts.error.expected.empty();
    const bool isLeft = IsError(context, TXT_LEFT_OPERAND_HAS_TYPE) && IsLogical(found);
    const bool isRight = IsError(context, TXT_RIGHT_OPERAND_HAS_TYPE);
    const bool isMixed = IsError(context, TXT_INCOMPATIBLE_TYPES) &&
                         IsTypOrdinal(context.facts.error.current) &&
                         context.facts.error.next == TYP_BOOL;
    const bool isNot = Expects(context, TOKEN_NUMBER) && found.is(TOKEN_NOT);
    return isSecond || isLeft || isRight || isMixed || isNot;
}

// The AND, OR or XOR that the error is about; at a ")" it stands before what that closes.
int LogicAt(const Context& context) {
    if (IsLogical(Near(context, 0))) {
        return context.here;
    }
    const bool isClosing =
        Near(context, 0).is(TOKEN_RIGHT_PARENTHESIS) && !CallAround(context, context.here);
    const int opening = isClosing ? OpeningBefore(context, context.here) : NONE;
    return LastInExpression(context, opening == NONE ? context.here : opening, IsLogical);
}

// The index after an operand of AND, OR or XOR.
int EndOfOperand(const Context& context, int index) {
    int depth = 0;
    for (;; ++index) {
        const Piece piece = PieceAt(context, index);
        const bool isClosing = piece.is(TOKEN_RIGHT_PARENTHESIS);
        const bool isEnd = IsLogical(piece) || isClosing || piece.is(TOKEN_OF) ||
                           piece.is(TOKEN_END_REPEAT) || BeginsExpression(piece);
        if (piece.span.isEmpty() || (depth == 0 && isEnd && !piece.is(TOKEN_NOT))) {
            return index;
        }
        depth += piece.is(TOKEN_LEFT_PARENTHESIS) ? 1 : isClosing ? -1 : 0;
    }
}

// Whether a comparison stands between two pieces, outside of parentheses.
bool HasComparison(const Context& context, int begin, int end) {
    return LastInExpression(context, end, IsComparison) >= begin;
}

// Parentheses around each comparison among the operands from there on.
Mend EachInParentheses(const Context& context, int begin) {
    Mend mend;
    for (;;) {
        begin += PieceAt(context, begin).is(TOKEN_NOT) ? 1 : 0;
        const int end = EndOfOperand(context, begin);
        if (HasComparison(context, begin, end)) {
            const int before = PieceAt(context, begin).span.begin;
            const int after = PieceAt(context, end - 1).span.end;
            mend.push_back({{before, before}, QStringLiteral(" (")});
            mend.push_back({{after, after}, QStringLiteral(") ")});
        }
        if (!IsLogical(PieceAt(context, end))) {
            return mend;
        }
        begin = end + 1;
    }
}

Maybe ComparisonBeforeLogic(const Context& context) {
    if (!MayComeOfComparison(context)) {
        return std::nullopt;
    }
    const int logic = LogicAt(context);
    const int comparison = logic == NONE ? NONE : LastInExpression(context, logic, IsComparison);
    if (comparison == NONE) {
        return std::nullopt;
    }
    const int begin = BeginOfOperand(context, comparison);
    const Span left = {PieceAt(context, begin).span.begin, PieceAt(context, logic - 1).span.end};
    return SayAndMend(
        QStringLiteral("between numbers %1 binds tighter than %2: put each comparison in "
                       "parentheses, `(%3) %4 (...)`")
            .arg(Code(PieceAt(context, logic)), Code(PieceAt(context, comparison)),
                 context.source.text(left).toString(), PieceAt(context, logic).text.toString()),
        left, EachInParentheses(context, begin));
}

// Joins two comparisons of sizes that share the piece before the error, from a piece on.
Mend JoinedByAnd(const Context& context, int begin) {
    const auto isOfSize = [](const Piece& sign) {
        return !sign.isOneOf({TOKEN_EQUAL, TOKEN_NOT_EQUAL});
    };
    const Piece middle = Near(context, -1);
    const int end = EndOfOperand(context, context.here + 1);
    const bool canJoin =
        isOfSize(Near(context, 0)) && isOfSize(Near(context, -2)) && end > context.here + 1;
    return canJoin ? Mend{PutInBefore(PieceAt(context, begin), QStringLiteral("(")),
                          PutInAfter(middle, QStringLiteral(") AND (%1").arg(middle.text)),
                          PutInAfter(PieceAt(context, end - 1), QStringLiteral(")"))}
                   : Mend();
}

Maybe TwoComparisons(const Context& context) {
    const bool isSecond = IsComparison(Near(context, 0)) && !Expects(context, TOKEN_ASSIGN) &&
                          !context.facts.error.expected.empty();
    if (!isSecond || LastInExpression(context, context.here, IsComparison) == NONE) {
        return std::nullopt;
    }
    const int first = LastInExpression(context, context.here, IsComparison);
    const int begin = BeginOfOperand(context, first);
    const Span left = {PieceAt(context, begin).span.begin, Near(context, -1).span.end};
    const Piece middle = Near(context, -1);
    return SayAndOffer(QStringLiteral("a comparison has one sign: join two with `AND`, as in "
                                      "`(%1) AND (%2 %3 ...)`")
                           .arg(context.source.text(left), middle.text, Near(context, 0).text),
                       left, first == context.here - 2 ? JoinedByAnd(context, begin) : Mend());
}

Maybe LiteralOnTheLeft(const Context& context) {
    const Piece literal = Near(context, -1);
    if (!IsComparison(Near(context, 0)) || !literal.isOneOf({TOKEN_TRUE, TOKEN_FALSE}) ||
        context.facts.error.expected.empty()) {
        return std::nullopt;
    }
    const QString other = Near(context, 1).is(TOKEN_IDENTIFIER) ? Near(context, 1).text.toString()
                                                                : QStringLiteral("...");
    const bool isPlain =
        Near(context, 0).isOneOf({TOKEN_EQUAL, TOKEN_NOT_EQUAL}) &&
        Near(context, 1).is(TOKEN_IDENTIFIER) &&
        (IsEndOfExpression(Near(context, 2)) || Near(context, 2).is(TOKEN_RIGHT_PARENTHESIS));
    return SayAndOffer(
        QStringLiteral("%1 stands on the right of a comparison: write `%2 %3 %4`")
            .arg(Code(literal), other, Near(context, 0).text.toString(), literal.text.toString()),
        {},
        isPlain ? Mend{InPlaceOf(literal, other),
                       InPlaceOf(Near(context, 1), literal.text.toString())}
                : Mend());
}

Maybe NotAfterOperator(const Context& context) {
    if (!Expects(context, TOKEN_NUMBER) || !Near(context, 0).is(TOKEN_NOT) ||
        IsDeclaring(context)) {
        return std::nullopt;
    }
    const bool isPlain =
        Near(context, 1).is(TOKEN_IDENTIFIER) && !Near(context, 2).is(TOKEN_LEFT_PARENTHESIS);
    return SayAndOffer(
        QStringLiteral("`NOT` needs parentheses after an operator: write `(NOT %1)`")
            .arg(isPlain ? Near(context, 1).text.toString() : QStringLiteral("...")),
        {},
        isPlain ? Mend{PutInBefore(Near(context, 0), QStringLiteral("(")),
                       PutInAfter(Near(context, 1), QStringLiteral(")"))}
                : Mend());
}

// Whether a ")" closes, within the statement, what is open at the error.
bool IsClosedLater(const Context& context) {
    int depth = 1;
    for (int index = context.here; depth > 0; ++index) {
        const Piece piece = PieceAt(context, index);
        if (piece.span.isEmpty() || piece.is(TOKEN_SEMICOLON)) {
            return false;
        }
        depth += piece.is(TOKEN_LEFT_PARENTHESIS) ? 1 : 0;
        depth -= piece.is(TOKEN_RIGHT_PARENTHESIS) ? 1 : 0;
    }
    return true;
}

Maybe OpenParenthesis(const Context& context) {
    const int opening = OpeningBefore(context, context.here);
    const bool isEnd = Near(context, 0)
                           .isOneOf({TOKEN_SEMICOLON, TOKEN_THEN, TOKEN_DO, TOKEN_OF,
                                     TOKEN_END_REPEAT, TOKEN_TO, TOKEN_DOWNTO}) ||
                       IsFirstOnLine(context, context.here);
    if (!Expects(context, TOKEN_RIGHT_PARENTHESIS) || !isEnd || opening == NONE ||
        IsClosedLater(context)) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("this `(` has no `)`"), PieceAt(context, opening).span,
                       {PutInAfter(Near(context, -1), QStringLiteral(")"))});
}

Maybe StrayParenthesis(const Context& context) {
    if (!Near(context, 0).is(TOKEN_RIGHT_PARENTHESIS) || context.facts.error.expected.empty() ||
        !CanEndValue(Near(context, -1)) || OpeningBefore(context, context.here) != NONE ||
        OpenStatement(context) == nullptr) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("this `)` has no `(`"), {},
                       IsEndOfExpression(Near(context, 1))
                           ? Mend{InPlaceOf(Near(context, 0), QString())}
                           : Mend());
}

// ---------------------------------------------------------------------------------------------
// Types
// ---------------------------------------------------------------------------------------------

bool IsNumberType(Typ type) {
    return type != TYP_NONE && IsTypDigit(type);
}

bool IsOperatorOfNumbers(const Piece& piece) {
    return piece.isOneOf({TOKEN_PLUS, TOKEN_MINUS, TOKEN_MULTIPLY, TOKEN_DIVIDE, TOKEN_POWER});
}

// Whether the value before the error stands alone after ":=", a comparison, AND, OR or XOR.
bool IsValueAlone(const Context& context) {
    const Piece before = Near(context, -2);
    return before.is(TOKEN_ASSIGN) || IsComparison(before) || IsLogical(before);
}

Maybe NumberAsTruth(const Context& context) {
    const Piece value = Near(context, -1);
    const NameFact* const variable = VariableNamed(context, value.text);
    if (!IsError(context, TXT_INCOMPATIBLE_TYPES) || context.facts.error.current != TYP_BOOL ||
        !IsNumberType(context.facts.error.next) || !IsValueAlone(context)) {
        return std::nullopt;
    }
    if (value.text == QLatin1String("1") || value.text == QLatin1String("0")) {
        const Token literal = value.text == QLatin1String("1") ? TOKEN_TRUE : TOKEN_FALSE;
        return SayAndOffer(QStringLiteral("a `BOOL` is no number: write %1").arg(Code(literal)),
                           value.span, {InPlaceOf(value, TextOf(literal))});
    }
    if (value.is(TOKEN_NUMBER)) {
        return Say(QStringLiteral("a `BOOL` is `TRUE` or `FALSE`, and no number"), value.span);
    }
    if (variable == nullptr || !IsNumberType(variable->type)) {
        return std::nullopt;
    }
    const QString compared = QStringLiteral("(%1 <> 0)").arg(value.text);
    return SayAndOffer(
        QStringLiteral("%1 is a number: compare it, as in `%2`").arg(Code(value), compared),
        value.span, {InPlaceOf(value, compared)});
}

Maybe TruthAsNumber(const Context& context) {
    const Piece value = Near(context, -1);
    const NameFact* const variable = VariableNamed(context, value.text);
    if (!IsError(context, TXT_INCOMPATIBLE_TYPES) || context.facts.error.next != TYP_BOOL ||
        !IsNumberType(context.facts.error.current)) {
        return std::nullopt;
    }
    const bool isAssigned = Near(context, -2).is(TOKEN_ASSIGN) && variable != nullptr &&
                            Near(context, 0).is(TOKEN_SEMICOLON) &&
                            Near(context, -3).is(TOKEN_IDENTIFIER);
    if (!isAssigned) {
        return Say(
            QStringLiteral("a `BOOL` does not count as a number: choose the number with "
                           "`IF`"));
    }
    const Piece target = Near(context, -3);
    const QString choice =
        QStringLiteral("IF %1 THEN %2 := 1; ELSE %2 := 0; END_IF;").arg(value.text, target.text);
    return SayAndOffer(QStringLiteral("a `BOOL` is not converted: write `%1`").arg(choice),
                       value.span, {{{target.span.begin, Near(context, 0).span.end}, choice}});
}

Maybe TruthInArithmetic(const Context& context) {
    const Piece sign =
        IsOperatorOfNumbers(Near(context, 0)) ? Near(context, 0) : Near(context, -1);
    const bool isRefused =
        IsError(context, TXT_NOT_APPLICABLE_TO_THIS_OPERAND_TYPE) ||
        (IsError(context, TXT_INCOMPATIBLE_TYPES) && context.facts.error.current == TYP_BOOL);
    if (!isRefused || !IsOperatorOfNumbers(sign) || Near(context, -1).is(TOKEN_STRING)) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("%1 takes numbers, and a `BOOL` is none: choose the number with `IF`")
            .arg(Code(sign)));
}

Maybe TextAsValue(const Context& context) {
    const bool isText =
        context.facts.error.current == TYP_STRING || context.facts.error.next == TYP_STRING;
    if (!IsError(context, TXT_INCOMPATIBLE_TYPES) || !isText) {
        return std::nullopt;
    }
    return Say(QStringLiteral("no variable holds a text: give each text a number"));
}

Maybe RealForInteger(const Context& context) {
    const Typ next = context.facts.error.next;
    if (!IsError(context, TXT_INCOMPATIBLE_TYPES) || !IsTypOrdinal(context.facts.error.current) ||
        (next != TYP_REAL && next != TYP_LREAL)) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("a parameter of type `%1` takes no real number: assign the number to "
                       "a variable of type `%1` first, and pass that")
            .arg(QString(TypToStr(context.facts.error.current))));
}

Maybe NumberAsCondition(const Context& context) {
    const Piece value = Near(context, -1);
    const bool isPlain =
        value.is(TOKEN_IDENTIFIER) &&
        Near(context, -2).isOneOf({TOKEN_IF, TOKEN_ELSIF, TOKEN_WHILE, TOKEN_UNTIL});
    if (!IsError(context, TXT_TYPE_OF_EXPRESSION_MUST_BE_BOOLEAN) ||
        !Near(context, 0).isOneOf({TOKEN_THEN, TOKEN_DO, TOKEN_END_REPEAT})) {
        return std::nullopt;
    }
    return SayAndOffer(
        QStringLiteral("a condition is a `BOOL`: compare the value, as in `%1 <> 0`")
            .arg(isPlain ? value.text.toString() : QStringLiteral("...")),
        isPlain ? value.span : Span(),
        isPlain ? Mend{PutInAfter(value, QStringLiteral(" <> 0"))} : Mend());
}

Maybe RealForOperator(const Context& context) {
    const Piece sign =
        IsError(context, TXT_LEFT_OPERAND_HAS_TYPE) ? Near(context, 0) : Near(context, -2);
    const bool isOperator =
        IsLogical(sign) || sign.isOneOf({TOKEN_MOD, TOKEN_SHL, TOKEN_SHR, TOKEN_ROL, TOKEN_ROR});
    if (!IsErrorOneOf(context, {TXT_LEFT_OPERAND_HAS_TYPE, TXT_RIGHT_OPERAND_HAS_TYPE}) ||
        !isOperator) {
        return std::nullopt;
    }
    return Say(IsLogical(sign)
                   ? QStringLiteral("%1 takes no real number: compare it first, in parentheses")
                         .arg(Code(sign))
                   : QStringLiteral("%1 takes no real number: assign it to an integer variable "
                                    "first, and use that")
                         .arg(Code(sign)));
}

}  // namespace

Rules RulesOfOperators() {
    return {{"comparison-before-logic"_L1, ComparisonBeforeLogic},
            {"two-comparisons"_L1, TwoComparisons},
            {"sign-pair"_L1, SignPair},
            {"foreign-comparison"_L1, ForeignComparison},
            {"foreign-logic"_L1, ForeignLogic},
            {"foreign-arithmetic"_L1, ForeignArithmetic},
            {"dereference"_L1, Dereference},
            {"conditional-operator"_L1, ConditionalOperator},
            {"operator-as-function"_L1, ShiftAsFunction},
            {"index"_L1, Index},
            {"member"_L1, Member},
            {"bit-of-variable"_L1, BitOfVariable},
            {"literal-on-the-left"_L1, LiteralOnTheLeft},
            {"not-after-operator"_L1, NotAfterOperator},
            {"open-parenthesis"_L1, OpenParenthesis},
            {"stray-parenthesis"_L1, StrayParenthesis},
            {"number-as-truth"_L1, NumberAsTruth},
            {"truth-as-number"_L1, TruthAsNumber},
            {"truth-in-arithmetic"_L1, TruthInArithmetic},
            {"text-as-value"_L1, TextAsValue},
            {"real-for-integer"_L1, RealForInteger},
            {"number-as-condition"_L1, NumberAsCondition},
            {"real-for-operator"_L1, RealForOperator}};
}
