#include "protocols/script.h"

#include <algorithm>

LspLines::LspLines(const QString& text) : size_(text.size()) {
    int begin = 0;
    for (int offset = 0; offset < size_; ++offset) {
        const QChar character = text[offset];
        if (character != QLatin1Char('\n') && character != QLatin1Char('\r')) {
            continue;
        }
        const int end = offset;
        const bool isPair = character == QLatin1Char('\r') && offset + 1 < size_ &&
                            text[offset + 1] == QLatin1Char('\n');
        offset += isPair ? 1 : 0;
        lines_.push_back({begin, end});
        begin = offset + 1;
    }
    lines_.push_back({begin, size_});
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
        return size_;
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
