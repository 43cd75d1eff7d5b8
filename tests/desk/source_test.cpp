// Places in a script: offsets, lines and columns.

#include "facts/source.h"

#include <gtest/gtest.h>

namespace {

TEST(Source, PlacesCountLinesAndUnits) {
    const Source source(QStringLiteral("name"), QStringLiteral("ab\n\ncde"));
    ASSERT_EQ(source.lineCount(), 3);
    const Place places[] = {{1, 1}, {1, 2}, {1, 3}, {2, 1}, {3, 1}, {3, 2}, {3, 3}, {3, 4}};
    for (int offset = 0; offset <= source.size(); ++offset) {
        const Place place = source.placeOf(offset);
        EXPECT_EQ(place.line, places[offset].line) << offset;
        EXPECT_EQ(place.column, places[offset].column) << offset;
        EXPECT_EQ(source.offsetOf(place), offset);
    }
}

TEST(Source, PlacesBeforeTheTextAreItsBegin) {
    const Source source(QStringLiteral("name"), QStringLiteral("ab\ncde"));
    EXPECT_EQ(source.offsetOf({0, 0}), 0);
    EXPECT_EQ(source.offsetOf({0, 9}), 0);
    EXPECT_EQ(source.offsetOf({1, 0}), 0);
}

TEST(Source, PlacesBeyondTheTextAreItsEnd) {
    const Source source(QStringLiteral("name"), QStringLiteral("ab\ncde"));
    EXPECT_EQ(source.offsetOf({1, 9}), 2);
    EXPECT_EQ(source.offsetOf({2, 9}), 6);
    EXPECT_EQ(source.offsetOf({9, 1}), 6);
    EXPECT_EQ(source.offsetOf({2, 0}), 2);
}

TEST(Source, LinesAreWithoutTheirLineFeeds) {
    const Source source(QStringLiteral("name"), QStringLiteral("ab\n\nc\r\n"));
    const QString lines[] = {QStringLiteral("ab"), QString(), QStringLiteral("c\r"), QString()};
    ASSERT_EQ(source.lineCount(), 4);
    for (int line = 1; line <= source.lineCount(); ++line) {
        EXPECT_EQ(source.text(source.lineAt(line)).toString().toStdString(),
                  lines[line - 1].toStdString());
    }
}

TEST(Source, EmptyTextHasOneLine) {
    const Source source;
    EXPECT_EQ(source.lineCount(), 1);
    EXPECT_TRUE(source.lineAt(1).isEmpty());
    EXPECT_EQ(source.placeOf(0).line, 1);
    EXPECT_EQ(source.placeOf(0).column, 1);
    EXPECT_EQ(source.offsetOf({1, 1}), 0);
}

TEST(Source, ColumnsCountUtf16Units) {
    const QString text = QString::fromUtf8(
        "\xf0\x9f\x98\x80"
        "a");
    const Source source(QStringLiteral("name"), text);
    EXPECT_EQ(source.placeOf(2).column, 3);
    EXPECT_EQ(source.text({2, 3}).toString(), QStringLiteral("a"));
}

}  // namespace
