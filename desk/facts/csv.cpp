#include "facts/csv.h"

namespace {

constexpr QChar QUOTE = u'"';
constexpr QChar COMMENT = u'#';

// The separator is known by the first row: what stands in quotes there does not count.
QChar SeparatorOf(const QString& text) {
    bool isQuoted = false;
    bool isComment = text.startsWith(COMMENT);
    for (int at = 0; at < text.size(); ++at) {
        const QChar each = text[at];
        isQuoted ^= each == QUOTE && !isComment;
        if (each == u'\n' && isComment) {
            isComment = at + 1 < text.size() && text[at + 1] == COMMENT;
        } else if (each == u'\n' && !isQuoted) {
            return u',';
        } else if (each == u';' && !isQuoted && !isComment) {
            return u';';
        }
    }
    return u',';
}

// Takes a table from its text, character by character.
class CsvReader {
public:
    explicit CsvReader(const QString& text) : source_(QString(), text), text_(source_.text()) {
        csv_.separator = SeparatorOf(text);
    }

    Csv read() {
        while (at_ < text_.size() && !csv_.fault) {
            if (text_[at_] == COMMENT) {
                skipLine();
            } else {
                takeRow();
            }
        }
        return std::move(csv_);
    }

private:
    Source source_;
    const QString& text_;
    Csv csv_;
    int at_ = 0;

    bool isAtEndOfLine() const { return at_ >= text_.size() || text_[at_] == u'\n'; }
    bool isAtEndOfCell() const { return isAtEndOfLine() || text_[at_] == csv_.separator; }
    void skipBlanks() {
        while (!isAtEndOfCell() && text_[at_].isSpace()) {
            ++at_;
        }
    }
    void skipLine() {
        while (!isAtEndOfLine()) {
            ++at_;
        }
        ++at_;
    }

    void takeRow() {
        CsvRow row;
        row.cells.push_back(takeCell());
        while (!csv_.fault && !isAtEndOfLine()) {
            ++at_;
            row.cells.push_back(takeCell());
        }
        ++at_;
        const bool isEmpty = row.cells.size() == 1 && row.cells.front().text.isEmpty();
        if (!isEmpty) {
            csv_.rows.push_back(std::move(row));
        }
    }

    CsvCell takeCell() {
        skipBlanks();
        const int begin = at_;
        const bool isQuoted = !isAtEndOfCell() && text_[at_] == QUOTE;
        const QString text = isQuoted ? takeQuoted() : takePlain();
        return {text, source_.placeOf(begin)};
    }

    QString takePlain() {
        const int begin = at_;
        while (!isAtEndOfCell()) {
            ++at_;
        }
        return text_.mid(begin, at_ - begin).trimmed();
    }

    QString takeQuoted() {
        const int begin = at_++;
        QString cell;
        while (at_ < text_.size() && !(text_[at_] == QUOTE && !isDoubled())) {
            at_ += text_[at_] == QUOTE ? 1 : 0;
            cell += text_[at_++];
        }
        if (at_ >= text_.size()) {
            fail(begin, QStringLiteral("the quotes that open here do not close"));
            return cell;
        }
        ++at_;
        skipBlanks();
        if (!isAtEndOfCell()) {
            fail(at_, QStringLiteral("nothing may follow the quotes of a cell"));
        }
        return cell;
    }
    bool isDoubled() const { return at_ + 1 < text_.size() && text_[at_ + 1] == QUOTE; }

    void fail(int offset, const QString& message) {
        csv_.fault = CsvFault{source_.placeOf(offset), message};
    }
};

QString TextOfBytes(const QByteArray& bytes) {
    QString text = QString::fromUtf8(bytes);
    if (text.startsWith(QChar::ByteOrderMark)) {
        text.remove(0, 1);
    }
    return text.remove(u'\r');
}

}  // namespace

Csv ReadCsv(const QByteArray& text) {
    return CsvReader(TextOfBytes(text)).read();
}

QString CsvText(const QString& text) {
    const auto needsQuotes = [&text] {
        return text != text.trimmed() || text.startsWith(COMMENT) || text.contains(QUOTE) ||
               text.contains(u',') || text.contains(u';') || text.contains(u'\n');
    };
    QString doubled = text;
    doubled.replace(QUOTE, QStringLiteral("\"\""));
    return needsQuotes() ? QUOTE + doubled + QUOTE : text;
}

QString PlaceName(Place place) {
    return QStringLiteral("line %1, column %2").arg(place.line).arg(place.column);
}
