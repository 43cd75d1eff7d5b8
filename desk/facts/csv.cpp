#include "facts/csv.h"

namespace {

constexpr QChar QUOTE = u'"';
constexpr QChar COMMENT = u'#';

bool IsEdge(const QString& text, int at) {
    return at < 0 || at >= text.size() || text[at].isSpace() || text[at] == u',' ||
           text[at] == u';';
}

// The rest of the line is a comment: "16#FF" and "pump #3" are none.
bool IsComment(const QString& text, int at) {
    const bool isAtBegin = at == 0 || text[at - 1] == u'\n';
    return text[at] == COMMENT && (isAtBegin || (IsEdge(text, at - 1) && IsEdge(text, at + 1)));
}

// Where the first line begins that holds more than a comment.
int BeginOfRows(const QString& text) {
    int begin = 0;
    for (int at = 0; at < text.size() && (text[at].isSpace() || IsComment(text, at)); ++at) {
        if (text[at] == COMMENT) {
            const int end = text.indexOf(u'\n', at);
            at = end < 0 ? text.size() : end;
        }
        begin = at + 1;
    }
    return begin;
}

// The separator is known by the first row: what stands in quotes there does not count.
QChar SeparatorOf(const QString& text) {
    bool isQuoted = false;
    for (int at = BeginOfRows(text); at < text.size(); ++at) {
        isQuoted ^= text[at] == QUOTE;
        if (!isQuoted && (text[at] == u'\n' || IsComment(text, at))) {
            return u',';
        }
        if (!isQuoted && text[at] == u';') {
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
            takeRow();
        }
        return std::move(csv_);
    }

private:
    Source source_;
    const QString& text_;
    Csv csv_;
    int at_ = 0;

    bool isAtLineFeed() const { return at_ >= text_.size() || text_[at_] == u'\n'; }
    bool isAtEndOfLine() const { return isAtLineFeed() || IsComment(text_, at_); }
    bool isAtEndOfCell() const { return isAtEndOfLine() || text_[at_] == csv_.separator; }
    void skipBlanks() {
        while (!isAtEndOfCell() && text_[at_].isSpace()) {
            ++at_;
        }
    }
    void skipLine() {
        while (!isAtLineFeed()) {
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
        expectNoTabs(row);
        skipLine();
        const bool isEmpty = row.cells.size() == 1 && row.cells.front().text.isEmpty();
        if (!isEmpty && !csv_.fault) {
            csv_.rows.push_back(std::move(row));
        }
    }

    // A single cell with tabs at the begin of a table was meant as several.
    void expectNoTabs(const CsvRow& row) {
        const CsvCell& cell = row.cells.front();
        const int tab = cell.text.indexOf(u'\t');
        if (csv_.rows.empty() && row.cells.size() == 1 && tab >= 0 && !csv_.fault) {
            csv_.fault = CsvFault{{cell.place.line, cell.place.column + tab},
                                  QStringLiteral("tabs are between the cells; commas or "
                                                 "semicolons are expected there")};
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
