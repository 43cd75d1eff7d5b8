// Edits of a script, and where the places of the changed text come from.

#include "check/edits.h"

#include "print_text.h"

#include <gtest/gtest.h>

namespace {

const QString TEXT = QStringLiteral("0123456789");

Edits EditsOf(std::initializer_list<Edit> all) {
    Edits edits;
    for (const Edit& edit : all) {
        edits.add(edit);
    }
    return edits;
}

QString Applied(std::initializer_list<Edit> all) {
    return EditsOf(all).applyTo(TEXT);
}

TEST(Edits, NoneChangeNothing) {
    const Edits none;
    EXPECT_EQ(none.applyTo(TEXT), TEXT);
    EXPECT_EQ(none.originalBegin(7), 7);
    EXPECT_EQ(none.originalEnd(7), 7);
}

TEST(Edits, AreAppliedInTheOrderOfTheScript) {
    EXPECT_EQ(Applied({{{8, 9}, QStringLiteral("abc")}, {{0, 2}, QStringLiteral("x")}}),
              QStringLiteral("x234567abc9"));
    EXPECT_EQ(Applied({{{10, 10}, QStringLiteral("!")}, {{5, 5}, QStringLiteral("-")}}),
              QStringLiteral("01234-56789!"));
    EXPECT_EQ(Applied({{{2, 8}, QString()}}), QStringLiteral("0189"));
}

TEST(Edits, AtOnePlaceTheLaterStandsAfter) {
    EXPECT_EQ(Applied({{{5, 5}, QStringLiteral("a")}, {{5, 5}, QStringLiteral("b")}}),
              QStringLiteral("01234ab56789"));
    EXPECT_EQ(Applied({{{5, 5}, QStringLiteral("a")}, {{5, 7}, QStringLiteral("b")}}),
              QStringLiteral("01234ab789"));
}

TEST(Edits, OneTakesThePlaceOfThoseWithin) {
    const Edits edits = EditsOf({{{2, 3}, QStringLiteral("a")},
                                 {{5, 5}, QStringLiteral("b")},
                                 {{9, 10}, QStringLiteral("c")},
                                 {{2, 6}, QStringLiteral("--")}});
    EXPECT_EQ(edits.applyTo(TEXT), QStringLiteral("01--678c"));
    EXPECT_EQ(edits.all().size(), 2U);
}

TEST(Edits, PlacesBeforeAndAfter) {
    const Edits edits = EditsOf({{{2, 4}, QStringLiteral("abcdef")},  // longer by 4
                                 {{6, 9}, QStringLiteral("x")}});     // shorter by 2
    ASSERT_EQ(edits.applyTo(TEXT), QStringLiteral("01abcdef45x9"));
    EXPECT_EQ(edits.originalBegin(1), 1);
    EXPECT_EQ(edits.originalBegin(8), 4);
    EXPECT_EQ(edits.originalEnd(10), 6);
    EXPECT_EQ(edits.originalBegin(11), 9);
    EXPECT_EQ(edits.originalEnd(12), 10);
}

TEST(Edits, PlacesWithinAPieceAreItsEnds) {
    const Edits edits = EditsOf({{{2, 4}, QStringLiteral("abcdef")}});
    for (const int offset : {2, 3, 7}) {
        EXPECT_EQ(edits.originalBegin(offset), 2) << offset;
    }
    for (const int offset : {3, 7, 8}) {
        EXPECT_EQ(edits.originalEnd(offset), 4) << offset;
    }
    EXPECT_EQ(edits.originalEnd(2), 2);
}

TEST(Edits, PlacesWithinWhatIsPutIn) {
    const Edits edits = EditsOf({{{5, 5}, QStringLiteral("abc")}});
    for (const int offset : {5, 6, 8}) {
        EXPECT_EQ(edits.originalBegin(offset), 5) << offset;
        EXPECT_EQ(edits.originalEnd(offset), 5) << offset;
    }
    EXPECT_EQ(edits.originalBegin(9), 6);
}

TEST(Edits, PlacesAfterWhatIsTakenOut) {
    const Edits edits = EditsOf({{{2, 6}, QString()}});
    EXPECT_EQ(edits.originalBegin(2), 6);
    EXPECT_EQ(edits.originalEnd(3), 7);
}

TEST(NeutralText, HasTheExtentOfThePiece) {
    const QString piece = QStringLiteral("a := 1;\nb\t:= 2;");
    EXPECT_EQ(NeutralText(piece, QString()), QStringLiteral("       \n       "));
    EXPECT_EQ(NeutralText(piece, QStringLiteral("TRUE")), QStringLiteral("TRUE   \n       "));
    EXPECT_EQ(NeutralText(piece, QStringLiteral("a := 2;")), QStringLiteral("a := 2;\n       "));
}

TEST(NeutralText, IsLongerWhereThereIsNoRoom) {
    EXPECT_EQ(NeutralText(QStringLiteral("ab"), QStringLiteral("TRUE")),
              QStringLiteral("TRUE  "));
    EXPECT_EQ(NeutralText(QStringLiteral("a\nbcd"), QStringLiteral("xy")),
              QStringLiteral("xy \n   "));
    EXPECT_EQ(NeutralText(QString(), QStringLiteral("x")), QStringLiteral("x"));
}

// The begin and end of the script's piece in the changed text, "-" if there is none.
QString ExactOf(const Edits& edits, Span span) {
    const std::optional<Span> exact = edits.exact(span);
    return exact ? QStringLiteral("%1 %2").arg(exact->begin).arg(exact->end)
                 : QStringLiteral("-");
}

TEST(Edits, PiecesWithoutAChangeAreExact) {
    // 01ab4567cd89
    const Edits edits = EditsOf({{{2, 4}, QStringLiteral("ab")}, {{8, 8}, QStringLiteral("cd")}});
    EXPECT_EQ(ExactOf(edits, {0, 2}), "0 2");
    EXPECT_EQ(ExactOf(edits, {4, 8}), "4 8");
    EXPECT_EQ(ExactOf(edits, {10, 12}), "8 10");
    EXPECT_EQ(ExactOf(edits, {2, 2}), "2 2");
    EXPECT_EQ(ExactOf(edits, {4, 4}), "4 4");
    EXPECT_EQ(ExactOf(edits, {8, 8}), "8 8");
    for (const Span touching : {Span{1, 3}, Span{3, 3}, Span{2, 4}, Span{3, 5}, Span{0, 12},
                                Span{7, 9}, Span{9, 9}, Span{9, 11}}) {
        EXPECT_EQ(ExactOf(edits, touching), "-") << touching.begin << ' ' << touching.end;
    }
}

TEST(Edits, PiecesAroundWhatIsTakenOutAreNotExact) {
    const Edits edits = EditsOf({{{2, 5}, QString()}});
    EXPECT_EQ(ExactOf(edits, {0, 2}), "0 2");
    EXPECT_EQ(ExactOf(edits, {2, 4}), "5 7");
    EXPECT_EQ(ExactOf(edits, {1, 3}), "-");
}

// A text without the piece in brackets.
QString TakenOut(const QString& marked) {
    const int begin = marked.indexOf(u'[');
    const int end = marked.indexOf(u']') - 1;
    QString text = marked;
    text.remove(begin, 1).remove(end, 1);
    const Source source(QStringLiteral("script.st"), text);
    return EditsOf({TakeOut(source, {begin, end})}).applyTo(text);
}

TEST(TakenOutPieces, LeaveNoBlanksThatAreTooMany) {
    EXPECT_EQ(TakenOut("a [b] c"), "a c");
    EXPECT_EQ(TakenOut("a [b];"), "a;");
    EXPECT_EQ(TakenOut("a[b] c"), "a c");
    EXPECT_EQ(TakenOut("a [b]c"), "a c");
    EXPECT_EQ(TakenOut("f([b] c)"), "f(c)");
    EXPECT_EQ(TakenOut("a [b]"), "a");
    EXPECT_EQ(TakenOut("  [b] c"), "  c");
    EXPECT_EQ(TakenOut("  [b];"), "  ;");
    EXPECT_EQ(TakenOut("a [b]\r\nc"), "a\r\nc");
}

TEST(TakenOutPieces, GoWithTheLineThatIsTheirs) {
    EXPECT_EQ(TakenOut("a\n  [b] \nc"), "a\nc");
    EXPECT_EQ(TakenOut("a\r\n[b]\r\nc"), "a\r\nc");
    EXPECT_EQ(TakenOut("[b]"), "");
}

bool AreCommentsKept(const QString& text, const std::vector<Edit>& edits) {
    return KeepComments(Source(QStringLiteral("script.st"), text), edits);
}

TEST(Comments, AreKeptIfTheyAreWrittenAgain) {
    const QString text = QStringLiteral("a (* b\nc *) d // e");
    EXPECT_TRUE(AreCommentsKept(text, {{{0, 1}, QString()}, {{12, 14}, QString()}}));
    EXPECT_FALSE(AreCommentsKept(text, {{{1, 12}, QStringLiteral("(* b *)")}}));
    EXPECT_FALSE(AreCommentsKept(text, {{{13, 18}, QString()}}));
    EXPECT_TRUE(
        AreCommentsKept(text, {{{1, 13}, QString()}, {{18, 18}, QStringLiteral(" (* b\nc *)")}}));
}

}  // namespace
