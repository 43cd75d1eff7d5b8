// Which entries a question is about.
#pragma once

#include "explain/entries.h"

// The text of the entry's heading.
QString TitleOf(const Entry& entry);

// The entries that fit best, in their order. A question is an identifier, in small or capital
// letters, with "-" or "_"; a line that holds a message, as the compiler and other tools write
// it; the text of a message; or a part of it.
std::vector<Entry> FindEntries(const std::vector<Entry>& entries, const QString& question);

// The identifiers that may have been meant by a question to which no entry fits, nearest first.
QStringList NearestIds(const std::vector<Entry>& entries, const QString& question);
