// The lists of variables, functions and labels, and the tables of reserved words and types.

#include "qyx_lists.h"

#include <vector>

#include "qyx_il.h"
#include "support.h"

namespace {

VarItem Variable(QStringView name, Typ type = TYP_INT) {
    VarItem item;
    item.spelling = &SpellingOf(name);
    item.type = type;
    return item;
}

std::vector<std::string> NamesIn(const VarsList& list) {
    std::vector<std::string> names;
    for (const VarItem& item : list) {
        names.push_back(Utf8(item.name()));
    }
    return names;
}

class Lists : public CompilerTest {
protected:
    VarsList list_;
};

// ---------------------------------------------------------------------------------------------
// Records
// ---------------------------------------------------------------------------------------------

TEST_F(Lists, ANewVariableIsAScalarThatNothingHasTouched) {
    const VarItem& item = AddVarToVarsList(list_, Variable(u"x"));
    EXPECT_EQ(Utf8(item.name()), "x");
    EXPECT_EQ(item.type, TYP_INT);
    EXPECT_FALSE(item.isReference);
    EXPECT_FALSE(item.isConstant);
    EXPECT_FALSE(item.isArray);
    EXPECT_FALSE(item.isInitialized);
    EXPECT_TRUE(item.mayBeUninitialized);
    EXPECT_EQ(item.arrayDimensions, NOT_AN_ARRAY);
    EXPECT_EQ(item.arraySize, NOT_AN_ARRAY);
    EXPECT_EQ(item.elementType, TYP_NONE);
    EXPECT_FALSE(item.isUsed);
    EXPECT_EQ(Place(item.declBegin) + ' ' + Place(item.declEnd), "-1:-1 -1:-1");
}

TEST_F(Lists, TheBoundsOfAScalarAre256Zeros) {
    const VarItem item;
    EXPECT_EQ(item.arrayBounds.size(), 256);
    EXPECT_EQ(item.arrayBounds.count(0), 256);
}

TEST_F(Lists, ScalarsShareTheirBoundsUntilOneChanges) {
    VarItem array;
    const VarItem scalar;
    EXPECT_EQ(array.arrayBounds.constData(), scalar.arrayBounds.constData());
    array.arrayBounds[0] = 7;
    EXPECT_EQ(scalar.arrayBounds.at(0), 0);
    EXPECT_EQ(VarItem().arrayBounds.at(0), 0);
}

TEST_F(Lists, InsertionSetsTheMarksOfANewVariable) {
    VarItem item = Variable(u"x");
    item.isUsed = true;
    item.isInitialized = true;
    item.mayBeUninitialized = true;
    const VarItem& initialized = AddVarToVarsList(list_, item);
    EXPECT_FALSE(initialized.isUsed);
    EXPECT_TRUE(initialized.isInitialized);
    EXPECT_FALSE(initialized.mayBeUninitialized);
    item.spelling = &SpellingOf(u"y");
    item.isInitialized = false;
    item.mayBeUninitialized = false;
    EXPECT_TRUE(AddVarToVarsList(list_, item).mayBeUninitialized);
}

TEST_F(Lists, InsertionKeepsEverythingElse) {
    VarItem item = Variable(u"Table", TYP_ARRAY);
    item.isReference = true;
    item.isConstant = true;
    item.isArray = true;
    item.arrayDimensions = 2;
    item.arraySize = 12;
    item.arrayBounds[0] = 3;
    item.arrayBounds[1] = 4;
    item.elementType = TYP_REAL;
    item.declBegin = {1, 2};
    item.declEnd = {1, 7};
    AddVarToVarsList(list_, item);
    const VarItem& stored = IsArrayVarInVarsList(list_, SpellingOf(u"TABLE"));
    EXPECT_EQ(Utf8(stored.name()), "Table");
    EXPECT_EQ(stored.type, TYP_ARRAY);
    EXPECT_TRUE(stored.isReference);
    EXPECT_TRUE(stored.isConstant);
    EXPECT_EQ(stored.arrayDimensions, 2);
    EXPECT_EQ(stored.arraySize, 12);
    EXPECT_EQ(stored.arrayBounds, item.arrayBounds);
    EXPECT_EQ(stored.elementType, TYP_REAL);
    EXPECT_EQ(Place(stored.declBegin) + ' ' + Place(stored.declEnd), "1:2 1:7");
}

TEST_F(Lists, ANewFunctionReturnsLrealAndIsUnusedAndUserDefined) {
    const FunctionItem function;
    EXPECT_EQ(function.resultType, TYP_LREAL);
    EXPECT_TRUE(function.arguments.empty());
    EXPECT_FALSE(function.isUsed);
    EXPECT_FALSE(function.isBuiltIn);
}

// ---------------------------------------------------------------------------------------------
// Order, references, lookups
// ---------------------------------------------------------------------------------------------

TEST_F(Lists, RecordsKeepTheOrderOfTheirInsertion) {
    for (const QString& name : {QStringLiteral("z"), QStringLiteral("A"), QStringLiteral("ж"),
                                QStringLiteral("m"), QStringLiteral("b")}) {
        AddVarToVarsList(list_, Variable(name));
    }
    EXPECT_EQ(NamesIn(list_), (std::vector<std::string>{"z", "A", "ж", "m", "b"}));
}

TEST_F(Lists, ReferencesStayValidWhileTenThousandRecordsAreAppended) {
    constexpr int count = 10000;
    std::vector<VarItem*> items;
    for (int i = 0; i < count; ++i) {
        items.push_back(&AddVarToVarsList(list_, Variable(QStringLiteral("v%1").arg(i))));
        items[static_cast<std::size_t>(i) / 2]->arraySize = i;
    }
    int i = 0;
    for (const VarItem& item : list_) {
        ASSERT_EQ(&item, items[static_cast<std::size_t>(i)]);
        ASSERT_EQ(Utf8(item.name()), "v" + std::to_string(i));
        ASSERT_EQ(&IsVarInVarsList(list_, SpellingOf(QStringLiteral("V%1").arg(i))), &item);
        ASSERT_EQ(item.arraySize, i < count / 2 ? 2 * i + 1 : -1);
        ++i;
    }
    EXPECT_EQ(i, count);
}

TEST_F(Lists, LookupsIgnoreCase) {
    const VarItem& latin = AddVarToVarsList(list_, Variable(u"Count_1"));
    const VarItem& cyrillic = AddVarToVarsList(list_, Variable(u"СчетЯ"));
    for (const QString& name :
         {QStringLiteral("Count_1"), QStringLiteral("COUNT_1"), QStringLiteral("count_1")}) {
        EXPECT_EQ(&IsVarInVarsList(list_, SpellingOf(name)), &latin);
    }
    for (const QString& name :
         {QStringLiteral("СчетЯ"), QStringLiteral("СЧЕТЯ"), QStringLiteral("счетя")}) {
        EXPECT_EQ(&IsVarInVarsList(list_, SpellingOf(name)), &cyrillic);
    }
    EXPECT_EQ(list_.find(SpellingOf(u"Count_")), nullptr);
    EXPECT_EQ(list_.find(SpellingOf(u"Count_11")), nullptr);
    EXPECT_EQ(list_.find(SpellingOf(u"СчетА")), nullptr);
}

TEST_F(Lists, OperandsSpellTheNameAsItIsUsed) {
    AddVarToVarsList(list_, Variable(u"Count"));
    VarItem reference = Variable(u"Ссылка");
    reference.isReference = true;
    AddVarToVarsList(list_, reference);
    openOutput(OpenOutputCodeFile, "code");
    for (const QString& name : {QStringLiteral("COUNT"), QStringLiteral("ссылкА")}) {
        const Spelling& use = SpellingOf(name);
        WriteItem(OperandOf(IsVarInVarsList(list_, use), use));
    }
    EXPECT_EQ(finishedCode(), "@COUNT ^ссылкА ");
}

TEST_F(Lists, UnknownNamesAndOtherThanArrays) {
    AddVarToVarsList(list_, Variable(u"x"));
    ExpectFailure([&] { IsVarInVarsList(list_, SpellingOf(u"Y")); },
                  ErrorAt(0, 0, "An unrecognized keyword \"Y\""));
    ExpectFailure([&] { IsArrayVarInVarsList(list_, SpellingOf(u"Y")); },
                  ErrorAt(0, 0, "An unrecognized keyword \"Y\""));
    ExpectFailure([&] { IsArrayVarInVarsList(list_, SpellingOf(u"x")); },
                  ErrorAt(0, 0, "Array type required"));
}

TEST_F(Lists, AClearedListIsEmptyAndCanBeFilledAgain) {
    EXPECT_TRUE(list_.isEmpty());
    AddVarToVarsList(list_, Variable(u"x", TYP_REAL));
    EXPECT_FALSE(list_.isEmpty());
    list_.clear();
    EXPECT_TRUE(list_.isEmpty());
    EXPECT_EQ(list_.find(SpellingOf(u"x")), nullptr);
    const VarItem& item = AddVarToVarsList(list_, Variable(u"X"));
    EXPECT_EQ(list_.find(SpellingOf(u"x")), &item);
}

// ---------------------------------------------------------------------------------------------
// Duplicates
// ---------------------------------------------------------------------------------------------

TEST_F(Lists, InsertionRefusesANameThatIsThere) {
    AddVarToVarsList(list_, Variable(u"x"));
    AddVarToVarsList(list_, Variable(u"Бак"));
    ExpectFailure([&] { AddVarToVarsList(list_, Variable(u"X")); },
                  ErrorAt(0, 0, "Duplicate variable name \"X\""));
    ExpectFailure([&] { AddVarToVarsList(list_, Variable(u"БАК")); },
                  ErrorAt(0, 0, "Duplicate variable name \"БАК\""));
    EXPECT_EQ(NamesIn(list_).size(), 2U);
}

TEST_F(Lists, IsVarAlreadyInVarsListPutsTwoBlanksBeforeTheName) {
    AddVarToVarsList(list_, Variable(u"x"));
    IsVarAlreadyInVarsList(list_, SpellingOf(u"y"));
    ExpectFailure([&] { IsVarAlreadyInVarsList(list_, SpellingOf(u"X")); },
                  ErrorAt(0, 0, "Duplicate variable name  \"X\""));
}

TEST_F(Lists, TheCheckOfTwoListsPutsOneBlankBeforeTheName) {
    VarsList other;
    AddVarToVarsList(list_, Variable(u"x"));
    AddVarToVarsList(other, Variable(u"y"));
    CheckDuplicate(SpellingOf(u"z"), list_, other);
    CheckDuplicate(SpellingOf(u"y"), list_);
    ExpectFailure([&] { CheckDuplicate(SpellingOf(u"X"), list_, other); },
                  ErrorAt(0, 0, "Duplicate variable name \"X\""));
    ExpectFailure([&] { CheckDuplicate(SpellingOf(u"Y"), list_, other); },
                  ErrorAt(0, 0, "Duplicate variable name \"Y\""));
    ExpectFailure([&] { CheckDuplicate(SpellingOf(u"X"), list_); },
                  ErrorAt(0, 0, "Duplicate variable name \"X\""));
}

TEST_F(Lists, ArgumentsMustComeBeforeLocals) {
    CheckOnTop(list_);
    AddVarToVarsList(list_, Variable(u"x"));
    ExpectFailure([&] { CheckOnTop(list_); },
                  ErrorAt(0, 0, "Arguments must be declared at the top of the variable list "));
}

TEST_F(Lists, FunctionsAreFoundInAnyCase) {
    FunctionList functions;
    FunctionItem function;
    function.spelling = &SpellingOf(u"Площадь");
    functions.append(function);
    EXPECT_TRUE(IsItInFunctionsList(functions, SpellingOf(u"ПЛОЩАДЬ")));
    EXPECT_FALSE(IsItInFunctionsList(functions, SpellingOf(u"Площад")));
}

// ---------------------------------------------------------------------------------------------
// Tables
// ---------------------------------------------------------------------------------------------

TEST_F(Lists, TypesAreFoundInAnyCase) {
    for (const typ& row : TypsTable) {
        const QString name = row.name;
        EXPECT_EQ(GetTypFromTypsTable(SpellingOf(name)), row.code);
        EXPECT_EQ(GetTypFromTypsTable(SpellingOf(name.toLower())), row.code);
        EXPECT_EQ(IsTypInTypsTable(SpellingOf(name)), row.code);
    }
    EXPECT_EQ(GetTypFromTypsTable(SpellingOf(u"WORD")), TYP_NONE);
    EXPECT_EQ(GetTypFromTypsTable(SpellingOf(u"")), TYP_NONE);
}

TEST_F(Lists, AnUnknownTypeIsRefusedAfterItsSourceLine) {
    flag_ShowInputFileLines = true;
    openSource("x : WORD;");
    ExpectFailure([] { IsTypInTypsTable(SpellingOf(u"WORD")); },
                  ";Line 1: \"x : WORD;\"\n" + ErrorAt(0, 0, "An unrecognized keyword \"WORD\""));
}

TEST_F(Lists, TokensAndTypesAreReservedInAnyCase) {
    for (const token& row : TokensTable) {
        const QString text = row.text;
        EXPECT_TRUE(IsItReservedWord(SpellingOf(text))) << Utf8(text);
        EXPECT_TRUE(IsItReservedWord(SpellingOf(text.toLower()))) << Utf8(text);
    }
    for (const typ& row : TypsTable) {
        const QString name = row.name;
        EXPECT_TRUE(IsItReservedWord(SpellingOf(name))) << Utf8(name);
        EXPECT_TRUE(IsItReservedWord(SpellingOf(name.toLower()))) << Utf8(name);
    }
    for (const QString& name : {QStringLiteral("WORD"), QStringLiteral("end"), QString(),
                                QStringLiteral("lreal1"), QStringLiteral("=>")}) {
        EXPECT_FALSE(IsItReservedWord(SpellingOf(name))) << Utf8(name);
    }
}

// ---------------------------------------------------------------------------------------------
// Labels
// ---------------------------------------------------------------------------------------------

TEST_F(Lists, LabelsMayBeDefinedBeforeOrAfterTheirReference) {
    LabelsList labels;
    AddPeferenceToLabelItemInLabelLists(labels, SpellingOf(u"AHEAD"));
    EXPECT_FALSE(labels.find(SpellingOf(u"AHEAD"))->isDefined);
    EXPECT_TRUE(labels.find(SpellingOf(u"AHEAD"))->isReferenced);
    IsLabelItemInLabelLists(labels, SpellingOf(u"AHEAD"));
    EXPECT_TRUE(labels.find(SpellingOf(u"AHEAD"))->isDefined);
    IsLabelItemInLabelLists(labels, SpellingOf(u"AFTER"));
    EXPECT_TRUE(labels.find(SpellingOf(u"AFTER"))->isDefined);
    EXPECT_FALSE(labels.find(SpellingOf(u"AFTER"))->isReferenced);
    AddPeferenceToLabelItemInLabelLists(labels, SpellingOf(u"AFTER"));
    EXPECT_TRUE(labels.find(SpellingOf(u"AFTER"))->isReferenced);
    IsLabelItemInLabelLists(labels, SpellingOf(u"UNUSED"));
    CheckLabelsInLabelsLists(labels);
}

TEST_F(Lists, ALabelIsDefinedOnce) {
    LabelsList labels;
    IsLabelItemInLabelLists(labels, SpellingOf(u"НАЧАЛО"));
    ExpectFailure([&] { IsLabelItemInLabelLists(labels, SpellingOf(u"НАЧАЛО")); },
                  ErrorAt(0, 0, "The label is already defined: \"НАЧАЛО\""));
}

TEST_F(Lists, TheFirstLabelWithoutADefinitionIsNamed) {
    LabelsList labels;
    IsLabelItemInLabelLists(labels, SpellingOf(u"A"));
    AddPeferenceToLabelItemInLabelLists(labels, SpellingOf(u"Z"));
    AddPeferenceToLabelItemInLabelLists(labels, SpellingOf(u"B"));
    ExpectFailure([&] { CheckLabelsInLabelsLists(labels); },
                  ErrorAt(0, 0, "The label is referenced but not set: \"Z\""));
}

}  // namespace
