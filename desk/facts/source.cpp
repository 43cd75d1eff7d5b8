#include "facts/source.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

std::vector<int> BeginsOfLines(const QString& text) {
    std::vector<int> begins = {0};
    for (int at = text.indexOf(u'\n'); at >= 0; at = text.indexOf(u'\n', at + 1)) {
        begins.push_back(at + 1);
    }
    return begins;
}

}  // namespace

Source::Source(QString name, QString text)
    : name_(std::move(name)), text_(std::move(text)), lines_(BeginsOfLines(text_)) {}

Place Source::placeOf(int offset) const {
    const auto after = std::upper_bound(lines_.begin(), lines_.end(), offset);
    const auto line = static_cast<int>(after - lines_.begin());
    return {line, offset - *std::prev(after) + 1};
}

int Source::offsetOf(Place place) const {
    if (place.line < 1) {
        return 0;
    }
    if (place.line > lineCount()) {
        return size();
    }
    const Span line = lineAt(place.line);
    return std::clamp(line.begin + place.column - 1, 0, line.end);
}

Span Source::lineAt(int line) const {
    const auto index = static_cast<std::size_t>(line - 1);
    const int end = line == lineCount() ? size() : lines_[index + 1] - 1;
    return {lines_[index], end};
}
