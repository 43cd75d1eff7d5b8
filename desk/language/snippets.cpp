#include "language/snippets.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <string_view>

namespace {

constexpr std::string_view LINES[] = {
#include "snippets.inc"
};

QJsonObject ReadJson() {
    QByteArray text;
    for (const std::string_view line : LINES) {
        text.append(line.data(), static_cast<int>(line.size()));
    }
    return QJsonDocument::fromJson(text).object();
}

Snippet SnippetOf(const QString& name, const QJsonObject& json) {
    QStringList lines;
    const QJsonArray body = json[QStringLiteral("body")].toArray();
    for (const QJsonValue& line : body) {
        lines.append(line.toString());
    }
    return {name, lines.first().section(u' ', 0, 0), lines.join(u'\n')};
}

std::vector<Snippet> ReadSnippets() {
    std::vector<Snippet> snippets;
    const QJsonObject json = ReadJson();
    for (auto each = json.begin(); each != json.end(); ++each) {
        snippets.push_back(SnippetOf(each.key(), each.value().toObject()));
    }
    return snippets;
}

}  // namespace

const std::vector<Snippet>& Snippets() {
    static const std::vector<Snippet> snippets = ReadSnippets();
    return snippets;
}
