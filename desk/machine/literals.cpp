#include "machine/literals.h"

#include "machine/forms.h"

#include <QByteArray>
#include <QLocale>

#include <algorithm>
#include <cctype>
#include <limits>

namespace {

constexpr char QUOTE = '\'';
constexpr double LARGEST_REAL = 3.4e+38;  // where the compiler's REAL ends

bool IsDecimalDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// The number of decimal digits that a text begins with.
std::size_t DigitsOf(std::string_view text) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), IsDecimalDigit);
    return static_cast<std::size_t>(end - text.begin());
}

// "16#FF": digits of the base that the number before the mark tells.
std::optional<double> ReadBased(std::string_view text) {
    const std::size_t mark = text.find('#');
    const std::string_view base = text.substr(0, mark);
    const int radix = base == "16" ? 16 : base == "8" ? 8 : base == "2" ? 2 : 0;
    const std::string_view digits = text.substr(mark + 1);
    double value = 0.0;
    for (const char c : digits) {
        const int digit = IsDecimalDigit(c)      ? c - '0'
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : radix;
        if (digit >= radix) {
            return std::nullopt;
        }
        value = value * radix + digit;
    }
    return radix == 0 || digits.empty() ? std::nullopt : std::optional<double>(value);
}

// The exponent "E", a sign and digits, of which the last two may be missing: it is 0 then.
bool IsExponent(std::string_view text) {
    if (text.empty() || text[0] != 'E') {
        return text.empty();
    }
    text.remove_prefix(1);
    if (!text.empty() && (text[0] == '+' || text[0] == '-')) {
        text.remove_prefix(1);
    }
    return DigitsOf(text) == text.size();
}

// "2.5", "2.5E-3"
std::optional<double> ReadReal(std::string_view text) {
    const std::size_t whole = DigitsOf(text);
    const std::size_t fraction = DigitsOf(text.substr(whole + 1));
    const std::string_view exponent = text.substr(whole + 1 + fraction);
    if (whole == 0 || fraction == 0 || !IsExponent(exponent)) {
        return std::nullopt;
    }
    QByteArray digits(text.data(), static_cast<int>(text.size()));
    digits.append(IsDecimalDigit(text.back()) ? "" : exponent.empty() ? "" : "0");
    bool isFinite = false;
    const double value = digits.toDouble(&isFinite);
    return isFinite ? value : std::numeric_limits<double>::infinity();
}

Literal RealLiteral(double value) {
    Literal literal;
    literal.type = value <= LARGEST_REAL ? TYP_REAL : TYP_LREAL;
    literal.real = value;
    return literal;
}

// The value is exact as far as an integer type holds it.
Literal WholeLiteral(double value) {
    constexpr double largest = std::numeric_limits<quint32>::max();
    Literal literal;
    literal.type = value <= largest ? SmallestTypeOf(static_cast<qint64>(value)) : TYP_LREAL;
    literal.whole = value <= largest ? static_cast<qint64>(value) : 0;
    literal.real = value;
    return literal;
}

std::optional<Literal> ReadUnsigned(std::string_view text) {
    if (text.find('#') != std::string_view::npos) {
        const std::optional<double> value = ReadBased(text);
        return value ? std::optional<Literal>(WholeLiteral(*value)) : std::nullopt;
    }
    const std::size_t digits = DigitsOf(text);
    if (digits < text.size() && text[digits] == '.') {
        const std::optional<double> value = ReadReal(text);
        return value ? std::optional<Literal>(RealLiteral(*value)) : std::nullopt;
    }
    const QByteArray whole(text.data(), static_cast<int>(text.size()));
    return digits > 0 && digits == text.size()
               ? std::optional<Literal>(WholeLiteral(whole.toDouble()))
               : std::nullopt;
}

Literal Negated(Literal literal) {
    literal.whole = -literal.whole;
    literal.real = -literal.real;
    if (literal.type < TYP_REAL) {
        // A number that is too low stays whole, as one that is too high does.
        literal.type = std::min(SmallestTypeOf(literal.whole), TYP_UDINT);
    }
    return literal;
}

Literal StringLiteral(std::string_view text) {
    Literal literal;
    literal.type = TYP_STRING;
    literal.text = TextOf(text.substr(1, text.size() - 2));
    return literal;
}

bool IsString(std::string_view word) {
    return word.size() > 1 && word[0] == QUOTE && word.find(QUOTE, 1) == word.size() - 1;
}

}  // namespace

std::optional<Literal> ReadLiteral(std::string_view word) {
    if (IsString(word)) {
        return StringLiteral(word);
    }
    const bool isNegative = !word.empty() && word[0] == '-';
    std::optional<Literal> literal = ReadUnsigned(word.substr(isNegative ? 1 : 0));
    if (literal) {
        literal = isNegative ? Negated(*literal) : *literal;
        literal->text = TextOf(word);
    }
    return literal;
}

Typ SmallestTypeOf(qint64 value) {
    struct Range {
        Typ type;
        qint64 least;
        qint64 greatest;
    };
    constexpr Range ranges[] = {
        {TYP_SINT, -128, 127},
        {TYP_USINT, 0, 255},
        {TYP_INT, -32768, 32767},
        {TYP_UINT, 0, 65535},
        {TYP_DINT, -2147483648LL, 2147483647},
        {TYP_UDINT, 0, 4294967295LL},
    };
    for (const Range& range : ranges) {
        if (value >= range.least && value <= range.greatest) {
            return range.type;
        }
    }
    return TYP_LREAL;
}
