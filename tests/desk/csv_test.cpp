// Tables as texts: cells, quotes, separators, faults.

#include "facts/csv.h"

#include <QStringList>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

std::vector<std::string> CellsOf(const Csv& csv, std::size_t row) {
    std::vector<std::string> texts;
    for (const CsvCell& cell : csv.rows.at(row).cells) {
        texts.push_back(cell.text.toStdString());
    }
    return texts;
}

TEST(Csv, CellsStandBetweenCommas) {
    const Csv csv = ReadCsv("a,b , c\n1,,3\n");
    ASSERT_EQ(csv.rows.size(), 2U);
    EXPECT_FALSE(csv.fault);
    EXPECT_THAT(CellsOf(csv, 0), ElementsAre("a", "b", "c"));
    EXPECT_THAT(CellsOf(csv, 1), ElementsAre("1", "", "3"));
}

TEST(Csv, SemicolonInTheFirstRowMakesItTheSeparator) {
    const Csv csv = ReadCsv("a;b\n1,5;2\n");
    EXPECT_EQ(csv.separator, QChar(u';'));
    EXPECT_THAT(CellsOf(csv, 1), ElementsAre("1,5", "2"));
    EXPECT_EQ(ReadCsv("a,b\n1;5,2\n").separator, QChar(u','));
    EXPECT_EQ(ReadCsv("\"a;b\",c\n").separator, QChar(u','));
    EXPECT_EQ(ReadCsv("# one; two\na,b\n").separator, QChar(u','));
    EXPECT_EQ(ReadCsv("# one, two\n# three\na;b\n").separator, QChar(u';'));
}

TEST(Csv, QuotesHoldWhatElseEndsACell) {
    const Csv csv = ReadCsv("\"a, b\",\" c \"\n\"say \"\"no\"\"\",\"two\nlines\"\n");
    ASSERT_EQ(csv.rows.size(), 2U);
    EXPECT_THAT(CellsOf(csv, 0), ElementsAre("a, b", " c "));
    EXPECT_THAT(CellsOf(csv, 1), ElementsAre("say \"no\"", "two\nlines"));
}

TEST(Csv, LineEndsAndByteOrderMarkAreNoPart) {
    const Csv csv = ReadCsv(
        "\xef\xbb\xbf"
        "a,b\r\n1,2\r\n\r\n3,4");
    ASSERT_EQ(csv.rows.size(), 3U);
    EXPECT_THAT(CellsOf(csv, 0), ElementsAre("a", "b"));
    EXPECT_THAT(CellsOf(csv, 2), ElementsAre("3", "4"));
}

TEST(Csv, CommentsAreNoRows) {
    const Csv csv = ReadCsv("# one\na\n# two\nb\n");
    ASSERT_EQ(csv.rows.size(), 2U);
    EXPECT_THAT(CellsOf(csv, 1), ElementsAre("b"));
}

TEST(Csv, PlacesAreThoseOfTheText) {
    const Csv csv = ReadCsv("a,b\n1,  \"x\"\n");
    EXPECT_EQ(PlaceName(csv.rows[1].cells[0].place), "line 2, column 1");
    EXPECT_EQ(PlaceName(csv.rows[1].cells[1].place), "line 2, column 5");
}

TEST(Csv, QuotesThatDoNotCloseAreAFault) {
    const Csv csv = ReadCsv("a\n1,\"x\n");
    ASSERT_TRUE(csv.fault);
    EXPECT_EQ(PlaceName(csv.fault->place), "line 2, column 3");
}

TEST(Csv, NothingFollowsTheQuotesOfACell) {
    const Csv csv = ReadCsv("a,\"b\" c,d\n");
    ASSERT_TRUE(csv.fault);
    EXPECT_EQ(PlaceName(csv.fault->place), "line 1, column 7");
}

TEST(Csv, WhatIsWrittenIsReadAgain) {
    for (const char* const text :
         {"plain", "a, b", "a;b", "say \"no\"", " blank ", "# no", "x\ny"}) {
        const QByteArray row = "x," + CsvText(QString::fromUtf8(text)).toUtf8() + "\n";
        EXPECT_EQ(CellsOf(ReadCsv(row), 0).at(1), text);
    }
    EXPECT_EQ(CsvText(QStringLiteral("plain text")), QStringLiteral("plain text"));
}

}  // namespace
