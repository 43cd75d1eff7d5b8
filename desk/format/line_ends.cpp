#include "format/line_ends.h"

#include <algorithm>
#include <iterator>

namespace {

template <typename Text, typename Character>
LineEnds LineEndsOf(const Text& text, Character cr, Character lf) {
    LineEnds ends;
    const auto feed = std::find(text.begin(), text.end(), lf);
    ends.areCrLf = feed != text.begin() && feed != text.end() && *std::prev(feed) == cr;
    for (auto place = std::find(text.begin(), text.end(), cr);
         place != text.end() && !ends.hasLoneCr; place = std::find(place + 1, text.end(), cr)) {
        ends.hasLoneCr = place + 1 == text.end() || *(place + 1) != lf;
    }
    return ends;
}

}  // namespace

LineEnds LineEndsOf(const QByteArray& bytes) {
    return LineEndsOf(bytes, '\r', '\n');
}

LineEnds LineEndsOf(const QString& text) {
    return LineEndsOf(text, QChar(u'\r'), QChar(u'\n'));
}

QString LineEnds::applied(QString text) const {
    return areCrLf ? text.replace(u'\n', QLatin1String("\r\n")) : text;
}

QString LineEnds::fault() const {
    return hasLoneCr ? QStringLiteral("a carriage return stands within a line") : QString();
}
