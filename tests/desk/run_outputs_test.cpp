// What runs write: traces, tests, charts, and files that appear whole or not at all.

#include "reports/chart.h"
#include "reports/test_table.h"
#include "reports/trace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using testing::HasSubstr;
using testing::Not;

namespace {

QByteArray ContentOf(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

TEST(Trace, HeadTellsScriptVersionAndChoices) {
    EXPECT_EQ(TraceHead("p.st", {}, {}, {"a", "b"}),
              "# script: p.st\n# version: yxst " YXST_VERSION
              "\n# engine: default\ncycle,tick,a,b\n");
    const std::string head =
        TraceHead("a\nb", {"width = typed", "locals = retained"}, {{"recursion", "off"}}, {});
    EXPECT_THAT(head, HasSubstr("# engine: width = typed\n# engine: locals = retained\n"
                                "# check: recursion = off\ncycle"));
    EXPECT_THAT(head, Not(HasSubstr("default")));
    EXPECT_THAT(head, Not(HasSubstr("a\nb")));
}

TEST(Trace, RowsHoldTheTextsOfValues) {
    const std::vector<Value> values = {TruthValue(true), WholeValue(TYP_INT, -5),
                                       RealValue(TYP_REAL, static_cast<double>(0.1F)),
                                       RealValue(TYP_LREAL, 2.0)};
    EXPECT_EQ(TraceRow(12, 1100, values), "12,1100,TRUE,-5,0.1,2.0\n");
    EXPECT_EQ(TraceRow(1, 4'294'967'295, {}), "1,4294967295\n");
}

class FilesTest : public testing::Test {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath("file");

    QStringList names() const {
        return QDir(folder.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries);
    }
};

TEST_F(FilesTest, NothingIsThereBeforeTheEnd) {
    {
        WholeFile file(path);
        file.write("text");
        EXPECT_FALSE(QFileInfo::exists(path));
        EXPECT_TRUE(file.finish());
    }
    EXPECT_EQ(ContentOf(path), "text");
    {
        WholeFile file(path);
        file.write("other");
    }
    EXPECT_EQ(ContentOf(path), "text");
    EXPECT_EQ(names(), QStringList{"file"});
}

TEST_F(FilesTest, WhatIsNoFileIsRefused) {
    for (const QString& name : {folder.path(), QStringLiteral("/dev/null"), path + "/in/it"}) {
        WholeFile file(name);
        file.write("text");
        EXPECT_FALSE(file.isFine()) << name.toStdString();
        EXPECT_FALSE(file.finish()) << name.toStdString();
    }
    EXPECT_EQ(QFileInfo("/dev/null").isFile(), false);
}

TEST_F(FilesTest, TestTablesJoinWhatDoesNotChange) {
    WholeFile file(path);
    TestTable table(file, {"a, b.st",
                           50,
                           {"width = typed"},
                           {{"stack-left", "off"}},
                           {{"litres", Section::EngineGlobal, TYP_LREAL, {}, 0}},
                           {"start", "level"},
                           {"lamp"}});
    table.cycle({"1", "2.5"}, {"0"});
    table.cycle({"1", "2.5"}, {"0"});
    table.cycle({"1", "2.5"}, {"1"});
    table.cycle({"1", ""}, {"1"});
    table.end();
    ASSERT_TRUE(file.finish());
    EXPECT_EQ(ContentOf(path),
              "script, \"a, b.st\"\n"
              "tick, 50\n"
              "engine, width = typed\n"
              "check, stack-left, off\n"
              "global, litres, LREAL\n"
              "\n"
              "case, recorded\n"
              "cycles, start, level, lamp?\n"
              "2,      1,     2.5,   0\n"
              "1,      1,     2.5,   1\n"
              "1,      1,     ,      1\n");
}

TEST_F(FilesTest, TestTablesOfNoCyclesHaveNoRow) {
    WholeFile file(path);
    TestTable(file, {"a.st", 100, {}, {}, {}, {}, {"lamp"}}).end();
    ASSERT_TRUE(file.finish());
    EXPECT_EQ(ContentOf(path), "script, a.st\ntick, 100\n\ncase, recorded\ncycles, lamp?\n");
}

TEST(Chart, PageHoldsTheDataAndTheLicence) {
    Series level(10);
    level.add({1, RealValue(TYP_REAL, static_cast<double>(0.1F))});
    level.add({2, RealValue(TYP_REAL, std::numeric_limits<double>::infinity())});
    Series on(10);
    on.add({1, TruthValue(true)});
    const std::string page =
        PageOf({"<a & b>", 2, 100, true, {{"level", TYP_REAL, level}, {"on", TYP_BOOL, on}}});
    EXPECT_THAT(page, HasSubstr("<title>&lt;a &amp; b&gt;</title>"));
    EXPECT_THAT(page, HasSubstr(R"({"cycles":2,"tick":100,"piece":1,"watched":true,"series":[
{"name":"level","type":"REAL","points":[[1,0.1],[2,null]]},
{"name":"on","type":"BOOL","points":[[1,1]]}
]})"));
    EXPECT_THAT(page, HasSubstr("Permission is hereby granted"));
    EXPECT_THAT(page, Not(HasSubstr("sourceMappingURL")));
    for (const char* const mark :
         {"@TITLE@", "@DATA@", "@SCRIPT@", "@STYLE@", "@DYGRAPHS", "@LICENCE@"}) {
        EXPECT_THAT(page, Not(HasSubstr(mark)));
    }
}

}  // namespace
