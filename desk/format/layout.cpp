#include "format/layout.h"

#include "check/tokens.h"
#include "facts/catalogue.h"
#include "format/lines.h"

#include "qyx_messages.h"

#include <algorithm>

namespace {

// Beyond these lines go no further to the right, so that the text stays in proportion to the
// script.
constexpr int MOST_LEVELS = 60;
constexpr int WIDEST_CONTINUATION = 120;

bool IsOneOf(Token code, std::initializer_list<Token> codes) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

bool IsBracketBegin(Token code) {
    return code == TOKEN_LEFT_PARENTHESIS || code == TOKEN_LEFT_BRACKET;
}

bool IsBracketEnd(Token code) {
    return code == TOKEN_RIGHT_PARENTHESIS || code == TOKEN_RIGHT_BRACKET;
}

// ---------------------------------------------------------------------------------------------
// Between two pieces of a statement
// ---------------------------------------------------------------------------------------------

bool IsOperatorSign(QChar character) {
    return QStringView(u"*+-/:<=>").contains(character);
}

// Two signs in a row would be one operator.
bool WouldJoin(const LayoutPiece& before, const LayoutPiece& piece) {
    return IsOperatorSign(before.text.back()) && IsOperatorSign(piece.text.front());
}

bool BeginsParameters(const LayoutPiece& before, const LayoutPiece& piece) {
    return IsBracketBegin(piece.code) && before.code == TOKEN_IDENTIFIER && piece.isInExpression;
}

bool IsTightColon(const LayoutPiece& piece) {
    return piece.code == TOKEN_COLON && piece.isInExpression;
}

bool IsTight(const LayoutPiece& before, const LayoutPiece& piece) {
    if (piece.isComment) {
        return IsBracketBegin(before.code);
    }
    return IsOneOf(piece.code, {TOKEN_SEMICOLON, TOKEN_COMMA, TOKEN_DOT_DOT}) ||
           IsBracketEnd(piece.code) || IsTightColon(piece) || BeginsParameters(before, piece) ||
           IsBracketBegin(before.code) || before.code == TOKEN_DOT_DOT || before.isUnary;
}

bool HasBlankBetween(const LayoutPiece& before, const LayoutPiece& piece) {
    return !IsTight(before, piece) || WouldJoin(before, piece);
}

// What stays on the line of what it follows, unless a comment ends that.
bool StaysOnLine(const LayoutPiece& piece) {
    return IsOneOf(piece.code,
                   {TOKEN_SEMICOLON, TOKEN_COMMA, TOKEN_COLON, TOKEN_ASSIGN, TOKEN_THEN, TOKEN_TO,
                    TOKEN_DOWNTO, TOKEN_DO, TOKEN_OF, TOKEN_DOT_DOT}) ||
           IsBracketEnd(piece.code);
}

// Whether a new line of the script is kept within a statement: beside operators and after commas
// and ":=". Declarations have theirs beside comments alone.
bool KeepsLine(const LayoutPiece& before, const LayoutPiece& piece) {
    const bool isBesideComment = before.isComment || piece.isComment;
    const bool isBesideOperator =
        piece.isInExpression &&
        (before.isBinary || piece.isBinary || IsOneOf(before.code, {TOKEN_COMMA, TOKEN_ASSIGN}));
    return piece.hasLineBefore && !StaysOnLine(piece) && (isBesideOperator || isBesideComment);
}

// Whether an expression begins after the token, below which its further lines begin.
bool LeadsToExpression(const LayoutPiece& piece) {
    return IsOneOf(piece.code,
                   {TOKEN_ASSIGN, TOKEN_IF, TOKEN_ELSIF, TOKEN_WHILE, TOKEN_UNTIL, TOKEN_CASE});
}

// ---------------------------------------------------------------------------------------------
// Lines from pieces
// ---------------------------------------------------------------------------------------------

class Writer {
public:
    Writer(const Source& source, const LayoutPieces& pieces, int indent)
        : source_(source), pieces_(pieces), indent_(indent) {}

    Layout layout() {
        layout_.text.reserve(source_.size());
        for (at_ = 0; at_ < pieces_.size(); ++at_) {
            if (pieces_[at_].isComment) {
                takeComment(pieces_[at_]);
            } else {
                takeToken(pieces_[at_]);
            }
        }
        return std::move(layout_);
    }

private:
    const Source& source_;
    const LayoutPieces& pieces_;
    int indent_;
    std::size_t at_ = 0;
    std::size_t nextToken_ = 0;
    Layout layout_;
    bool isLed_ = false;           // the line begins with comments that lead to its token
    LayoutPiece lastToken_ = {};   // that was written
    bool isAfterOwnLine_ = false;  // a comment on a line of its own came after that
    bool hasPending_ = false;      // an expression begins with the next piece
    int expressionColumn_ = 0;     // where the expression began
    std::vector<int> brackets_;    // the columns after those that are open

    // The token that the piece is or that follows it: the last piece is one.
    const LayoutPiece& nextToken() {
        nextToken_ = std::max(nextToken_, at_);
        while (pieces_[nextToken_].isComment) {
            ++nextToken_;
        }
        return pieces_[nextToken_];
    }

    const LayoutPiece& before() const { return pieces_[at_ - 1]; }

    int columnOf(int level) const { return std::min(level, MOST_LEVELS) * indent_; }

    // --- lines ---------------------------------------------------------------------------

    bool wantsBlank(const LayoutPiece& piece) const {
        if (layout_.lines.empty() || at_ == 0) {
            return false;
        }
        if (lastToken_.endsUnit && !isAfterOwnLine_) {
            return true;
        }
        const bool isAfterOpening = lastToken_.opens && !isAfterOwnLine_;
        const bool isBranch = piece.outdents && piece.kind == LineKind::Structure;
        return piece.hasBlankBefore && !isAfterOpening && !isBranch && !piece.closes;
    }

    void startLine(int level, LineKind kind) {
        LayoutLine line;
        line.indent = columnOf(level);
        line.kind = kind;
        line.isBlankBefore = wantsBlank(pieces_[at_]);
        push(std::move(line));
    }

    // The line of a token that begins one.
    void startTokenLine(const LayoutPiece& token) {
        startLine(token.level, token.kind);
        LayoutLine& line = last();
        line.isConstant = token.isConstant;
        line.commentColumn = token.kind == LineKind::CaseLabel ? columnOf(token.level + 1) : NONE;
    }

    void goOn() {
        const LineKind kind = last().kind;
        LayoutLine line;
        line.indent = continuationColumn();
        line.kind = kind;
        line.isContinuation = true;
        push(std::move(line));
    }

    void push(LayoutLine line) {
        line.text = {layout_.text.size(), layout_.text.size()};
        line.end = line.indent;
        layout_.lines.push_back(std::move(line));
    }

    LayoutLine& last() { return layout_.lines.back(); }

    int continuationColumn() const {
        return std::min(brackets_.empty() ? expressionColumn_ : brackets_.back(),
                        WIDEST_CONTINUATION);
    }

    void append(QStringView text) {
        layout_.text.append(text.data(), static_cast<int>(text.size()));
        noteAppended(static_cast<int>(text.size()));
    }

    void appendComment(QStringView text) {
        append(text);
        const auto lastLine = text.lastIndexOf(u'\n') + 1;
        if (lastLine > 0) {
            last().hasLineFeed = true;
            last().end = static_cast<int>(text.size() - lastLine);
        }
    }

    void appendBlanks(int count) {
        layout_.text.resize(layout_.text.size() + count, u' ');
        noteAppended(count);
    }

    void noteAppended(int count) {
        last().text.end += count;
        last().end += count;
    }

    // --- tokens --------------------------------------------------------------------------

    void takeToken(const LayoutPiece& token) {
        if (token.beginsLine) {
            beginStatement(token);
        } else {
            separate(token);
        }
        notePlace(token);
        append(token.text);
        noteBracket(token);
        lastToken_ = token;
        isAfterOwnLine_ = false;
    }

    void beginStatement(const LayoutPiece& token) {
        brackets_.clear();
        hasPending_ = false;
        if (token.joinsLabel) {
            joinLabel(token);
        } else if (isLed_) {
            startLedToken(token);
        } else {
            startTokenLine(token);
        }
        isLed_ = false;
        expressionColumn_ = columnOf(token.level) + indent_;
    }

    void startLedToken(const LayoutPiece& token) {
        LayoutLine& line = last();
        line.kind = token.kind;
        line.isComment = false;
        line.isConstant = token.isConstant;
        appendBlanks(1);
    }

    void joinLabel(const LayoutPiece& token) {
        appendBlanks(std::max(columnOf(token.level) - last().end, 1));
        last().kind = LineKind::Statement;
    }

    void separate(const LayoutPiece& piece) {
        const bool isForced = before().isLineComment;
        if (isForced || KeepsLine(before(), piece)) {
            goOn();
        } else if (HasBlankBetween(before(), piece)) {
            appendBlanks(1);
        }
    }

    // Before the piece is written.
    void notePlace(const LayoutPiece& piece) {
        if (hasPending_) {
            expressionColumn_ = last().end;
            hasPending_ = false;
        }
        LayoutLine& line = last();
        if (piece.code == TOKEN_COLON && line.kind == LineKind::Declaration &&
            !line.isContinuation && !line.hasLineFeed) {
            line.colon = line.text.length();
        }
        hasPending_ = LeadsToExpression(piece);
    }

    void noteBracket(const LayoutPiece& token) {
        if (IsBracketBegin(token.code)) {
            brackets_.push_back(last().end);
        } else if (IsBracketEnd(token.code) && !brackets_.empty()) {
            brackets_.pop_back();
        }
    }

    // --- comments ------------------------------------------------------------------------

    void takeComment(const LayoutPiece& comment) {
        if (!nextToken().beginsLine) {
            takeWithin(comment);
        } else if (layout_.lines.empty() || comment.hasLineBefore) {
            takeOwnLine(comment);
        } else if (last().isComment) {
            appendBlanks(1);
            appendComment(comment.text);
        } else {
            addAtEnd(comment);
        }
    }

    void takeWithin(const LayoutPiece& comment) {
        if (comment.isLineComment && !comment.hasLineBefore) {
            addAtEnd(comment);
            return;
        }
        separate(comment);
        notePlace(comment);
        appendComment(comment.text);
    }

    void addAtEnd(const LayoutPiece& comment) {
        QString& end = last().comment;
        end += QStringLiteral(" ").repeated(end.isEmpty() ? 0 : 1);
        end.append(comment.text.data(), static_cast<int>(comment.text.size()));
    }

    void takeOwnLine(const LayoutPiece& comment) {
        const LayoutPiece& token = nextToken();
        startLine(comment.leadsToken ? token.level : levelOf(comment, token),
                  isInSection(token) ? LineKind::Declaration : token.kind);
        appendComment(comment.text);
        last().isComment = true;
        isLed_ = comment.leadsToken;
        isAfterOwnLine_ = !isLed_;
    }

    static bool isInSection(const LayoutPiece& token) {
        return token.kind == LineKind::Declaration || token.code == TOKEN_END_VAR;
    }

    // The level of a comment that stands above a token.
    int levelOf(const LayoutPiece& comment, const LayoutPiece& token) const {
        if (token.closes) {
            return token.level + 1;
        }
        const bool isOutside =
            lastToken_.code == TOKEN_OF || sourceColumnOf(comment) <= sourceColumnOf(token);
        return token.level + (token.outdents && !isOutside ? 1 : 0);
    }

    int sourceColumnOf(const LayoutPiece& piece) const {
        return source_.placeOf(piece.span.begin).column;
    }
};

// ---------------------------------------------------------------------------------------------
// What is not formatted
// ---------------------------------------------------------------------------------------------

// Whatever it is, the text ends with one line feed.
void EndWithLineFeed(QString& text) {
    int end = text.size();
    while (end > 0 && QStringView(u" \t\n").contains(text.at(end - 1))) {
        --end;
    }
    text.truncate(end);
    text.append(u'\n');
}

// Whether another part of a statement that holds others may begin after the token.
bool EndsPart(Token code) {
    return IsOneOf(code, {TOKEN_SEMICOLON, TOKEN_COLON, TOKEN_THEN, TOKEN_ELSE, TOKEN_DO,
                          TOKEN_REPEAT, TOKEN_OF});
}

// Where the part of the open statement begins that has the error. What is whole of one that holds
// others stands before it.
int BeginOfPart(const Facts& facts, int error) {
    const StatementFact& open = facts.statements[static_cast<std::size_t>(facts.open.statement)];
    int begin = open.span.begin;
    if (!IsCompoundBegin(open.kind)) {
        return begin;
    }
    for (const TokenFact& token : facts.tokens) {
        const bool isWithin = token.span.begin >= begin && token.span.end <= error;
        begin = isWithin && EndsPart(token.code) ? token.span.end : begin;
    }
    return begin;
}

bool IsBlankOrSemicolon(QChar character) {
    return character == u';' || character.isSpace();
}

// Where the script ends too early the compiler marks its last token, which is fine.
int PlaceOfError(const Facts& facts) {
    const MessageFact& error = facts.messages.back();
    return error.constant == ConstantOf(TXT_UNEXPECTED_END_OF_INPUT_FILE)
               ? facts.error.token.end
               : std::min(facts.error.token.begin, error.place);
}

// Where the error begins, or the piece of the script that has it.
int BeginOfError(const Facts& facts) {
    int begin = PlaceOfError(facts);
    if (facts.open.statement != NONE) {
        begin = std::min(begin, BeginOfPart(facts, begin));
    }
    if (facts.open.declaration != NONE) {
        const auto index = static_cast<std::size_t>(facts.open.declaration);
        begin = std::min(begin, facts.declarations[index].span.begin);
    }
    for (const CommentFact& comment : facts.comments) {
        begin = comment.span.isEmpty() ? std::min(begin, comment.span.begin) : begin;
    }
    return begin;
}

// Between statements the compiler takes semicolons that follow each other for one, the first.
int EndOf(const Source& source, const TokenFact& token, int limit) {
    int end = token.span.end;
    int place = end;
    while (token.code == TOKEN_SEMICOLON && place < limit &&
           IsBlankOrSemicolon(source.text().at(place))) {
        ++place;
        end = source.text().at(place - 1) == u';' ? place : end;
    }
    return end;
}

// Where the text goes on as it is. Semicolons that end nothing are the last that is left out, but
// for those among which comments stand or which keep two words apart.
int BeginOfRest(const Source& source, const LayoutPieces& pieces, int end) {
    const int last = pieces.empty() ? 0 : pieces.back().span.end;
    const QStringView between = source.text({last, end});
    const bool isPlain = std::all_of(between.begin(), between.end(), IsBlankOrSemicolon);
    const bool isApart = end == source.size() || source.text().at(end).isSpace();
    return isPlain && isApart ? end : last;
}

}  // namespace

int EndOfFormatted(const Source& source, const Facts& facts) {
    if (facts.isCompiled()) {
        return facts.units.empty() ? 0 : facts.units.back().span.end;
    }
    const int begin = BeginOfError(facts);
    const auto after =
        std::partition_point(facts.tokens.begin(), facts.tokens.end(),
                             [begin](const TokenFact& token) { return token.span.end <= begin; });
    return after == facts.tokens.begin() ? 0 : EndOf(source, *std::prev(after), begin);
}

QString Formatted(const Source& source, const Facts& facts, int indent) {
    const int end = EndOfFormatted(source, facts);
    const LayoutPieces pieces = PiecesOf(source, facts, end);
    Layout layout = Writer(source, pieces, indent).layout();
    Align(layout.lines);
    QString text = TextOf(layout);
    text.chop(text.isEmpty() ? 0 : 1);
    text.append(source.text().midRef(BeginOfRest(source, pieces, end)));
    if (facts.isCompiled()) {
        EndWithLineFeed(text);
    }
    return text;
}
