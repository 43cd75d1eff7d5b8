// How a failed test shows a text.
#pragma once

#include <QString>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << text.toStdString();
}
