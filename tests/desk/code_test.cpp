// The reader of target code: each form of an item, and each fault with its place.

#include "machine/code.h"

#include <gtest/gtest.h>

#include <string>

#include "code_text.h"
#include "print_text.h"

namespace {

// "item 7 "MOV": what is wrong", or nothing.
std::string FaultOf(const QByteArray& text) {
    const CodeResult result = ReadCode(text);
    if (!result.fault) {
        return "";
    }
    const int item = result.fault->item;
    const bool isThere = item > 0 && item <= result.code.items.count();
    const QString name =
        isThere ? NameOfItem(result.code.items, item) + QStringLiteral(": ") : QString();
    return (name + result.fault->message).toStdString();
}

Code Read(const QByteArray& text) {
    EXPECT_EQ(FaultOf(text), "");
    return ReadCode(text).code;
}

const QByteArray SMALL = "PROG:|P|VAR:|x V INT -5|MAIN:|MOV @x #A0|MOV #A0 @X|RET|";

// ---------------------------------------------------------------------------------------------
// Items
// ---------------------------------------------------------------------------------------------

TEST(ReadItems, CodeFileAndListingAreTheSame) {
    const Code code = Read(CodeFile(SMALL));
    const Code listed =
        Read(";Line 1: \"PROGRAM P\"\n" + Listing(SMALL) + ";Build successful.\n");
    EXPECT_EQ(code.items.text, listed.items.text);
    EXPECT_EQ(code.items.count(), 8);
    EXPECT_EQ(code.items.item(4), "x V INT -5");
    EXPECT_EQ(NameOfItem(code.items, 6), QStringLiteral("item 6 \"MOV @x #A0\""));
}

TEST(ReadItems, ListingMayHaveNumbersAndCarriageReturns) {
    EXPECT_EQ(FaultOf("0001\tPROG:\r\n0002\tP\r\n0003\tVAR:\r\n0004\tMAIN:\r\n0005\tRET\r\n"),
              "");
}

TEST(ReadItems, LineOfAListingIsOneItem) {
    EXPECT_EQ(FaultOf("PROG:\nP\nVAR:\nMAIN:\nMOV @x\n#A0\nRET\n"),
              "item 5 \"MOV @x #A0\": this line of the listing is not one item");
    EXPECT_EQ(FaultOf("PROG:\nP\nVAR:\nMAIN: RET\n"),
              "item 4 \"MAIN:\": this line of the listing is not one item");
}

TEST(ReadItems, LongItemIsCut) {
    const QByteArray name(200, 'x');
    const Code code = Read(Program("", "JMP " + name + '|' + name + ":|"));
    EXPECT_EQ(NameOfItem(code.items, 5).size(), 80 + QString("item 5 \"...\"").size());
}

TEST(ReadItems, BreaksOff) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "the code does not end with a blank: it is not whole"},
        {" ", "item 1 \"\": a function, a function block or the program begins with a label"},
        {"PROG: P VAR: MAIN: RET", "the code does not end with a blank: it is not whole"},
        {"PROG: P ", "item 2 \"P\": a declaration or \"BODY:\" is due here"},
        {"PROG: P VAR: ", "the code ends before \"MAIN:\""},
        {"PROG: P VAR: x V INT ", "item 4 \"x\": the code ends inside the item"},
        {"PROG: P VAR: x V INT 0 MAYN: RET ",
         "item 5 \"MAYN:\": a declaration or \"MAIN:\" is due here"},
        {"PROG: P VAR: MAIN: MOV @x ", "item 5 \"MOV\": the code ends inside the item"},
        {"PROG: P VAR: MAIN: HALT RET ", "item 5 \"HALT\": no instruction begins with \"HALT\""},
        {"PROG: P VAR: MAIN: MOV 'A #A0 RET ", "item 5 \"MOV\": the code ends inside the item"},
        {"F RESULT V INT 0 BODY: RET ",
         "item 1 \"F\": a function, a function block or the program begins with a label"},
        {"F: BODY: RET ", "item 3 \"RET\": the code holds no program"},
        {"PROG: P VAR: MAIN: RET F: BODY: RET ", "item 6 \"F:\": something follows the program"},
    };
    for (const auto& [text, fault] : rows) {
        EXPECT_EQ(FaultOf(text), fault) << text;
    }
}

// ---------------------------------------------------------------------------------------------
// Units and declarations
// ---------------------------------------------------------------------------------------------

TEST(ReadUnits, Kinds) {
    const Code code =
        Read(CodeFile("F:|RESULT V REAL 0|a VA INT 0|BODY:|RET|B:||r VR BOOL 0|"
                      "BODY:|AGAIN:|RET|PROG:|P|VAR:|MAIN:|JMP AGAIN|RET|"));
    ASSERT_EQ(code.units.size(), 3U);
    EXPECT_EQ(code.units[0].kind, UnitKind::Function);
    EXPECT_EQ(code.units[0].result, 0);
    EXPECT_EQ(code.units[0].parameters, std::vector<int>{1});
    EXPECT_EQ(code.units[1].kind, UnitKind::FunctionBlock);
    EXPECT_EQ(code.units[1].emptyDeclarations, 1);
    EXPECT_EQ(code.units[1].parameters, std::vector<int>{0});
    EXPECT_EQ(code.program().kind, UnitKind::Program);
    EXPECT_EQ(code.program().name, QStringLiteral("P"));
    EXPECT_EQ(code.unitOf(code.program().begin), 2);
    EXPECT_EQ(code.instructions[2].target, 1);
    EXPECT_EQ(code.units[1].firstItem, 6);
    EXPECT_EQ(code.units[1].lastItem, 11);
}

TEST(ReadUnits, NamesAreThoseOfScripts) {
    EXPECT_EQ(FaultOf(CodeFile("PROG:|1P|VAR:|MAIN:|RET|")), "item 2 \"1P\": no name");
    EXPECT_EQ(FaultOf(CodeFile("F-:|BODY:|RET|PROG:|P|VAR:|MAIN:|RET|")),
              "item 1 \"F-:\": no name");
    EXPECT_EQ(FaultOf(Program("", "A.B:|")), "item 5 \"A.B:\": the label is no name");
    EXPECT_EQ(FaultOf(CodeFile("PROG:|Ж_1|VAR:|MAIN:|RET|")), "");
}

TEST(ReadUnits, MarksOfSectionsAreNamesToo) {
    EXPECT_EQ(Read(CodeFile("PROG:|BODY:|RET|MAIN:|BODY:|PROG:|RET|PROG:|PROG|VAR:|MAIN:|RET|"))
                  .units.size(),
              3U);
}

TEST(ReadDeclarations, OfAProgram) {
    const Code code =
        Read(Program("a V BOOL 1|b VI SINT -5|c VO USINT 16#FF|d VG REAL 2.5E3|"
                     "e YVG DINT 12|f YVR UINT 1 -2 3 4|",
                     ""));
    const std::vector<Declaration>& all = code.program().declarations;
    ASSERT_EQ(all.size(), 6U);
    EXPECT_EQ(all[0].section, Section::Local);
    EXPECT_EQ(all[1].numbers[0].whole, -5);
    EXPECT_EQ(all[2].numbers[0].whole, 255);
    EXPECT_EQ(all[3].numbers[0].real, 2500.0);
    EXPECT_EQ(all[4].section, Section::EngineGlobal);
    EXPECT_EQ(all[5].numbers.size(), 4U);
    EXPECT_EQ(all[5].item, 9);
    EXPECT_EQ(code.program().variable(QStringLiteral("F")), 5);
    EXPECT_EQ(code.program().variable(QStringLiteral("g")), NOWHERE);
}

TEST(ReadDeclarations, OfResults) {
    for (const char* const type : {"BOOL", "LREAL", "STRING", "ARRAY"}) {
        EXPECT_EQ(FaultOf(CodeFile("F:|RESULT V " + QByteArray(type) +
                                   " 0|BODY:|RET|PROG:|P|VAR:|MAIN:|RET|")),
                  "");
    }
}

TEST(ReadDeclarations, FaultsOfAProgram) {
    const std::pair<const char*, const char*> rows[] = {
        {"2x V INT 0", "no name stands before the code of the section"},
        {"x V WORD 0", "no type stands after the code of the section"},
        {"x V STRING 0", "no variable can have that type"},
        {"x V INT 'A'", "that is no value for a declaration of this kind"},
        {"x V BOOL 2", "that is no value for a declaration of this kind"},
        {"x V BOOL 16#1", "that is no value for a declaration of this kind"},
        {"x V INT +5", "\"+5\" is no operand and no number"},
        {"x V INT ", "\"\" is no operand and no number"},
        {"x VA INT 0", "a section that this kind of unit does not have"},
        {"RESULT V INT 0", "RESULT is the first declaration of a function, and no other"},
    };
    for (const auto& [item, fault] : rows) {
        const std::string name = "item 4 \"" + std::string(item) + "\": ";
        EXPECT_EQ(FaultOf(Program(QByteArray(item) + '|', "")), name + fault);
    }
    EXPECT_EQ(FaultOf(Program("x V INT 0|X V INT 0|", "")),
              "item 5 \"X V INT 0\": the unit declares that name twice");
}

TEST(ReadDeclarations, FaultsOfDefinitions) {
    const std::pair<const char*, const char*> rows[] = {
        {"a VI INT 0", "item 2 \"a VI INT 0\": a section that this kind of unit does not have"},
        {"a VA INT 1", "item 2 \"a VA INT 1\": that is no value for a declaration of this kind"},
        {"RESULT V INT 1",
         "item 2 \"RESULT V INT 1\": that is no value for a declaration of this kind"},
        {"v V INT 0|a VA INT 0",
         "item 3 \"a VA INT 0\": a parameter is declared after a variable"},
        {"RESULT V INT 0|v V INT 0|r VR INT 0",
         "item 4 \"r VR INT 0\": a parameter is declared after a variable"},
        {"a VA INT 0|RESULT V INT 0",
         "item 3 \"RESULT V INT 0\": RESULT is the first declaration of a function, and no "
         "other"},
    };
    for (const auto& [items, fault] : rows) {
        const QByteArray head = "F:|" + QByteArray(items);
        EXPECT_EQ(FaultOf(CodeFile(head + "|BODY:|RET|PROG:|P|VAR:|MAIN:|RET|")), fault);
    }
}

// ---------------------------------------------------------------------------------------------
// Instructions
// ---------------------------------------------------------------------------------------------

const QByteArray OPERATIONS[] = {"ADD", "SUB",  "MUL", "DIV", "MOD", "POW", "BAND",
                                 "BOR", "BXOR", "SHL", "SHR", "ROL", "ROR", "EQ",
                                 "NE",  "LT",   "GT",  "LE",  "GE",  "AND", "XOR"};

TEST(ReadInstructions, EachForm) {
    QByteArray items;
    for (const QByteArray& operation : OPERATIONS) {
        items += operation + " $POP #A0|";
    }
    for (const char* const item : {"MOV @x #A0",
                                   "MOV ^x #A0",
                                   "MOV 25 #A0",
                                   "MOV 'A  B' #A0",
                                   "MOV *TICK #A0",
                                   "MOV #A0 @x",
                                   "MOV #A0 ^x",
                                   "MOV #A0 *TICK",
                                   "MOV #A0 $PUSH",
                                   "MOV $POP #A0",
                                   "MOV $POP #R0",
                                   "MOV $POP #NIL",
                                   "MOV #R0 $PUSH",
                                   "MOV #A0 #R0",
                                   "MOVA @x #A0",
                                   "MOVA #A0 @x",
                                   "NE #R0 #A0",
                                   "LT #R0 #A0",
                                   "GT #R0 #A0",
                                   "LE #R0 #A0",
                                   "GE #R0 #A0",
                                   "ADD #R0 #A0",
                                   "SUB 0 #A0",
                                   "ADD 1 #A0",
                                   "SUB 1 #A0",
                                   "EQ 1 #A0",
                                   "NOT #A0",
                                   "BNOT #A0",
                                   "TST #A0",
                                   "JMP L1",
                                   "JMPF L1",
                                   "JMPT L1",
                                   "CAL F",
                                   "EXEC sqrt",
                                   "RET",
                                   "L1:",
                                   "MOV @x[#POP.SI] #A0",
                                   "MOV #A0 @x[#R1.LR]"}) {
        items += QByteArray(item) + '|';
    }
    const Code code = Read(Program("x V INT 0|", items));
    EXPECT_EQ(code.instructions.size(),
              21U + 38U - 1U + 1U);  // the label is none, "RET" one more
    EXPECT_EQ(code.labels.size(), 1U);
}

TEST(ReadInstructions, Operands) {
    const Code code = Read(Program("x V INT 0|",
                                   "MOV ^X #A0|MOV 16#FF #A0|MOV 'A  B' #A0|"
                                   "MOV #A0 @x[#POP.SI]|MOV @y #A0|"));
    const auto from = [&code](std::size_t index) { return code.instructions[index].from; };
    const auto literal = [&](std::size_t index) {
        return code.literals[static_cast<std::size_t>(from(index).index)];
    };
    EXPECT_EQ(from(0).kind, OperandKind::Referred);
    EXPECT_EQ(from(0).index, 0);
    EXPECT_EQ(literal(1).whole, 255);
    EXPECT_EQ(literal(2).type, TYP_STRING);
    EXPECT_EQ(literal(2).text, QStringLiteral("A  B"));
    EXPECT_EQ(code.instructions[3].to.kind, OperandKind::ElementByPop);
    EXPECT_EQ(code.instructions[3].to.element, TYP_INT);
    EXPECT_EQ(from(4).index, NOWHERE);
}

TEST(ReadInstructions, NoForm) {
    for (const char* const item :
         {"MOV #A0 #A0",  "MOV #R0 #A0",    "MOV @x @x",   "MOV $PUSH #A0", "MOV #A0 $POP",
          "MOV #A0 #NIL", "MOV $POP $PUSH", "MOV 5 $PUSH", "MOVA @x @x",    "MOVA ^x #A0",
          "ADD $POP #R0", "ADD @x #A0",     "MUL #R0 #A0", "EQ #R0 #A0",    "AND #R0 #A0",
          "SUB 2 #A0",    "ADD 0 #A0",      "EQ 0 #A0",    "MUL 1 #A0",     "ADD '1' #A0",
          "TST #R0",      "NOT $POP",       "JMP 1L",      "CAL a-b",       "EXEC "}) {
        EXPECT_EQ(FaultOf(Program("x V INT 0|", QByteArray(item) + '|')),
                  "item 6 \"" + std::string(item) + "\": no instruction has these operands");
    }
}

TEST(ReadInstructions, NoOperand) {
    const std::pair<const char*, const char*> rows[] = {
        {"MOV -1 #A0", "an operand has no sign"},
        {"MOV 16#1G #A0", "\"16#1G\" is no operand and no number"},
        {"MOV 1E3 #A0", "\"1E3\" is no operand and no number"},
        {"MOV . #A0", "\".\" is no operand and no number"},
        {"MOV @x ", "\"\" is no operand and no number"},
        {"MOV @1 #A0", "an operand names no variable"},
        {"MOV @x[] #A0", "no element of an array is written so"},
        {"MOV @x[#POP.XX] #A0", "no element of an array is written so"},
        {"MOV @x[#R0.SI] #A0", "no element of an array is written so"},
        {"MOV ^x[#POP.SI] #A0", "no element of an array is written so"},
        {"MOV @x[#POP.SI #A0", "no element of an array is written so"},
    };
    for (const auto& [item, fault] : rows) {
        EXPECT_EQ(FaultOf(Program("x V INT 0|", QByteArray(item) + '|')),
                  "item 6 \"" + std::string(item) + "\": " + fault);
    }
}

TEST(ReadInstructions, Targets) {
    const Code code =
        Read(CodeFile("F:|BODY:|A:|RET|f:|BODY:|A:|RET|PROG:|P|VAR:|MAIN:|CAL F|"
                      "CAL G|CAL P|EXEC sqrt|EXEC SQRT|JMP A|JMP B|RET|"));
    const auto target = [&code](std::size_t index) { return code.instructions[index].target; };
    EXPECT_EQ(target(2), 0);
    EXPECT_EQ(target(3), NOWHERE);
    EXPECT_EQ(target(4), NOWHERE);
    EXPECT_EQ(EngineBuiltIns()[static_cast<std::size_t>(target(5))].name, QStringLiteral("sqrt"));
    EXPECT_EQ(target(6), NOWHERE);
    EXPECT_EQ(target(7), 0);
    EXPECT_EQ(target(8), NOWHERE);
}

// ---------------------------------------------------------------------------------------------
// Literals and names
// ---------------------------------------------------------------------------------------------

TEST(ReadLiterals, TypesAndValues) {
    struct Row {
        const char* text;
        Typ type;
        double value;
    };
    const Row rows[] = {
        {"0", TYP_SINT, 0},
        {"127", TYP_SINT, 127},
        {"128", TYP_USINT, 128},
        {"-128", TYP_SINT, -128},
        {"-129", TYP_INT, -129},
        {"65535", TYP_UINT, 65535},
        {"65536", TYP_DINT, 65536},
        {"4294967295", TYP_UDINT, 4294967295.0},
        {"4294967296", TYP_LREAL, 4294967296.0},
        {"16#FFFFFFFF", TYP_UDINT, 4294967295.0},
        {"8#17", TYP_SINT, 15},
        {"2#101", TYP_SINT, 5},
        {"2.5", TYP_REAL, 2.5},
        {"-2.5", TYP_REAL, -2.5},
        {"2.5E-3", TYP_REAL, 0.0025},
        {"2.5E", TYP_REAL, 2.5},
        {"2.5E+", TYP_REAL, 2.5},
        {"1.0E40", TYP_LREAL, 1.0e40},
    };
    for (const Row& row : rows) {
        const std::optional<Literal> literal = ReadLiteral(row.text);
        ASSERT_TRUE(literal) << row.text;
        EXPECT_EQ(literal->type, row.type) << row.text;
        EXPECT_EQ(literal->real, row.value) << row.text;
    }
}

TEST(ReadLiterals, Others) {
    for (const char* const text : {"", "-", "A", "1.", ".5", "1.5F", "3#12", "16#", "16#ff",
                                   "2#2", "'A", "'A'B'", "--1", "1-"}) {
        EXPECT_FALSE(ReadLiteral(text)) << text;
    }
}

TEST(Names, GeneratedLabels) {
    EXPECT_TRUE(IsGeneratedLabel(QStringLiteral("L1")));
    EXPECT_TRUE(IsGeneratedLabel(QStringLiteral("L20")));
    for (const char* const name : {"L", "L0", "L01", "l1", "L1A", "LAST"}) {
        EXPECT_FALSE(IsGeneratedLabel(QString::fromLatin1(name))) << name;
    }
}

}  // namespace
