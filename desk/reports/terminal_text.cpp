#include "reports/terminal_text.h"

#include <QVector>

#include <clocale>
#include <cwchar>

namespace {

constexpr char32_t PICTURES = 0x2400;  // of the control characters, in their order
constexpr char32_t PICTURE_OF_DELETE = 0x2421;
constexpr char32_t DELETE = 0x7F;

// The widths that terminals use too, whatever the user's locale; negative of what cannot be
// shown.
int WidthOf(char32_t character) {
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (utf8 == nullptr) {
        return 1;
    }
    const locale_t users = uselocale(utf8);
    const int width = wcwidth(static_cast<wchar_t>(character));
    uselocale(users);
    return width;
}

bool TurnsDirection(char32_t character) {
    constexpr char32_t embeddings[] = {0x202A, 0x202E};
    constexpr char32_t isolates[] = {0x2066, 0x2069};
    return (character >= embeddings[0] && character <= embeddings[1]) ||
           (character >= isolates[0] && character <= isolates[1]);
}

}  // namespace

ShownCell ShownCellOf(char32_t character) {
    if (character < U' ') {
        return {PICTURES + character, 1};
    }
    if (character <= DELETE) {
        return {character == DELETE ? PICTURE_OF_DELETE : character, 1};
    }
    const int width = WidthOf(character);
    if (width < 0 || TurnsDirection(character)) {
        return {QChar::ReplacementCharacter, 1};
    }
    return {character, width};
}

QString Harmless(QStringView text) {
    QString shown;
    for (const uint character : text.toUcs4()) {
        const char32_t cell = ShownCellOf(character).shown;
        shown.append(QString::fromUcs4(&cell, 1));
    }
    return shown;
}
