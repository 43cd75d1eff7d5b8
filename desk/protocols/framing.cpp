#include "protocols/framing.h"

namespace {

constexpr const char* LINE_END = "\r\n";
constexpr const char* HEAD_END = "\r\n\r\n";

// What was handed over is kept in front of the rest until there is so much of it.
constexpr int LEAST_FORGOTTEN = 1 << 16;

bool IsSpace(char character) {
    return character == ' ' || character == '\t';
}

}  // namespace

std::optional<QByteArray> MessageReader::next() {
    if (length_ == WITHOUT && fault_.isEmpty()) {
        readHead();
    }
    if (length_ == WITHOUT || received_.size() - begin_ < length_) {
        return std::nullopt;
    }
    QByteArray message = received_.mid(begin_, length_);
    begin_ += length_;
    length_ = WITHOUT;
    forget();
    return message;
}

void MessageReader::readHead() {
    const int end = received_.indexOf(HEAD_END, begin_);
    const int size = (end < 0 ? received_.size() : end) - begin_;
    if (size > MAX_HEAD_SIZE) {
        fault_ = QStringLiteral("the head of a message is too long");
    }
    if (end < 0 || !fault_.isEmpty()) {
        return;
    }
    const QByteArray head = received_.mid(begin_, size) + LINE_END;
    for (int line = 0; line < head.size(); line = head.indexOf(LINE_END, line) + 2) {
        readLine(head.mid(line, head.indexOf(LINE_END, line) - line));
    }
    if (length_ == WITHOUT && fault_.isEmpty()) {
        fault_ = QStringLiteral("the head of a message has no Content-Length");
    }
    length_ = fault_.isEmpty() ? length_ : WITHOUT;
    begin_ = end + static_cast<int>(qstrlen(HEAD_END));
}

// Names are the same in capitals and small letters. Other names are for others.
void MessageReader::readLine(const QByteArray& line) {
    const int colon = line.indexOf(':');
    if (colon < 1 || IsSpace(line[colon - 1])) {
        fault_ = QStringLiteral("the head of a message has a line without a name");
        return;
    }
    if (line.left(colon).toLower() != "content-length") {
        return;
    }
    const QByteArray value = line.mid(colon + 1).trimmed();
    bool isNumber = false;
    const qulonglong length = value.toULongLong(&isNumber);
    if (!isNumber) {
        fault_ = QStringLiteral("the Content-Length of a message is no number");
    } else if (length > static_cast<qulonglong>(MAX_MESSAGE_SIZE)) {
        fault_ = QStringLiteral("a message is larger than %1 bytes").arg(MAX_MESSAGE_SIZE);
    } else {
        length_ = static_cast<int>(length);
    }
}

// So that each byte is moved only a few times.
void MessageReader::forget() {
    if (begin_ >= LEAST_FORGOTTEN && begin_ >= received_.size() / 2) {
        received_ = received_.mid(begin_);
        begin_ = 0;
    }
}

QByteArray Framed(const QByteArray& message) {
    return "Content-Length: " + QByteArray::number(message.size()) + HEAD_END + message;
}
