// Texts: constants, concatenation, quoting, numbers as text, comparison.

#include "qyx_text.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "qyx_files.h"
#include "support.h"

namespace {

constexpr qint64 LEAST = std::numeric_limits<qint64>::min();
constexpr qint64 GREATEST = std::numeric_limits<qint64>::max();

TEST(Texts, ConstantsKnowTheirSize) {
    EXPECT_EQ("MOV"_L1.size(), 3);
    EXPECT_EQ("MOV"_L1, QLatin1String("MOV"));
    EXPECT_TRUE(""_L1.isEmpty());
}

TEST(Texts, DigitsAboveNineAreLowerCase) {
    QString out;
    EXPECT_EQ(IntToStr(255, out, 16), "ff");
    EXPECT_EQ(out, "ff");
    EXPECT_EQ(Int64ToStr(1099511627775, out, 16), "ffffffffff");
    EXPECT_EQ(out, "ffffffffff");
}

TEST(Texts, NumbersAreDecimalUnlessAsked) {
    QString out;
    EXPECT_EQ(IntToStr(-42, out), "-42");
    EXPECT_EQ(Int64ToStr(LEAST, out), "-9223372036854775808");
    EXPECT_EQ(Int64ToStr(GREATEST, out), "9223372036854775807");
}

// The room that is kept for a part of an item has no other check.
TEST(Texts, PartsFitTheRoomThatIsKeptForThem) {
    std::array<char, 64> room = {};
    for (const QStringView text : {u"name", u"Таблица", u"\u20ac\u20ac\u20ac\u20ac"}) {
        EXPECT_LE(PutPart(room.data(), text) - room.data(), PartSize(text));
    }
}

struct PaddedNumber {
    qint64 value;
    std::size_t width;
    int base;
    std::string text;
};

TEST(Texts, WidthFillsWithZerosAndNeverCuts) {
    const std::vector<PaddedNumber> numbers = {
        {7, 4, DECIMAL, "0007"},
        {0, 4, DECIMAL, "0000"},
        {1234, 4, DECIMAL, "1234"},
        {12345, 4, DECIMAL, "12345"},
        {7, 0, DECIMAL, "7"},
        {7, 1, DECIMAL, "7"},
        {7, 100, DECIMAL, std::string(99, '0') + '7'},
        {255, 4, 16, "00ff"},
        {0xABCDE, 4, 16, "abcde"},
        {8, 4, 8, "0010"},
        {5, 8, 2, "00000101"},
        {35, 2, 36, "0z"},
        {-7, 4, DECIMAL, "-007"},
        {-7, 2, DECIMAL, "-7"},
        {-7, 1, DECIMAL, "-7"},
        {-12345, 4, DECIMAL, "-12345"},
        {-255, 6, 16, "-000ff"},
        {GREATEST, 20, DECIMAL, "09223372036854775807"},
        {LEAST, 21, DECIMAL, "-09223372036854775808"},
        {GREATEST, 64, 2, '0' + std::string(63, '1')},
    };
    for (const PaddedNumber& number : numbers) {
        std::string out = "what was there";
        EXPECT_EQ(&IntToStr(number.value, out, number.width, number.base), &out);
        EXPECT_EQ(out, number.text);
    }
}

TEST(Texts, PaddedNumbersAreDecimalUnlessAsked) {
    std::string out;
    EXPECT_EQ(IntToStr(42, out, 4), "0042");
}

TEST(Texts, LengthsCountUtf16Units) {
    EXPECT_EQ(StrLen(QChar(0x0416)), 1);
    EXPECT_EQ(StrLen("label"), 5);
    EXPECT_EQ(StrLen(""), 0);
    EXPECT_EQ(StrLen("label"_L1), 5);
    EXPECT_EQ(StrLen(QStringView(u"Насос")), 5);
    EXPECT_EQ(StrLen(QStringLiteral(u"\U0001F600")), 2);
    EXPECT_EQ(StrLen(QString()), 0);
}

TEST(Texts, PartsOfEveryKindAreJoined) {
    const QString text = QStringLiteral("Ж");
    const QStringView view = QStringView(u"xНасосx").mid(1, 5);
    EXPECT_EQ(Utf8(StringsToString(text, " ", view, "=", "a\"b"_L1, QChar(0x0416))),
              "Ж Насос=a\"bЖ");
    EXPECT_EQ(Utf8(StringsToString(text)), "Ж");
}

TEST(Texts, EmptyPartsAddNothing) {
    EXPECT_EQ(Utf8(StringsToString("a", "", QString(), QStringView(), ""_L1, "b")), "ab");
    EXPECT_EQ(Utf8(StringsToString("", QString())), "");
}

TEST(Texts, QuotesGoAroundAnyText) {
    EXPECT_EQ(Utf8(Quoted(u"Насос")), "\"Насос\"");
    EXPECT_EQ(Utf8(Quoted("VAR"_L1)), "\"VAR\"");
    EXPECT_EQ(Utf8(Quoted(QStringView())), "\"\"");
}

TEST(Texts, ComparisonMayIgnoreCase) {
    EXPECT_EQ(StrCmp(QStringLiteral("end_if"), QStringLiteral("END_IF"), true), 0);
    EXPECT_NE(StrCmp(QStringLiteral("end_if"), QStringLiteral("END_IF"), false), 0);
    EXPECT_LT(StrCmp(QStringLiteral("a"), QStringLiteral("B"), true), 0);
    EXPECT_GT(StrCmp(QStringLiteral("ж"), QStringLiteral("Е"), true), 0);
}

}  // namespace
