#include "reports/facts_json.h"

#include "facts/catalogue.h"
#include "reports/json_writer.h"

#include "qyx_types.h"

#include <cstddef>
#include <iterator>

namespace {

// Raised whenever a reader of an earlier one could misunderstand.
constexpr int FACTS_VERSION = 1;

constexpr int DEPTH_OF_FACTS = 2;  // in the lists that the outermost object holds

constexpr std::string_view NAME_KINDS[] = {"variable", "function", "functionBlock", "program",
                                           "label"};
constexpr std::string_view USE_KINDS[] = {"read", "write", "reference", "call", "goto"};

std::string_view TextOfRow(QLatin1String text) {
    return {text.data(), static_cast<std::size_t>(text.size())};
}

std::string_view TextOfToken(Token code) {
    switch (code) {
        case TOKEN_NUMBER:
            return "number";
        case TOKEN_IDENTIFIER:
            return "identifier";
        case TOKEN_STRING:
            return "string";
        case TOKEN_UNKNOWN:
            return "unknown";
        default:
            return TextOfRow(TokensTable[Lookup(code)].text);
    }
}

bool HasText(QStringView text, std::string_view upper) {
    return text.compare(QLatin1String(upper.data(), static_cast<int>(upper.size())),
                        Qt::CaseInsensitive) == 0;
}

// A name that the compiler knows as that of a definition has the code of the definition's
// keyword.
std::string_view TextOfCode(Token code, QStringView text) {
    const std::string_view keyword = TextOfToken(code);
    if (code == TOKEN_FUNCTION && !HasText(text, keyword)) {
        return NAME_KINDS[static_cast<std::size_t>(NameKind::Function)];
    }
    if (code == TOKEN_FUNCTION_BLOCK && !HasText(text, keyword)) {
        return NAME_KINDS[static_cast<std::size_t>(NameKind::FunctionBlock)];
    }
    return keyword;
}

// One list of facts after the other; each record is an object.
class FactsPrinter {
public:
    FactsPrinter(const Source& source, const Facts& facts) : source_(source), facts_(facts) {}

    void print() {
        json_.beginObject();
        json_.member("version", FACTS_VERSION);
        json_.member("file", QStringView(source_.name()));
        json_.member("compiled", facts_.isCompiled());
        list("messages", facts_.messages, &FactsPrinter::message);
        list("units", facts_.units, &FactsPrinter::unit);
        list("names", facts_.names, &FactsPrinter::name);
        list("uses", facts_.uses, &FactsPrinter::use);
        list("declarations", facts_.declarations, &FactsPrinter::declaration);
        list("statements", facts_.statements, &FactsPrinter::statement);
        list("operations", facts_.operations, &FactsPrinter::operation);
        list("items", facts_.items, &FactsPrinter::item);
        list("tokens", facts_.tokens, &FactsPrinter::token);
        list("comments", facts_.comments, &FactsPrinter::comment);
        json_.endObject();
    }

private:
    const Source& source_;
    const Facts& facts_;
    JsonWriter json_{DEPTH_OF_FACTS};

    template <typename Fact>
    void list(std::string_view key, const std::vector<Fact>& facts,
              void (FactsPrinter::*members)(const Fact&)) {
        json_.key(key);
        json_.beginArray();
        for (const Fact& fact : facts) {
            json_.beginObject();
            (this->*members)(fact);
            json_.endObject();
        }
        json_.endArray();
    }

    void place(std::string_view key, int offset) {
        const Place place = source_.placeOf(offset);
        json_.key(key);
        json_.beginArray();
        json_.value(place.line);
        json_.value(place.column);
        json_.endArray();
    }

    void span(Span span) {
        place("begin", span.begin);
        place("end", span.end);
    }

    // A record by its index; none is left out.
    void reference(std::string_view key, int index) {
        if (index != NONE) {
            json_.member(key, index);
        }
    }

    void type(Typ type) {
        if (type != TYP_NONE) {
            json_.member("type", TextOfRow(TypToStr(type)));
        }
    }

    void message(const MessageFact& fact) {
        json_.member("severity", std::string_view(fact.isError ? "error" : "warning"));
        json_.member("id", TextOfRow(IdOf(fact.constant)));
        json_.member("text", facts_.textOf(fact.text));
        span(SpanOfMessage(facts_, fact));
    }

    void unit(const UnitFact& fact) {
        json_.member("kind", TextOfToken(fact.kind));
        reference("name", fact.name);
        span(fact.span);
        json_.member("ended", fact.isEnded);
    }

    // The identifier by which uses and units refer to a name is its index.
    void name(const NameFact& fact) {
        json_.member("id", static_cast<int>(&fact - facts_.names.data()));
        json_.member("name", facts_.textOf(fact.text));
        json_.member("kind", NAME_KINDS[static_cast<std::size_t>(fact.kind)]);
        type(fact.type);
        if (fact.kind == NameKind::Variable) {
            json_.member("section", TextOfToken(fact.section));
            json_.member("constant", fact.isConstant);
            json_.member("reference", fact.isReference);
        }
        json_.member("builtIn", fact.isBuiltIn);
        reference("unit", fact.unit);
        if (!fact.span.isEmpty()) {
            span(fact.span);
        }
    }

    void use(const UseFact& fact) {
        json_.member("use", USE_KINDS[static_cast<std::size_t>(fact.kind)]);
        json_.member("name", fact.name);
        span(fact.span);
    }

    void declaration(const DeclarationFact& fact) {
        json_.member("unit", fact.unit);
        reference("name", fact.name);
        span(fact.span);
        json_.member("ended", fact.isEnded);
    }

    void statement(const StatementFact& fact) {
        const Span first = TokenAt(facts_, fact.span.begin);
        json_.member("kind", TextOfCode(fact.kind, source_.text(first)));
        json_.member("unit", fact.unit);
        reference("parent", fact.parent);
        span(fact.span);
        json_.member("ended", fact.isEnded);
    }

    void operand(std::string_view key, Span operand, Typ ofType) {
        json_.key(key);
        json_.beginObject();
        type(ofType);
        span(operand);
        json_.endObject();
    }

    void operation(const OperationFact& fact) {
        json_.member("operator", TextOfToken(fact.code));
        json_.member("statement", fact.statement);
        place("at", fact.op.begin);
        if (!fact.left.isEmpty()) {
            operand("left", fact.left, fact.leftType);
        }
        operand("right", fact.right, fact.rightType);
        span(fact.span());
    }

    void item(const ItemFact& fact) {
        json_.member("item", facts_.codeOf(fact.text));
        place("at", fact.place);
        reference("statement", fact.statement);
    }

    void token(const TokenFact& fact) {
        const QStringView text = source_.text(fact.span);
        json_.member("code", TextOfCode(fact.code, text));
        json_.member("text", text);
        type(fact.type);
        span(fact.span);
    }

    void comment(const CommentFact& fact) {
        json_.member("text", source_.text(fact.span));
        span(fact.span);
    }
};

}  // namespace

void PrintFacts(const Source& source, const Facts& facts) {
    FactsPrinter(source, facts).print();
}
