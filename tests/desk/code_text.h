// Target code for tests.
#pragma once

#include "machine/code.h"

#include <QByteArray>
#include <QStringList>

#include <string>

// A code file from its items, each followed by "|".
inline QByteArray CodeFile(QByteArray items) {
    return items.replace('|', ' ');
}

inline QByteArray Listing(QByteArray items) {
    return items.replace('|', '\n');
}

// The code of a program with declarations and statements, each item followed by "|".
inline QByteArray Program(const QByteArray& declarations, const QByteArray& statements) {
    return CodeFile("PROG:|P|VAR:|" + declarations + "MAIN:|" + statements + "RET|");
}
