// Texts: constants, concatenation, quoting, numbers as text, comparison. Knows nothing of the
// compiler.
#pragma once

#include <QChar>
#include <QLatin1String>
#include <QString>
#include <QStringView>

#include <cstring>
#include <string>
#include <type_traits>

// A text constant: "MOV"_L1.
constexpr QLatin1String operator""_L1(const char* characters, std::size_t size) {
    return QLatin1String(characters, static_cast<int>(size));
}

constexpr std::size_t ASCII_COUNT = 128;  // characters of ASCII, the first of all

constexpr int DECIMAL = 10;

// The value as text in that base; digits above 9 are lower-case letters. `out` receives what is
// returned.
QString IntToStr(int value, QString& out, int base = DECIMAL);
QString Int64ToStr(qint64 value, QString& out, int base = DECIMAL);

// The same, filled with zeros from the left to that width and never cut.
const std::string& IntToStr(qint64 value, std::string& out, std::size_t width,
                            int base = DECIMAL);

// The text between double quotes, as messages name things.
QString Quoted(QStringView text);
QString Quoted(QLatin1String text);

// Compares two texts: negative, 0 or positive.
int StrCmp(QStringView a, QStringView b, bool ignoreCase);

// The number of UTF-16 units of a part of a text.
inline int StrLen(QChar) {
    return 1;
}
inline int StrLen(const char* part) {
    return static_cast<int>(std::strlen(part));
}
template <typename Text>
int StrLen(const Text& part) {
    return static_cast<int>(part.size());
}

// Joins the parts (strings, string literals, characters) in order with nothing between them.
template <typename... Parts>
QString StringsToString(const Parts&... parts) {
    QString joined;
    joined.reserve((StrLen(parts) + ...));
    const auto append = [&joined](const auto& part) {
        if constexpr (std::is_convertible_v<decltype(part), const char*>) {
            joined += QLatin1String(part);
        } else if constexpr (std::is_same_v<decltype(part), const QStringView&>) {
            joined.append(part.data(), static_cast<int>(part.size()));
        } else {
            joined += part;
        }
    };
    (append(parts), ...);
    return joined;
}
