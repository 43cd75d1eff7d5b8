#include "machine/load.h"

#include "facts/input.h"

#include <QFileInfo>

#include <algorithm>

namespace {

// The items as the code file has them.
QByteArray CodeFileOf(const Facts& facts) {
    QByteArray code;
    for (const ItemFact& item : facts.items) {
        const std::string_view text = facts.codeOf(item.text);
        code.append(text.data(), static_cast<int>(text.size())).append(' ');
    }
    return code;
}

void ReadInto(Loaded& loaded, const QByteArray& text) {
    CodeResult result = ReadCode(text);
    loaded.code = std::move(result.code);
    loaded.fault = std::move(result.fault);
}

void CompileInto(Loaded& loaded) {
    CompileResult result = CompileAndWait(loaded.source);
    loaded.facts = std::move(result.facts);
    loaded.failure = result.failure;
    if (loaded.facts && loaded.facts->isCompiled()) {
        ReadInto(loaded, CodeFileOf(*loaded.facts));
    }
}

bool IsNamedAsScript(const QString& path) {
    return QFileInfo(path).suffix().compare(QStringLiteral("st"), Qt::CaseInsensitive) == 0;
}

// The first line that is no comment of a listing.
QString FirstLine(const QString& text) {
    int begin = 0;
    while (begin < text.size() && text[begin] == QLatin1Char(COMMENT_MARK)) {
        const int end = text.indexOf(u'\n', begin);
        begin = end < 0 ? text.size() : end + 1;
    }
    return text.mid(begin, text.indexOf(u'\n', begin) - begin);
}

// The tokens from one that begins there to the last that ends before.
template <typename Take>
void ForTokens(const Facts& facts, Span span, const Take& take) {
    auto token =
        std::lower_bound(facts.tokens.begin(), facts.tokens.end(), span.begin,
                         [](const TokenFact& each, int at) { return each.span.begin < at; });
    for (; token != facts.tokens.end() && token->span.end <= span.end; ++token) {
        take(*token);
    }
}

bool HasInitialValue(const Facts& facts, const DeclarationFact& declaration) {
    bool isFound = false;
    ForTokens(facts, declaration.span,
              [&isFound](const TokenFact& token) { isFound |= token.code == TOKEN_ASSIGN; });
    return isFound;
}

bool IsSetByScriptAlone(const NameFact& name) {
    return name.section == TOKEN_VAR || name.section == TOKEN_VAR_OUTPUT ||
           name.section == TOKEN_VAR_GLOBAL;
}

}  // namespace

bool IsTargetCode(const QString& text) {
    QString first = FirstLine(text);
    const int tab = first.indexOf(u'\t');
    const bool isNumbered =
        tab > 0 && std::all_of(first.begin(), first.begin() + tab,
                               [](QChar each) { return each >= u'0' && each <= u'9'; });
    first = isNumbered ? first.mid(tab + 1) : first;
    const QString word = first.section(u' ', 0, 0);
    return word.endsWith(u':') && IsName(word.chopped(1));
}

Loaded Load(const QString& path) {
    Loaded loaded;
    Input input = ReadInput(path);
    if (!input.source) {
        loaded.failure = input.failure;
        return loaded;
    }
    loaded.source = std::move(*input.source);
    if (!IsNamedAsScript(path) && IsTargetCode(loaded.source.text())) {
        ReadInto(loaded, loaded.source.text().toUtf8());
    } else {
        CompileInto(loaded);
    }
    return loaded;
}

std::vector<UnitVariable> VariablesWithoutValue(const Facts& facts, const Code& code) {
    std::vector<UnitVariable> found;
    for (const DeclarationFact& declaration : facts.declarations) {
        const NameFact& name = facts.names[static_cast<std::size_t>(declaration.name)];
        if (!IsSetByScriptAlone(name) || HasInitialValue(facts, declaration)) {
            continue;
        }
        const CodeUnit& unit = code.units[static_cast<std::size_t>(declaration.unit)];
        const int variable = unit.variable(facts.textOf(name.text).toString());
        if (variable != NOWHERE) {
            found.push_back({declaration.unit, variable});
        }
    }
    return found;
}

// As much of the statement or declaration as stands on the line.
Span SpanOfItem(const Source& source, const Facts& facts, int item) {
    const ItemFact& fact = facts.items[static_cast<std::size_t>(item) - 1];
    const int endOfLine = source.lineAt(source.placeOf(fact.place).line).end;
    const int end = fact.statement == NONE
                        ? TokenAt(facts, fact.place).end
                        : facts.statements[static_cast<std::size_t>(fact.statement)].span.end;
    Span span = {fact.place, fact.place};
    ForTokens(facts, {fact.place, std::min(end, endOfLine)},
              [&span](const TokenFact& token) { span.end = token.span.end; });
    return span;
}
