// Comments, strings and literals as other languages write them.

#include "check/rules_table.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

using Maybe = std::optional<Help>;

// ---------------------------------------------------------------------------------------------
// Comments and strings
// ---------------------------------------------------------------------------------------------

Maybe OpenComment(const Context& context) {
    if (!IsError(context, TXT_UNEXPECTED_END_OF_INPUT_FILE) || !context.facts.open.inComment) {
        return std::nullopt;
    }
    const int begin = context.facts.comments.back().span.begin;
    return Say(QStringLiteral("the comment that begins here is not ended: its `*)` is missing"),
               {begin, begin + 2});
}

Maybe OpenString(const Context& context) {
    if (!IsError(context, TXT_UNTERMINATED_STRING)) {
        return std::nullopt;
    }
    const int begin = Near(context, 0).span.begin;
    return Say(QStringLiteral("the string that begins here has no closing `'` on its line"),
               {begin, begin + 1});
}

// The first "*)" that is no end of a comment, from there on; its begin, or NONE.
int EndWithoutComment(const Context& context, int index) {
    for (; PieceAt(context, index + 1).span.begin > 0; ++index) {
        const bool isStar = PieceAt(context, index).text.endsWith(QLatin1Char('*'));
        if (isStar && PieceAt(context, index + 1).is(TOKEN_RIGHT_PARENTHESIS) &&
            TouchesPrevious(context, index + 1)) {
            return PieceAt(context, index).span.begin;
        }
    }
    return NONE;
}

// The last comment before the error, if it holds the beginning of another.
const CommentFact* CommentWithinComment(const Context& context) {
    const std::vector<CommentFact>& comments = context.facts.comments;
    const int error = Near(context, 0).span.begin;
    const auto last = std::find_if(comments.rbegin(), comments.rend(), [&](const CommentFact& c) {
        return c.span.end <= error && !c.span.isEmpty();
    });
    const bool isNesting = last != comments.rend() &&
                           context.source.text(last->span).startsWith(QLatin1String("(*")) &&
                           context.source.text(last->span).mid(2).contains(QLatin1String("(*"));
    return isNesting ? &*last : nullptr;
}

Maybe NestedComment(const Context& context) {
    const CommentFact* const comment = CommentWithinComment(context);
    int first = context.here;
    while (comment != nullptr && PieceAt(context, first - 1).span.begin >= comment->span.end) {
        --first;
    }
    if (comment == nullptr || EndWithoutComment(context, first) == NONE) {
        return std::nullopt;
    }
    return Say(QStringLiteral("comments do not nest: the one that begins on line %1 ends here")
                   .arg(LineOf(context, comment->span)),
               {comment->span.end - 2, comment->span.end});
}

bool IsAtBegin(const Context& context) {
    return ExpectsOneOf(context, {TOKEN_IDENTIFIER, TOKEN_PROGRAM});
}

// What stands on the line of the error from there on.
Span RestOfLine(const Context& context) {
    const int begin = Near(context, 0).span.begin;
    return {begin, context.source.lineAt(context.source.placeOf(begin).line).end};
}

// From the error up to a text, which belongs to it; empty if it does not come.
Span UpTo(const Context& context, const QString& end) {
    const int begin = Near(context, 0).span.begin;
    const int found = context.source.text().indexOf(end, begin);
    return found < 0 ? Span() : Span{begin, found + static_cast<int>(end.size())};
}

Mend Without(const Context& context, Span span) {
    return span.isEmpty() ? Mend() : Mend{BlankOut(context.source, span)};
}

// Makes a comment of what stands between two signs of that size; nothing if it ends one itself.
Mend Commented(const Context& context, Span span, int size) {
    const Span within = {span.begin + size, span.end - size};
    const QStringView text =
        within.begin < within.end ? context.source.text(within) : QStringView();
    const bool canStand =
        !text.isEmpty() && !text.contains(QLatin1String("*)")) && !text.startsWith(u')');
    return canStand ? Mend{{{span.begin, within.begin}, QStringLiteral("(*")},
                           {{within.end, span.end}, QStringLiteral("*)")}}
                    : Mend();
}

bool IsDirective(const Piece& piece) {
    return piece.isSpelledOneOf({"include"_L1, "define"_L1, "undef"_L1, "pragma"_L1, "if"_L1,
                                 "ifdef"_L1, "ifndef"_L1, "endif"_L1, "region"_L1,
                                 "endregion"_L1});
}

Maybe Directive(const Context& context) {
    const Piece word = Near(context, 1);
    if (Near(context, 0).text != QLatin1String("#") || !IsAtBegin(context) ||
        !IsDirective(word)) {
        return std::nullopt;
    }
    return SayAndLeaveOut(
        QStringLiteral("there is no `#%1`: a script stands in one file, as it is compiled")
            .arg(word.text),
        {}, {BlankOut(context.source, RestOfLine(context))});
}

Maybe ForeignComment(const Context& context) {
    const Piece begin = Near(context, 0);
    const bool isC = begin.text == QLatin1String("/*") || begin.text == QLatin1String("*/");
    const Piece word = Near(context, 1);
    const bool isWord = word.is(TOKEN_IDENTIFIER) && word.span.begin > begin.span.end;
    const bool isStep = isWord && Near(context, 2).is(TOKEN_SEMICOLON);
    const bool isOther = IsAtBegin(context) && isWord && !isStep &&
                         (begin.text == QLatin1String("#") || begin.text == QLatin1String("--"));
    if (!isC && !isOther) {
        return std::nullopt;
    }
    const Span span = isOther ? RestOfLine(context) : UpTo(context, QStringLiteral("*/"));
    return SayAndMend(
        QStringLiteral("a comment is written `(* ... *)`, or `// ...` up to the end of "
                       "the line"),
        {}, Without(context, span),
        isOther ? Mend{InPlaceOf(begin, QStringLiteral("//"))} : Commented(context, span, 2));
}

Maybe Braces(const Context& context) {
    if (Near(context, 0).text != QLatin1String("{")) {
        return std::nullopt;
    }
    if (ExpectsOneOf(context, {TOKEN_THEN, TOKEN_DO, TOKEN_OF})) {
        const StatementFact* const construct = OpenConstruct(context);
        return Say(
            QStringLiteral("statements stand between %1 and %2, without braces")
                .arg(Code(context.facts.error.expected.front()), Code(EndOf(construct->kind))));
    }
    if (!IsAtBegin(context)) {
        return std::nullopt;
    }
    const Span span = UpTo(context, QStringLiteral("}"));
    return SayAndMend(
        QStringLiteral("there are no pragmas, and a comment is written `(* ... *)`: leave "
                       "out what stands in braces"),
        {}, Without(context, span), Commented(context, span, 1));
}

Maybe DoubleQuotes(const Context& context) {
    if (Near(context, 0).text != QLatin1String("\"")) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("a string stands between apostrophes, as in `'text'`, and no "
                       "variable can hold one"));
}

// ---------------------------------------------------------------------------------------------
// Literals
// ---------------------------------------------------------------------------------------------

bool IsMatch(QStringView text, const char* pattern) {
    const QString whole = QRegularExpression::anchoredPattern(QLatin1String(pattern));
    return QRegularExpression(whole, QRegularExpression::CaseInsensitiveOption)
        .match(text.toString())
        .hasMatch();
}

// The word that the error is about if it directly follows a number, else an empty piece.
Piece WordAfterNumber(const Context& context) {
    const bool touches = TouchesPrevious(context, context.here) &&
                         Near(context, -1).is(TOKEN_NUMBER) &&
                         Near(context, 0).is(TOKEN_IDENTIFIER);
    return touches ? Near(context, 0) : Piece();
}

Maybe DigitsWithUnderscore(const Context& context) {
    const QStringView word = WordAfterNumber(context).text;
    QString number = RunFrom(context, context.here - 1).remove(QLatin1Char('_'));
    const bool isNumber = IsMatch(number, "[0-9]+|[0-9]*\\.[0-9]*|(2|8|16)#[0-9a-f]+");
    if (!word.startsWith(QLatin1Char('_')) || !isNumber) {
        return std::nullopt;
    }
    const int begin = Near(context, -1).span.begin;
    const int end = begin + RunFrom(context, context.here - 1).size();
    return SayOfText(QStringLiteral("no `_` stands in a number: write `%1`").arg(number),
                     {begin, Near(context, 0).span.end}, {{{begin, end}, number}});
}

// "e-3" of 1e-3: the sign and the digits are tokens of their own.
QString ExponentFrom(const Context& context) {
    QString text = Near(context, 0).text.toString();
    const bool hasSign = text.size() == 1 &&
                         Near(context, 1).isOneOf({TOKEN_PLUS, TOKEN_MINUS}) &&
                         Near(context, 2).is(TOKEN_NUMBER);
    if (hasSign) {
        text += Near(context, 1).text.toString() + Near(context, 2).text.toString();
    }
    return text;
}

Maybe ExponentWithoutPoint(const Context& context) {
    const bool isWhole = IsMatch(Near(context, -1).text, "[0-9]+");
    if (WordAfterNumber(context).span.isEmpty() || !isWhole) {
        return std::nullopt;
    }
    const QString exponent = ExponentFrom(context);
    if (!IsMatch(exponent, "e[+-]?[0-9]+")) {
        return std::nullopt;
    }
    const Span number = {Near(context, -1).span.begin,
                         Near(context, -1).span.end + static_cast<int>(exponent.size())};
    const QString real = QStringLiteral("%1.0%2").arg(Near(context, -1).text, exponent);
    return SayOfText(QStringLiteral("a real number needs a point: write `%1`").arg(real), {},
                     {{number, real}});
}

// From a piece to the end of a run.
Span RunSpan(const Context& context, int first, int run) {
    return {PieceAt(context, first).span.begin,
            PieceAt(context, run).span.begin + RunFrom(context, run).size()};
}

// What "0xFF", "0b11" and "0o17" are called here; empty for anything else.
QString BasedFrom(QStringView zero, QStringView word) {
    if (zero != QLatin1String("0")) {
        return QString();
    }
    const QString digits = word.mid(1).toString();
    return IsMatch(word, "x[0-9a-f]+") ? QStringLiteral("16#") + digits
           : IsMatch(word, "b[01]+")   ? QStringLiteral("2#") + digits
           : IsMatch(word, "o[0-7]+")  ? QStringLiteral("8#") + digits
                                       : QString();
}

Maybe BaseOfOtherLanguages(const Context& context) {
    const bool isDollar =
        Near(context, 0).text == QLatin1String("$") && TouchesPrevious(context, context.here + 1);
    const QString run = RunFrom(context, context.here + 1);
    const QString number = isDollar && IsMatch(run, "[0-9a-f]+")
                               ? QStringLiteral("16#") + run
                               : BasedFrom(Near(context, -1).text, WordAfterNumber(context).text);
    if (number.isEmpty()) {
        return std::nullopt;
    }
    const Span span = isDollar ? RunSpan(context, context.here, context.here + 1)
                               : Span{Near(context, -1).span.begin, Near(context, 0).span.end};
    return SayAndOffer(QStringLiteral("a base is written before a `#`: write `%1`").arg(number),
                       {}, {{span, number}});
}

Maybe LetterAfterNumber(const Context& context) {
    const Piece word = WordAfterNumber(context);
    if (!IsMatch(word.text, "f|l|u|ul|lu|d")) {
        return std::nullopt;
    }
    return SayAndOffer(
        QStringLiteral("a number has no letters after it: leave out %1").arg(Code(word)), {},
        {InPlaceOf(word, QString())});
}

bool IsInCaseLabel(const Context& context) {
    const StatementFact* const construct = OpenConstruct(context);
    return construct != nullptr && construct->kind == TOKEN_CASE &&
           OpenStatement(context) == construct;
}

Maybe BaseInCaseLabel(const Context& context) {
    const QString text = Near(context, 0).text.toString();
    constexpr int prefix = 3;
    constexpr int base = 16;
    bool isNumber = false;
    const qint64 value = text.mid(prefix).toLongLong(&isNumber, base);
    if (!IsError(context, TXT_BAD_SUFFIX_ON_NUMBER) || !IsInCaseLabel(context) ||
        !text.startsWith(QLatin1String("16#")) || !isNumber) {
        return std::nullopt;
    }
    return SayAndOffer(
        QStringLiteral("a label of `CASE` has decimal digits: write `%1`").arg(value), {},
        {InPlaceOf(Near(context, 0), QString::number(value))});
}

Maybe UnknownBase(const Context& context) {
    const Piece number = Near(context, 0);
    if (!IsError(context, TXT_BAD_SUFFIX_ON_NUMBER) || !number.text.endsWith(QLatin1Char('#'))) {
        return std::nullopt;
    }
    if (number.text == QLatin1String("10#")) {
        return SayAndOffer(
            QStringLiteral("decimal is what a number is without a base: leave out `10#`"), {},
            {InPlaceOf(number, QString())});
    }
    return Say(QStringLiteral("the bases are `2#`, `8#` and `16#`, written just so"));
}

// The index of the word in "INT#5", NONE if the error is about nothing of that form.
int WordBeforeHash(const Context& context) {
    for (const int index : {context.here - 1, context.here}) {
        if (PieceAt(context, index).is(TOKEN_IDENTIFIER) && TouchesPrevious(context, index + 1) &&
            PieceAt(context, index + 1).text == QLatin1String("#")) {
            return index;
        }
    }
    return NONE;
}

bool IsWordOfTime(const Piece& word) {
    return word.isSpelledOneOf({"T"_L1, "TIME"_L1, "LT"_L1, "LTIME"_L1, "D"_L1, "DATE"_L1,
                                "TOD"_L1, "TIME_OF_DAY"_L1, "DT"_L1, "DATE_AND_TIME"_L1});
}

Maybe LiteralOfTime(const Context& context) {
    const Piece word = PieceAt(context, WordBeforeHash(context));
    if (!IsWordOfTime(word)) {
        return std::nullopt;
    }
    return Say(
        QStringLiteral("there are no times and dates, so no `%1#`: write a plain number in "
                       "a unit of your choice, such as milliseconds")
            .arg(word.text));
}

Maybe TypedLiteral(const Context& context) {
    const int index = WordBeforeHash(context);
    const Piece word = PieceAt(context, index);
    const bool isType =
        IsTypeName(word) || word.isSpelledOneOf({"BYTE"_L1, "WORD"_L1, "DWORD"_L1, "LWORD"_L1,
                                                 "LINT"_L1, "ULINT"_L1});
    if (index == NONE || !isType) {
        return std::nullopt;
    }
    QString value = RunFrom(context, index + 2);
    if (word.isSpelled("BOOL"_L1)) {
        value = value == QLatin1String("1")   ? QStringLiteral("TRUE")
                : value == QLatin1String("0") ? QStringLiteral("FALSE")
                                              : value;
    }
    const Span span = RunSpan(context, index, index + 2);
    return SayAndOffer(
        QStringLiteral("a value is written without its type: write `%1`").arg(value), {},
        value.isEmpty() ? Mend() : Mend{{span, value}});
}

Maybe DecimalComma(const Context& context) {
    const Piece whole = Near(context, -1);
    const Piece fraction = Near(context, 1);
    const bool touches =
        TouchesPrevious(context, context.here) && TouchesPrevious(context, context.here + 1);
    const bool areDigits = IsMatch(whole.text, "[0-9]+") && IsMatch(fraction.text, "[0-9]+");
    if (!Near(context, 0).is(TOKEN_COMMA) || !touches || !areDigits ||
        !Expects(context, TOKEN_SEMICOLON)) {
        return std::nullopt;
    }
    return SayAndOffer(QStringLiteral("a fraction follows a point: write `%1.%2`")
                           .arg(whole.text, fraction.text),
                       {whole.span.begin, fraction.span.end},
                       {InPlaceOf(Near(context, 0), QStringLiteral("."))});
}

Maybe LargeInteger(const Context& context) {
    const Piece number = Near(context, 0);
    constexpr int mostDigits = 30;
    if (!IsError(context, TXT_TOO_MUCH_CONSTANT) || !IsMatch(number.text, "[0-9]+") ||
        number.text.size() > mostDigits) {
        return std::nullopt;
    }
    return SayAndOffer(
        QStringLiteral("the largest integer is `4294967295`: write `%1.0` if a real number "
                       "will do")
            .arg(number.text),
        {}, {PutInAfter(number, QStringLiteral(".0"))});
}

}  // namespace

Rules RulesOfText() {
    return {{"open-comment"_L1, OpenComment},
            {"open-string"_L1, OpenString},
            {"nested-comment"_L1, NestedComment},
            {"directive"_L1, Directive},
            {"foreign-comment"_L1, ForeignComment},
            {"braces"_L1, Braces},
            {"double-quotes"_L1, DoubleQuotes},
            {"digits-with-underscore"_L1, DigitsWithUnderscore},
            {"exponent-without-point"_L1, ExponentWithoutPoint},
            {"base-of-other-languages"_L1, BaseOfOtherLanguages},
            {"letter-after-number"_L1, LetterAfterNumber},
            {"base-in-case-label"_L1, BaseInCaseLabel},
            {"unknown-base"_L1, UnknownBase},
            {"literal-of-time"_L1, LiteralOfTime},
            {"typed-literal"_L1, TypedLiteral},
            {"decimal-comma"_L1, DecimalComma},
            {"large-integer"_L1, LargeInteger}};
}
