#include "explain/distance.h"
#include "explain/entries.h"
#include "explain/markdown.h"
#include "explain/search.h"

#include <gmock/gmock.h>

#include <QStringList>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QStringList PAGES = {
    "# One",
    "",
    "```st frame",
    "# no heading",
    "(* statements *)",
    "```",
    "",
    "### `\"X\" is too wide`",
    "",
    "<!-- id: too-wide, much-too-wide -->",
    "",
    "```st statements",
    "a := 1;",
    "```",
    "",
    "## Others",
    "",
    "no entry",
    "# Two",
    "## A title",
    "<!-- id: of-two -->",
    "<!-- a comment -->",
    "text",
};

std::vector<Entry> Titled(const QStringList& titles) {
    std::vector<Entry> entries;
    for (const QString& title : titles) {
        entries.push_back({{title.toLower().replace(' ', '-')}, true, title, {}, {}});
    }
    return entries;
}

QStringList TitlesFound(const QStringList& titles, const QString& question) {
    QStringList found;
    for (const Entry& entry : FindEntries(Titled(titles), question)) {
        found.append(entry.title);
    }
    return found;
}

QString Plain(const QStringList& markdown, int width = 80) {
    return PlainText(markdown, {width, false});
}

QString Colored(const QString& line) {
    return PlainText({line}, {80, true});
}

}  // namespace

TEST(Entries, AreHeadingsWithIdentifiersOfAnyPage) {
    const std::vector<Entry> entries = ReadEntries(PAGES);
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_THAT(entries[0].ids, ElementsAre("too-wide", "much-too-wide"));
    EXPECT_EQ(TitleOf(entries[0]), "\"X\" is too wide");
    EXPECT_THAT(entries[0].body, ElementsAre("", "```st statements", "a := 1;", "```", ""));
    EXPECT_THAT(entries[0].frame, ElementsAre("# no heading", "(* statements *)"));
    EXPECT_THAT(entries[1].ids, ElementsAre("of-two"));
    EXPECT_EQ(entries[1].title, "A title");
    EXPECT_THAT(entries[1].body, ElementsAre("<!-- a comment -->", "text"));
    EXPECT_THAT(entries[1].frame, IsEmpty());
}

TEST(Markdown, MarksWithinALine) {
    EXPECT_EQ(Plain({"a `b \"c\"` [d `e`](f.md#g), *h* **i** j_k \\| 2 * 3 * 4"}),
              "a `b \"c\"` d `e`, h i j_k | 2 * 3 * 4\n");
    EXPECT_EQ(Plain({"``a ` *b*`` `[c](d)`"}), "``a ` *b*`` `[c](d)`\n");
    EXPECT_EQ(Plain({"an open ` and [bracket] (c)"}), "an open ` and [bracket] (c)\n");
}

TEST(Markdown, CodeIsBoldWithColors) {
    EXPECT_EQ(Colored("a `b c`, d"), "a \033[1mb c\033[0m, d\n");
    EXPECT_EQ(BoldText("`a` is *b*", {80, true}), "\033[1ma is b\033[0m\n");
    EXPECT_EQ(BoldText("`a` is *b*", {80, false}), "a is b\n");
}

TEST(Markdown, LinesAreBrokenWhereMarksDoNotCount) {
    EXPECT_EQ(Plain({"aa bb", "cc dd"}, 5), "aa bb\ncc dd\n");
    EXPECT_EQ(Plain({"aa bb cc"}, 4), "aa\nbb\ncc\n");
    EXPECT_EQ(Plain({"a very-wide-word b"}, 1), "a\nvery-wide-word\nb\n");
    EXPECT_EQ(PlainText({"`aa` bb"}, {5, true}), "\033[1maa\033[0m bb\n");
}

TEST(Markdown, Blocks) {
    EXPECT_EQ(Plain({"<!-- x -->", "", "a", "- b", "  c", "- d", "", "12. e f", "", "g"}, 6),
              "a\n\n- b c\n- d\n12. e\n    f\n\ng\n");
    EXPECT_EQ(Plain({"a", "```st", "| b |", "", "- c", "```", "```", "d", "```"}, 3),
              "a\n\n    | b |\n\n    - c\n\n    d\n");
    EXPECT_EQ(Plain({"```", "open"}), "    open\n");
    EXPECT_EQ(Plain({}), "");
}

TEST(Markdown, Tables) {
    const QStringList table = {"| a | bb |", "|---|---|", "| `c\\|` | d |", "| | e |"};
    EXPECT_EQ(Plain(table), "a      bb\n-----  --\n`c\\|`  d\n       e\n");
    const QStringList wide = {"| a | b |", "|---|---|", "| 123456 890 | 1234 678 0123 |"};
    EXPECT_EQ(Plain(wide, 19),
              "a         b\n--------  ---------\n123456    1234 678\n890       0123\n");
    EXPECT_EQ(Plain(wide, 1), Plain(wide, 18));
}

TEST(Distance, IsTheLeastNumberOfChanges) {
    const QStringList texts = {"", "a", "ab", "abc", "acb", "xbc"};
    EXPECT_EQ(EditDistance(texts[0], texts[0]), 0);
    EXPECT_EQ(EditDistance(texts[0], texts[3]), 3);
    EXPECT_EQ(EditDistance(texts[3], texts[0]), 3);
    EXPECT_EQ(EditDistance(texts[3], texts[1]), 2);
    EXPECT_EQ(EditDistance(texts[3], texts[4]), 2);
    EXPECT_EQ(EditDistance(texts[3], texts[5]), 1);
    EXPECT_EQ(EditDistance(texts[3], texts[3]), 0);
}

TEST(Search, WhatVariesFitsAnything) {
    const QStringList titles = {"\"X\" is no T", "\"X\" or \"Y\" is no T", "A file is here"};
    EXPECT_THAT(TitlesFound(titles, "\"a b\" is no c d"), ElementsAre(titles[0]));
    EXPECT_THAT(TitlesFound(titles, "\"\" is no INT"), ElementsAre(titles[0]));
    EXPECT_THAT(TitlesFound(titles, "\"A\" OR \"B\" is no c"), ElementsAre(titles[1]));
    EXPECT_THAT(TitlesFound(titles, "A  file is  here"), ElementsAre(titles[2]));
    EXPECT_THAT(TitlesFound(titles, "B file is here"), IsEmpty());
}

TEST(Search, OuterPiecesDoNotOverlap) {
    EXPECT_THAT(TitlesFound({"ab X ba"}, "ab ba"), IsEmpty());
    EXPECT_THAT(TitlesFound({"ab X cd Y ef"}, "ab cd ef"), IsEmpty());
    EXPECT_THAT(TitlesFound({"ab X cd Y ef"}, "ab  cd  ef"), IsEmpty());
    EXPECT_THAT(TitlesFound({"ab X cd Y ef"}, "ab 1 cd 2 ef"), ElementsAre("ab X cd Y ef"));
    EXPECT_THAT(TitlesFound({"ab X cd Y ef"}, "ab 1 ef"), IsEmpty());
}

TEST(Search, PartsOfTexts) {
    const QStringList titles = {"The left has type T", "The right has type T", "No tape"};
    EXPECT_THAT(TitlesFound(titles, "left has type INT"), ElementsAre(titles[0]));
    EXPECT_THAT(TitlesFound(titles, "has type INT"), ElementsAre(titles[0], titles[1]));
    EXPECT_THAT(TitlesFound(titles, "tap"), ElementsAre(titles[2]));
    EXPECT_THAT(TitlesFound(titles, "has TYPE"), ElementsAre(titles[0], titles[1]));
    EXPECT_THAT(TitlesFound(titles, "INT"), IsEmpty());
    EXPECT_THAT(TitlesFound(titles, "type of everything"), IsEmpty());
}

TEST(Search, LinesOfOutput) {
    const QStringList titles = {"No type", "Error: none"};
    for (const char* const line :
         {"Error: Line 1, Column 2: No type", ";Warning: Line 1, Column 2: No type", ";No type",
          "12:30 log Error: Line 10, Column 20: No type", "a b.st:1:2: error: No type",
          "a.st:1:2: error: something else [no-type]", "NO_TYPE", " no-type\nand more"}) {
        EXPECT_THAT(TitlesFound(titles, line), ElementsAre(titles[0])) << line;
    }
    EXPECT_THAT(TitlesFound(titles, "error: none"), ElementsAre(titles[1]));
}

TEST(Search, NearestIdentifiers) {
    const std::vector<Entry> entries = Titled({"abc def", "abc deg", "xyz", "abx dxf", "abc"});
    EXPECT_THAT(NearestIds(entries, "abc_def"), ElementsAre("abc-def", "abc-deg", "abx-dxf"));
    EXPECT_THAT(NearestIds(entries, "XYY"), ElementsAre("xyz"));
    EXPECT_THAT(NearestIds(entries, "deg"), ElementsAre("abc-deg"));
    EXPECT_THAT(NearestIds(entries, "qqqqqqq"), IsEmpty());
    EXPECT_THAT(NearestIds(entries, " "), IsEmpty());
}
