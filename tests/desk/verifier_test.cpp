// The proof of target code: sound code passes, each damage is told with its property and place.

#include "machine/verifier.h"

#include <gtest/gtest.h>

#include <string>

#include "code_text.h"

namespace {

// A reference, a result dropped and one used, FOR with CASE, OR, an engine register.
const QByteArray SOUND =
    "Fill:|RESULT V BOOL 0|level VR INT 0|limit VA INT 0|BODY:|"
    "MOV $POP #A0|MOV #A0 @limit|MOV $POP #A0|MOVA #A0 @level|"
    "MOV ^level #A0|MOV #A0 $PUSH|MOV @limit #A0|LT $POP #A0|TST #A0|MOV #A0 @RESULT|"
    "MOV @RESULT #A0|RET|"
    "Log:|i V INT 0|BODY:|"
    "MOV 1 #A0|MOV #A0 @i|MOV 9 #A0|MOV #A0 $PUSH|"
    "L1:|MOV @i #A0|MOV $POP #R0|GE #R0 #A0|TST #A0|MOV #R0 $PUSH|JMPF L2|"
    "MOV @I #A0|MOV #A0 $PUSH|"
    "MOV 3 #A0|MOV $POP #R0|NE #R0 #A0|TST #A0|MOV #R0 $PUSH|JMPF L5|JMP L6|"
    "L5:|MOV 5 #A0|MOV #A0 @i|JMP L4|L6:|L4:|MOV $POP #NIL|"
    "L3:|MOV @i #A0|ADD 1 #A0|MOV #A0 @i|JMP L1|L2:|MOV $POP #NIL|"
    "RET|"
    "PROG:|P|VAR:|x V INT -5|w YVR INT 1 2 3 4|r VG REAL 1.5E3|b V BOOL 1|MAIN:|"
    "MOVA @x #A0|MOV #A0 $PUSH|MOV 16#1F #A0|MOV #A0 $PUSH|CAL Fill|MOV $POP #NIL|"
    "L9:|MOVA @w #A0|MOV #A0 $PUSH|MOV 2 #A0|MOV #A0 $PUSH|CAL Fill|"
    "MOV #A0 $PUSH|MOV #A0 $PUSH|MOV 1 #A0|EQ $POP #A0|TST #A0|MOV $POP #A0|JMPT L8|"
    "MOV @b #A0|TST #A0|L8:|JMPF L9|"
    "MOV @r #A0|MOV #A0 $PUSH|EXEC sqrt|SUB 0 #A0|MOV #A0 @r|"
    "MOV @r #A0|MOV #A0 $PUSH|MOV @b #A0|MUL $POP #A0|MOV #A0 @x|"
    "CAL Log|LAST:|RET|";

Proof ProofOf(const QByteArray& items) {
    const CodeResult result = ReadCode(CodeFile(items));
    EXPECT_FALSE(result.fault) << result.fault->message.toStdString();
    return result.fault ? Proof() : Verify(result.code);
}

// The identifier and the item of each finding, in order; "!" marks an error.
std::string Told(const QByteArray& items) {
    std::string told;
    const QList<QByteArray> texts = items.split('|');
    for (const Finding& finding : ProofOf(items).findings) {
        const bool isError = finding.level == Level::Error;
        told += (told.empty() ? "" : ", ") + finding.id.toStdString() + (isError ? "! " : " ") +
                texts[finding.item - 1].toStdString();
    }
    return told;
}

struct Damage {
    const char* old;
    const char* replacement;
    const char* told;
};

QByteArray Damaged(const Damage& damage) {
    EXPECT_EQ(SOUND.count(damage.old), 1) << damage.old;
    return QByteArray(SOUND).replace(damage.old, damage.replacement);
}

template <std::size_t count>
void ExpectTold(const Damage (&damages)[count]) {
    for (const Damage& damage : damages) {
        EXPECT_EQ(Told(Damaged(damage)), damage.told)
            << damage.old << " - " << damage.replacement;
    }
}

TEST(Verify, SoundCode) {
    EXPECT_EQ(Told(SOUND), "");
    EXPECT_TRUE(ProofOf(SOUND).isSound());
    EXPECT_TRUE(ProofOf(SOUND).isExact());
}

TEST(Verify, Labels) {
    ExpectTold({
        {"|L3:|", "|L9:|", "duplicate-label! L9:"},
        {"LAST:", "L10:", ""},
        {"JMPF L9", "JMPF L11", "undefined-label! JMPF L11"},
        {"JMPF L9", "JMPF L1", "undefined-label! JMPF L1"},
        {"LAST:|RET", "LAST:|JMP AWAY|RET", "undefined-label! JMP AWAY"},
        {"LAST:|RET", "LAST:|JMP L1|RET", "goto-into-unit JMP L1"},
    });
}

TEST(Verify, Variables) {
    ExpectTold({
        {"MOV @limit #A0", "MOV @limits #A0", "undeclared-variable! MOV @limits #A0"},
        {"MOV @limit #A0", "MOV @i #A0", "undeclared-variable! MOV @i #A0"},
        {"MOV @limit #A0", "MOV ^limit #A0", "not-a-reference! MOV ^limit #A0"},
        {"MOV ^level #A0", "MOV @level #A0", "reference-by-value! MOV @level #A0"},
        {"|MOV @b #A0|TST", "|MOV @c #A0|TST", "undeclared-variable! MOV @c #A0"},
        {"SUB 0 #A0|MOV #A0 @r", "MOV #A0 $PUSH|MOV @r[#POP.SR] #A0|MOV #A0 @r",
         "array-element! MOV @r[#POP.SR] #A0"},
        {"b V BOOL 1|", "|", "missing-declaration MOV @b #A0"},
    });
}

// FOR tests and steps its variable with "@", whatever it is.
TEST(Verify, ReferenceControlsALoop) {
    const QByteArray loop =
        "MOV 1 #A0|MOV #A0 ^i|MOV 9 #A0|MOV #A0 $PUSH|L1:|MOV @i #A0|"
        "MOV $POP #R0|LE #R0 #A0|TST #A0|MOV #R0 $PUSH|JMPF L2|MOV @i #A0|"
        "SUB 1 #A0|MOV #A0 @i|JMP L1|L2:|MOV $POP #NIL|RET|";
    const QByteArray head = "B:|i VR INT 0|BODY:|MOV $POP #A0|MOVA #A0 @i|";
    const QByteArray program = "PROG:|P|VAR:|MAIN:|RET|";
    EXPECT_EQ(Told(head + loop + program), "");
    EXPECT_EQ(Told(head + "MOV 1 #A0|MOV #A0 @i|" + loop + program),
              "reference-by-value! MOV #A0 @i");
}

TEST(Verify, UndeclaredNamesBeyondTheEmptyItems) {
    EXPECT_EQ(Told("PROG:|P|VAR:||MAIN:|MOV @a #A0|MOV #A0 @A|MOV @b #A0|MOV #A0 @b|RET|"),
              "undeclared-variable! MOV @a #A0, undeclared-variable! MOV @b #A0");
}

TEST(Verify, Types) {
    ExpectTold({
        {"LT $POP #A0", "AND $POP #A0", "wrong-type! AND $POP #A0"},
        {"LT $POP #A0", "ADD $POP #A0", "wrong-type! TST #A0, wrong-type! MOV #A0 @RESULT"},
        {"SUB 0 #A0|", "BNOT #A0|", "wrong-type! BNOT #A0"},
        {"EXEC sqrt|SUB 0", "EXEC sqrt|ADD 1", "wrong-type! ADD 1 #A0"},
        {"MUL $POP #A0", "MOD $POP #A0", "wrong-type! MOD $POP #A0"},
        {"MUL $POP #A0", "SHL $POP #A0", "wrong-type! SHL $POP #A0"},
        {"MOV @b #A0|MUL", "MOV 'A' #A0|MUL", "wrong-type! MUL $POP #A0, wrong-type! MOV #A0 @x"},
        {"MOV 3 #A0", "MOV 'A' #A0", "wrong-type! NE #R0 #A0"},
        {"MOV 9 #A0", "MOV 'A' #A0", "wrong-type! GE #R0 #A0"},
        {"MOV 5 #A0", "MOV 'A' #A0", "wrong-type! MOV #A0 @i"},
        {"r VG REAL 1.5E3", "r VG LREAL 1.5E3", "wrong-type! MUL $POP #A0"},
        {"MOV 16#1F #A0", "MOV @b #A0", "wrong-type! CAL Fill"},
        {"MOV 16#1F #A0", "MOV @r #A0", "wrong-type! CAL Fill"},
        {"MOV 16#1F #A0", "MOV 1.5 #A0", "number-without-type CAL Fill"},
        {"MOVA @x #A0", "MOVA @r #A0", "wrong-type! CAL Fill"},
        {"MOVA @x #A0", "MOV @x #A0", "wrong-type! CAL Fill"},
        {"MOV @r #A0|MOV #A0 $PUSH|EXEC", "MOVA @r #A0|MOV #A0 $PUSH|EXEC",
         "wrong-type! EXEC sqrt"},
        {"MOV @b #A0|TST", "MOV @x #A0|TST", "wrong-type! TST #A0"},
        {"MUL $POP #A0", "EQ $POP #A0", "wrong-type! MOV #A0 @x"},
    });
}

TEST(Verify, AccumulatorHoldsAValue) {
    ExpectTold({
        {"MAIN:|", "MAIN:|MOV #A0 @x|", "no-value! MOV #A0 @x"},
        {"CAL Log|", "CAL Log|MOV #A0 @x|", "no-value! MOV #A0 @x"},
        {"MOV #R0 $PUSH|JMPF L2", "CAL Log|MOV #R0 $PUSH|JMPF L2",
         "no-value! GE #R0 #A0, no-value! MOV #R0 $PUSH, jump-without-test! JMPF L2"},
    });
    EXPECT_EQ(Told("PROG:|P|VAR:|b V BOOL 1|x V INT 0|MAIN:|MOV @b #A0|TST #A0|JMPF L1|"
                   "MOV @x #A0|L1:|MOV #A0 @x|RET|"),
              "no-value! MOV #A0 @x");
}

TEST(Verify, JumpsFollowATest) {
    ExpectTold({
        {"TST #A0|L8:|", "L8:|", "jump-without-test! JMPF L9"},
        {"TST #A0|MOV #R0 $PUSH|JMPF L2", "MOV #R0 $PUSH|JMPF L2", "jump-without-test! JMPF L2"},
        {"MOV $POP #A0|JMPT L8", "MOV $POP #A0|MOV #A0 @b|JMPT L8",
         "jump-without-test! JMPT L8, jump-without-test! JMPF L9"},
    });
}

TEST(Verify, HeightOfTheStack) {
    ExpectTold({
        {"|LT $POP #A0", "",
         "wrong-type! TST #A0, wrong-type! MOV #A0 @RESULT, stack-not-empty! RET"},
        {"^level #A0|MOV #A0 $PUSH", "^level #A0", "stack-too-low! LT $POP #A0"},
        {"L2:|MOV $POP #NIL", "L2:", "stack-not-empty! RET"},
        {"L4:|MOV $POP #NIL", "L4:", "stack-heights-differ! MOV @i #A0"},
        {"MOV 9 #A0|MOV #A0 $PUSH", "MOV 9 #A0",
         "stack-too-low! MOV $POP #R0, goto-changes-stack JMP L1"},
        {"MOV 5 #A0|", "MOV 5 #A0|MOV #A0 $PUSH|",
         "stack-heights-differ! MOV @i #A0, stack-heights-differ! MOV $POP #NIL"},
        {"CAL Log|", "CAL Log|MOV $POP #NIL|", "stack-too-low! MOV $POP #NIL"},
        {"EXEC sqrt", "EXEC pow", "stack-too-low! EXEC pow"},
        {"MOV 2 #A0|MOV #A0 $PUSH|CAL", "MOV 2 #A0|CAL",
         "stack-too-low! CAL Fill, wrong-type! CAL Fill"},
    });
}

TEST(Verify, EndOfAUnit) {
    ExpectTold({
        {"MOV @RESULT #A0|RET", "RET", "result-not-loaded! RET"},
        {"LAST:|RET", "RET|LAST:", "no-return! LAST:"},
        {"LAST:|RET", "LAST:", "no-return! LAST:"},
    });
    EXPECT_EQ(Told("PROG:|P|VAR:|MAIN:|"), "no-return! MAIN:");
}

TEST(Verify, Parameters) {
    ExpectTold({
        {"MOVA #A0 @level", "MOV #A0 @level",
         "wrong-prologue! MOV $POP #A0, reference-by-value! MOV #A0 @level, wrong-type! MOV #A0 "
         "@level"},
        {"MOV #A0 @limit|MOV $POP #A0|MOVA #A0 @level",
         "MOVA #A0 @level|MOV $POP #A0|MOV #A0 @limit",
         "wrong-prologue! MOV $POP #A0, wrong-type! MOVA #A0 @level, wrong-type! MOV #A0 @limit"},
        {"MOV @b #A0|MUL", "MOVA @b #A0|MOVA #A0 @b|MOV @b #A0|MUL",
         "wrong-prologue! MOVA #A0 @b"},
    });
    EXPECT_EQ(Told("B:|a VA INT 0|BODY:|RET|PROG:|P|VAR:|MAIN:|RET|"),
              "wrong-prologue! RET, stack-not-empty! RET");
}

TEST(Verify, Calls) {
    ExpectTold({
        {"CAL Log", "CAL log", "unknown-callee! CAL log"},
        {"EXEC sqrt", "EXEC root", "unknown-callee! EXEC root"},
        {"MOV 1 #A0|MOV #A0 @i", "CAL P|MOV 1 #A0|MOV #A0 @i", "unknown-callee! CAL P"},
        {"|MOV @RESULT #A0|RET", "|CAL Log|MOV @RESULT #A0|RET", "call-ahead! CAL Log"},
        {"Log:|i", "FILL:|i", "duplicate-unit! FILL:, unknown-callee! CAL Log"},
        {"EXEC sqrt|SUB 0 #A0|", "EXEC sqrt|MOV 1 #A0|", "unused-result! EXEC sqrt"},
        {"CAL Fill|MOV $POP #NIL", "CAL Fill", "unused-result! CAL Fill"},
    });
    EXPECT_EQ(Told("Sqrt:|BODY:|RET|PROG:|P|VAR:|MAIN:|RET|"), "duplicate-unit! Sqrt:");
}

TEST(Verify, LibertiesOfTheLanguage) {
    ExpectTold({
        {"MOV 5 #A0|MOV #A0 @i|JMP L4", "MOV $POP #NIL|RET|JMP L4", "exit-in-case RET"},
        {"MOV 5 #A0|MOV #A0 @i|JMP L4", "RET|JMP L4", "stack-not-empty! RET"},
        {"L3:|MOV @i", "JMP OUT|OUT:|L3:|MOV @i", ""},
    });
}

// The drop at the end of the loop is passed by.
TEST(Verify, GotoOutOfALoop) {
    QByteArray code = SOUND;
    code.replace("L3:|MOV @i", "JMP OUT|L3:|MOV @i")
        .replace("L2:|MOV $POP #NIL|", "L2:|MOV $POP #NIL|OUT:|");
    EXPECT_EQ(Told(code), "goto-changes-stack JMP OUT");
    code.replace("JMP OUT|", "MOV 1 #A0|MOV #A0 $PUSH|JMP OUT|");
    EXPECT_EQ(Told(code), "stack-heights-differ! RET");
}

TEST(Verify, LabelOfAScriptLikeAGeneratedOne) {
    QByteArray code = SOUND;
    code.replace("L3:|MOV @i", "JMP L77|L3:|MOV @i")
        .replace("L2:|MOV $POP #NIL|", "L2:|MOV $POP #NIL|L77:|");
    EXPECT_EQ(Told(code), "goto-changes-stack JMP L77");
}

TEST(Verify, GotoFromOneLoopIntoAnother) {
    const QByteArray loop =
        "MOV 1 #A0|MOV #A0 @i|MOV 9 #A0|MOV #A0 $PUSH|L1:|MOV @i #A0|"
        "MOV $POP #R0|GE #R0 #A0|TST #A0|MOV #R0 $PUSH|JMPF L2|IN:|L3:|"
        "MOV @i #A0|ADD 1 #A0|MOV #A0 @i|JMP L1|L2:|MOV $POP #NIL|";
    QByteArray other = loop;
    other.replace("L1", "L4").replace("L2", "L5").replace("L3", "L6").replace("IN:|", "JMP IN|");
    EXPECT_EQ(Told("PROG:|P|VAR:|i V INT 0|MAIN:|" + loop + other + "RET|"),
              "goto-changes-stack JMP IN");
}

TEST(Verify, BlockThatCallsItselfFirst) {
    const QByteArray head = "B:|a VA INT 0|BODY:|MOV $POP #A0|MOV #A0 @a|";
    const QByteArray call = "MOV @a #A0|MOV #A0 $PUSH|CAL B|MOV $POP #NIL|";
    const QByteArray tail = "RET|PROG:|P|VAR:|MAIN:|RET|";
    EXPECT_EQ(Told(head + call + tail), "drop-without-value CAL B");
    EXPECT_EQ(Told(head + call + call + tail),
              "drop-without-value CAL B, stack-too-low! MOV $POP #NIL");
    EXPECT_EQ(Told(head + "MOV @a #A0|MOV #A0 @a|" + call + tail),
              "stack-too-low! MOV $POP #NIL");
}

TEST(Verify, SignOfAString) {
    EXPECT_EQ(Told("F:|RESULT V STRING 0|BODY:|MOV 'A' #A0|SUB 0 #A0|MOV #A0 @RESULT|"
                   "MOV @RESULT #A0|RET|PROG:|P|VAR:|MAIN:|RET|"),
              "signed-string SUB 0 #A0");
}

// A number whose type the compiler has forgotten.
TEST(Verify, NumberWithoutType) {
    const QByteArray head = "PROG:|P|VAR:|x V INT 0|b V BOOL 0|MAIN:|";
    EXPECT_EQ(Told(head + "MOV 2.5 #A0|SUB 0 #A0|MOV #A0 $PUSH|MOV @x #A0|MOD $POP #A0|"
                          "MOV #A0 @x|RET|"),
              "number-without-type MOD $POP #A0");
    EXPECT_EQ(Told(head + "MOV 1.5 #A0|MOV #A0 $PUSH|MOV @b #A0|ADD $POP #A0|MOV #A0 @x|RET|"),
              "");
    EXPECT_EQ(Told(head + "MOV 1.5 #A0|MOV #A0 $PUSH|MOV @b #A0|ADD $POP #A0|MOV #A0 @b|RET|"),
              "number-without-type MOV #A0 @b");
}

TEST(Verify, UnreachableCode) {
    const QByteArray head = "PROG:|P|VAR:|x V INT 0|MAIN:|";
    EXPECT_EQ(Told(head + "RET|MOV @x #A0|MOV #A0 @x|MOV @x #A0|RET|"),
              "unreached-code MOV @x #A0");
    EXPECT_EQ(Told(head + "RET|JMP L1|L1:|RET|"), "");
    EXPECT_EQ(Told(head + "RET|MOV #A0 @x|RET|"),
              "no-value! MOV #A0 @x, unreached-code MOV #A0 @x");
    const QByteArray step = "L3:|MOV @x #A0|ADD 1 #A0|MOV #A0 @x|JMP L1|L2:|MOV $POP #NIL|RET|";
    EXPECT_EQ(Told(head +
                   "MOV 9 #A0|MOV #A0 $PUSH|L1:|MOV @x #A0|MOV $POP #R0|GE #R0 #A0|"
                   "TST #A0|MOV #R0 $PUSH|JMPF L2|JMP L2|" +
                   step),
              "");
}

// ---------------------------------------------------------------------------------------------
// What is proven of each instruction
// ---------------------------------------------------------------------------------------------

TEST(Proven, OfAnExpression) {
    const Proof proof = ProofOf(
        "PROG:|P|VAR:|x V INT 0|r V REAL 0|MAIN:|MOV @r #A0|"
        "MOV #A0 $PUSH|MOV @x #A0|ADD $POP #A0|MOV #A0 @r|RET|RET|");
    const auto& all = proof.instructions;
    ASSERT_EQ(all.size(), 7U);
    EXPECT_EQ(all[0].accumulator, TYP_NONE);
    EXPECT_EQ(all[3].height, 1);
    EXPECT_EQ(all[3].popped, TYP_REAL);
    EXPECT_EQ(all[3].accumulator, TYP_INT);
    EXPECT_EQ(all[4].accumulator, TYP_REAL);
    EXPECT_EQ(all[4].height, 0);
    EXPECT_TRUE(all[5].isReached);
    EXPECT_FALSE(all[6].isReached);
}

TEST(Proven, OfParametersAndDroppedResults) {
    const Proof proof = ProofOf(SOUND);
    EXPECT_EQ(proof.instructions[0].height, 2);
    EXPECT_EQ(proof.instructions[0].popped, TYP_INT);
    EXPECT_EQ(proof.instructions[2].popped, TYP_INT);  // the address of an INT
    EXPECT_EQ(proof.instructions[4].height, 0);
    EXPECT_FALSE(Verify(ReadCode(CodeFile("PROG:|P|VAR:||MAIN:|MOV @b #A0|MOV #A0 @b|RET|")).code)
                     .isExact());
}

TEST(Proven, OfTheTestOfALoop) {
    const Proof proof = ProofOf(SOUND);
    const Proven& compared = proof.instructions[12 + 6];  // "GE #R0 #A0"
    EXPECT_EQ(compared.register0, TYP_SINT);
    EXPECT_EQ(compared.accumulator, TYP_INT);
    EXPECT_EQ(compared.height, 0);
}

// What is not reached tells nothing of what is.
TEST(Proven, UnreachedCodeDoesNotMatter) {
    const Proof proof = ProofOf(
        "PROG:|P|VAR:|x V INT 0|MAIN:|MOV @x #A0|JMP L1|JMP L1|L1:|"
        "MOV #A0 @x|RET|");
    EXPECT_TRUE(proof.isExact());
    EXPECT_EQ(proof.instructions[3].accumulator, TYP_INT);
}

}  // namespace
