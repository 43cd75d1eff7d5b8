#include "language/literals.h"

#include "qyx_types.h"

#include <iterator>

namespace {

constexpr int BASES[] = {16, 8, 2};

QString Prefix(int base) {
    return QStringLiteral("%1#").arg(base);
}

}  // namespace

std::optional<Integer> IntegerOf(QStringView text) {
    int base = DECIMAL;
    QString digits = text.toString();
    for (const int each : BASES) {
        if (digits.startsWith(Prefix(each))) {
            base = each;
            digits.remove(0, Prefix(each).size());
            break;
        }
    }
    bool isInteger = false;
    const quint64 value = digits.toULongLong(&isInteger, base);
    return isInteger ? std::optional(Integer{value, base}) : std::nullopt;
}

QString InBase(quint64 value, int base) {
    const QString digits = QString::number(value, base).toUpper();
    return base == DECIMAL ? digits : Prefix(base) + digits;
}

bool IsLiteral(Token code) {
    return code == TOKEN_NUMBER || code == TOKEN_STRING || code == TOKEN_TRUE ||
           code == TOKEN_FALSE;
}

QString NameOfType(Typ type) {
    return type == TYP_NONE ? QStringLiteral("no type") : QString(TypToStr(type));
}

namespace {

// A literal after a comment has no type; other literals have one, of which the token tells that
// of numbers and truth values.
QString TypeText(const TokenFact& token) {
    if (token.code == TOKEN_STRING) {
        return NameOfType(TYP_STRING);
    }
    return token.type == TYP_NONE ? QStringLiteral("no type: the comment before it takes it away")
                                  : NameOfType(token.type);
}

QString InAllBases(const Integer& integer) {
    QStringList texts;
    for (const int base : {DECIMAL, 16, 2}) {
        if (base != integer.base) {
            texts.append(u'`' + InBase(integer.value, base) + u'`');
        }
    }
    return texts.join(QStringLiteral(" = "));
}

}  // namespace

QString LiteralText(const Model& model, int token) {
    const TokenFact& fact = model.facts.tokens[static_cast<std::size_t>(token)];
    const QString text = model.source.text(fact.span).toString();
    QString markdown = QStringLiteral("```st\n%1\n```\n%2").arg(text, TypeText(fact));
    const std::optional<Integer> integer =
        fact.code == TOKEN_NUMBER ? IntegerOf(text) : std::nullopt;
    if (integer) {
        markdown += QStringLiteral("  \n= ") + InAllBases(*integer);
    }
    return markdown;
}
