// Texts as editors change them, and their places.

#include "protocols/editor_text.h"
#include "protocols/script.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <random>

namespace {

QJsonObject Position(double line, double character) {
    return {{QStringLiteral("line"), line}, {QStringLiteral("character"), character}};
}

QJsonObject Change(const QJsonObject& start, const QJsonObject& end, const QString& text) {
    const QJsonObject range = {{QStringLiteral("start"), start}, {QStringLiteral("end"), end}};
    return {{QStringLiteral("range"), range}, {QStringLiteral("text"), text}};
}

QString Changed(const QString& text, const QJsonObject& change) {
    EditorText edited(text);
    edited.change(change);
    return edited.text();
}

// ---------------------------------------------------------------------------------------------
// Changes
// ---------------------------------------------------------------------------------------------

TEST(EditorText, ChangesArePiecesOrTheWholeText) {
    const QString text = QStringLiteral("one\ntwo\nthree");
    EXPECT_EQ(Changed(text, Change(Position(1, 0), Position(1, 3), QStringLiteral("2"))),
              QStringLiteral("one\n2\nthree"));
    EXPECT_EQ(Changed(text, Change(Position(0, 3), Position(2, 0), QString())),
              QStringLiteral("onethree"));
    EXPECT_EQ(Changed(text, {{QStringLiteral("text"), QStringLiteral("new")}}),
              QStringLiteral("new"));
}

TEST(EditorText, LinesEndWithCrLfLfOrCr) {
    const QString text = QStringLiteral("a\r\nb\nc\rd");
    int line = 0;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        const QString changed =
            Changed(text, Change(Position(line, 1), Position(line, 9), QStringLiteral("!")));
        QString expected = text;
        EXPECT_EQ(changed, expected.insert(text.indexOf(QLatin1Char(letter)) + 1, u'!'));
        ++line;
    }
}

TEST(EditorText, CharactersAreUtf16Units) {
    const QString text = QStringLiteral("'\U0001F600' x");
    EXPECT_EQ(Changed(text, Change(Position(0, 3), Position(0, 3), QStringLiteral("!"))),
              QStringLiteral("'\U0001F600!' x"));
}

TEST(EditorText, PositionsBeyondTheTextAreItsEnds) {
    const QString text = QStringLiteral("ab\ncd");
    const QString mark = QStringLiteral("!");
    EXPECT_EQ(Changed(text, Change(Position(-1, -1), Position(-1, 0), mark)),
              QStringLiteral("!ab\ncd"));
    EXPECT_EQ(Changed(text, Change(Position(9, 0), Position(1e18, 1e18), mark)),
              QStringLiteral("ab\ncd!"));
    EXPECT_EQ(Changed(text, Change(Position(1, 2), Position(0, 1), mark)),
              QStringLiteral("ab\ncd!"));
    EXPECT_EQ(Changed(text, Change({}, {}, mark)), QStringLiteral("!ab\ncd"));
}

// The places of a changed text are those of a text that was never another.
TEST(EditorText, ManyChangesKeepTheLines) {
    std::mt19937 random(20261122);
    const auto number = [&random](int end) {
        return static_cast<int>(random() % static_cast<unsigned>(end));
    };
    const QStringList pieces = {QStringLiteral("\r"),         QStringLiteral("\n"),
                                QStringLiteral("\r\n"),       QStringLiteral("x"),
                                QStringLiteral("\U0001F600"), QString()};
    EditorText edited;
    for (int round = 0; round < 20'000; ++round) {
        const int line = number(8);
        const QJsonObject start = Position(line, number(4));
        const QJsonObject end = Position(line + number(2), number(4));
        const QString text = pieces[number(pieces.size())] + pieces[number(pieces.size())];
        EditorText fresh(edited.text());
        fresh.change(Change(start, end, text));
        edited.change(Change(start, end, text));
        ASSERT_EQ(edited.text(), fresh.text()) << round;
        if (edited.text().size() > 60) {
            edited = EditorText();
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Places
// ---------------------------------------------------------------------------------------------

TEST(LspLines, OffsetsAreThoseOfTheCompiledText) {
    const QString text = QStringLiteral("ab\r\nc\rde\nf");
    const LspLines lines(text);
    EXPECT_EQ(CompiledText(text), QStringLiteral("ab\ncde\nf"));
    EXPECT_EQ(lines.positionOf(3), Position(1, 0));
    EXPECT_EQ(lines.positionOf(4), Position(2, 0));
    EXPECT_EQ(lines.positionOf(5), Position(2, 1));
    EXPECT_EQ(lines.positionOf(8), Position(3, 1));
    EXPECT_EQ(lines.offsetOf(Position(0, 9)), 2);
    EXPECT_EQ(lines.offsetOf(Position(1, 1)), 4);
    EXPECT_EQ(lines.offsetOf(Position(9, 0)), 8);
}

TEST(LspLines, EachOffsetHasItsPosition) {
    for (const char* const text :
         {"", "\n", "a\n\nb", "a\r\n\r\nb\r\n", "PROGRAM P\r\nEND\r\n"}) {
        const LspLines lines{QString(QLatin1String(text))};
        const int size = CompiledText(QLatin1String(text)).size();
        for (int offset = 0; offset <= size; ++offset) {
            EXPECT_EQ(lines.offsetOf(lines.positionOf(offset)), offset) << text;
        }
    }
}

TEST(LspLines, RangesDoNotEndBeforeTheyBegin) {
    const LspLines lines(QStringLiteral("abc"));
    EXPECT_EQ(lines.rangeOf({2, 1})[QStringLiteral("end")].toObject(), Position(0, 2));
    const Span span = lines.spanOf(
        {{QStringLiteral("start"), Position(0, 2)}, {QStringLiteral("end"), Position(0, 1)}});
    EXPECT_EQ(span.begin, 2);
    EXPECT_EQ(span.end, 2);
}

}  // namespace
