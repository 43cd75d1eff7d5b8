// Texts of scripts as a terminal shows them: nothing in them commands it, and how wide they are
// is known.
#pragma once

#include <QString>
#include <QStringView>

// What is shown of a character, and how many columns it takes.
struct ShownCell {
    char32_t shown;
    int width;  // 0 of what combines with the character before, 2 of East Asian and of pictures
};

// Control characters have pictures; what a terminal cannot show, or would turn the direction of
// writing, has a replacement.
ShownCell ShownCellOf(char32_t character);

QString Harmless(QStringView text);
