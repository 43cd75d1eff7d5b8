// Messages in a stream of bytes: each has a head of lines "Name: value" that end with CR LF, an
// empty line, and as many bytes as "Content-Length" says.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Beyond that neither a message nor the head of one is taken.
constexpr int MAX_MESSAGE_SIZE = 1 << 28;
constexpr int MAX_HEAD_SIZE = 1 << 13;

// Divides what comes in into messages.
class MessageReader {
public:
    void feed(const QByteArray& bytes) { received_.append(bytes); }

    // The next message, without its head; nothing while it is not there whole.
    std::optional<QByteArray> next();

    // Why the stream cannot be followed any further, without a full stop; empty while it can.
    const QString& fault() const { return fault_; }

private:
    QByteArray received_;
    int begin_ = 0;         // of what was not handed over, in it
    int length_ = WITHOUT;  // of the message whose head was read
    QString fault_;

    static constexpr int WITHOUT = -1;

    void readHead();
    void readLine(const QByteArray& line);
    void forget();
};

// The message with its head.
QByteArray Framed(const QByteArray& message);
