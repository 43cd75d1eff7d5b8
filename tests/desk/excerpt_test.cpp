// A line of a script with its mark: both line up, whatever the line holds.

#include "reports/excerpt.h"

#include <gtest/gtest.h>

#include <QVector>

#include <chrono>
#include <string>

#include "reports/terminal_text.h"
#include "sample_reports.h"

namespace {

Source Script(const QString& text) {
    return Source(QStringLiteral("a.st"), text);
}

// Text and mark, one under the other.
std::string Shown(const Source& source, Span piece) {
    const Excerpt excerpt = ExcerptOf(source, piece);
    return (excerpt.text + u'\n' + excerpt.mark).toStdString();
}

std::string Marked(const QString& text, const QString& piece) {
    const Source source = Script(text);
    return Shown(source, PieceOf(source, piece));
}

int WidthOf(const QString& text) {
    int width = 0;
    for (const uint character : text.toUcs4()) {
        width += ShownCellOf(character).width;
    }
    return width;
}

TEST(Excerpts, MarkIsUnderTheWholePiece) {
    EXPECT_EQ(Marked("a := bcd;", "bcd"), "a := bcd;\n     ^^^");
    EXPECT_EQ(Marked("a := bcd;", "a := bcd;"), "a := bcd;\n^^^^^^^^^");
}

TEST(Excerpts, LineIsThatOfTheBegin) {
    const Source source = Script("x;\ny;\nz;\n");
    EXPECT_EQ(ExcerptOf(source, {3, 4}).line, 2);
    EXPECT_EQ(Shown(source, {3, 4}), "y;\n^");
}

TEST(Excerpts, EmptyPieceHasAMark) {
    const Source source = Script("x;\ny;");
    EXPECT_EQ(Shown(source, {0, 0}), "x;\n^");
    EXPECT_EQ(Shown(source, {2, 2}), "x;\n  ^");
    EXPECT_EQ(Shown(source, {5, 5}), "y;\n  ^");
    EXPECT_EQ(Shown(Script(""), {0, 0}), "\n^");
    EXPECT_EQ(Shown(Script("x;\n"), {3, 3}), "\n^");
}

TEST(Excerpts, PieceOfSeveralLinesIsMarkedToTheEndOfItsFirst) {
    EXPECT_EQ(Marked("a := b\n+ c;", "b\n+ c"), "a := b\n     ^");
    EXPECT_EQ(Marked("a := bc\r\n+ c;", "bc\r\n+ c"), "a := bc\n     ^^");
    EXPECT_EQ(Marked("a\r\nb", "\r\nb"), "a\n ^");
}

TEST(Excerpts, TabsEndAtStopsInTextAndMark) {
    EXPECT_EQ(Marked("\tx", "x"), "    x\n    ^");
    EXPECT_EQ(Marked("ab\tx\ty", "x"), "ab  x   y\n    ^");
    EXPECT_EQ(Marked("abcd\tx", "x"), "abcd    x\n        ^");
    EXPECT_EQ(Marked("a\tb", "\tb"), "a   b\n ^^^^");
}

TEST(Excerpts, WidthsAreThoseOfATerminal) {
    EXPECT_EQ(Marked("уровень := я;", "я"), "уровень := я;\n           ^");
    EXPECT_EQ(Marked("水位 := 漢字;", "漢字"), "水位 := 漢字;\n        ^^^^");
    EXPECT_EQ(Marked("e\u0301 := x;", "x"), "e\u0301 := x;\n     ^");
    EXPECT_EQ(Marked("😀 := x;", "x"), "😀 := x;\n      ^");
    EXPECT_EQ(Marked("ｱ := x;", "x"), "ｱ := x;\n     ^");
    EXPECT_EQ(Marked("e\u0301", "\u0301"), "e\u0301\n ^");
}

TEST(Excerpts, CharacterOfTwoUnitsIsMarkedWhole) {
    const Source source = Script(QStringLiteral("a 😀 b"));
    for (const Span half : {Span{2, 3}, Span{3, 4}, Span{3, 3}}) {
        EXPECT_EQ(Shown(source, half), "a 😀 b\n  ^^");
    }
}

TEST(Excerpts, NothingCommandsTheTerminal) {
    EXPECT_EQ(Marked("a\x1b[31m b", "b"), "a␛[31m b\n       ^");
    EXPECT_EQ(Marked("a\rb\x7f\x85 c", "c"), "a␍b␡\uFFFD c\n      ^");
    EXPECT_EQ(Marked(QStringLiteral("a\u202Eb\u2066c\u2029 d"), "d"),
              "a\uFFFDb\uFFFDc\uFFFD d\n       ^");
    const QChar lone[] = {u'a', QChar(0xD800), u'b'};
    EXPECT_EQ(Marked(QString(lone, 3), "b"), "a\uFFFDb\n  ^");
    EXPECT_EQ(Marked(QString("a") + QChar(0) + "b", "b"), "a␀b\n  ^");
    EXPECT_EQ(Harmless(u"a\tb\n"), QStringLiteral("a␉b␊"));
}

// ---------------------------------------------------------------------------------------------
// Long lines
// ---------------------------------------------------------------------------------------------

constexpr int ROOM = 100;

TEST(LongLines, WhatIsFarFromTheMarkIsCut) {
    const QString digits = QStringLiteral("0123456789").repeated(5);
    const std::string both = digits.toStdString();
    EXPECT_EQ(Marked(digits + "x" + digits.chopped(1), "x"),
              both + "x" + both.substr(0, 49) + "\n" + std::string(50, ' ') + "^");
    EXPECT_EQ(Marked(digits + "x" + digits, "x"),
              both + "x" + both.substr(0, 48) + "…\n" + std::string(50, ' ') + "^");
    EXPECT_EQ(Marked(digits + digits + "x", "x"),
              "…" + both.substr(2) + both + "x\n" + std::string(99, ' ') + "^");
    EXPECT_EQ(
        Marked(digits.repeated(9) + "x" + digits.repeated(9), "x"),
        "…" + both.substr(1) + "x" + both.substr(0, 48) + "…\n" + std::string(50, ' ') + "^");
}

TEST(LongLines, LongPieceShowsItsBegin) {
    const QString piece = QString(500, u'x');
    const Source source = Script(QString(300, u'-') + piece + QString(300, u'-'));
    const Excerpt excerpt = ExcerptOf(source, PieceOf(source, piece));
    EXPECT_EQ(excerpt.text,
              QString(QChar(u'…')) + QString(24, u'-') + QString(74, u'x') + QChar(u'…'));
    EXPECT_EQ(excerpt.mark, QString(25, u' ') + QString(75, u'^'));
}

TEST(LongLines, CutNeverSplitsACharacter) {
    for (const QString& before : {QStringLiteral("漢"), QStringLiteral("a漢"),
                                  QStringLiteral("😀"), QStringLiteral("e\u0301")}) {
        for (int shift = 0; shift < 3; ++shift) {
            const QString side = QString(shift, u'-') + before.repeated(200);
            const Source source = Script(side + "x" + side);
            const Excerpt excerpt = ExcerptOf(source, PieceOf(source, "x"));
            EXPECT_LE(WidthOf(excerpt.text), ROOM);
            EXPECT_FALSE(excerpt.text.contains(QChar::ReplacementCharacter));
            const int mark = WidthOf(excerpt.text.left(excerpt.text.indexOf(u'x')));
            EXPECT_EQ(excerpt.mark, QString(mark, u' ') + u'^');
        }
    }
}

TEST(LongLines, CutWithoutWidthShows) {
    const QString combining = QString(QChar(0x301)).repeated(300);
    const std::string seen = QString(QChar(0x301)).repeated(200).toStdString();
    EXPECT_EQ(Marked("a" + combining + "x", "x"), "…" + seen + "x\n ^");
    EXPECT_EQ(Marked("x" + combining + "a", "x"),
              "x" + QString(QChar(0x301)).repeated(199).toStdString() + "…\n^");
}

// Wherever the mark stands in whatever line, the character over it is the piece's first.
TEST(LongLines, MarkIsUnderItsPieceEverywhere) {
    const QString unit = QStringLiteral("a\tя漢😀e\u0301\x1b");
    const QString line = unit.repeated(60);
    for (int at = 0; at <= line.size(); ++at) {
        const Source source = Script(line.left(at) + QChar(u'§') + line.mid(at));
        const Excerpt excerpt = ExcerptOf(source, {at, at + 1});
        const int column = WidthOf(excerpt.text.left(excerpt.text.indexOf(u'§')));
        ASSERT_EQ(excerpt.mark, QString(column, u' ') + u'^') << at;
        ASSERT_LE(WidthOf(excerpt.text), ROOM) << at;
    }
}

TEST(LongLines, TimeDoesNotGrowWithTheLine) {
    const int count = 2'000;
    const Source source = Script(QStringLiteral("漢\t").repeated(count * 1'000));
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        const int at = source.size() / count * i;
        ASSERT_LT(ExcerptOf(source, {at, source.size()}).text.size(), 2 * ROOM);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

}  // namespace
