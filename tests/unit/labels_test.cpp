// Code labels and the small text utilities.

#include <gtest/gtest.h>

#include "qyx_globals.h"
#include "qyx_scanner.h"

namespace {

TEST(Labels, FirstLabelOfARunIsNumberOne) {
    LabelCount = 1;
    Label label;
    EXPECT_TRUE(label.isEmpty());
    GetNewLabel(label);
    EXPECT_EQ(label.number, 1);
    EXPECT_FALSE(label.isEmpty());
}

TEST(Labels, SecondLabelOfAPairIsDrawnNext) {
    LabelCount = 5;
    Label label;
    Label next;
    GetNewLabelAndNextLabel(label, next);
    EXPECT_EQ(label.number, 5);
    EXPECT_EQ(next.number, 6);
    GetNewLabel(label);
    EXPECT_EQ(label.number, 6);
}

TEST(Texts, WidthFillsWithZerosAndNeverCuts) {
    QString out;
    EXPECT_EQ(IntToStr(7, out, 4, DECIMAL), "0007");
    EXPECT_EQ(out, "0007");
    EXPECT_EQ(IntToStr(12345, out, 4, DECIMAL), "12345");
}

TEST(Texts, DigitsAboveNineAreLowerCase) {
    QString out;
    EXPECT_EQ(IntToStr(255, out, 16), "ff");
    EXPECT_EQ(Int64ToStr(1099511627775, out, 16), "ffffffffff");
}

TEST(Texts, ComparisonMayIgnoreCase) {
    EXPECT_EQ(StrCmp(QStringLiteral("end_if"), QStringLiteral("END_IF"), true), 0);
    EXPECT_NE(StrCmp(QStringLiteral("end_if"), QStringLiteral("END_IF"), false), 0);
    EXPECT_LT(StrCmp(QStringLiteral("a"), QStringLiteral("B"), true), 0);
    EXPECT_GT(StrCmp(QStringLiteral("ж"), QStringLiteral("Е"), true), 0);
}

}  // namespace
