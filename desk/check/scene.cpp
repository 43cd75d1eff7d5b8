#include "check/scene.h"

#include "facts/catalogue.h"

#include <algorithm>

Scene::Scene(const Source& ofSource, const Facts& ofFacts)
    : source(ofSource),
      facts(ofFacts),
      tokens(ofSource, ofFacts),
      error(tokens.at(ofFacts.error.token.begin)) {}

bool Scene::isError(QLatin1String constant) const {
    return TextOf(facts.messages.back().constant) == constant;
}

bool Scene::isExpected(Token code) const {
    const std::vector<Token>& expected = facts.error.expected;
    return std::find(expected.begin(), expected.end(), code) != expected.end();
}

const UnitFact& Scene::unit() const {
    return facts.units[static_cast<std::size_t>(facts.open.unit)];
}

const StatementFact* Scene::statement() const {
    const int index = facts.open.statement;
    return index == NONE ? nullptr : &facts.statements[static_cast<std::size_t>(index)];
}

const StatementFact* Scene::parentOf(const StatementFact& statement) const {
    return statement.parent == NONE
               ? nullptr
               : &facts.statements[static_cast<std::size_t>(statement.parent)];
}

const DeclarationFact* Scene::declaration() const {
    const int index = facts.open.declaration;
    return index == NONE ? nullptr : &facts.declarations[static_cast<std::size_t>(index)];
}

int Scene::findInStatement(int from, std::initializer_list<Token> wanted) const {
    for (int index = from; tokens.isThere(index); ++index) {
        if (tokens.isOneOf(index, wanted)) {
            return index;
        }
        if (tokens.is(index, TOKEN_SEMICOLON) || IsBoundary(tokens.code(index))) {
            return NONE;
        }
    }
    return NONE;
}

bool Scene::isUndeclared(int index) const {
    const auto isIt = [&](const NameFact& name) {
        const bool isSeen = name.unit == facts.open.unit || name.unit == NONE;
        return isSeen && name.kind != NameKind::Label && name.kind != NameKind::Program &&
               tokens.isText(index, facts.textOf(name.text));
    };
    return tokens.is(index, TOKEN_IDENTIFIER) && tokens.typeNamed(index) == TYP_NONE &&
           facts.tokens[static_cast<std::size_t>(index)].code == TOKEN_IDENTIFIER &&
           std::none_of(facts.names.begin(), facts.names.end(), isIt);
}

namespace {

bool IsSetApart(const Source& source, int offset) {
    return offset < 0 || offset >= source.size() || source.text().at(offset).isSpace();
}

// The text with a blank where it would touch what stands beside the span.
QString SetApart(const Source& source, Span span, const QString& text) {
    const QString before = IsSetApart(source, span.begin - 1) ? QString() : QStringLiteral(" ");
    const QString after = IsSetApart(source, span.end) ? QString() : QStringLiteral(" ");
    return text.isEmpty() ? text : before + text + after;
}

}  // namespace

Repair TakeOut(const Scene& scene, Span span, const QString& neutral) {
    const QString text = SetApart(scene.source, span, neutral);
    return {{{span, NeutralText(scene.source.text(span), text)}}, {}, {}, {}};
}

Repair PutIn(int offset, const QString& text) {
    return {{{{offset, offset}, u' ' + text + u' '}}, {}, {}, {}};
}

Span SpanOver(const Scene& scene, int first, int last) {
    return {scene.tokens.span(first).begin, scene.tokens.span(last).end};
}
