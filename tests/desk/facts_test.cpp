// Facts: how they are collected, how they pass a pipe, how scripts are found and read.

#include "facts/catalogue.h"
#include "facts/compile.h"
#include "facts/input.h"
#include "facts/transfer.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/wait.h>

#include <cerrno>
#include <iterator>
#include <utility>

namespace {

Source SourceOf(const char* text) {
    return Source(QStringLiteral("test"), QString::fromUtf8(text));
}

Facts FactsAbout(const Source& source) {
    CompileResult result = CompileAndWait(source);
    EXPECT_TRUE(result.facts.has_value()) << result.failure.toStdString();
    return result.facts.value_or(Facts());
}

constexpr const char* WARNED =
    "FUNCTION F : INT VAR_ARG x : INT; END_VAR RESULT := x; END_FUNCTION\n"
    "PROGRAM P VAR a : INT := 1; b : INT; END_VAR\n"
    "  (* all *) b := F(a); IF a = 1 THEN GOTO l; END_IF; l: b := 2;\n"
    "END_PROGRAM\n";
constexpr const char* FINE = "PROGRAM P VAR a : INT := 1; END_VAR a := a; END_PROGRAM";
constexpr const char* WRONG = "PROGRAM P VAR a : BOOL := TRUE; END_VAR IF a; END_IF; END_PROGRAM";

// ---------------------------------------------------------------------------------------------
// The compile
// ---------------------------------------------------------------------------------------------

TEST(Compile, NamesTellWhatTheyAre) {
    const Source source = SourceOf(WARNED);
    const Facts facts = FactsAbout(source);
    const NameKind kinds[] = {NameKind::Function, NameKind::Variable, NameKind::Variable,
                              NameKind::Program,  NameKind::Variable, NameKind::Variable,
                              NameKind::Label};
    ASSERT_EQ(facts.names.size(), std::size(kinds));
    for (std::size_t index = 0; index < std::size(kinds); ++index) {
        EXPECT_EQ(facts.names[index].kind, kinds[index]) << index;
    }
    EXPECT_EQ(facts.names[0].type, TYP_INT);
    EXPECT_EQ(facts.names[1].section, TOKEN_VAR_ARG);
    EXPECT_EQ(facts.names[2].section, TOKEN_RESULT);
    EXPECT_EQ(facts.names[2].unit, 0);
    EXPECT_EQ(facts.names[4].unit, 1);
    EXPECT_EQ(facts.names[6].unit, NONE);
}

TEST(Compile, UsesReferToNames) {
    const Facts facts = FactsAbout(SourceOf(WARNED));
    const std::pair<UseKind, int> uses[] = {
        {UseKind::Write, 2}, {UseKind::Read, 1}, {UseKind::Write, 5}, {UseKind::Call, 0},
        {UseKind::Read, 4},  {UseKind::Read, 4}, {UseKind::Goto, 6},  {UseKind::Write, 5}};
    ASSERT_EQ(facts.uses.size(), std::size(uses));
    for (std::size_t index = 0; index < std::size(uses); ++index) {
        EXPECT_EQ(facts.uses[index].kind, uses[index].first) << index;
        EXPECT_EQ(facts.uses[index].name, uses[index].second) << index;
    }
}

TEST(Compile, TypesAndDefinitionsHaveTheirOwnCodes) {
    const Source source = SourceOf(WARNED);
    const Facts facts = FactsAbout(source);
    for (const TokenFact& token : facts.tokens) {
        const QString text = source.text(token.span).toString();
        if (text == QLatin1String("INT")) {
            EXPECT_EQ(token.code, TOKEN_IDENTIFIER);
        } else if (text == QLatin1String("F") && token.span.begin > 20) {
            EXPECT_EQ(token.code, TOKEN_FUNCTION);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Operations
// ---------------------------------------------------------------------------------------------

// Each operation of statements as "[left] operator [right]", the operands as they are written.
QStringList OperationsOf(const QString& statements) {
    const Source source(
        QStringLiteral("test"),
        QStringLiteral("FUNCTION F : INT VAR_ARG x : INT; y : INT; END_VAR RESULT := x * y; "
                       "END_FUNCTION PROGRAM P VAR_INPUT a : INT; b : INT; c : INT; r : REAL; "
                       "p : BOOL; q : BOOL; s : BOOL; END_VAR ") +
            statements + QStringLiteral(" END_PROGRAM"));
    const Facts facts = FactsAbout(source);
    EXPECT_TRUE(facts.isCompiled()) << statements.toStdString();
    QStringList operations;
    for (const OperationFact& each : facts.operations) {
        EXPECT_EQ(source.text(each.op).compare(QString(TokensTable[Lookup(each.code)].text)), 0);
        operations.append(QStringLiteral("[%1] %2 [%3]")
                              .arg(source.text(each.left).toString(),
                                   source.text(each.op).toString(),
                                   source.text(each.right).toString()));
    }
    operations.removeFirst();  // that of F
    return operations;
}

struct Grouping {
    const char* statements;
    QStringList operations;
};

TEST(Operations, AreGroupedAsTheCompilerGroupsThem) {
    const Grouping groupings[] = {
        {"a := a - b - c;", {"[a - b] - [c]", "[a] - [b]"}},
        {"a := a / b * c;", {"[a] / [b * c]", "[b] * [c]"}},
        {"a := a * b + c;", {"[a * b] + [c]", "[a] * [b]"}},
        {"a := a + b ** c MOD 2 SHL 1;",
         {"[a] + [b ** c MOD 2 SHL 1]", "[b] ** [c MOD 2 SHL 1]", "[c] MOD [2 SHL 1]",
          "[2] SHL [1]"}},
        {"a := (a + b) * -c;", {"[(a + b)] * [-c]", "[a] + [b]"}},
        {"a := ((a)) * (b - (c));", {"[((a))] * [(b - (c))]", "[b] - [(c)]"}},
        {"a := -a ** + -b;", {"[-a] ** [+ -b]"}},
        {"a := F(a + 1, F(b, c) * 2) - F(1, -2);",
         {"[F(a + 1, F(b, c) * 2)] - [F(1, -2)]", "[a] + [1]", "[F(b, c)] * [2]"}},
        {"p := p AND q OR s;", {"[p] AND [q OR s]", "[q] OR [s]"}},
        {"p := p OR q AND s XOR p;",
         {"[p] OR [q AND s XOR p]", "[q] AND [s XOR p]", "[s] XOR [p]"}},
        {"p := NOT p AND NOT q = s;",
         {"[NOT p] AND [NOT q = s]", "[] NOT [p]", "[] NOT [q = s]", "[q] = [s]"}},
        {"p := (a > b) AND (NOT (p));",
         {"[(a > b)] AND [(NOT (p))]", "[a] > [b]", "[] NOT [(p)]"}},
        {"p := a AND 3 = b + TICK;", {"[a AND 3] = [b + TICK]", "[a] AND [3]", "[b] + [TICK]"}},
        {"p := p = TRUE;", {"[p] = [TRUE]"}},
        {"a := NOT a + 1;", {"[] NOT [a + 1]", "[a] + [1]"}},
    };
    for (const Grouping& each : groupings) {
        EXPECT_EQ(OperationsOf(QString::fromUtf8(each.statements)), each.operations)
            << each.statements;
    }
}

TEST(Operations, StandInAllKindsOfStatements) {
    const Grouping groupings[] = {
        {"IF a = b THEN ELSIF b = c THEN END_IF;", {"[a] = [b]", "[b] = [c]"}},
        {"WHILE a < b DO END_WHILE;", {"[a] < [b]"}},
        {"REPEAT a := 1; UNTIL b - 1 >= c END_REPEAT;", {"[b - 1] >= [c]", "[b] - [1]"}},
        {"FOR a := b + 1 TO c - 1 DO END_FOR;", {"[b] + [1]", "[c] - [1]"}},
        {"FOR a := b SHR 1 DOWNTO c ROL 1 DO END_FOR;", {"[b] SHR [1]", "[c] ROL [1]"}},
        {"CASE a MOD b OF -1, 2..3: a := a ROR 2; 4: END_CASE;", {"[a] MOD [b]", "[a] ROR [2]"}},
        {"TICK := a * 2;", {"[a] * [2]"}},
        {"F(a, b * c);", {"[b] * [c]"}},
        {"l: a := a (* 1 *) * // 2\n b;", {"[a] * [b]"}},
    };
    for (const Grouping& each : groupings) {
        EXPECT_EQ(OperationsOf(QString::fromUtf8(each.statements)), each.operations)
            << each.statements;
    }
}

TEST(Operations, HaveTheTypesOfTheCompiler) {
    const Source source = SourceOf(
        "PROGRAM P VAR_INPUT a : INT; r : REAL; p : BOOL; END_VAR\n"
        "  p := NOT (r + a * 2 > 1) AND a = TRUE;\nEND_PROGRAM");
    const Facts facts = FactsAbout(source);
    const std::pair<Typ, Typ> types[] = {{TYP_BOOL, TYP_BOOL}, {TYP_NONE, TYP_BOOL},
                                         {TYP_REAL, TYP_SINT}, {TYP_REAL, TYP_REAL},
                                         {TYP_REAL, TYP_REAL}, {TYP_INT, TYP_BOOL}};
    ASSERT_EQ(facts.operations.size(), std::size(types));
    for (std::size_t index = 0; index < std::size(types); ++index) {
        EXPECT_EQ(facts.operations[index].leftType, types[index].first) << index;
        EXPECT_EQ(facts.operations[index].rightType, types[index].second) << index;
        EXPECT_EQ(facts.operations[index].statement, 0) << index;
    }
}

TEST(Operations, OfAnErrorAreThoseThatHadEnded) {
    const Facts facts = FactsAbout(SourceOf(
        "PROGRAM P VAR a : INT := 1; END_VAR a := a * 2; a := a + (a * 3) MOD END_PROGRAM"));
    ASSERT_FALSE(facts.isCompiled());
    EXPECT_EQ(facts.operations.size(), 2U);
}

TEST(Compile, AnErrorTellsWhatWasGoingOn) {
    const Source source = SourceOf(WRONG);
    const Facts facts = FactsAbout(source);
    ASSERT_FALSE(facts.isCompiled());
    EXPECT_EQ(source.text(facts.error.token).toString(), QStringLiteral(";"));
    ASSERT_EQ(facts.error.expected.size(), 1U);
    EXPECT_EQ(facts.error.expected.front(), TOKEN_THEN);
    EXPECT_EQ(facts.open.unit, 0);
    EXPECT_EQ(facts.open.declaration, NONE);
    EXPECT_EQ(facts.open.statement, 0);
    EXPECT_EQ(source.text({facts.open.part, facts.open.part + 1}).toString(),
              QStringLiteral("I"));
    EXPECT_FALSE(facts.open.inComment);
    EXPECT_EQ(source.text(facts.tokens.back().span).toString(), QStringLiteral("END_PROGRAM"));
}

TEST(Compile, TypesThatDoNotGoTogether) {
    const Facts facts = FactsAbout(SourceOf("PROGRAM P VAR a : BOOL; END_VAR a := 1.5;"));
    EXPECT_EQ(facts.error.current, TYP_BOOL);
    EXPECT_EQ(facts.error.next, TYP_REAL);
}

TEST(Compile, AnErrorInAComment) {
    EXPECT_TRUE(FactsAbout(SourceOf("PROGRAM P (* open")).open.inComment);
}

TEST(Compile, DetailOfMessagesAlone) {
    const CompileResult fine = CompileAndWait(SourceOf(FINE), Detail::IfMessages);
    ASSERT_TRUE(fine.facts.has_value());
    EXPECT_TRUE(fine.facts->isCompiled());
    EXPECT_TRUE(fine.facts->tokens.empty());
    const CompileResult wrong = CompileAndWait(SourceOf(WRONG), Detail::IfMessages);
    ASSERT_TRUE(wrong.facts.has_value());
    EXPECT_FALSE(wrong.facts->tokens.empty());
}

TEST(Compile, MessagesHaveTheSpanOfTheirToken) {
    const Source source = SourceOf(WRONG);
    const Facts facts = FactsAbout(source);
    const Span span = SpanOfMessage(facts, facts.messages.back());
    EXPECT_EQ(source.text(span).toString(), QStringLiteral(";"));
    EXPECT_TRUE(TokenAt(facts, source.size()).isEmpty());
    EXPECT_TRUE(TokenAt(facts, 1).isEmpty());
}

// ---------------------------------------------------------------------------------------------
// The process of a compile
// ---------------------------------------------------------------------------------------------

TEST(CompileProcess, SeveralRunAtOnce) {
    const Source fine = SourceOf(FINE);
    const Source wrong = SourceOf(WRONG);
    CompileProcess first(fine, Detail::All);
    CompileProcess second(wrong, Detail::All);
    while (second.takeSome()) {
    }
    while (first.takeSome()) {
    }
    EXPECT_TRUE(first.result().facts->isCompiled());
    EXPECT_FALSE(second.result().facts->isCompiled());
}

TEST(CompileProcess, CanBeMoved) {
    const Source fine = SourceOf(FINE);
    CompileProcess first(fine, Detail::All);
    CompileProcess second(std::move(first));
    CompileProcess third(fine, Detail::All);
    third = std::move(second);
    while (third.takeSome()) {
    }
    EXPECT_TRUE(third.result().facts.has_value());
}

TEST(CompileProcess, TellsWhenThereIsSomethingToTake) {
    const Source fine = SourceOf(FINE);
    const CompileProcess process(fine, Detail::All);
    pollfd waiting = {process.descriptor(), POLLIN, 0};
    constexpr int milliseconds = 60'000;
    EXPECT_EQ(poll(&waiting, 1, milliseconds), 1);
}

// One that is given up has ended and is not waited for by anybody.
TEST(CompileProcess, IsEndedWhenItIsNotWanted) {
    const Source source(QStringLiteral("large"), QString(100'000, u'\n') + QLatin1String(WARNED));
    { const CompileProcess process(source, Detail::All); }
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

// ---------------------------------------------------------------------------------------------
// Facts as bytes
// ---------------------------------------------------------------------------------------------

QByteArray BytesOf(const Facts& facts) {
    QByteArray all;
    PassBytes(facts, [&all](std::string_view bytes) {
        all.append(bytes.data(), static_cast<int>(bytes.size()));
    });
    return all;
}

TEST(Transfer, FactsComeBack) {
    for (const char* const text : {FINE, WARNED, WRONG, ""}) {
        const QByteArray bytes = BytesOf(FactsAbout(SourceOf(text)));
        const std::optional<Facts> facts = FactsOf(bytes);
        ASSERT_TRUE(facts.has_value());
        EXPECT_EQ(BytesOf(*facts), bytes);
    }
}

TEST(Transfer, PiecesOfFactsAreRefused) {
    const QByteArray bytes = BytesOf(FactsAbout(SourceOf(WRONG)));
    for (int size = 0; size < bytes.size(); ++size) {
        EXPECT_FALSE(FactsOf(bytes.left(size)).has_value()) << size;
    }
    EXPECT_FALSE(FactsOf(bytes + '\0').has_value());
}

TEST(Transfer, DamagedBytesDoNoHarm) {
    const QByteArray bytes = BytesOf(FactsAbout(SourceOf(WRONG)));
    for (int at = 0; at < bytes.size(); ++at) {
        QByteArray damaged = bytes;
        damaged[at] = static_cast<char>(~damaged.at(at));
        const std::optional<Facts> facts = FactsOf(damaged);
        EXPECT_TRUE(!facts || BytesOf(*facts).size() == bytes.size()) << at;
    }
}

TEST(Transfer, CountBelowZeroIsRefused) {
    QByteArray bytes = BytesOf(Facts());
    ASSERT_TRUE(FactsOf(bytes).has_value());
    bytes.replace(0, 4, QByteArray(4, '\xff'));
    EXPECT_FALSE(FactsOf(bytes).has_value());
}

// ---------------------------------------------------------------------------------------------
// Scripts
// ---------------------------------------------------------------------------------------------

class Scripts : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder_.isValid());
        for (const char* const name : {"b.st", "a.st", "c.txt", "in/d.st", "in/deep/a.st"}) {
            write(name, name);
        }
        QDir(folder_.path()).mkpath(QStringLiteral("empty"));
    }
    void write(const char* name, const char* text) {
        const QString at = path(name);
        QDir().mkpath(QFileInfo(at).path());
        QFile file(at);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QString path(const char* name) const {
        return folder_.path() + QLatin1Char('/') + QLatin1String(name);
    }
    QStringList found(const QStringList& paths, const QStringList& suffixes) const {
        QStringList files = FindFiles(paths, suffixes).files;
        files.replaceInStrings(folder_.path() + QLatin1Char('/'), QString());
        return files;
    }

private:
    QTemporaryDir folder_;
};

TEST_F(Scripts, FolderStandsForItsScripts) {
    const QStringList st = {QStringLiteral("st")};
    EXPECT_EQ(found({path("")}, st).join(u' ').toStdString(), "a.st b.st in/d.st in/deep/a.st");
    EXPECT_EQ(found({path("in")}, st).join(u' ').toStdString(), "in/d.st in/deep/a.st");
    const QStringList both = {QStringLiteral("txt"), QStringLiteral("st")};
    EXPECT_EQ(found({path("")}, both).size(), 5);
}

TEST_F(Scripts, PathsKeepTheirOrder) {
    const QStringList paths = {path("c.txt"), path("none"), path("in"), path("a.st")};
    EXPECT_EQ(found(paths, {QStringLiteral("st")}).join(u' ').toStdString(),
              "c.txt none in/d.st in/deep/a.st a.st");
}

TEST_F(Scripts, FolderWithoutScriptsIsTold) {
    const FoundFiles found = FindFiles({path("empty")}, {QStringLiteral("st")});
    EXPECT_TRUE(found.files.isEmpty());
    EXPECT_EQ(found.failures,
              QStringList(path("empty") + QLatin1String(": no scripts in this folder")));
}

TEST_F(Scripts, AreReadAsTheCompilerReadsThem) {
    write("crlf.st",
          "\xef\xbb\xbf"
          "a\r\nb");
    const Input input = ReadInput(path("crlf.st"));
    ASSERT_TRUE(input.source.has_value());
    EXPECT_EQ(input.source->text().toStdString(), "a\nb");
    EXPECT_EQ(input.source->name(), path("crlf.st"));
}

TEST_F(Scripts, WhatCannotBeReadIsTold) {
    EXPECT_EQ(ReadInput(path("none")).failure.toStdString(), "no such file");
    EXPECT_EQ(ReadInput(path("in")).failure.toStdString(), "is a folder");
    EXPECT_EQ(ReadInput(QStringLiteral("/dev/null")).failure.toStdString(), "cannot be read");
}

// ---------------------------------------------------------------------------------------------
// The catalogue
// ---------------------------------------------------------------------------------------------

TEST(Catalogue, ConstantsAreFoundByTheirText) {
    ASSERT_GT(ConstantsCount(), 0);
    for (int constant = 0; constant < ConstantsCount(); ++constant) {
        EXPECT_EQ(TextOf(ConstantOf(TextOf(constant))), TextOf(constant));
        EXPECT_FALSE(QString(IdOf(constant)).contains(u'_'));
    }
}

}  // namespace
