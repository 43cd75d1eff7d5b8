#include "format/pieces.h"

#include "check/tokens.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {

// ---------------------------------------------------------------------------------------------
// Spellings
// ---------------------------------------------------------------------------------------------

constexpr std::size_t Index(int index) {
    return static_cast<std::size_t>(index);
}

template <typename Rows, typename Text>
std::vector<QString> TextsOf(const Rows& rows, Text text) {
    std::vector<QString> texts;
    for (const auto& row : rows) {
        texts.emplace_back(text(row));
    }
    return texts;
}

// The texts of the compiler's tables, for views to point to.
QStringView TokenText(int row) {
    static const std::vector<QString> texts =
        TextsOf(TokensTable, [](const token& each) { return each.text; });
    return texts[Index(row)];
}

QStringView TypeText(Typ type) {
    static const std::vector<QString> texts =
        TextsOf(TypsTable, [](const typ& each) { return each.name; });
    return texts[Index(type) - 1];
}

// Definitions and labels by the place where they are used: in the code they have the spelling of
// their declaration, whatever that of the use.
class DeclaredSpellings {
public:
    explicit DeclaredSpellings(const Facts& facts) : facts_(facts) {
        for (const UseFact& use : facts.uses) {
            if (use.kind == UseKind::Call || use.kind == UseKind::Goto) {
                places_.emplace_back(use.span.begin, use.name);
            }
        }
        std::sort(places_.begin(), places_.end());
    }

    // That of the name at an offset, else the text that stands there. Offsets only grow.
    QStringView at(int offset, QStringView written) {
        while (next_ < places_.size() && places_[next_].first < offset) {
            ++next_;
        }
        const bool isThere = next_ < places_.size() && places_[next_].first == offset;
        return isThere ? facts_.textOf(facts_.names[Index(places_[next_].second)].text) : written;
    }

private:
    const Facts& facts_;
    std::vector<std::pair<int, int>> places_;
    std::size_t next_ = 0;
};

// ---------------------------------------------------------------------------------------------
// Structure
// ---------------------------------------------------------------------------------------------

bool IsOneOf(Token code, std::initializer_list<Token> codes) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

// Goes through the tokens with the compiler's units, declarations and statements beside it.
class StructureReader {
public:
    StructureReader(const Source& source, const Facts& facts)
        : source_(source), facts_(facts), tokens_(source, facts), spellings_(facts) {
        for (const OperationFact& operation : facts.operations) {
            operators_.push_back(operation.op.begin);
        }
        std::sort(operators_.begin(), operators_.end());
    }

    // The piece of the next token; nothing if it is a semicolon that ends nothing.
    std::optional<LayoutPiece> next() {
        piece_ = {};
        piece_.span = tokens_.span(at_);
        piece_.code = tokens_.code(at_);
        place();
        const bool isWanted = piece_.code != TOKEN_SEMICOLON || endsSomething();
        spell();
        leave();
        before_ = isWanted ? piece_.code : before_;
        ++at_;
        return isWanted ? std::optional<LayoutPiece>(piece_) : std::nullopt;
    }

private:
    struct Frame {
        const StatementFact* statement;
        int level;
        bool isInBranches = false;  // of CASE: after its OF
        bool isInLabel = false;
        bool isAfterLabel = false;  // directly after its ":"
    };

    const Source& source_;
    const Facts& facts_;
    Tokens tokens_;
    DeclaredSpellings spellings_;
    std::vector<int> operators_;  // where they stand
    std::size_t nextOperator_ = 0;
    std::size_t nextUnit_ = 0;
    std::size_t nextDeclaration_ = 0;
    std::size_t nextStatement_ = 0;
    std::vector<Frame> frames_;
    int at_ = 0;                    // the token
    Token before_ = TOKEN_UNKNOWN;  // the code of the one before
    LayoutPiece piece_ = {};

    template <typename Record>
    bool begins(const std::vector<Record>& records, std::size_t& next) const {
        const bool isHere =
            next < records.size() && records[next].span.begin == piece_.span.begin;
        next += isHere ? 1U : 0U;
        return isHere;
    }

    void beginLine(LineKind kind, int level) {
        piece_.beginsLine = true;
        piece_.kind = kind;
        piece_.level = static_cast<short>(level);
    }

    void place() {
        if (begins(facts_.units, nextUnit_)) {
            beginLine(LineKind::Structure, 0);
        } else if (begins(facts_.statements, nextStatement_)) {
            beginStatement(facts_.statements[nextStatement_ - 1]);
        } else if (begins(facts_.declarations, nextDeclaration_)) {
            beginLine(LineKind::Declaration, 1);
            piece_.isConstant = piece_.code == TOKEN_CONSTANT;
        } else if (frames_.empty()) {
            placeInUnit();
        }
        if (!frames_.empty()) {
            placeInStatement(frames_.back());
        }
    }

    void placeInUnit() {
        if (IsSectionBegin(piece_.code)) {
            beginLine(LineKind::Structure, 0);
            piece_.opens = true;
        } else if (piece_.code == TOKEN_END_VAR || IsUnitEnd(piece_.code)) {
            beginLine(LineKind::Structure, 0);
            piece_.closes = true;
            piece_.endsUnit = piece_.code != TOKEN_END_VAR;
        }
    }

    void beginStatement(const StatementFact& statement) {
        const int level = frames_.empty() ? 1 : frames_.back().level + 1;
        const bool isLabel =
            statement.isEnded && source_.text().at(statement.span.end - 1) == u':';
        const bool isSimple = !IsCompoundBegin(statement.kind);
        beginLine(isSimple ? LineKind::Statement : LineKind::Structure,
                  level - (isLabel ? 1 : 0));
        piece_.outdents = isLabel;
        piece_.joinsLabel = isSimple && !isLabel && isAloneOnLabelLine(statement);
        if (!frames_.empty()) {
            frames_.back().isAfterLabel = false;
        }
        frames_.push_back({&statement, level});
    }

    void placeInStatement(Frame& frame) {
        piece_.isInExpression = true;
        while (nextOperator_ < operators_.size() &&
               operators_[nextOperator_] < piece_.span.begin) {
            ++nextOperator_;
        }
        piece_.isBinary = piece_.code != TOKEN_NOT && nextOperator_ < operators_.size() &&
                          operators_[nextOperator_] == piece_.span.begin;
        if (IsCompoundBegin(frame.statement->kind)) {
            placeInCompound(frame);
        }
    }

    void placeInCompound(Frame& frame) {
        const Token code = piece_.code;
        if (IsBranch(code) || IsCompoundEnd(code)) {
            beginLine(LineKind::Structure, frame.level);
            piece_.closes = IsCompoundEnd(code);
            piece_.outdents = IsBranch(code);
            frame.isInBranches &= code == TOKEN_ELSE;
        } else if (frame.isInBranches && code != TOKEN_SEMICOLON) {
            placeInLabel(frame);
        }
        piece_.opens |= IsOneOf(code, {TOKEN_THEN, TOKEN_DO, TOKEN_ELSE, TOKEN_REPEAT, TOKEN_OF});
        frame.isInBranches |= code == TOKEN_OF;
        frame.isAfterLabel = frame.isInBranches && code == TOKEN_COLON;
    }

    void placeInLabel(Frame& frame) {
        if (!frame.isInLabel) {
            beginLine(LineKind::CaseLabel, frame.level);
            piece_.outdents = true;
        }
        piece_.opens = piece_.code == TOKEN_COLON;
        frame.isInLabel = piece_.code != TOKEN_COLON;
    }

    // Whether it follows the label of a CASE on one line, and no other statement follows it.
    bool isAloneOnLabelLine(const StatementFact& statement) const {
        const bool isFirst = !frames_.empty() && frames_.back().isAfterLabel;
        const Span gap = {tokens_.span(at_ - 1).end, piece_.span.begin};
        if (!isFirst || !statement.isEnded || !source_.text(gap).trimmed().isEmpty() ||
            source_.text(gap).contains(u'\n')) {
            return false;
        }
        return !isFollowedByStatement(statement);
    }

    bool isFollowedByStatement(const StatementFact& statement) const {
        int after = tokens_.at(statement.span.end);
        while (tokens_.is(after, TOKEN_SEMICOLON)) {
            ++after;
        }
        return nextStatement_ < facts_.statements.size() &&
               facts_.statements[nextStatement_].span.begin == tokens_.span(after).begin;
    }

    bool endsSomething() const {
        if (!frames_.empty()) {
            const StatementFact& statement = *frames_.back().statement;
            return !IsCompoundBegin(statement.kind) || statement.span.end == piece_.span.end;
        }
        return nextDeclaration_ > 0 &&
               facts_.declarations[nextDeclaration_ - 1].span.end >= piece_.span.end;
    }

    bool isSign() const {
        return (piece_.code == TOKEN_PLUS || piece_.code == TOKEN_MINUS) && !piece_.isBinary;
    }

    // As an initial value a literal of mixed case is another than one of capitals.
    bool isMixedLiteral(QStringView written) const {
        return frames_.empty() && IsOneOf(piece_.code, {TOKEN_TRUE, TOKEN_FALSE}) &&
               written != written.toString().toLower();
    }

    // A type stands after a colon outside of statements.
    void spell() {
        const QStringView written = tokens_.text(at_);
        const int row = Lookup(piece_.code);
        const Typ type =
            frames_.empty() && before_ == TOKEN_COLON ? tokens_.typeNamed(at_) : TYP_NONE;
        piece_.isUnary = isSign();
        if (type != TYP_NONE) {
            piece_.text = TypeText(type);
        } else if (row != NO_ROW && !isMixedLiteral(written)) {
            piece_.text = TokenText(row);
        } else {
            piece_.text = spellings_.at(piece_.span.begin, written);
        }
    }

    void leave() {
        while (!frames_.empty() && frames_.back().statement->isEnded &&
               frames_.back().statement->span.end == piece_.span.end) {
            frames_.pop_back();
        }
    }
};

// ---------------------------------------------------------------------------------------------
// Gaps
// ---------------------------------------------------------------------------------------------

// What stands before the gap is on its first line.
void NoteGap(const Source& source, int end, LayoutPiece& piece) {
    bool isEmpty = false;  // of the line so far
    for (const QChar each : source.text({end, piece.span.begin})) {
        piece.hasBlankBefore |= each == u'\n' && isEmpty;
        piece.hasLineBefore |= each == u'\n';
        isEmpty = each == u'\n' || (isEmpty && each != u';');
    }
}

LayoutPiece CommentPiece(const Source& source, const CommentFact& comment) {
    LayoutPiece piece = {};
    piece.span = comment.span;
    piece.code = TOKEN_UNKNOWN;
    piece.text = source.text(comment.span);
    piece.isComment = true;
    piece.isLineComment = piece.text.startsWith(u'/');
    return piece;
}

// From the last to the first.
void NoteLeaders(LayoutPieces& pieces) {
    for (std::size_t after = pieces.size(); after-- > 1;) {
        LayoutPiece& piece = pieces[after - 1];
        const LayoutPiece& next = pieces[after];
        piece.leadsToken =
            piece.isComment && !next.hasLineBefore && (!next.isComment || next.leadsToken);
    }
}

// Those before a semicolon that is left out, where nothing follows.
void DropLastComments(LayoutPieces& pieces) {
    while (!pieces.empty() && pieces.back().isComment) {
        pieces.pop_back();
    }
}

}  // namespace

LayoutPieces PiecesOf(const Source& source, const Facts& facts, int end) {
    LayoutPieces pieces;
    pieces.reserve(facts.tokens.size() + facts.comments.size());
    StructureReader structure(source, facts);
    auto comment = facts.comments.begin();
    const auto add = [&](const LayoutPiece& piece) {
        const int before = pieces.empty() ? 0 : pieces.back().span.end;
        pieces.push_back(piece);
        NoteGap(source, before, pieces.back());
    };
    for (const TokenFact& token : facts.tokens) {
        if (token.span.end > end) {
            break;
        }
        for (; comment != facts.comments.end() && comment->span.begin < token.span.begin;
             ++comment) {
            add(CommentPiece(source, *comment));
        }
        if (const std::optional<LayoutPiece> piece = structure.next()) {
            add(*piece);
        }
    }
    DropLastComments(pieces);
    NoteLeaders(pieces);
    return pieces;
}
