#include "machine/value.h"

#include "machine/literals.h"

#include "qyx_types.h"

#include <array>
#include <charconv>
#include <cmath>

namespace {

// A whole number that the text of a variable of type BOOL means, -1 if it means none.
int TruthOf(const QString& text) {
    const bool isTrue = text.compare("TRUE"_L1, Qt::CaseInsensitive) == 0 || text == "1"_L1;
    const bool isFalse = text.compare("FALSE"_L1, Qt::CaseInsensitive) == 0 || text == "0"_L1;
    return isTrue ? 1 : isFalse ? 0 : -1;
}

// The fewest digits that give the number again when they are read as one of that width.
template <typename Number>
QString ShortestText(Number number) {
    constexpr double leastFixed = 1e-4;
    constexpr double greatestFixed = 1e15;
    const double size = std::fabs(static_cast<double>(number));
    const bool isFixed = size == 0.0 || (size >= leastFixed && size < greatestFixed);
    std::array<char, 32> text = {};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number,
                      isFixed ? std::chars_format::fixed : std::chars_format::scientific)
            .ptr;
    const QString digits = QString::fromLatin1(text.data(), static_cast<int>(end - text.data()));
    return isFixed && !digits.contains(u'.') ? digits + QStringLiteral(".0") : digits;
}

QString TextOfReal(const Value& value) {
    if (std::isnan(value.real)) {
        return QStringLiteral("nan");
    }
    if (std::isinf(value.real)) {
        return value.real > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
    }
    return value.type == TYP_REAL ? ShortestText(static_cast<float>(value.real))
                                  : ShortestText(value.real);
}

// A number that may do without its point: "1e-3". Not finite for a text that is none.
double NumberOf(const QString& text) {
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber ? number : std::numeric_limits<double>::infinity();
}

Value NearestValue(Typ type, double number) {
    const double nearest =
        type == TYP_REAL ? static_cast<double>(static_cast<float>(number)) : number;
    return RealValue(type, nearest);
}

}  // namespace

QString TextOf(const Value& value) {
    if (value.type == TYP_BOOL) {
        return value.whole != 0 ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
    }
    return value.isReal() ? TextOfReal(value) : QString::number(value.whole);
}

bool ReadValue(const QString& text, Typ type, Value& value) {
    if (type == TYP_BOOL) {
        const int truth = TruthOf(text);
        value = TruthValue(truth > 0);
        return truth >= 0;
    }
    const QByteArray word = text.toUpper().toUtf8();
    const std::optional<Literal> literal =
        ReadLiteral({word.constData(), static_cast<std::size_t>(word.size())});
    const bool isWhole = literal && literal->type < TYP_REAL;
    if (type >= TYP_REAL) {
        value = NearestValue(type, isWhole   ? static_cast<double>(literal->whole)
                                   : literal ? literal->real
                                             : NumberOf(text));
        return std::isfinite(value.real) && !(literal && literal->type == TYP_STRING);
    }
    value = WholeValue(type, isWhole ? literal->whole : 0);
    return isWhole && RangeOf(type).holds(literal->whole);
}
