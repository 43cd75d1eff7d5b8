#include "format/line_ends.h"

namespace {

template <typename Text, typename Character>
LineEnds LineEndsOf(const Text& text, Character cr, Character lf) {
    LineEnds ends;
    const int feed = text.indexOf(lf);
    ends.areCrLf = feed > 0 && text.at(feed - 1) == cr;
    for (int place = text.indexOf(cr); place >= 0 && !ends.hasLoneCr;
         place = text.indexOf(cr, place + 1)) {
        ends.hasLoneCr = place + 1 == text.size() || text.at(place + 1) != lf;
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
