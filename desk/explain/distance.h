// How far texts are from each other.
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

// The least number of characters to be inserted, removed or replaced to make one text the other.
int EditDistance(QStringView one, QStringView other);

// The word that is most like the text, whatever their letter case; empty if none is like it.
QString NearestWord(const QString& text, const QStringList& words);
