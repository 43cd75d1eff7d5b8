#include "qyx_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

QString IntToStr(int value, QString& out, int base) {
    return Int64ToStr(value, out, base);
}

QString Int64ToStr(qint64 value, QString& out, int base) {
    out = QString::number(value, base);
    return out;
}

const std::string& IntToStr(qint64 value, std::string& out, std::size_t width, int base) {
    constexpr std::size_t bits = std::numeric_limits<quint64>::digits;
    std::array<char, bits + 1> text;  // with a sign
    const char* const end = std::to_chars(text.begin(), text.end(), value, base).ptr;
    out.assign(static_cast<const char*>(text.data()), end);
    const std::size_t sign = value < 0 ? 1 : 0;
    out.insert(sign, width - std::min(width, out.size()), '0');
    return out;
}

QString Quoted(QStringView text) {
    return StringsToString("\"", text, "\"");
}

QString Quoted(QLatin1String text) {
    return StringsToString("\"", text, "\"");
}

int StrCmp(QStringView a, QStringView b, bool ignoreCase) {
    return a.compare(b, ignoreCase ? Qt::CaseInsensitive : Qt::CaseSensitive);
}
