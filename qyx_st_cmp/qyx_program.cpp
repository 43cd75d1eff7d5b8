#include "qyx_program.h"

#include "qyx_functions.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_loops.h"
#include "qyx_messages.h"
#include "qyx_scanner.h"
#include "qyx_types.h"

#include <cassert>

QString ProgramName;

namespace {

// ---------------------------------------------------------------------------------------------
// One declaration
// ---------------------------------------------------------------------------------------------

constexpr QLatin1String CONSTANT_HINT = "Hint: A constant must be initialized"_L1;
constexpr QLatin1String NO_VALUE = "0"_L1;  // the value field of a variable without initial value

// How a section of declarations treats its variables.
struct Section {
    Token keyword;
    QLatin1String code;  // the field of the declaration line that names the section
    bool allowConstant;
    bool allowInit;
    bool isInitialized;
};

constexpr Section VAR_SECTION = {TOKEN_VAR, sV, true, true, false};
constexpr Section INPUT_SECTION = {TOKEN_VAR_INPUT, sVI, false, true, true};
constexpr Section OUTPUT_SECTION = {TOKEN_VAR_OUTPUT, sVO, false, true, false};
constexpr Section GLOBAL_SECTION = {TOKEN_VAR_GLOBAL, sVG, true, true, false};
constexpr Section ARG_SECTION = {TOKEN_VAR_ARG, sARG, false, false, true};
constexpr Section REF_SECTION = {TOKEN_VAR_REF, sREF, false, false, true};

bool IsDeclVars(Token code) {
    return (code >= TOKEN_VAR && code <= TOKEN_VAR_YXREGISTER) || code == TOKEN_VAR_ARG ||
           code == TOKEN_VAR_REF;
}

bool IsEndDeclVars(Token code) {
    return code == TOKEN_END_VAR;
}

// Aborts with <using> "name" here is illegal.
[[noreturn]] void AbortIllegalName(QLatin1String usingWhat, QStringView name) {
    Abort(StringsToString(usingWhat, " ", Quoted(name), " ", TXT_HERE_IS_ILLEGAL), false);
}

void CheckNotReserved(const Spelling& name) {
    if (IsItReservedWord(name)) {
        AbortIllegalName(TXT_USING_RESERVED_WORD, name.text);
    }
}

// A name that may be declared: no reserved word and no function.
void CheckNewName(const Spelling& name) {
    CheckNotReserved(name);
    if (IsItInFunctionsList(FunctionsList, name)) {
        AbortIllegalName(TXT_USING_FUNCTION_NAME, name.text);
    }
}

// A type name that a variable may have. `keyword` receives it in upper case.
Typ DeclaredType(QString& keyword) {
    GetType(keyword, true);
    const Typ type = IsTypInTypsTable(keyword);
    if (type == TYP_STRING) {
        Abort(TXT_STRING_DISABLED_IN_CURRENT_VERTION, false);
    }
    if (type == TYP_ARRAY) {
        Abort(TXT_ARRAY_DISABLED_IN_CURRENT_VERTION, false);
    }
    return type;
}

// SignedNumber = [ "-" | "+" ] Number
// Returns the text as target code has it, "-" kept and "+" dropped.
QString SignedNumber(Typ declared, Typ literal) {
    const bool isNegative = TokenChar == TOKEN_MINUS;
    if (isNegative || TokenChar == TOKEN_PLUS) {
        literal = Scan();
    }
    Match(TOKEN_NUMBER);
    ConvertTyp(declared, literal, false);
    return isNegative ? StringsToString("-", TokenName) : TokenName.toString();
}

// TRUE | FALSE as an initial value; empty for a spelling of mixed case.
QString BooleanValue() {
    Match(TOKEN_TRUE, TOKEN_FALSE);
    if (TokenName == "FALSE"_L1 || TokenName == "false"_L1) {
        return QStringLiteral("0");
    }
    if (TokenName == "TRUE"_L1 || TokenName == "true"_L1) {
        return QStringLiteral("1");
    }
    return QString();
}

// InitialValue = SignedNumber | TRUE | FALSE
// Returns the value field of the declaration line.
QString InitialValue(Typ declared, Typ literal) {
    if (TokenChar == TOKEN_STRING) {
        AbortIncompatible(declared, TYP_STRING);  // no type that can be declared takes a string
    }
    const bool isSigned = TokenChar == TOKEN_MINUS || TokenChar == TOKEN_PLUS;
    if (IsTypBoolean(declared) && !isSigned) {
        return BooleanValue();
    }
    return SignedNumber(declared, literal);
}

// Initialization = [ ":=" InitialValue ] ";"
// Returns the value field.
QString Initialization(const Section& section, VarItem& variable) {
    Scan();
    if (variable.isConstant) {
        Match(TOKEN_ASSIGN, CONSTANT_HINT);
    }
    if (TokenChar != TOKEN_ASSIGN) {
        Match(TOKEN_SEMICOLON);
        return NO_VALUE;
    }
    if (!section.allowInit) {
        Abort(TXT_THIS_VAIABLE_CANNOT_BE_INITIALIZED, false);
    }
    const Typ literal = Scan();
    const QString value = InitialValue(variable.type, literal);
    variable.isInitialized = true;
    variable.mayBeUninitialized = false;
    Scan();
    Match(TOKEN_SEMICOLON);
    return value;
}

// "<name> <section> <TYPE> <value>"
//
// QUIRK(mixed-case-literal): a BOOL initialised with a literal of mixed case, as True, has no
// value field, and an empty item stands in place of its declaration. Programs in the field rely
// on it.
void EmitDeclaration(const Section& section, QStringView name, const QString& keyword,
                     const QString& value) {
    if (value.isEmpty()) {
        WriteItem(QStringView(value));
    } else {
        WriteItem(name, ' ', section.code, ' ', keyword, ' ', value);
    }
}

// DeclaredName = [ CONSTANT ] Name
// The first token is current in `name`.
// Returns the record with what is known so far.
VarItem DeclaredName(const Section& section, QStringView& name, const VarsList& list,
                     const VarsList& otherList) {
    VarItem variable;
    if (TokenChar == TOKEN_CONSTANT) {
        if (!section.allowConstant) {
            Abort(TXT_THIS_VAIABLE_CANNOT_BE_CONSTANT, false);
        }
        variable.isConstant = true;
        Scan(name, false, true);
    }
    const Spelling& spelling = SpellingOf(name);
    CheckNewName(spelling);
    CheckDuplicate(spelling, list, otherList);
    Match(TOKEN_IDENTIFIER);
    variable.name = spelling.text;
    variable.isReference = section.keyword == TOKEN_VAR_REF;
    variable.isInitialized = section.isInitialized;
    variable.declBegin = IdentPlace.begin;
    variable.declEnd = IdentPlace.end;
    return variable;
}

// Declaration = DeclaredName ":" Type Initialization
// "<name> <section> <TYPE> <value>"; at END_VAR there is none.
//
// QUIRK(quoted-token-before): the name is read into a text of its own, so "expected but"
// messages about a token in its place quote the token before. Messages are fixed.
void DoAllocDecl(const Section& section, VarsList& list, const VarsList& otherList) {
    QStringView name;
    Scan(name, false, true);
    if (IsEndDeclVars(TokenChar)) {
        return;
    }
    VarItem declared = DeclaredName(section, name, list, otherList);
    Scan();
    Match(TOKEN_COLON);
    QString keyword;
    declared.type = DeclaredType(keyword);
    VarItem& variable = AddVarToVarsList(list, std::move(declared));
    const QString value = Initialization(section, variable);
    EmitDeclaration(section, name, keyword, value);
    SkipWhite();
}

// ---------------------------------------------------------------------------------------------
// Sections
// ---------------------------------------------------------------------------------------------

// Section = { Declaration } END_VAR
// The keyword of the section, which is current, tells what its declarations may have.
void DoSection(const Section& section, VarsList& list, const VarsList& otherList) {
    Match(section.keyword);
    do {
        DoAllocDecl(section, list, otherList);
    } while (!IsEndDeclVars(TokenChar));
}

// The sections, each entered with its keyword; they write the lines of their declarations. Those
// of a definition tell its arguments from its locals.
void DoDecl_VAR(VarsList& vars) {
    DoSection(VAR_SECTION, vars, VarsList());
}

void DoDecl_VAR(const VarsList& args, VarsList& locals) {
    DoSection(VAR_SECTION, locals, args);
}

void DoDecl_VAR_INPUT(VarsList& vars) {
    DoSection(INPUT_SECTION, vars, VarsList());
}

void DoDecl_VAR_OUTPUT(VarsList& vars) {
    DoSection(OUTPUT_SECTION, vars, VarsList());
}

void DoDecl_VAR_GLOBAL(VarsList& vars) {
    DoSection(GLOBAL_SECTION, vars, VarsList());
}

void DoDecl_ARG(VarsList& args, const VarsList& locals) {
    CheckOnTop(locals);
    DoSection(ARG_SECTION, args, locals);
}

void DoDecl_ARG_REF(VarsList& args, const VarsList& locals) {
    CheckOnTop(locals);
    DoSection(REF_SECTION, args, locals);
}

// ---------------------------------------------------------------------------------------------
// Sections of engine variables
// ---------------------------------------------------------------------------------------------

// A section whose variables are bound to objects of the engine by numbers.
struct EngineSection {
    Token keyword;
    QLatin1String code;
    int numbersCount;
};

constexpr EngineSection YXGLOBAL_SECTION = {TOKEN_VAR_YXGLOBAL, sYXVG, 1};
constexpr EngineSection YXREGISTER_SECTION = {TOKEN_VAR_YXREGISTER, sYXVR, 4};

// EngineNumbers = "(" SignedNumber { "," SignedNumber } ")"
// Returns the numbers, a blank before each.
QString EngineNumbers(const EngineSection& section, Typ declared) {
    Scan();
    Match(TOKEN_LEFT_PARENTHESIS);
    QString numbers;
    for (int i = 0; i < section.numbersCount; ++i) {
        if (i > 0) {
            Scan();
            Match(TOKEN_COMMA);
        }
        const Typ literal = Scan();
        numbers += StringsToString(" ", SignedNumber(declared, literal));
    }
    Scan();
    Match(TOKEN_RIGHT_PARENTHESIS);
    return numbers;
}

// EngineDeclaration = Name ":" Type EngineNumbers ";"
// "<name> <section> <TYPE> <numbers>"; at END_VAR there is none.
void DoAllocDeclYX(const EngineSection& section, VarsList& vars) {
    Scan();
    if (IsEndDeclVars(TokenChar)) {
        return;
    }
    if (TokenChar == TOKEN_CONSTANT) {
        Abort(TXT_THIS_VAIABLE_CANNOT_BE_CONSTANT, false);
    }
    VarItem variable;
    const Spelling& spelling = SpellingOf(TokenName);
    CheckNewName(spelling);
    variable.name = spelling.text;
    Match(TOKEN_IDENTIFIER);
    variable.isInitialized = true;  // the engine supplies the value
    variable.declBegin = IdentPlace.begin;
    variable.declEnd = IdentPlace.end;
    Scan();
    Match(TOKEN_COLON);
    QString keyword;
    variable.type = DeclaredType(keyword);
    const VarItem& added = AddVarToVarsList(vars, std::move(variable));
    const QString numbers = EngineNumbers(section, added.type);
    Scan();
    Match(TOKEN_SEMICOLON);
    WriteItem(added.name, ' ', section.code, ' ', keyword, numbers);
}

// EngineSection = { EngineDeclaration } END_VAR
void DoEngineSection(const EngineSection& section, VarsList& vars) {
    Match(section.keyword);
    do {
        DoAllocDeclYX(section, vars);
    } while (!IsEndDeclVars(TokenChar));
}

// The two sections, each entered with its keyword.
void DoDecl_VAR_YXGLOBAL(VarsList& vars) {
    DoEngineSection(YXGLOBAL_SECTION, vars);
}

void DoDecl_VAR_YXREGISTER(VarsList& vars) {
    DoEngineSection(YXREGISTER_SECTION, vars);
}

// Aborts with The "VAR_ARG" declaration cannot be used here.
[[noreturn]] void AbortMisplacedSection() {
    Abort(StringsToString(TXT_THE, " ", Quoted(TokenName), " ", TXT_DECLARATION_CANNOT_BE_HERE),
          false);
}

// Scans the token behind END_VAR and any number of ";" behind that.
void ScanBehindSection() {
    Scan();
    while (TokenChar == TOKEN_SEMICOLON) {
        SkipSemicolumn();
        Scan();
    }
}

// ---------------------------------------------------------------------------------------------
// Warnings at the end of a unit
// ---------------------------------------------------------------------------------------------

// Warns with <what> "name" <text>, followed by "unit" if there is one.
void WarnAt(TokenPos pos, QLatin1String what, const QString& name, QLatin1String text,
            const QString& unit = QString()) {
    const QString suffix = unit.isEmpty() ? unit : StringsToString(" ", Quoted(unit));
    Warning(pos, StringsToString(what, " ", Quoted(name), " ", text, suffix), false);
}

// Warns of a variable that was never used, or else of one that may never have been assigned.
void WarnOfVariable(const VarItem& variable, const QString& unit) {
    if (!variable.isUsed) {
        WarnAt(variable.declBegin, TXT_VARIABLE, variable.name, TXT_IS_DECLARED_BUT_NEVER_USED_IN,
               unit);
    } else if (variable.mayBeUninitialized) {
        WarnAt(variable.declBegin, TXT_VARIABLE, variable.name,
               TXT_MIGHT_NOT_HAVE_BEEN_INITIALIZED_IN, unit);
    }
}

void WarnOfUnusedFunctions() {
    for (const FunctionItem& function : FunctionsList) {
        if (!function.isUsed) {
            WarnAt(function.declBegin, function.isFunction ? TXT_FUNCTION : TXT_FUNCTION_BLOCK,
                   function.name, TXT_IS_DECLARED_BUT_NEVER_USED);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Functions and function blocks
// ---------------------------------------------------------------------------------------------

// Appends the record of a new function. Aborts when the name is taken.
void DoAllocDeclFunc(TokenPlace place, const QString& name) {
    const Spelling& spelling = SpellingOf(name);
    CheckNotReserved(spelling);
    if (IsItInFunctionsList(FunctionsList, spelling)) {
        Abort(StringsToString(TXT_DUPLICATE_FUNCTION_NAME, Quoted(name)), false);
    }
    FunctionItem function;
    function.name = name;
    function.declBegin = place.begin;
    function.declEnd = place.end;
    FunctionsList.append(std::move(function));
}

// The record of a definition that was declared before.
FunctionItem& DeclaredFunction(const QString& name) {
    FunctionItem* function = FunctionsList.find(name);
    assert(function);
    return *function;
}

// name, which `matchName` checks
// "<name>:", the entry of the definition
QString DefinitionHead(void (*matchName)()) {
    ScanName(TokenName, false);
    matchName();
    const QString name = TokenName.toString();
    DoAllocDeclFunc(IdentPlace, name);
    SkipWhite();
    PostLabel(name);
    return name;
}

// "RESULT V <TYPE> 0"
void DoAllocFuncResult(const QString& typeName) {
    WriteItem(sRESULT, ' ', sV, ' ', typeName, ' ', NO_VALUE);
}

// ":" type
// "RESULT V <TYPE> 0"
Typ ResultType() {
    Scan();
    Match(TOKEN_COLON);
    QString keyword;
    GetType(keyword, true);
    const Typ type = IsTypInTypsTable(keyword);
    DoAllocFuncResult(keyword);
    return type;
}

// DefinitionSection = ( VAR_ARG | VAR_REF | VAR ) Section { ";" }
void DefinitionSection(VarsList& args, VarsList& locals) {
    switch (TokenChar) {
        case TOKEN_VAR_ARG:
            DoDecl_ARG(args, locals);
            break;
        case TOKEN_VAR_REF:
            DoDecl_ARG_REF(args, locals);
            break;
        case TOKEN_VAR:
            DoDecl_VAR(args, locals);
            break;
        default:
            AbortMisplacedSection();
    }
    ScanBehindSection();
}

// { DefinitionSection }, unless the definition ends at once
void ArgsDecls(VarsList& args, VarsList& locals, Token end, bool mayBeginWithResult) {
    Scan();
    if (TokenChar == end) {
        return;
    }
    const bool isBody = mayBeginWithResult && TokenChar == TOKEN_RESULT;
    if (!IsDeclVars(TokenChar) && !isBody) {
        Unrecognized(TokenName);
    }
    while (IsDeclVars(TokenChar)) {
        DefinitionSection(args, locals);
    }
}

// QUIRK(body-without-sections): a function without sections may begin its body with RESULT and
// with nothing else, and a function block without sections must be empty. The language has it
// so.
void FArgsDecls(VarsList& args, VarsList& locals) {
    ArgsDecls(args, locals, TOKEN_END_FUNCTION, true);
}

void FBArgsDecls(VarsList& args, VarsList& locals) {
    ArgsDecls(args, locals, TOKEN_END_FUNCTION_BLOCK, false);
}

// The result variable that the body of a function sees.
VarItem ResultVariable(const FunctionItem& function) {
    VarItem result;
    result.name = sRESULT;
    result.type = function.resultType;
    result.declBegin = function.declBegin;
    result.declEnd = function.declEnd;
    return result;
}

// Completes the record of the definition and makes `locals` the list that its body sees: the
// arguments, the locals and, for a function, RESULT.
void DoAllocFuncArguments(const QString& name, const VarsList& args, VarsList& locals,
                          bool isFunction, Typ resultType) {
    FunctionItem& function = DeclaredFunction(name);
    function.arguments.assign(args.begin(), args.end());
    function.isFunction = isFunction;
    function.resultType = resultType;
    VarsList visible;
    for (const VarItem& argument : args) {
        visible.append(argument);
    }
    for (const VarItem& local : locals) {
        visible.append(local);
    }
    if (isFunction) {
        visible.append(ResultVariable(function));
    }
    locals = std::move(visible);
}

// "BODY:", then for each argument from the last to the first "MOV $POP #A0" and "MOV #A0 @name",
// or "MOVA #A0 @name" for one by reference: the caller pushed them from first to last.
void FProlog(const QString& name) {
    PostLabel(sBODY);
    const std::vector<VarItem>& arguments = DeclaredFunction(name).arguments;
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
        EmitPop();
        Emit(argument->isReference ? sMOVA : sMOV, ACCUMULATOR,
             Operand{BY_VALUE, argument->name.toStdString()});
    }
}

bool IsResult(const VarItem& variable) {
    return StrCmp(variable.name, QString(sRESULT), true) == 0;
}

void WarnOfFunctionVariables(const QString& name, const VarsList& vars) {
    for (const VarItem& variable : vars) {
        if (IsResult(variable) && !variable.isUsed) {
            Warning(StringsToString(TXT_RETURN_VALUE_OF_FUNCTION, " ", Quoted(name), " ",
                                    TXT_MIGHT_BE_UNDEFINED),
                    false);
        } else {
            WarnOfVariable(variable, name);
        }
    }
}

// END_FUNCTION: "MOV @RESULT #A0", "RET"
void FEpilog(const QString& name, const VarsList& vars) {
    Match(TOKEN_END_FUNCTION);
    EmitLoad(RESULT_OPERAND);
    WarnOfFunctionVariables(name, vars);
    EmitReturn();
    SkipWhite();
}

// END_FUNCTION_BLOCK: "RET"
void FBEpilog(const QString& name, const VarsList& vars) {
    Match(TOKEN_END_FUNCTION_BLOCK);
    WarnOfFunctionVariables(name, vars);
    EmitReturn();
    SkipWhite();
}

// Statements, up to the token that ends the body
void BodyStatements(const Body& body, Token end) {
    while (TokenChar != end) {
        Block(body, LoopLabels());
        Scan();
    }
}

// <prologue>, <statements>, <epilogue>
void FBody(const QString& name, VarsList& vars, LabelsList& labels, int& stackDepth) {
    FProlog(name);
    BodyStatements({FunctionsList, vars, labels, stackDepth, true}, TOKEN_END_FUNCTION);
    FEpilog(name, vars);
}

// <prologue>, <statements>, <epilogue>
void FBBody(const QString& name, VarsList& vars, LabelsList& labels, int& stackDepth) {
    FProlog(name);
    BodyStatements({FunctionsList, vars, labels, stackDepth, false}, TOKEN_END_FUNCTION_BLOCK);
    FBEpilog(name, vars);
}

// Function = FUNCTION Name ":" Type { DefinitionSection } Statements END_FUNCTION
// "<name>:", "RESULT V <TYPE> 0", <declarations>, <body>
void DoFunction(LabelsList& labels, int& stackDepth) {
    const QString name = DefinitionHead(MatchFuncName);
    const Typ resultType = ResultType();
    VarsList args;
    VarsList locals;
    FArgsDecls(args, locals);
    DoAllocFuncArguments(name, args, locals, IS_FUNCTION, resultType);
    FBody(name, locals, labels, stackDepth);
}

// FunctionBlock = FUNCTION_BLOCK Name { DefinitionSection } Statements END_FUNCTION_BLOCK
// "<name>:", <declarations>, <body>
void DoFunction_Block(LabelsList& labels, int& stackDepth) {
    const QString name = DefinitionHead(MatchProcName);
    VarsList args;
    VarsList locals;
    FBArgsDecls(args, locals);
    DoAllocFuncArguments(name, args, locals, IS_FUNCTION_BLOCK, TYP_NONE);
    FBBody(name, locals, labels, stackDepth);
}

}  // namespace

// Definitions = { Function | FunctionBlock }
//
// QUIRK(name-begins-definition): a declared name carries the code of its keyword, so it begins
// a definition as the keyword does. The scanner's codes are fixed.
void DoFunctions(LabelsList& labels, int& stackDepth) {
    FunctionsList.clear();
    AddBuildInFunctions(FunctionsList);
    while (TokenChar == TOKEN_FUNCTION || TokenChar == TOKEN_FUNCTION_BLOCK) {
        if (TokenChar == TOKEN_FUNCTION) {
            DoFunction(labels, stackDepth);
        } else {
            DoFunction_Block(labels, stackDepth);
        }
        Scan();
    }
}

// ---------------------------------------------------------------------------------------------
// The program
// ---------------------------------------------------------------------------------------------

namespace {

void HeaderProlog() {
    PostLabel(sPROG);
}

void VarProlog() {
    PostLabel(sVAR);
}

void Prolog() {
    PostLabel(sMAIN);
}

// name
// "PROG:", "<name>"
void Header() {
    HeaderProlog();
    ScanName(TokenName, false);
    MatchProgName();
    ProgramName = TokenName.toString();
    WriteItem(QStringView(ProgramName));
    SkipWhite();
}

// ProgramSection = ( VAR | VAR_INPUT | VAR_OUTPUT | VAR_GLOBAL ) Section { ";" }
//     | ( VAR_YXGLOBAL | VAR_YXREGISTER ) EngineSection { ";" }
void ProgramSection(VarsList& vars) {
    switch (TokenChar) {
        case TOKEN_VAR:
            DoDecl_VAR(vars);
            break;
        case TOKEN_VAR_INPUT:
            DoDecl_VAR_INPUT(vars);
            break;
        case TOKEN_VAR_OUTPUT:
            DoDecl_VAR_OUTPUT(vars);
            break;
        case TOKEN_VAR_GLOBAL:
            DoDecl_VAR_GLOBAL(vars);
            break;
        case TOKEN_VAR_YXGLOBAL:
            DoDecl_VAR_YXGLOBAL(vars);
            break;
        case TOKEN_VAR_YXREGISTER:
            DoDecl_VAR_YXREGISTER(vars);
            break;
        default:
            AbortMisplacedSection();
    }
    ScanBehindSection();
}

// ProgramSection { ProgramSection }
// "VAR:", <declarations>
void VarsDecls(VarsList& vars) {
    Scan();
    if (!IsDeclVars(TokenChar)) {
        Abort(TXT_PROGRAM_MUST_START_WITH_DECLARATION_OF_VARIABLES, false);
    }
    VarProlog();
    while (IsDeclVars(TokenChar)) {
        ProgramSection(vars);
    }
}

// END_PROGRAM: "RET", after the warnings about the whole program
void Epilog(const VarsList& vars) {
    Match(TOKEN_END_PROGRAM);
    WarnOfUnusedFunctions();
    for (const VarItem& variable : vars) {
        WarnOfVariable(variable, ProgramName);
    }
    EmitReturn();
}

// Statements END_PROGRAM
// "MAIN:", <statements>, "RET"
void Main(VarsList& vars, LabelsList& labels, int& stackDepth) {
    Prolog();
    BodyStatements({FunctionsList, vars, labels, stackDepth, false}, TOKEN_END_PROGRAM);
    CheckLabelsInLabelsLists(labels);
    Epilog(vars);
}

}  // namespace

// Program = PROGRAM Name ProgramSection { ProgramSection } Statements END_PROGRAM
// "PROG:", "<name>", "VAR:", <declarations>, "MAIN:", <statements>, "RET"
void DoProgram(LabelsList& labels, int& stackDepth) {
    Match(TOKEN_PROGRAM);
    VarsList vars;
    Header();
    VarsDecls(vars);
    Main(vars, labels, stackDepth);
    labels.clear();
}
