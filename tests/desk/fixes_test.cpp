// Mends of scripts: each removes what it is for, also where it is one error of several.

#include "language/fixes.h"

#include "check/rules.h"
#include "lint_cases.h"
#include "lints/lints.h"
#include "print_text.h"
#include "rule_cases.h"
#include "rule_fixes.h"
#include "rule_slips.h"

#include <gmock/gmock.h>

#include <QRegularExpression>

using testing::Contains;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

namespace {

constexpr int ENOUGH = 50;  // errors

Model ModelOfText(const QString& text) {
    const auto findMore = [](const Source& source, const Facts& facts) {
        return FindLints(source, facts, {});
    };
    return ModelOf(Source(QStringLiteral("script.st"), text), ENOUGH, findMore);
}

QString Applied(const QString& text, const std::vector<Edit>& edits) {
    Edits all;
    for (const Edit& edit : edits) {
        all.add(edit);
    }
    return all.applyTo(text);
}

Span WholeOf(const Model& model) {
    return {0, model.source.size()};
}

// The diagnostics that say the same.
int CountOf(const Model& model, const Diagnostic& like) {
    return static_cast<int>(
        std::count_if(model.diagnostics.begin(), model.diagnostics.end(),
                      [&like](const Diagnostic& each) { return each.message == like.message; }));
}

void ExpectRemoves(const Model& before, const Fix& fix) {
    const QString text = Applied(before.source.text(), fix.edits);
    const Model after = ModelOfText(text);
    EXPECT_LT(CountOf(after, *fix.diagnostic), CountOf(before, *fix.diagnostic))
        << fix.title.toStdString() << "\n"
        << before.source.text().toStdString() << "\n"
        << text.toStdString();
}

// The comments of a text, as they are and as other languages write them.
QStringList CommentsIn(QString text) {
    text.replace(QStringLiteral("/*"), QStringLiteral("(*"));
    text.replace(QStringLiteral("*/"), QStringLiteral("*)"));
    QStringList comments;
    const QRegularExpression comment(QStringLiteral(R"(\(\*.*?\*\)|//[^\n]*)"),
                                     QRegularExpression::DotMatchesEverythingOption);
    auto matches = comment.globalMatch(text);
    while (matches.hasNext()) {
        comments.append(matches.next().captured());
    }
    return comments;
}

void ExpectKeepsComments(const Model& before, const Fix& fix) {
    const QString text = Applied(before.source.text(), fix.edits);
    for (const QString& comment : CommentsIn(before.source.text())) {
        EXPECT_TRUE(text.contains(comment)) << comment.toStdString() << "\n"
                                            << text.toStdString();
    }
}

// The script with a comment of its own at each blank between two words of its statements.
QString WithComments(const QString& script) {
    QString text = script.left(script.lastIndexOf(QStringLiteral("END_VAR")));
    const QString statements = script.mid(text.size());
    for (int place = 0; place < statements.size(); ++place) {
        const bool isBetween = place > 0 && !statements.at(place - 1).isSpace();
        text += statements.at(place) == u' ' && isBetween
                    ? QStringLiteral(" (* %1 *) ").arg(place)
                    : QString(statements.at(place));
    }
    return text;
}

std::vector<QString> AllSlips() {
    std::vector<QString> scripts;
    for (const RuleCase& each : RuleCases()) {
        scripts.push_back(each.slip);
    }
    for (const Slip& each : OtherSlips()) {
        scripts.push_back(each.script);
    }
    return scripts;
}

TEST(Mends, RemoveWhatTheyAreFor) {
    int count = 0;
    for (const QString& script : AllSlips()) {
        const Model model = ModelOfText(script);
        for (const Fix& fix : MendsIn(model, WholeOf(model))) {
            ExpectRemoves(model, fix);
            ExpectKeepsComments(model, fix);
            ++count;
        }
    }
    EXPECT_GT(count, 150);
}

TEST(Mends, KeepCommentsWithinPieces) {
    int count = 0;
    for (const QString& script : AllSlips()) {
        const Model model = ModelOfText(WithComments(script));
        for (const Fix& fix : MendsIn(model, WholeOf(model))) {
            ExpectKeepsComments(model, fix);
            ++count;
        }
    }
    EXPECT_GT(count, 100);
}

const RuleCase& CaseOf(const std::vector<RuleCase>& cases, const char* id) {
    return *std::find_if(cases.begin(), cases.end(), [id](const RuleCase& each) {
        return QLatin1String(each.id) == QLatin1String(id);
    });
}

// The fix of the slip that the case is about.
std::vector<Fix> FixesOf(const Model& model, const char* id) {
    std::vector<Fix> fixes;
    for (const Fix& fix : MendsIn(model, WholeOf(model))) {
        if (fix.diagnostic->helps.front().id == QLatin1String(id)) {
            fixes.push_back(fix);
        }
    }
    return fixes;
}

QString Expected(const RuleFix& fix, QString slip) {
    const QString before = QString::fromUtf8(fix.before);
    return slip.replace(slip.indexOf(before), before.size(), QString::fromUtf8(fix.after));
}

void ExpectFixes(const RuleFix& expected, const QString& slip) {
    const Model model = ModelOfText(slip);
    const std::vector<Fix> fixes = FixesOf(model, expected.id);
    ASSERT_EQ(fixes.size(), expected.kind == FixKind::Person ? 0U : 1U) << expected.id;
    for (const Fix& fix : fixes) {
        EXPECT_EQ(Applied(slip, fix.edits), Expected(expected, slip)) << expected.id;
        EXPECT_EQ(fix.isCertain, expected.kind == FixKind::Certain) << expected.id;
    }
}

TEST(Mends, AreThoseOfTheirRules) {
    const std::vector<RuleCase> cases = RuleCases();
    std::vector<QString> ids;
    for (const RuleFix& each : RuleFixes()) {
        ids.emplace_back(QLatin1String(each.id));
        ASSERT_THAT(RuleIds(), Contains(ids.back()));
        ExpectFixes(each, CaseOf(cases, each.id).slip);
    }
    EXPECT_THAT(ids, UnorderedElementsAreArray(RuleIds()));
}

// Each mend is the one that its statement has alone, whatever was taken out before it.
TEST(Mends, StandAtTheirPlaceAmongOtherErrors) {
    const Model model = ModelOfText(Statements(R"(
count := unknown;
count = 1;
level := foreign(1, 2) + ;
IF count => 2 THEN count := := 4; END_IF;
ready := TRUE && FALSE;
)"));
    const std::vector<Fix> fixes = MendsIn(model, WholeOf(model));
    EXPECT_THAT(fixes, SizeIs(3));
    for (const Fix& fix : fixes) {
        ExpectRemoves(model, fix);
    }
    const QString mended = Applied(model.source.text(), AllMends(model));
    EXPECT_TRUE(mended.contains(QStringLiteral("\ncount := 1;\n"))) << mended.toStdString();
    EXPECT_TRUE(mended.contains(QStringLiteral("IF count >= 2 THEN"))) << mended.toStdString();
    EXPECT_TRUE(mended.contains(QStringLiteral("TRUE AND FALSE"))) << mended.toStdString();
}

TEST(Mends, AreThoseOfTheRange) {
    const Model model = ModelOfText(Statements("\ncount = 1;\ncount = 2;\n"));
    const int first = model.source.text().indexOf(QStringLiteral("= 1"));
    EXPECT_THAT(MendsIn(model, {first, first}), SizeIs(1));
    EXPECT_THAT(MendsIn(model, WholeOf(model)), SizeIs(2));
    EXPECT_THAT(MendsIn(model, {0, 0}), IsEmpty());
    EXPECT_THAT(MendsIn(ModelOfText(QString()), {0, 0}), IsEmpty());
}

// The script of some statements after its only fix; empty if there is none.
QString Fixed(const char* statements) {
    const Model model = ModelOfText(Statements(statements));
    const std::vector<Fix> fixes = MendsIn(model, WholeOf(model));
    return fixes.size() == 1 ? Applied(model.source.text(), fixes.front().edits) : QString();
}

TEST(Mends, KeepComments) {
    EXPECT_EQ(Fixed("\n/* keep\nthis */ count := 1;\n"),
              Statements("\n(* keep\nthis *) count := 1;\n"));
    EXPECT_EQ(Fixed("\n/** keep **/\n"), Statements("\n(** keep **)\n"));
    EXPECT_EQ(Fixed("\n# the pump *) runs\n"), Statements("\n// the pump *) runs\n"));
    EXPECT_EQ(Fixed("\n-- the pump runs\n"), Statements("\n// the pump runs\n"));
    EXPECT_EQ(Fixed("\n{pragma x}\n"), Statements("\n(*pragma x*)\n"));
    EXPECT_EQ(Fixed("\n/* keep *) this */\n"), "");
    EXPECT_EQ(Fixed("\n/*) keep */\n"), "");
    EXPECT_EQ(Fixed("\n/* no end\n"), "");
}

TEST(Mends, HaveOtherForms) {
    const std::pair<const char*, const char*> forms[] = {
        {"\ncount += count * 2;\n", "\ncount := count + (count * 2);\n"},
        {"\n++count;\n", "\ncount := count + 1;\n"},
        {"\ncount := $FF;\n", "\ncount := 16#FF;\n"},
        {"\nready := BOOL#1;\n", "\nready := TRUE;\n"},
        {"\ncount := count^;\n", "\ncount := count;\n"},
        {"\ncount := count << 2;\n", "\ncount := count SHL 2;\n"},
        {"\ncount := SHL(count + 1, 2);\n", ""},
        {"\nready := ready AND count.3;\n",
         "\nready := ready AND (((count SHR 3) AND 1) = 1);\n"},
        {"\nIF ready THEN count := 1 (* one *) END_IF;\n",
         "\nIF ready THEN count := 1; (* one *) END_IF;\n"},
        {"\nIF count < 1) AND (count > 0) THEN count := 1; END_IF;\n", ""},
        {"\nIF 1 = count = 2 THEN count := 1; END_IF;\n", ""},
        {"\nIF ready THEN count := 1; END IF;\n", "\nIF ready THEN count := 1; END_IF;\n"},
        {"\nIF TRUE = ready AND ready THEN count := 1; END_IF;\n", ""},
        {"\nFOR count := 1 TO 3 BY 1 DO level := 1.0; END_FOR;\n",
         "\nFOR count := 1 TO 3 DO level := 1.0; END_FOR;\n"},
        {"\nFOR count := 1 TO 9 BY 2 DO level := 1.0; END_FOR;\n", ""},
        {"\nCASE count OF 1: BREAK; END_CASE;\n", "\nCASE count OF 1:; END_CASE;\n"},
        {"\nREPEAT count := 1; UNTIL count > 3;\n",
         "\nREPEAT count := 1; UNTIL count > 3 END_REPEAT;\n"},
    };
    for (const auto& [before, after] : forms) {
        EXPECT_EQ(Fixed(before), *after == 0 ? QString() : Statements(after)) << before;
    }
}

// The only fix of a whole script.
QString FixedScript(const QString& script) {
    const Model model = ModelOfText(script);
    const std::vector<Fix> fixes = MendsIn(model, WholeOf(model));
    return fixes.size() == 1 ? Applied(script, fixes.front().edits) : QString();
}

TEST(Mends, PutInLines) {
    EXPECT_EQ(FixedScript("PROGRAM P\r\nVAR\r\nEND_VAR"),
              "PROGRAM P\r\nVAR\r\nEND_VAR\r\nEND_PROGRAM\r\n");
    EXPECT_EQ(FixedScript("PROGRAM P // first\n    TICK := 0;\nEND_PROGRAM\n"),
              "PROGRAM P // first\n    VAR END_VAR\n    TICK := 0;\nEND_PROGRAM\n");
    EXPECT_EQ(FixedScript("PROGRAM P VAR a : INT := 1; a := 2; END_PROGRAM\n"),
              "PROGRAM P VAR a : INT := 1; END_VAR\na := 2; END_PROGRAM\n");
}

TEST(Mends, GiveParametersByPosition) {
    const QString form = QStringLiteral(
        "FUNCTION F : INT\nVAR_ARG\n    a : INT;\n    b : INT;\nEND_VAR\n"
        "    RESULT := a - b;\nEND_FUNCTION\nPROGRAM P\nVAR\n    x : INT := 0;\nEND_VAR\n"
        "    x := %1;\nEND_PROGRAM\n");
    EXPECT_EQ(FixedScript(form.arg("F(a := 1, b := 2)")), form.arg("F(1, 2)"));
    EXPECT_EQ(FixedScript(form.arg("F(b := (1), a := x + 2)")), form.arg("F(x + 2, (1))"));
    EXPECT_EQ(FixedScript(form.arg("F(a := 1)")), "");
    EXPECT_EQ(FixedScript(form.arg("F(a := 1 (* one *), b := 2)")), "");
}

// What is left out to go on compiling is no mend.
TEST(Mends, LeaveNoProgramOut) {
    EXPECT_EQ(Fixed("\ncount[1] := 5;\n"), "");
    EXPECT_EQ(Fixed("\n#include <pump>\n"), "");
    EXPECT_THAT(AllMends(ModelOfText(Statements("\ncount[1] := 5;\n"))), IsEmpty());
}

Diagnostic MendedBy(const std::vector<Edit>& mend) {
    Diagnostic diagnostic;
    diagnostic.helps = {{QString(), QString(), {}, mend, mend}};
    return diagnostic;
}

TEST(Mends, AreDoneAtOnceIfTheyDoNotTouch) {
    Model model = ModelOfText(QStringLiteral("PROGRAM"));
    model.diagnostics = {MendedBy({{{0, 3}, QStringLiteral("a")}}),
                         MendedBy({{{3, 3}, QStringLiteral("b")}, {{7, 7}, QString()}}),
                         MendedBy({{{5, 6}, QStringLiteral("c")}})};
    EXPECT_EQ(Applied(model.source.text(), AllMends(model)), "aGRcM");
}

// ---------------------------------------------------------------------------------------------
// Comments that allow
// ---------------------------------------------------------------------------------------------

// The script's line that the first allowance changes, as it is then; empty if there is none.
QString AllowedIn(const char* statements) {
    const Model model = ModelOfText(LintedStatements(statements));
    const std::vector<Fix> fixes = AllowancesIn(model, WholeOf(model));
    if (fixes.empty()) {
        return {};
    }
    const int line = model.source.placeOf(fixes.front().edits.front().span.begin).line;
    const Source after(QString(), Applied(model.source.text(), fixes.front().edits));
    return after.text(after.lineAt(line)).toString();
}

TEST(Allowances, AreWrittenAtTheEndOfTheLine) {
    EXPECT_EQ(AllowedIn("x := r = q;"), "x := r = q;  // yxst:allow real-equality");
    EXPECT_EQ(AllowedIn("x := r = q; // twice"), "x := r = q; // twice yxst:allow real-equality");
    EXPECT_EQ(AllowedIn("again: x := r = q; // yxst:allow unused-label as it is"),
              "again: x := r = q; // yxst:allow unused-label, real-equality as it is");
}

TEST(Allowances, AreNoneWhereACommentCannotStand) {
    EXPECT_EQ(AllowedIn("CASE a OF 1: x := r = q;\n3..5: a := 1; END_CASE;"), "");
    EXPECT_EQ(AllowedIn("CASE a OF 1: x := r = q; (* over\n*) 3: a := 1; END_CASE;"),
              "CASE a OF 1: x := r = q; (* over yxst:allow real-equality");
    EXPECT_EQ(AllowedIn("a := b;"), "");
}

TEST(Allowances, RemoveWhatLintsFind) {
    int count = 0;
    for (const auto cases :
         {CasesOfStatements, CasesOfDeclarations, CasesOfGrouping, CasesOfValues}) {
        for (const LintCase& each : cases()) {
            const Model model = ModelOfText(each.script);
            for (const Fix& fix : AllowancesIn(model, WholeOf(model))) {
                ExpectRemoves(model, fix);
                ++count;
            }
        }
    }
    EXPECT_GT(count, 50);
}

}  // namespace
