#include "protocols/script.h"

#include <algorithm>

LspLines::LspLines(const QString& text) : ends_(LineEndsOf(text)) {
    int begin = 0;
    int returns = 0;  // before the place
    for (int place = 0; place < text.size(); ++place) {
        const QChar character = text[place];
        if (character != QLatin1Char('\n') && character != QLatin1Char('\r')) {
            continue;
        }
        lines_.push_back({begin - returns, place - returns});
        if (character == QLatin1Char('\r')) {
            ++returns;
            const bool isPair = place + 1 < text.size() && text[place + 1] == QLatin1Char('\n');
            place += isPair ? 1 : 0;
        }
        begin = place + 1;
    }
    lines_.push_back({begin - returns, text.size() - returns});
}

QJsonObject LspLines::positionOf(int offset) const {
    const auto next =
        std::upper_bound(lines_.begin(), lines_.end(), offset,
                         [](int place, const Line& line) { return place < line.begin; });
    const auto line = std::prev(next);
    return {{QStringLiteral("line"), static_cast<int>(line - lines_.begin())},
            {QStringLiteral("character"), offset - line->begin}};
}

QJsonObject LspLines::rangeOf(Span span) const {
    return {{QStringLiteral("start"), positionOf(span.begin)},
            {QStringLiteral("end"), positionOf(std::max(span.begin, span.end))}};
}

int LspLines::offsetOf(const QJsonObject& position) const {
    const double number = position[QStringLiteral("line")].toDouble();
    if (number >= static_cast<double>(lines_.size())) {
        return lines_.back().end;
    }
    const Line& line = lines_[static_cast<std::size_t>(std::max(number, 0.0))];
    const double character = position[QStringLiteral("character")].toDouble();
    const double length = line.end - line.begin;
    return line.begin + static_cast<int>(std::clamp(character, 0.0, length));
}

Span LspLines::spanOf(const QJsonObject& range) const {
    const int begin = offsetOf(range[QStringLiteral("start")].toObject());
    return {begin, std::max(begin, offsetOf(range[QStringLiteral("end")].toObject()))};
}

QString CompiledText(QString text) {
    return text.remove(QLatin1Char('\r'));
}
