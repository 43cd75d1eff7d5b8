#include "language/opening.h"

#include "check/file_check.h"
#include "check/tokens.h"
#include "facts/pool.h"
#include "language/names.h"

#include <algorithm>

namespace {

// A sign that is no token, set apart from what stands before it.
const QString NO_TOKEN = QStringLiteral(" ?");

constexpr int MOST_ERRORS = 50;   // before the place
constexpr int MOST_COMPILES = 4;  // at the same time

std::optional<Facts> FactsOf(const Source& source) {
    return CompileWithin(PATIENCE, source).facts;
}

// ---------------------------------------------------------------------------------------------
// What matters
// ---------------------------------------------------------------------------------------------

// Whether it is the first of its unit: what may follow where there are no sections depends on it.
bool IsFirstOfUnit(const Facts& facts, std::size_t index) {
    return index == 0 || facts.statements[index - 1].unit != facts.statements[index].unit;
}

// The statements that have ended before the place: nothing that may follow depends on them.
std::vector<Span> EndedStatements(const Model& model, int offset) {
    const std::vector<StatementFact>& statements = model.facts.statements;
    std::vector<Span> ended;
    for (std::size_t index = 0; index < statements.size(); ++index) {
        const Span span = statements[index].span;
        const bool isEnded = statements[index].isEnded && span.end <= offset;
        const bool isApart = ended.empty() || span.begin >= ended.back().end;
        if (isEnded && isApart && !IsFirstOfUnit(model.facts, index) && !IsChanged(model, span)) {
            ended.push_back(span);
        }
    }
    return ended;
}

// What matters of the text before the place.
Source SourceBefore(const Model& model, int offset) {
    const QString& text = model.source.text();
    QString rest;
    int done = 0;
    for (const Span& span : EndedStatements(model, offset)) {
        rest.append(text.midRef(done, span.begin - done));
        done = span.end;
    }
    return Source(model.source.name(), rest.append(text.midRef(done, offset - done)));
}

// Whether another statement, or part of one, may begin after the token.
bool EndsPiece(Token code) {
    return IsBoundary(code) || code == TOKEN_SEMICOLON || code == TOKEN_THEN ||
           code == TOKEN_DO || code == TOKEN_OF || code == TOKEN_COLON;
}

// The index of the first token of the piece of a statement that the place is in.
int BeginOfPiece(const Tokens& tokens, int offset) {
    int index = tokens.at(offset);
    while (index > 0 && !EndsPiece(tokens.code(index - 1))) {
        --index;
    }
    return index;
}

// What stands before the statements of the unit that the place is in, empty outside of them.
QString TextBeforeStatements(const Model& model, const Tokens& tokens, int offset) {
    int index = tokens.at(offset) - 1;
    while (index >= 0 && !IsUnitBegin(tokens.code(index)) && !IsUnitEnd(tokens.code(index)) &&
           !tokens.is(index, TOKEN_END_VAR)) {
        --index;
    }
    return tokens.is(index, TOKEN_END_VAR) ? model.source.text().left(tokens.span(index).end)
                                           : QString();
}

// The begin of an assignment to the name that the piece begins with, empty if it begins with
// none.
QString PieceAsAssignment(const Tokens& tokens, int offset) {
    const int first = BeginOfPiece(tokens, offset);
    const bool isName = tokens.is(first, TOKEN_IDENTIFIER) && tokens.span(first).end < offset;
    return isName ? tokens.text(first).toString() + QStringLiteral(" := ") : QString();
}

// What a place is read after where the compiler does not come to it by the whole text: without
// the statements before it, and with the piece that it is in as an assignment.
std::vector<QString> OtherTextsBefore(const Model& model, int offset) {
    const Tokens tokens(model.source, model.facts);
    const int begin = std::min(tokens.span(BeginOfPiece(tokens, offset)).begin, offset);
    const QString piece = model.source.text().mid(begin, offset - begin);
    const QString assignment = PieceAsAssignment(tokens, offset);
    const QString head = TextBeforeStatements(model, tokens, offset);
    std::vector<QString> texts;
    if (!assignment.isEmpty()) {
        texts.push_back(SourceBefore(model, begin).text() + assignment);
    }
    if (!head.isEmpty()) {
        texts.push_back(head + u'\n' + piece);
    }
    if (!head.isEmpty() && !assignment.isEmpty()) {
        texts.push_back(head + u'\n' + assignment);
    }
    return texts;
}

// ---------------------------------------------------------------------------------------------
// What was read
// ---------------------------------------------------------------------------------------------

// The names that the script does not have where they are declared.
QStringList NamesPutIn(const Source& source, const FileCheck& check, const Facts& facts) {
    QStringList names;
    for (const NameFact& name : facts.names) {
        const QString text = facts.textOf(name.text).toString();
        const QStringView original = source.text(check.edits().original(name.span));
        const bool hasPlace = !name.span.isEmpty() && name.section != TOKEN_RESULT;
        if (hasPlace && !original.contains(text, Qt::CaseInsensitive)) {
            names.append(text);
        }
    }
    return names;
}

// The facts without the tokens after that place.
Facts FactsBefore(int end, Facts facts) {
    while (!facts.tokens.empty() && facts.tokens.back().span.end > end) {
        facts.tokens.pop_back();
    }
    return facts;
}

// Whether the error is about the name before the end: one that means nothing is told at what
// follows it.
bool IsAboutNameBefore(int end, const Facts& facts) {
    const auto after =
        std::find_if(facts.tokens.begin(), facts.tokens.end(),
                     [end](const TokenFact& token) { return token.span.begin >= end; });
    if (after == facts.tokens.begin() || !facts.error.expected.empty() ||
        facts.open.statement == NONE) {
        return false;
    }
    const TokenFact& last = *std::prev(after);
    return last.code == TOKEN_IDENTIFIER &&
           std::none_of(facts.uses.begin(), facts.uses.end(), [&last](const UseFact& use) {
               return use.span.begin == last.span.begin;
           });
}

// The errors before the end are passed as in a check of the script.
std::optional<Opening> OpeningAtEnd(const Source& source) {
    FileCheck check(Source(source.name(), source.text() + NO_TOKEN), MOST_ERRORS);
    const auto end = std::chrono::steady_clock::now() + PATIENCE;
    while (std::chrono::steady_clock::now() < end) {
        const std::optional<Facts> facts = FactsOf(check.next());
        if (!facts || facts->isCompiled() || facts->open.inComment) {
            return std::nullopt;
        }
        const QString text = check.next().text().chopped(NO_TOKEN.size());
        if (check.edits().originalBegin(facts->error.token.begin) >= source.size() &&
            !IsAboutNameBefore(text.size(), *facts)) {
            return Opening{Source(source.name(), text), FactsBefore(text.size(), *facts),
                           NamesPutIn(source, check, *facts)};
        }
        if (!check.take(*facts)) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

// Whether a line feed stands between the last token and the end of what was read.
bool IsOnNewLine(const Opening& opening) {
    const QString& text = opening.before.text();
    const auto last =
        std::find_if(opening.facts.tokens.rbegin(), opening.facts.tokens.rend(),
                     [&text](const TokenFact& token) { return token.span.end <= text.size(); });
    return last != opening.facts.tokens.rend() && text.midRef(last->span.end).contains(u'\n');
}

bool IsAfterStatement(const Model& model, int offset) {
    const Tokens tokens(model.source, model.facts);
    return tokens.is(tokens.at(offset) - 1, TOKEN_SEMICOLON);
}

// Whether the head of a statement is read where the script has another statement after it.
bool IsInOtherHead(const Model& model, int offset, const Opening& opening) {
    const Tokens tokens(opening.before, opening.facts);
    return IsAfterStatement(model, offset) &&
           !EndsPiece(tokens.code(tokens.at(opening.before.size()) - 1));
}

// What ends the statement or the head before the place, if it was forgotten. The lines of a
// condition may be many: a head has ended where a statement stands between it and the place.
QString MissingBefore(const Model& model, int offset, const Opening& opening) {
    if (opening.expects(TOKEN_SEMICOLON)) {
        return IsOnNewLine(opening) ? QStringLiteral(";") : QString();
    }
    for (const Token word : {TOKEN_THEN, TOKEN_DO}) {
        if (opening.expects(word) && IsAfterStatement(model, offset)) {
            return u' ' + QString(TokensTable[Lookup(word)].text);
        }
    }
    return {};
}

std::optional<Opening> OtherOpeningAt(const Model& model, int offset) {
    for (const QString& text : OtherTextsBefore(model, offset)) {
        std::optional<Opening> opening = OpeningAtEnd(Source(model.source.name(), text));
        if (opening) {
            return opening;
        }
    }
    return std::nullopt;
}

}  // namespace

bool Opening::expects(Token code) const {
    const std::vector<Token>& expected = facts.error.expected;
    return std::find(expected.begin(), expected.end(), code) != expected.end();
}

Token Opening::statement() const {
    return facts.open.statement == NONE
               ? TOKEN_UNKNOWN
               : facts.statements[static_cast<std::size_t>(facts.open.statement)].kind;
}

std::optional<Opening> OpeningAt(const Model& model, int offset) {
    const std::optional<Opening> opening = OpeningAtEnd(SourceBefore(model, offset));
    const QString missing = opening ? MissingBefore(model, offset, *opening) : QString();
    if (!missing.isEmpty()) {
        return OpeningAtEnd(Source(model.source.name(), opening->before.text() + missing));
    }
    return opening && !IsInOtherHead(model, offset, *opening) ? opening
                                                              : OtherOpeningAt(model, offset);
}

// ---------------------------------------------------------------------------------------------
// Words
// ---------------------------------------------------------------------------------------------

namespace {

// Whether the compiler went on after the word.
bool IsTaken(const CompileResult& result, int endOfWord) {
    return result.facts &&
           (result.facts->isCompiled() || result.facts->error.token.begin >= endOfWord);
}

// A jump is refused where its statement ends.
QString ProbeOf(const QString& word) {
    const bool isJump = word == QLatin1String("BREAK") || word == QLatin1String("CONTINUE");
    return isJump ? word + u';' : word;
}

}  // namespace

QStringList WordsThatMayStand(const Opening& opening, const QStringList& words) {
    std::vector<bool> isTaken(static_cast<std::size_t>(words.size()));
    const QString before = opening.before.text() + u' ';
    CompilePool pool(CompilePool::Clock::now() + PATIENCE);
    int started = 0;
    while (started < words.size() || pool.running() > 0) {
        if (started < words.size() && pool.running() < MOST_COMPILES) {
            const Source text(opening.before.name(), before + ProbeOf(words[started]) + NO_TOKEN);
            pool.start(started++, text, Detail::IfMessages);
            continue;
        }
        const CompilePool::Finished finished = pool.wait();
        isTaken[static_cast<std::size_t>(finished.key)] =
            IsTaken(finished.result, before.size() + ProbeOf(words[finished.key]).size());
    }
    QStringList taken;
    for (int index = 0; index < words.size(); ++index) {
        if (isTaken[static_cast<std::size_t>(index)]) {
            taken.append(words[index]);
        }
    }
    return taken;
}
