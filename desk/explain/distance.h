// How far texts are from each other.
#pragma once

#include <QStringView>

// The least number of characters to be inserted, removed or replaced to make one text the other.
int EditDistance(QStringView one, QStringView other);
