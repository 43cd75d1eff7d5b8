// Text with marks, for clients that show Markdown and for those that do not.
#pragma once

#include "protocols/script.h"

#include <QStringList>

// A MarkupContent. The formats that the client takes are the member of its capabilities that the
// path leads to; Markdown if it tells none.
QJsonObject MarkupOf(const Script& script, const QStringList& path, const QString& markdown);

// What is left without the marks, line by line.
QString WithoutMarkup(const QString& markdown);
