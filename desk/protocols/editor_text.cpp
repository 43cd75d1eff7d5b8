#include "protocols/editor_text.h"

#include <algorithm>
#include <utility>

namespace {

bool EndsLine(QChar character) {
    return character == QLatin1Char('\n') || character == QLatin1Char('\r');
}

// Where lines begin after the ends of lines between two places. A CR LF is one end.
std::vector<int> BeginsOfLines(const QString& text, int from, int to) {
    std::vector<int> begins;
    for (int place = from; place < to; ++place) {
        const bool isInPair = text[place] == QLatin1Char('\r') && place + 1 < text.size() &&
                              text[place + 1] == QLatin1Char('\n');
        if (EndsLine(text[place]) && !isInPair) {
            begins.push_back(place + 1);
        }
    }
    return begins;
}

}  // namespace

EditorText::EditorText(QString text) : text_(std::move(text)), begins_({0}) {
    const std::vector<int> others = BeginsOfLines(text_, 0, text_.size());
    begins_.insert(begins_.end(), others.begin(), others.end());
}

void EditorText::change(const QJsonObject& event) {
    const QString text = event[QStringLiteral("text")].toString();
    if (!event.contains(QStringLiteral("range"))) {
        *this = EditorText(text);
        return;
    }
    const QJsonObject range = event[QStringLiteral("range")].toObject();
    const int begin = offsetOf(range[QStringLiteral("start")].toObject());
    replace(begin, std::max(begin, offsetOf(range[QStringLiteral("end")].toObject())), text);
}

int EditorText::offsetOf(const QJsonObject& position) const {
    const double number = position[QStringLiteral("line")].toDouble();
    if (number >= static_cast<double>(begins_.size())) {
        return text_.size();
    }
    const auto line = static_cast<std::size_t>(std::max(number, 0.0));
    const double character = position[QStringLiteral("character")].toDouble();
    const double length = endOf(line) - begins_[line];
    return begins_[line] + static_cast<int>(std::clamp(character, 0.0, length));
}

// Where the line ends, without the characters that end it.
int EditorText::endOf(std::size_t line) const {
    if (line + 1 == begins_.size()) {
        return text_.size();
    }
    const int end = begins_[line + 1] - 1;
    const bool isPair = text_[end] == QLatin1Char('\n') && end > begins_[line] &&
                        text_[end - 1] == QLatin1Char('\r');
    return isPair ? end - 1 : end;
}

// The ends of lines are looked for anew where the text has changed, and at the character before:
// whether a CR ends a line depends on what follows it.
void EditorText::replace(int begin, int end, const QString& with) {
    const int from = std::max(begin - 1, 0);
    const auto first = std::upper_bound(begins_.begin(), begins_.end(), from);
    const auto last = std::upper_bound(first, begins_.end(), end);
    text_.replace(begin, end - begin, with);
    const int growth = with.size() - (end - begin);
    std::for_each(last, begins_.end(), [growth](int& place) { place += growth; });
    const std::vector<int> between = BeginsOfLines(text_, from, end + growth);
    begins_.insert(begins_.erase(first, last), between.begin(), between.end());
}
