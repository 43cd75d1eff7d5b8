#include "lints/literals.h"

#include "qyx_text.h"

#include <iterator>

namespace {

struct Base {
    QLatin1String prefix;
    int base;
};

constexpr Base BASES[] = {{"16#"_L1, 16}, {"8#"_L1, 8}, {"2#"_L1, 2}};

double DigitsOf(QStringView digits, int base) {
    double value = 0;
    for (const QChar digit : digits) {
        value = value * base + digit.toUpper().unicode() - (digit.isDigit() ? u'0' : u'A' - 10);
    }
    return value;
}

}  // namespace

Number NumberOf(QStringView text) {
    for (const Base& each : BASES) {
        if (text.startsWith(each.prefix)) {
            return {DigitsOf(text.mid(each.prefix.size()), each.base), false, true, false};
        }
    }
    return {text.toString().toDouble(), text.contains(u'.'), false, false};
}

std::optional<Number> SignedNumber(const Subject& subject, int begin, int end) {
    bool isNegative = false;
    int index = begin;
    for (; index < end && subject.tokens.isOneOf(index, {TOKEN_PLUS, TOKEN_MINUS}); ++index) {
        isNegative = isNegative != subject.tokens.is(index, TOKEN_MINUS);
    }
    if (index != end - 1 || !subject.tokens.is(index, TOKEN_NUMBER)) {
        return std::nullopt;
    }
    Number number = NumberOf(subject.tokens.text(index));
    number.value = isNegative ? -number.value : number.value;
    number.isNegative = isNegative;
    return number;
}
