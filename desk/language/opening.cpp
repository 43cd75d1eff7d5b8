#include "language/opening.h"

#include "check/file_check.h"
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

// The errors before the end are passed as in a check of the script.
std::optional<Opening> OpeningAtEnd(const Source& source) {
    FileCheck check(Source(source.name(), source.text() + NO_TOKEN), MOST_ERRORS);
    const auto end = std::chrono::steady_clock::now() + PATIENCE;
    while (std::chrono::steady_clock::now() < end) {
        const std::optional<Facts> facts = FactsOf(check.next());
        if (!facts || facts->isCompiled() || facts->open.inComment) {
            return std::nullopt;
        }
        if (check.edits().originalBegin(facts->error.token.begin) >= source.size()) {
            const QString text = check.next().text().chopped(NO_TOKEN.size());
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
    std::optional<Opening> opening = OpeningAtEnd(SourceBefore(model, offset));
    if (!opening || !opening->expects(TOKEN_SEMICOLON) || !IsOnNewLine(*opening)) {
        return opening;
    }
    return OpeningAtEnd(Source(model.source.name(), opening->before.text() + u';'));
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
