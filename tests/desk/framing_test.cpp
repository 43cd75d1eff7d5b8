// Messages in a stream of bytes, whatever pieces they come in.

#include "protocols/framing.h"

#include <gtest/gtest.h>

#include <QList>

namespace {

QList<QByteArray> MessagesIn(MessageReader& reader) {
    QList<QByteArray> messages;
    while (const std::optional<QByteArray> message = reader.next()) {
        messages.append(*message);
    }
    return messages;
}

QList<QByteArray> MessagesOf(const QByteArray& bytes) {
    MessageReader reader;
    reader.feed(bytes);
    return MessagesIn(reader);
}

QString FaultOf(const QByteArray& bytes) {
    MessageReader reader;
    reader.feed(bytes);
    MessagesIn(reader);
    return reader.fault();
}

TEST(Framing, WhatIsFramedIsRead) {
    const QList<QByteArray> messages = {"{}", "", "{\"a\":\"\xC3\xA4\r\n\r\n\"}"};
    QByteArray stream;
    for (const QByteArray& message : messages) {
        stream += Framed(message);
    }
    EXPECT_EQ(MessagesOf(stream), messages);
}

TEST(Framing, MessagesComeInPieces) {
    MessageReader reader;
    QList<QByteArray> messages;
    for (const char byte : Framed("{\"id\":1}") + Framed("[]")) {
        reader.feed(QByteArray(1, byte));
        messages += MessagesIn(reader);
    }
    EXPECT_EQ(messages, (QList<QByteArray>{"{\"id\":1}", "[]"}));
}

TEST(Framing, ManyMessagesLeaveNothing) {
    MessageReader reader;
    const QByteArray message(50'000, 'x');
    for (int round = 0; round < 10; ++round) {
        reader.feed(Framed(message) + Framed(message).left(1000));
        EXPECT_EQ(reader.next(), message);
        reader.feed(Framed(message).mid(1000));
        EXPECT_EQ(reader.next(), message);
        EXPECT_EQ(reader.next(), std::nullopt);
    }
}

TEST(Framing, HeadsHaveLinesInAnyOrder) {
    const QByteArray type = "Content-Type: application/vscode-jsonrpc; charset=utf-8\r\n";
    for (const char* const length :
         {"Content-Length: 2\r\n", "content-length:2\r\n", "CONTENT-LENGTH: \t2 \r\n"}) {
        EXPECT_EQ(MessagesOf(type + length + "\r\n{}"), QList<QByteArray>{"{}"}) << length;
        EXPECT_EQ(MessagesOf(length + type + "\r\n{}"), QList<QByteArray>{"{}"}) << length;
    }
}

TEST(Framing, AStreamThatCannotBeFollowedHasAFault) {
    for (const char* const head :
         {"\r\n\r\n", "Content-Type: x\r\n\r\n", "Content-Length: x\r\n\r\n",
          "Content-Length: -1\r\n\r\n", "Content-Length:\r\n\r\n", "Content-Length: 1x\r\n\r\n",
          "Content-Length: 2147483648\r\n\r\n", "Content-Length: 268435457\r\n\r\n",
          "Content-Length: 99999999999999999999\r\n\r\n", "{}\r\n\r\n", ": 2\r\n\r\n"}) {
        EXPECT_NE(FaultOf(head), QString()) << head;
        EXPECT_EQ(MessagesOf(head + QByteArray("{}")), QList<QByteArray>()) << head;
    }
}

TEST(Framing, AHeadWithoutEndHasAFault) {
    EXPECT_EQ(FaultOf(QByteArray(MAX_HEAD_SIZE, 'x')), QString());
    EXPECT_NE(FaultOf(QByteArray(MAX_HEAD_SIZE + 1, 'x')), QString());
}

TEST(Framing, WhatIsNotThereYetIsNoFault) {
    EXPECT_EQ(FaultOf("Content-Length: 5\r\n"), QString());
    EXPECT_EQ(FaultOf("Content-Length: 268435456\r\n\r\n{}"), QString());
}

}  // namespace
