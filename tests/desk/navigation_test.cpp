// Where names are declared and used, also while a script is broken, and other names for them.

#include "language/rename_proof.h"
#include "marked_script.h"
#include "protocols/markup.h"
#include "protocols/navigation_methods.h"

#include <QJsonArray>

#include <gtest/gtest.h>

namespace {

const QString RANGE = QStringLiteral("range");

// ---------------------------------------------------------------------------------------------
// Definition
// ---------------------------------------------------------------------------------------------

// Line and character of the declaration, or "none".
std::string DefinitionAt(const QString& text) {
    const MarkedScript marked = Marked(text);
    const QJsonValue location = DefinitionMethod(marked.script, marked.params());
    if (location.isNull()) {
        return "none";
    }
    EXPECT_EQ(location[QStringLiteral("uri")], marked.script.uri);
    const QJsonValue start = location[RANGE][QStringLiteral("start")];
    return std::to_string(start[QStringLiteral("line")].toInt()) + ':' +
           std::to_string(start[QStringLiteral("character")].toInt()) + ' ' +
           marked.textOf(location[RANGE]).toStdString();
}

std::string DefinitionIn(const char* text) {
    return DefinitionAt(QString::fromUtf8(text));
}

constexpr const char* SCRIPT =
    "FUNCTION Twice : INT\n"
    "VAR_ARG x : INT; END_VAR\n"
    "RESULT := 2 * X;\n"
    "END_FUNCTION\n"
    "PROGRAM P\n"
    "VAR x : INT; END_VAR\n"
    "again: x := TWICE(x);\n"
    "x := sin(1);\n"
    "GOTO AGAIN;\n"
    "END_PROGRAM\n";

// The script with a mark before a text on a line, both counted from 0.
QString MarkedAt(int line, const char* text) {
    QStringList lines = QString::fromUtf8(SCRIPT).split(u'\n');
    lines[line].insert(lines[line].indexOf(QString::fromUtf8(text)), u'|');
    return lines.join(u'\n');
}

TEST(Definition, UsesLeadToDeclarations) {
    EXPECT_EQ(DefinitionAt(MarkedAt(2, "X")), "1:8 x");
    EXPECT_EQ(DefinitionAt(MarkedAt(6, "x)")), "5:4 x");
    EXPECT_EQ(DefinitionAt(MarkedAt(6, "TWICE")), "0:9 Twice");
    EXPECT_EQ(DefinitionAt(MarkedAt(8, "AGAIN")), "6:0 again");
    EXPECT_EQ(DefinitionAt(MarkedAt(2, "RESULT")), "0:9 Twice");
}

TEST(Definition, DeclarationsLeadToThemselves) {
    EXPECT_EQ(DefinitionAt(MarkedAt(0, "Twice")), "0:9 Twice");
    EXPECT_EQ(DefinitionAt(MarkedAt(4, "ROGRAM")), "none");
    EXPECT_EQ(DefinitionIn("PROGRAM |P VAR END_VAR END_PROGRAM"), "0:8 P");
    EXPECT_EQ(DefinitionAt(MarkedAt(6, "again")), "6:0 again");
}

TEST(Definition, BuiltInsAndKeywordsHaveNone) {
    EXPECT_EQ(DefinitionAt(MarkedAt(7, "sin")), "none");
    EXPECT_EQ(DefinitionAt(MarkedAt(8, "GOTO")), "none");
    EXPECT_EQ(DefinitionAt(MarkedAt(7, "1")), "none");
}

TEST(Definition, TheEndOfANameCounts) {
    EXPECT_EQ(DefinitionIn("PROGRAM P VAR xy : INT; END_VAR xy|:=1; END_PROGRAM"), "0:14 xy");
    EXPECT_EQ(DefinitionIn("PROGRAM P VAR xy : INT; END_VAR xy |:=1; END_PROGRAM"), "none");
}

TEST(Definition, CommentsAndEmptyScriptsHaveNone) {
    EXPECT_EQ(DefinitionIn("PROGRAM P VAR x : INT; END_VAR (* x| *) x := 1; // x\nEND_PROGRAM"),
              "none");
    EXPECT_EQ(DefinitionIn("|"), "none");
    EXPECT_EQ(DefinitionIn("PROGRAM P VAR x : INT; END_VAR x := 1; END_PROGRAM|"), "none");
    EXPECT_EQ(DefinitionIn("PROGRAM P VAR x : INT; END_VAR x := 1; END_PROGRAM\n|"), "none");
}

TEST(Definition, OtherAlphabetsHaveCapitalsToo) {
    EXPECT_EQ(DefinitionIn("PROGRAM P VAR Насос : INT; END_VAR |НАСОС := 1; END_PROGRAM"),
              "0:14 Насос");
}

TEST(Definition, PlacesCountUtf16AndCarriageReturns) {
    EXPECT_EQ(DefinitionIn("PROGRAM P\r\nVAR (* 😀 *) x : INT;\r\nEND_VAR\r\n(* 😀 *) |x := 1;"
                           "\r\nEND_PROGRAM\r\n"),
              "1:13 x");
    EXPECT_EQ(DefinitionIn("PROGRAM P\rVAR x : INT;\rEND_VAR\r|x := 1;\rEND_PROGRAM"), "none");
}

TEST(Definition, PlacesBeyondTheTextAreItsEnd) {
    const Script script = OpenScript(QStringLiteral("PROGRAM P VAR END_VAR END_PROGRAM"));
    const QJsonObject far = {{QStringLiteral("line"), 5}, {QStringLiteral("character"), 7}};
    EXPECT_TRUE(DefinitionMethod(script, {{QStringLiteral("position"), far}}).isNull());
    EXPECT_TRUE(DefinitionMethod(script, {}).isNull());
}

// ---------------------------------------------------------------------------------------------
// References and highlights
// ---------------------------------------------------------------------------------------------

// The begins of all references, "line:character", in their order.
std::string ReferencesAt(const QString& text, bool withDeclaration) {
    const MarkedScript marked = Marked(text);
    QJsonObject params = marked.params();
    params[QStringLiteral("context")] =
        QJsonObject{{QStringLiteral("includeDeclaration"), withDeclaration}};
    QStringList places;
    for (const QJsonValue location : ReferencesMethod(marked.script, params).toArray()) {
        const QJsonValue start = location[RANGE][QStringLiteral("start")];
        places.append(QStringLiteral("%1:%2")
                          .arg(start[QStringLiteral("line")].toInt())
                          .arg(start[QStringLiteral("character")].toInt()));
    }
    return places.join(u' ').toStdString();
}

TEST(References, AllUsesAreFoundInTheUnitOfTheName) {
    EXPECT_EQ(ReferencesAt(MarkedAt(6, "x)"), true), "5:4 6:7 6:18 7:0");
    EXPECT_EQ(ReferencesAt(MarkedAt(6, "x)"), false), "6:7 6:18 7:0");
    EXPECT_EQ(ReferencesAt(MarkedAt(2, "X"), true), "1:8 2:14");
    EXPECT_EQ(ReferencesAt(MarkedAt(0, "Twice"), true), "0:9 6:12");
    EXPECT_EQ(ReferencesAt(MarkedAt(8, "AGAIN"), true), "6:0 8:5");
    EXPECT_EQ(ReferencesAt(MarkedAt(2, "RESULT"), true), "2:0");
    EXPECT_EQ(ReferencesAt(MarkedAt(7, "sin"), true), "7:5");
    EXPECT_EQ(ReferencesAt(MarkedAt(7, ":="), true), "");
}

std::string HighlightsAt(const char* text) {
    const MarkedScript marked = Marked(QString::fromUtf8(text));
    QStringList kinds;
    for (const QJsonValue each :
         DocumentHighlightMethod(marked.script, marked.params()).toArray()) {
        kinds.append(marked.textOf(each[RANGE]) +
                     QString::number(each[QStringLiteral("kind")].toInt()));
    }
    return kinds.join(u' ').toStdString();
}

TEST(Highlights, ReadsAndWritesDiffer) {
    const char* const script =
        "FUNCTION_BLOCK Bump VAR_REF v : INT; END_VAR v := v; END_FUNCTION_BLOCK\n"
        "PROGRAM P VAR |a : INT := 1; END_VAR A := a + a; Bump(a);\n"
        "FOR a := 1 TO 2 DO ; END_FOR; END_PROGRAM";
    EXPECT_EQ(HighlightsAt(script), "a1 A3 a2 a2 a3 a3");
    EXPECT_EQ(HighlightsAt("PROGRAM P VAR END_VAR |l: GOTO L; END_PROGRAM"), "l1 L1");
}

// ---------------------------------------------------------------------------------------------
// Hover
// ---------------------------------------------------------------------------------------------

// The kind and the value of what is shown to a client that takes some formats.
std::string HoverFor(const QJsonArray& formats) {
    MarkedScript marked =
        Marked(QStringLiteral("PROGRAM P VAR\n// how *full* \\ `x`\na : INT;\n"
                              "END_VAR |a := 1; END_PROGRAM"));
    const QJsonObject hover = {{QStringLiteral("contentFormat"), formats}};
    marked.script.client = {
        {QStringLiteral("textDocument"), QJsonObject{{QStringLiteral("hover"), hover}}}};
    const QJsonValue contents =
        HoverMethod(marked.script, marked.params())[QStringLiteral("contents")];
    return (contents[QStringLiteral("kind")].toString() + u' ' +
            contents[QStringLiteral("value")].toString())
        .toStdString();
}

TEST(HoverMethod, ClientsGetTheFormatThatTheyTake) {
    const std::string markdown =
        "markdown ```st\na : INT;\n```\n\nVariable of program `P` (`VAR`)\n\n"
        "how \\*full\\* \\\\ \\`x\\`";
    EXPECT_EQ(HoverFor({}), markdown);
    EXPECT_EQ(HoverFor({QStringLiteral("plaintext"), QStringLiteral("markdown")}), markdown);
    EXPECT_EQ(HoverFor({QStringLiteral("plaintext")}),
              "plaintext a : INT;\n\nVariable of program P (VAR)\n\nhow *full* \\ `x`");
}

TEST(HoverMethod, NoMarkIsLostFromCode) {
    EXPECT_EQ(WithoutMarkup(QStringLiteral("```text\na\\`b  \n```\n`c`  \nd")),
              QStringLiteral("a\\`b  \nc\nd"));
}

// ---------------------------------------------------------------------------------------------
// Broken scripts
// ---------------------------------------------------------------------------------------------

// A script with a piece in the place of the "%", and names around it.
QString Broken(const char* piece) {
    return QString::fromUtf8(
               "FUNCTION Above : INT\nVAR_ARG p : INT; END_VAR\nRESULT := p;\n"
               "END_FUNCTION\n"
               "PROGRAM P\nVAR\nbefore : INT := 1;\nafter : INT := 1;\nEND_VAR\n"
               "before := 1;\n%\nafter := before;\nafter := Above(after);\n"
               "END_PROGRAM\n")
        .replace(u'%', QString::fromUtf8(piece));
}

// The definition of a word that comes after some text.
std::string DefinitionOfWord(QString script, const char* begin, const char* word) {
    const int from = script.indexOf(QString::fromUtf8(begin));
    return DefinitionAt(script.insert(script.indexOf(QString::fromUtf8(word), from), u'|'));
}

class BrokenPiece : public testing::TestWithParam<const char*> {};

TEST_P(BrokenPiece, NamesAroundItAreFound) {
    const QString script = Broken(GetParam());
    const Script open = OpenScript(script);
    EXPECT_FALSE(open.model.isWhole);
    EXPECT_EQ(DefinitionOfWord(script, "RESULT", "p;"), "1:8 p");
    EXPECT_EQ(DefinitionOfWord(script, "before := 1;", "before"), "6:0 before");
    EXPECT_EQ(DefinitionOfWord(script, "after := before", "after"), "7:0 after");
    EXPECT_EQ(DefinitionOfWord(script, "after := before", "before"), "6:0 before");
    EXPECT_EQ(DefinitionOfWord(script, "Above(", "Above"), "0:9 Above");
    const MarkedScript marked =
        Marked(QString(script).insert(script.indexOf(QStringLiteral("after := b")), u'|'));
    EXPECT_TRUE(HoverMethod(marked.script,
                            marked.params())[QStringLiteral("contents")][QStringLiteral("value")]
                    .toString()
                    .startsWith(QStringLiteral("```st\nafter : INT := 1;\n```")));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, BrokenPiece,
    testing::Values("before := ;", "before := after", "before := unknown;", "IF before = 1 THEN",
                    "IF before THEN after := 1; END_IF;", "before := after +;", "WHILE", "before",
                    "before.", "before := Above(;", "before := Above(1", "before := 'open", "§",
                    "before := 16#XY;", "END_IF;", "VAR x : INT; END_VAR",
                    "FOR before := 1 TO DO ; END_FOR;", "before = after;", "Above(,);",
                    "CASE before OF 1: after := 1;", "1 := after;", "before[1] := 2;",
                    "GOTO nowhere", "REPEAT after := 1; UNTIL", "x := y; y := x;"));

TEST(Broken, NamesWithinThePieceAreFound) {
    const QString script = Broken("before := unknown + after * Above(1;");
    EXPECT_EQ(DefinitionOfWord(script, "before := unknown", "before"), "6:0 before");
    EXPECT_EQ(DefinitionOfWord(script, "before := unknown", "after"), "7:0 after");
    EXPECT_EQ(DefinitionOfWord(script, "before := unknown", "Above"), "0:9 Above");
    EXPECT_EQ(DefinitionOfWord(script, "before := unknown", "unknown"), "none");
    EXPECT_EQ(ReferencesAt(
                  QString(script).insert(script.indexOf(QStringLiteral("after :")), u'|'), true),
              "7:0 10:20 11:0 12:0 12:15");
}

TEST(Broken, VariablesOfOtherUnitsAreNotMeant) {
    const QString script = Broken("p := unknown;");
    EXPECT_EQ(DefinitionOfWord(script, "p := unknown", "p"), "none");
}

TEST(Broken, ANameThatTwoUnitsHaveIsThatOfItsOwn) {
    const QString script = QStringLiteral(
        "FUNCTION F : INT\nVAR_ARG x : INT; END_VAR\nRESULT := unknown + x;\nEND_FUNCTION\n"
        "PROGRAM P\nVAR x : INT; END_VAR\nunknown := 1 2 x;\nEND_PROGRAM\nx;");
    EXPECT_EQ(DefinitionOfWord(script, "unknown + x", "x"), "1:8 x");
    EXPECT_EQ(DefinitionOfWord(script, "1 2 x", "x"), "5:4 x");
    EXPECT_EQ(DefinitionOfWord(script, "x;", "RESULT"), "none");
    EXPECT_EQ(DefinitionAt(QString(script).insert(script.size() - 2, u'|')), "none");
}

TEST(Broken, DeclarationsBreakTooAndTheOthersAreFound) {
    for (const char* const piece : {"x : ;", "x : IMT;", "x INT;", ": INT;", "x : INT",
                                    "x, y : INT;", "x : STRING;", "before : INT;", "if : INT;"}) {
        const QString script =
            QString::fromUtf8(
                "PROGRAM P\nVAR\nbefore : INT := 1;\n%\nafter : INT := 1;\nEND_VAR\n"
                "before := after;\nEND_PROGRAM\n")
                .replace(u'%', QString::fromUtf8(piece));
        EXPECT_EQ(DefinitionOfWord(script, "before := after", "before"), "2:0 before") << piece;
        EXPECT_EQ(DefinitionOfWord(script, "before := after", "after"), "4:0 after") << piece;
    }
}

TEST(Broken, AnUnfinishedScriptHasItsNames) {
    EXPECT_EQ(DefinitionIn("PROGRAM P VAR x : INT; END_VAR |x"), "0:14 x");
    EXPECT_EQ(DefinitionIn("PROGRAM P VAR x : INT; END_VAR |x := 1;"), "0:14 x");
    EXPECT_EQ(DefinitionIn("PROGRAM |P"), "0:8 P");
    EXPECT_EQ(DefinitionIn("PROGRAM P VAR |x"), "none");
    EXPECT_EQ(DefinitionIn("FUNCTION |"), "none");
}

// ---------------------------------------------------------------------------------------------
// Rename
// ---------------------------------------------------------------------------------------------

// The script after the renaming, or why there is none.
std::string Renamed(const QString& text, const char* name) {
    const MarkedScript marked = Marked(text);
    QJsonObject params = marked.params();
    params[QStringLiteral("newName")] = QString::fromUtf8(name);
    try {
        const QJsonValue edit = RenameMethod(marked.script, params);
        const QJsonArray edits = edit[QStringLiteral("changes")][marked.script.uri].toArray();
        QString script = marked.script.source().text();
        for (int index = edits.size() - 1; index >= 0; --index) {
            const Span span =
                marked.script.lines.spanOf(edits[index].toObject()[RANGE].toObject());
            script.replace(span.begin, span.length(),
                           edits[index].toObject()[QStringLiteral("newText")].toString());
        }
        return script.toStdString();
    } catch (const RequestFailed& failed) {
        return "refused: " + failed.why.toStdString();
    }
}

std::string RenamedIn(const char* text, const char* name) {
    return Renamed(QString::fromUtf8(text), name);
}

TEST(Rename, AllThatMeansTheNameIsChangedAndNothingElse) {
    EXPECT_EQ(Renamed(MarkedAt(6, "x)"), "y"),
              "FUNCTION Twice : INT\nVAR_ARG x : INT; END_VAR\nRESULT := 2 * X;\nEND_FUNCTION\n"
              "PROGRAM P\nVAR y : INT; END_VAR\nagain: y := TWICE(y);\ny := sin(1);\n"
              "GOTO AGAIN;\nEND_PROGRAM\n");
    EXPECT_EQ(Renamed(MarkedAt(6, "TWICE"), "Double"),
              "FUNCTION Double : INT\nVAR_ARG x : INT; END_VAR\nRESULT := 2 * X;\nEND_FUNCTION\n"
              "PROGRAM P\nVAR x : INT; END_VAR\nagain: x := Double(x);\nx := sin(1);\n"
              "GOTO AGAIN;\nEND_PROGRAM\n");
    EXPECT_EQ(RenamedIn("PROGRAM P VAR END_VAR a: GOTO |A; END_PROGRAM", "bé"),
              "refused: `bé` is no name: a name begins with a letter or `_` and goes on with "
              "letters, digits and `_`");
    EXPECT_EQ(RenamedIn("PROGRAM P VAR END_VAR a: GOTO |A; END_PROGRAM", "b"),
              "PROGRAM P VAR END_VAR b: GOTO b; END_PROGRAM");
    EXPECT_EQ(RenamedIn("PROGRAM |P VAR END_VAR END_PROGRAM", "Насос_1"),
              "PROGRAM Насос_1 VAR END_VAR END_PROGRAM");
}

TEST(Rename, ANameMayGetOtherCapitals) {
    EXPECT_EQ(RenamedIn("PROGRAM P VAR ab : INT; END_VAR |ab := 1; END_PROGRAM", "aB"),
              "PROGRAM P VAR aB : INT; END_VAR aB := 1; END_PROGRAM");
}

// The text with a word in place of each "@".
std::string With(const char* word, const char* text) {
    return QString::fromUtf8(text).replace(u'@', QString::fromUtf8(word)).toStdString();
}

TEST(Rename, WordsOfTheCodeAreNamesLikeOthers) {
    for (const char* const word :
         {"PROG", "BODY", "MAIN", "L2", "MOV", "V", "RET", "A0", "PUSH"}) {
        const std::string script = With(word,
                                        "PROGRAM P VAR |@ : INT := 2; END_VAR IF @ = 2 THEN "
                                        "@ := 1; END_IF; END_PROGRAM");
        EXPECT_EQ(RenamedIn(script.c_str(), "fresh"),
                  "PROGRAM P VAR fresh : INT := 2; END_VAR IF fresh = 2 THEN fresh := 1; END_IF; "
                  "END_PROGRAM")
            << word;
        EXPECT_EQ(RenamedIn("PROGRAM P VAR |x : INT := 2; END_VAR x := x; END_PROGRAM", word),
                  With(word, "PROGRAM P VAR @ : INT := 2; END_VAR @ := @; END_PROGRAM"))
            << word;
    }
}

std::string RefusalOf(const char* text, const char* name) {
    const std::string result = RenamedIn(text, name);
    return result.substr(0, 9) == "refused: " ? result.substr(9) : "renamed";
}

TEST(Rename, WhatIsNoNameIsRefused) {
    const char* const script = "PROGRAM P VAR |x : INT; END_VAR x := sin(1); END_PROGRAM";
    for (const char* const name : {"", "1a", "a b", "a-b", "a;", "(*", "Ё"}) {
        EXPECT_EQ(RefusalOf(script, name),
                  std::string("`") + name +
                      "` is no name: a name begins with a letter or `_` and "
                      "goes on with letters, digits and `_`");
    }
    for (const char* const name : {"IF", "end_Program", "Result", "tick", "INT", "array"}) {
        EXPECT_EQ(RefusalOf(script, name), std::string("`") + name + "` is a reserved word");
    }
    EXPECT_EQ(RefusalOf(script, "COS"), "`COS` is the name of a built-in");
}

TEST(Rename, ANameThatIsTakenIsRefused) {
    constexpr const char* form =
        "FUNCTION F : INT\nVAR_ARG q : INT; END_VAR\nRESULT := q; END_FUNCTION\n"
        "FUNCTION_BLOCK B\nVAR END_VAR\n"
        "there: GOTO there; END_FUNCTION_BLOCK\nPROGRAM P\nVAR x : INT;\ny : INT; END_VAR\n"
        "here: x := F(y); y := 1; B; GOTO here;\nEND_PROGRAM";
    const auto refusal = [](const char* word, const char* name) {
        QString text = QString::fromLatin1(form);
        return RefusalOf(text.insert(text.indexOf(QLatin1String(word)), u'|').toUtf8(), name);
    };
    EXPECT_EQ(refusal("x :", "Y"), "`Y` is taken: Variable of program `P` (`VAR`), line 9");
    EXPECT_EQ(refusal("x :", "f"), "`f` is taken: function `F`, line 1");
    EXPECT_EQ(refusal("x :", "Here"), "`Here` is taken: Label in program `P`, line 10");
    EXPECT_EQ(refusal("x :", "q"), "renamed");
    EXPECT_EQ(refusal("x :", "there"), "renamed");
    EXPECT_EQ(refusal("here: x", "there"),
              "`there` is taken: Label in function block `B`, line 6");
    EXPECT_EQ(refusal("here: x", "y"), "`y` is taken: Variable of program `P` (`VAR`), line 9");
    EXPECT_EQ(refusal("here: x", "q"), "renamed");
    EXPECT_EQ(refusal("here: x", "B"), "`B` is taken: function block `B`, line 4");
    EXPECT_EQ(refusal("here: x", "l10"), "`l10` looks like a label that the compiler makes");
    EXPECT_EQ(refusal("F :", "x"), "`x` is taken: Variable of program `P` (`VAR`), line 8");
    EXPECT_EQ(refusal("F :", "here"), "`here` is taken: Label in program `P`, line 10");
    // A variable of a unit above the function does not meet it, but would hide it.
    EXPECT_EQ(refusal("q :", "B"), "`B` is taken: function block `B`, line 4");
}

TEST(Rename, UnitsHaveNamesOfTheirOwn) {
    EXPECT_EQ(RefusalOf("FUNCTION F : INT RESULT := 1; END_FUNCTION\n"
                        "PROGRAM |P VAR x : INT; END_VAR x := F; END_PROGRAM",
                        "F"),
              "`F` is taken: function `F`, line 1");
    EXPECT_EQ(RefusalOf("FUNCTION |F : INT RESULT := 1; END_FUNCTION\n"
                        "PROGRAM P VAR x : INT; END_VAR x := F; END_PROGRAM",
                        "P"),
              "`P` is taken: program `P`, line 2");
    EXPECT_EQ(RefusalOf("PROGRAM |P VAR x : INT; END_VAR l: x := 1; GOTO l; END_PROGRAM", "x"),
              "renamed");
}

// Labels are compared by their capitals, of which this letter has that of "i".
TEST(Rename, WhatTheCompilerRefusesIsRefused) {
    EXPECT_EQ(RefusalOf("PROGRAM P VAR i : INT := 1; END_VAR |a: i := 2; GOTO a; END_PROGRAM",
                        "\u0131"),
              "the renamed script would not compile: Duplicate variable name \"I\"");
}

Facts FactsOf(const char* text) {
    return OpenScript(QString::fromUtf8(text)).model.facts;
}

TEST(RenameProof, OnlyTheNameMayDiffer) {
    const Facts before = FactsOf(
        "PROGRAM P VAR a : INT := 1; b : INT := 1; END_VAR\n"
        "a := b; END_PROGRAM");
    const NameChange change = {1, QStringLiteral("a"), QStringLiteral("c")};
    const auto isSame = [&](const char* text) {
        return IsSameButForName(before, FactsOf(text), change);
    };
    EXPECT_TRUE(isSame("PROGRAM P VAR c : INT := 1; b : INT := 1; END_VAR c := b; END_PROGRAM"));
    EXPECT_FALSE(isSame("PROGRAM P VAR a : INT := 1; b : INT := 1; END_VAR a := b; END_PROGRAM"));
    EXPECT_FALSE(isSame("PROGRAM P VAR c : INT := 1; d : INT := 1; END_VAR c := d; END_PROGRAM"));
    EXPECT_FALSE(isSame("PROGRAM P VAR c : INT := 1; b : INT := 1; END_VAR c := c; END_PROGRAM"));
    EXPECT_FALSE(isSame("PROGRAM P VAR c : INT := 1; b : INT := 1; END_VAR b := c; END_PROGRAM"));
    EXPECT_FALSE(isSame("PROGRAM P VAR c : INT := 2; b : INT := 1; END_VAR c := b; END_PROGRAM"));
    EXPECT_FALSE(
        isSame("PROGRAM P VAR c : REAL := 1; b : INT := 1; END_VAR c := b; END_PROGRAM"));
    EXPECT_FALSE(
        isSame("PROGRAM P VAR c : INT := 1; b : INT := 1; END_VAR c := b; c := b; "
               "END_PROGRAM"));
}

TEST(RenameProof, UsesAreComparedWhereTheCodeIsTheSame) {
    const Facts before = FactsOf(
        "PROGRAM P VAR a : INT := 1; b : INT := 1; END_VAR\n"
        "a := b; END_PROGRAM");
    Facts after = before;
    const NameChange none = {1, QStringLiteral("a"), QStringLiteral("a")};
    EXPECT_TRUE(IsSameButForName(before, after, none));
    after.uses[0].kind = UseKind::Reference;
    EXPECT_FALSE(IsSameButForName(before, after, none));
    after = before;
    after.names[2].section = TOKEN_VAR_INPUT;
    EXPECT_FALSE(IsSameButForName(before, after, none));
}

TEST(Rename, WhatHasNoNameOfItsOwnIsRefused) {
    EXPECT_EQ(RefusalOf("PROGRAM P VAR x : LREAL; END_VAR x := |sin(1); END_PROGRAM", "y"),
              "`sin` is built in");
    EXPECT_EQ(RefusalOf("FUNCTION F : INT |RESULT := 1; END_FUNCTION PROGRAM P VAR END_VAR "
                        "END_PROGRAM",
                        "y"),
              "`RESULT` is a word of the language");
    EXPECT_EQ(RefusalOf("PROGRAM P VAR END_VAR| END_PROGRAM", "y"),
              "there is no name to be changed here");
}

TEST(Rename, ABrokenScriptIsLeftAlone) {
    EXPECT_EQ(RefusalOf("PROGRAM P VAR x : INT; END_VAR |x := 1;\nx := ; END_PROGRAM", "y"),
              "only in a script that compiles can a name be changed: line 2: Number "
              "expected but \";\" found");
}

TEST(Rename, AClientThatTakesVersionsGetsOne) {
    MarkedScript marked = Marked(MarkedAt(6, "x)"));
    marked.script.version = 7;
    const QJsonObject edits = {{QStringLiteral("documentChanges"), true}};
    const QJsonObject workspace = {{QStringLiteral("workspaceEdit"), edits}};
    marked.script.client = {{QStringLiteral("workspace"), workspace}};
    QJsonObject params = marked.params();
    params[QStringLiteral("newName")] = QStringLiteral("y");
    const QJsonValue edit = RenameMethod(marked.script, params);
    const QJsonValue change = edit[QStringLiteral("documentChanges")][0];
    EXPECT_EQ(change[QStringLiteral("textDocument")][QStringLiteral("version")], 7);
    EXPECT_EQ(change[QStringLiteral("textDocument")][QStringLiteral("uri")], marked.script.uri);
    EXPECT_EQ(change[QStringLiteral("edits")].toArray().size(), 4);
}

TEST(PrepareRename, TellsWhatIsRenamed) {
    const MarkedScript marked = Marked(MarkedAt(6, "TWICE"));
    const QJsonValue target = PrepareRenameMethod(marked.script, marked.params());
    EXPECT_EQ(marked.textOf(target), QStringLiteral("TWICE"));
    const MarkedScript keyword = Marked(MarkedAt(8, "GOTO"));
    EXPECT_TRUE(PrepareRenameMethod(keyword.script, keyword.params()).isNull());
    const MarkedScript builtIn = Marked(MarkedAt(7, "sin"));
    EXPECT_THROW(PrepareRenameMethod(builtIn.script, builtIn.params()), RequestFailed);
}

}  // namespace
