// Questions about the tokens of a script, and the scene of an error.

#include "check/tokens.h"
#include "check/scene.h"
#include "facts/compile.h"

#include "qyx_messages.h"

#include <gtest/gtest.h>

namespace {

const Source SCRIPT(QStringLiteral("script"),
                    QStringLiteral("FUNCTION Twice : INT\n"
                                   "VAR_ARG value : REAL; END_VAR\n"
                                   "RESULT := value; END_FUNCTION\n"
                                   "PROGRAM P VAR a : INT; END_VAR\n"
                                   "  IF a > 1 THEN WHILE a > 2 DO a := Twice(gone);"));

class TokensOfScript : public testing::Test {
protected:
    Facts facts = CompileAndWait(SCRIPT).facts.value_or(Facts());
    Tokens tokens{SCRIPT, facts};
    Scene scene{SCRIPT, facts};

    // The index of the last token that is spelled so.
    int indexOf(const char* text) const { return tokens.at(SCRIPT.text().lastIndexOf(text)); }
};

TEST_F(TokensOfScript, BeyondTheEndsThereIsNone) {
    for (const int index : {-1, tokens.count()}) {
        EXPECT_FALSE(tokens.isThere(index));
        EXPECT_EQ(tokens.code(index), TOKEN_UNKNOWN);
        EXPECT_TRUE(tokens.text(index).isEmpty());
    }
    EXPECT_EQ(tokens.at(SCRIPT.size()), tokens.count());
}

TEST_F(TokensOfScript, NamesOfDefinitionsAreIdentifiers) {
    EXPECT_EQ(tokens.code(0), TOKEN_FUNCTION);
    EXPECT_EQ(tokens.code(indexOf("Twice")), TOKEN_IDENTIFIER);
    EXPECT_TRUE(tokens.isText(indexOf("Twice"), u"TWICE"));
}

TEST_F(TokensOfScript, FirstOnLine) {
    EXPECT_TRUE(tokens.isFirstOnLine(0));
    EXPECT_TRUE(tokens.isFirstOnLine(indexOf("IF")));
    EXPECT_FALSE(tokens.isFirstOnLine(indexOf("THEN")));
}

TEST_F(TokensOfScript, AtGivesTheNextOne) {
    const int offset = SCRIPT.text().indexOf(QStringLiteral("Twice"));
    EXPECT_EQ(tokens.at(offset), 1);
    EXPECT_EQ(tokens.at(offset + 1), 2);
}

TEST_F(TokensOfScript, Types) {
    EXPECT_EQ(tokens.typeNamed(indexOf("REAL")), TYP_REAL);
    EXPECT_EQ(tokens.typeNamed(indexOf("gone")), TYP_NONE);
}

TEST_F(TokensOfScript, SceneOfAnError) {
    EXPECT_TRUE(scene.isError(TXT_UNRECOGNIZED_KEYWORD));
    EXPECT_FALSE(scene.isError(TXT_EXPECTED_BUT));
    EXPECT_EQ(scene.unit().kind, TOKEN_PROGRAM);
    EXPECT_EQ(scene.declaration(), nullptr);
    const StatementFact* const loop = scene.parentOf(*scene.statement());
    ASSERT_NE(loop, nullptr);
    EXPECT_EQ(loop->kind, TOKEN_WHILE);
    ASSERT_NE(scene.parentOf(*loop), nullptr);
    EXPECT_EQ(scene.parentOf(*scene.parentOf(*loop)), nullptr);
}

TEST_F(TokensOfScript, SearchEndsWithTheStatement) {
    const int begin = indexOf("WHILE");
    EXPECT_EQ(scene.findInStatement(begin + 1, {TOKEN_DO}), indexOf("DO"));
    EXPECT_EQ(scene.findInStatement(begin + 1, {TOKEN_THEN}), NONE);
    EXPECT_EQ(scene.findInStatement(indexOf("RESULT"), {TOKEN_END_FUNCTION}), NONE);
}

TEST_F(TokensOfScript, UndeclaredNames) {
    EXPECT_TRUE(scene.isUndeclared(indexOf("gone")));
    EXPECT_TRUE(scene.isUndeclared(indexOf("value")));
    EXPECT_FALSE(scene.isUndeclared(indexOf("a >")));
    EXPECT_FALSE(scene.isUndeclared(indexOf("Twice")));
    EXPECT_FALSE(scene.isUndeclared(indexOf("DO")));
}

TEST_F(TokensOfScript, Repairs) {
    const int name = indexOf("gone");
    const Repair out = TakeOut(scene, SpanOver(scene, name, name), QStringLiteral("0"));
    ASSERT_EQ(out.edits.size(), 1U);
    EXPECT_EQ(out.edits[0].text, QStringLiteral(" 0  "));
    EXPECT_EQ(SCRIPT.text(out.edits[0].span).toString(), QStringLiteral("gone"));
    EXPECT_EQ(TakeOut(scene, SpanOver(scene, name, name)).edits[0].text, QStringLiteral("    "));
    const Repair in = PutIn(7, QStringLiteral("x"));
    EXPECT_EQ(in.edits[0].text, QStringLiteral(" x "));
    EXPECT_TRUE(in.edits[0].span.isEmpty());
}

TEST(StructureOfTokens, EachBeginHasItsEnd) {
    const std::pair<Token, Token> pairs[] = {
        {TOKEN_FUNCTION, TOKEN_END_FUNCTION}, {TOKEN_FUNCTION_BLOCK, TOKEN_END_FUNCTION_BLOCK},
        {TOKEN_PROGRAM, TOKEN_END_PROGRAM},   {TOKEN_IF, TOKEN_END_IF},
        {TOKEN_FOR, TOKEN_END_FOR},           {TOKEN_WHILE, TOKEN_END_WHILE},
        {TOKEN_CASE, TOKEN_END_CASE},         {TOKEN_REPEAT, TOKEN_END_REPEAT}};
    for (const auto& [begin, end] : pairs) {
        EXPECT_EQ(EndOf(begin), end);
        EXPECT_TRUE(IsUnitBegin(begin) != IsCompoundBegin(begin));
        EXPECT_TRUE(IsUnitEnd(end) != IsCompoundEnd(end));
        EXPECT_TRUE(IsBoundary(begin) && IsBoundary(end));
    }
    EXPECT_EQ(EndOf(TOKEN_SEMICOLON), TOKEN_UNKNOWN);
}

TEST(StructureOfTokens, Kinds) {
    EXPECT_TRUE(IsBranch(TOKEN_UNTIL) && IsJump(TOKEN_GOTO) && IsSectionBegin(TOKEN_VAR_REF));
    EXPECT_TRUE(IsBoundary(TOKEN_END_VAR) && IsBoundary(TOKEN_ELSE) && IsBoundary(TOKEN_EXIT));
    EXPECT_FALSE(IsBoundary(TOKEN_SEMICOLON) || IsBoundary(TOKEN_IDENTIFIER) ||
                 IsBoundary(TOKEN_THEN));
}

}  // namespace
