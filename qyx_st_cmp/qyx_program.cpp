#include "qyx_program.h"

#include "qyx_functions.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_loops.h"
#include "qyx_messages.h"
#include "qyx_observer.h"
#include "qyx_scanner.h"
#include "qyx_types.h"

QString ProgramName;

namespace {

// ---------------------------------------------------------------------------------------------
// One declaration
// ---------------------------------------------------------------------------------------------

constexpr QLatin1String CONSTANT_HINT = "Hint: A constant must be initialized"_L1;
constexpr QLatin1String NO_VALUE = "0"_L1;  // the value field of a variable without initial value

// How a section of declarations treats its variables. A section of engine variables binds them to
// objects of the engine by numbers.
struct Section {
    Token keyword;
    QLatin1String code;  // the field of the declaration line that names the section
    bool allowConstant;
    bool allowInit;
    bool isInitialized;
    int engineNumbers = 0;
};

constexpr Section VAR_SECTION = {TOKEN_VAR, sV, true, true, false};
constexpr Section INPUT_SECTION = {TOKEN_VAR_INPUT, sVI, false, true, true};
constexpr Section OUTPUT_SECTION = {TOKEN_VAR_OUTPUT, sVO, false, true, false};
constexpr Section GLOBAL_SECTION = {TOKEN_VAR_GLOBAL, sVG, true, true, false};
constexpr Section ARG_SECTION = {TOKEN_VAR_ARG, sARG, false, false, true};
constexpr Section REF_SECTION = {TOKEN_VAR_REF, sREF, false, false, true};
constexpr Section YXGLOBAL_SECTION = {TOKEN_VAR_YXGLOBAL, sYXVG, false, false, true, 1};
constexpr Section YXREGISTER_SECTION = {TOKEN_VAR_YXREGISTER, sYXVR, false, false, true, 4};

bool IsDeclVars(Token code) {
    return (code >= TOKEN_VAR && code <= TOKEN_VAR_YXREGISTER) || code == TOKEN_VAR_ARG ||
           code == TOKEN_VAR_REF;
}

bool IsDeclFuncVars(Token code) {
    return IsDeclVars(code);
}

bool IsEndDeclVars(Token code) {
    return code == TOKEN_END_VAR;
}

// Aborts with <using> "name" here is illegal.
[[noreturn]] void AbortIllegalName(QLatin1String usingWhat, QStringView name) {
    Abort(usingWhat, StringsToString(usingWhat, " ", Quoted(name), " ", TXT_HERE_IS_ILLEGAL));
}

void CheckNotReserved(const Spelling& spelling) {
    if (IsItReservedWord(spelling)) {
        AbortIllegalName(TXT_USING_RESERVED_WORD, spelling.text);
    }
}

// A name that may be declared: no reserved word and no function.
void CheckNewName(const Spelling& spelling) {
    CheckNotReserved(spelling);
    if (IsItInFunctionsList(FunctionsList, spelling)) {
        AbortIllegalName(TXT_USING_FUNCTION_NAME, spelling.text);
    }
}

// The type whose name comes next.
Typ NamedType() {
    GetType();
    return IsTypInTypsTable(*TokenSpelling);
}

// A type that a variable may have.
Typ DeclaredType() {
    const Typ type = NamedType();
    if (type == TYP_STRING) {
        Abort(TXT_STRING_DISABLED_IN_CURRENT_VERTION);
    }
    if (type == TYP_ARRAY) {
        Abort(TXT_ARRAY_DISABLED_IN_CURRENT_VERTION);
    }
    return type;
}

// SignedNumber = [ "-" | "+" ] Number
// Its first token is current. Returns the text as target code has it, "-" kept and "+" dropped.
QString SignedNumber(Typ declared) {
    const bool isNegative = TokenChar == TOKEN_MINUS;
    if (isNegative || TokenChar == TOKEN_PLUS) {
        Scan();
    }
    Match(TOKEN_NUMBER);
    ConvertTyp(declared, CurrentToken.type);
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
// Its first token is current. Returns the value field of the declaration line.
QString InitialValue(Typ declared) {
    if (TokenChar == TOKEN_STRING) {
        AbortIncompatible(declared, TYP_STRING);  // no type that can be declared takes a string
    }
    const bool isSigned = TokenChar == TOKEN_MINUS || TokenChar == TOKEN_PLUS;
    if (IsTypBoolean(declared) && !isSigned) {
        return BooleanValue();
    }
    return SignedNumber(declared);
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
        Abort(TXT_THIS_VAIABLE_CANNOT_BE_INITIALIZED);
    }
    Scan();
    const QString value = InitialValue(variable.type);
    variable.isInitialized = true;
    variable.mayBeUninitialized = false;
    ScanAndMatch(TOKEN_SEMICOLON);
    return value;
}

// "<name> <section> <TYPE> <value>"
//
// QUIRK(mixed-case-literal): a BOOL initialised with a literal of mixed case, as True, has no
// value field, and an empty item stands in place of its declaration. Programs in the field rely
// on it.
void EmitDeclaration(const Section& section, const VarItem& variable, const QString& value) {
    if (value.isEmpty()) {
        WriteItem(QStringView(value));
    } else {
        WriteItem(std::string_view(variable.spelling->utf8), ' ', section.code, ' ',
                  TypToStr(variable.type), ' ', value);
    }
}

void CheckConstant(const Section& section) {
    if (!section.allowConstant) {
        Abort(TXT_THIS_VAIABLE_CANNOT_BE_CONSTANT);
    }
}

// A name that is declared, which is current. Returns the record with what is known so far.
VarItem NamedVariable(const Section& section) {
    Match(TOKEN_IDENTIFIER);
    VarItem variable;
    variable.spelling = TokenSpelling;
    variable.isReference = section.keyword == TOKEN_VAR_REF;
    variable.isInitialized = section.isInitialized;
    variable.declBegin = IdentPlace.begin;
    variable.declEnd = IdentPlace.end;
    return variable;
}

// The spelling of the current token, whatever it is: names are checked before the kind of the
// token is.
const Spelling& CurrentSpelling() {
    return TokenSpelling != nullptr ? *TokenSpelling : SpellingOf(CurrentToken.text);
}

// DeclaredName = [ CONSTANT ] Name
// The first token is current. Returns the record with what is known so far.
VarItem DeclaredName(const Section& section, const VarsList& list, const VarsList& otherList) {
    const bool isConstant = TokenChar == TOKEN_CONSTANT;
    if (isConstant) {
        CheckConstant(section);
        ScanDeclared();
    }
    const Spelling& spelling = CurrentSpelling();
    CheckNewName(spelling);
    CheckDuplicate(spelling, list, otherList);
    VarItem variable = NamedVariable(section);
    variable.isConstant = isConstant;
    return variable;
}

// Appends the record of a variable, whose name and type are known.
VarItem& DeclareVariable(const Section& section, VarsList& list, VarItem declared) {
    VarItem& variable = AddVarToVarsList(list, std::move(declared));
    Tell(&Observer::variableDeclared, variable, section.keyword);
    return variable;
}

// Declaration = DeclaredName ":" Type Initialization
// "<name> <section> <TYPE> <value>"; at END_VAR there is none.
//
// QUIRK(quoted-token-before): the name is scanned as a declared one, so "expected but" messages
// about a token in its place quote the token before. Messages are fixed.
void DoAllocDecl(const Section& section, VarsList& list, const VarsList& otherList) {
    ScanDeclared();
    if (IsEndDeclVars(TokenChar)) {
        return;
    }
    Tell(&Observer::declarationBegun);
    VarItem declared = DeclaredName(section, list, otherList);
    ScanAndMatch(TOKEN_COLON);
    declared.type = DeclaredType();
    VarItem& variable = DeclareVariable(section, list, std::move(declared));
    const QString value = Initialization(section, variable);
    EmitDeclaration(section, variable, value);
    Tell(&Observer::declarationEnded);
    SkipWhite();
}

// ---------------------------------------------------------------------------------------------
// One declaration of an engine variable
// ---------------------------------------------------------------------------------------------

// EngineNumbers = "(" SignedNumber { "," SignedNumber } ")"
// Returns the numbers, a blank between them.
QString EngineNumbers(const Section& section, Typ declared) {
    ScanAndMatch(TOKEN_LEFT_PARENTHESIS);
    Scan();
    QString numbers = SignedNumber(declared);
    for (int i = 1; i < section.engineNumbers; ++i) {
        ScanAndMatch(TOKEN_COMMA);
        Scan();
        numbers += StringsToString(" ", SignedNumber(declared));
    }
    ScanAndMatch(TOKEN_RIGHT_PARENTHESIS);
    return numbers;
}

// EngineDeclaration = Name ":" Type EngineNumbers ";"
// "<name> <section> <TYPE> <numbers>"; at END_VAR there is none.
void DoAllocDeclYX(const Section& section, VarsList& vars) {
    Scan();
    if (IsEndDeclVars(TokenChar)) {
        return;
    }
    Tell(&Observer::declarationBegun);
    if (TokenChar == TOKEN_CONSTANT) {
        CheckConstant(section);
    }
    CheckNewName(CurrentSpelling());
    VarItem declared = NamedVariable(section);
    ScanAndMatch(TOKEN_COLON);
    declared.type = DeclaredType();
    const VarItem& variable = DeclareVariable(section, vars, std::move(declared));
    const QString numbers = EngineNumbers(section, variable.type);
    ScanAndMatch(TOKEN_SEMICOLON);
    EmitDeclaration(section, variable, numbers);
    Tell(&Observer::declarationEnded);
}

void DoAllocDeclYXGlobal(const Section& section, VarsList& vars) {
    DoAllocDeclYX(section, vars);
}

void DoAllocDeclYXRegister(const Section& section, VarsList& vars) {
    DoAllocDeclYX(section, vars);
}

// ---------------------------------------------------------------------------------------------
// Sections
// ---------------------------------------------------------------------------------------------

// The keyword of the section, which is current, then declarations up to END_VAR.
template <typename AllocDecl>
void DoSection(const Section& section, const AllocDecl& allocDecl) {
    Match(section.keyword);
    do {
        allocDecl(section);
    } while (!IsEndDeclVars(TokenChar));
}

// Section = { Declaration } END_VAR
void DoVarSection(const Section& section, VarsList& list,
                  const VarsList& otherList = VarsList()) {
    DoSection(section, [&](const Section& s) { DoAllocDecl(s, list, otherList); });
}

// The sections, each entered with its keyword; they write the lines of their declarations. Those
// of a definition tell its arguments from its locals.
void DoDecl_VAR(VarsList& vars) {
    DoVarSection(VAR_SECTION, vars);
}

void DoDecl_VAR(const VarsList& args, VarsList& locals) {
    DoVarSection(VAR_SECTION, locals, args);
}

void DoDecl_VAR_INPUT(VarsList& vars) {
    DoVarSection(INPUT_SECTION, vars);
}

void DoDecl_VAR_OUTPUT(VarsList& vars) {
    DoVarSection(OUTPUT_SECTION, vars);
}

void DoDecl_VAR_GLOBAL(VarsList& vars) {
    DoVarSection(GLOBAL_SECTION, vars);
}

void DoDecl_ARG(VarsList& args, const VarsList& locals) {
    CheckOnTop(locals);
    DoVarSection(ARG_SECTION, args, locals);
}

void DoDecl_ARG_REF(VarsList& args, const VarsList& locals) {
    CheckOnTop(locals);
    DoVarSection(REF_SECTION, args, locals);
}

// EngineSection = { EngineDeclaration } END_VAR
void DoDecl_VAR_YXGLOBAL(VarsList& vars) {
    DoSection(YXGLOBAL_SECTION, [&](const Section& s) { DoAllocDeclYXGlobal(s, vars); });
}

void DoDecl_VAR_YXREGISTER(VarsList& vars) {
    DoSection(YXREGISTER_SECTION, [&](const Section& s) { DoAllocDeclYXRegister(s, vars); });
}

// Aborts with The "VAR_ARG" declaration cannot be used here.
[[noreturn]] void AbortMisplacedSection() {
    Abort(TXT_DECLARATION_CANNOT_BE_HERE,
          StringsToString(TXT_THE, " ", Quoted(TokenName), " ", TXT_DECLARATION_CANNOT_BE_HERE));
}

// Scans the token after END_VAR and any number of ";" after that.
void ScanAfterSection() {
    Scan();
    while (TokenChar == TOKEN_SEMICOLON) {
        SkipSemicolumn();
        Scan();
    }
}

// ---------------------------------------------------------------------------------------------
// Warnings at the end of a unit
// ---------------------------------------------------------------------------------------------

// Warns with The variable "name" <text> "unit".
void WarnAtVariable(const VarItem& variable, QLatin1String text, const QString& unit) {
    WarningOf(text, variable.declBegin, TXT_VARIABLE, " \"", variable.name(), "\" ", text, " \"",
              unit, "\"");
}

// Warns of a variable that was never used, or else of one that may never have been assigned.
void WarnOfVariable(const VarItem& variable, const QString& unit) {
    if (!variable.isUsed) {
        WarnAtVariable(variable, TXT_IS_DECLARED_BUT_NEVER_USED_IN, unit);
    } else if (variable.mayBeUninitialized) {
        WarnAtVariable(variable, TXT_MIGHT_NOT_HAVE_BEEN_INITIALIZED_IN, unit);
    }
}

void WarnOfUnusedFunctions() {
    for (const FunctionItem& function : FunctionsList) {
        if (!function.isUsed) {
            WarningOf(TXT_IS_DECLARED_BUT_NEVER_USED, function.declBegin,
                      function.isFunction ? TXT_FUNCTION : TXT_FUNCTION_BLOCK, " \"",
                      function.name(), "\" ", TXT_IS_DECLARED_BUT_NEVER_USED);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Functions and function blocks
// ---------------------------------------------------------------------------------------------

// Appends the record of a new function, whose name is current. Aborts when the name is taken.
FunctionItem& DoAllocDeclFunc() {
    const Spelling& spelling = *TokenSpelling;
    CheckNotReserved(spelling);
    if (IsItInFunctionsList(FunctionsList, spelling)) {
        Abort(TXT_DUPLICATE_FUNCTION_NAME,
              StringsToString(TXT_DUPLICATE_FUNCTION_NAME, Quoted(spelling.text)));
    }
    FunctionItem function;
    function.spelling = &spelling;
    function.declBegin = IdentPlace.begin;
    function.declEnd = IdentPlace.end;
    Tell(&Observer::unitNamed);
    return FunctionsList.append(std::move(function));
}

// name, which `matchName` checks
// "<name>:", the entry of the definition
FunctionItem& DefinitionHead(void (*matchName)()) {
    ScanName();
    matchName();
    FunctionItem& function = DoAllocDeclFunc();
    SkipWhite();
    PostLabel(std::string_view(function.spelling->utf8));
    return function;
}

// "RESULT V <TYPE> 0"
void DoAllocFuncResult(Typ type) {
    WriteItem(sRESULT, ' ', sV, ' ', TypToStr(type), ' ', NO_VALUE);
}

// ":" type
// "RESULT V <TYPE> 0"
Typ ResultType() {
    ScanAndMatch(TOKEN_COLON);
    const Typ type = NamedType();
    DoAllocFuncResult(type);
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
    ScanAfterSection();
}

// { DefinitionSection }, unless the definition ends at once
void ArgsDecls(VarsList& args, VarsList& locals, Token end, bool mayBeginWithResult) {
    Scan();
    if (TokenChar == end) {
        return;
    }
    const bool isBody = mayBeginWithResult && TokenChar == TOKEN_RESULT;
    if (!IsDeclFuncVars(TokenChar) && !isBody) {
        Unrecognized(TokenName);
    }
    while (IsDeclFuncVars(TokenChar)) {
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
    static const Spelling& spelling = SpellingOf(QString(sRESULT));
    VarItem result;
    result.spelling = &spelling;
    result.type = function.resultType;
    result.declBegin = function.declBegin;
    result.declEnd = function.declEnd;
    Tell(&Observer::variableDeclared, result, TOKEN_RESULT);
    return result;
}

// Completes the record of the definition and makes `locals` the list that its body sees: the
// arguments, the locals and, for a function, RESULT.
void DoAllocFuncArguments(FunctionItem& function, const VarsList& args, VarsList& locals,
                          bool isFunction, Typ resultType) {
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
void FProlog(const FunctionItem& function) {
    PostLabel(sBODY);
    const std::vector<VarItem>& arguments = function.arguments;
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) {
        EmitPop();
        Emit(argument->isReference ? sMOVA : sMOV, ACCUMULATOR,
             Operand{BY_VALUE, argument->spelling->utf8});
    }
}

void FBProlog(const FunctionItem& function) {
    FProlog(function);
}

// Whether it is RESULT, the one variable that has a reserved name.
bool IsResult(const VarItem& variable) {
    return IsItReservedWord(*variable.spelling);
}

void WarnOfFunctionVariables(const FunctionItem& function, const VarsList& vars) {
    for (const VarItem& variable : vars) {
        if (IsResult(variable) && !variable.isUsed) {
            WarningOf(TXT_MIGHT_BE_UNDEFINED, TokenPosBeg, TXT_RETURN_VALUE_OF_FUNCTION, " \"",
                      function.name(), "\" ", TXT_MIGHT_BE_UNDEFINED);
        } else {
            WarnOfVariable(variable, function.name());
        }
    }
}

// END_FUNCTION: "MOV @RESULT #A0", "RET"
void FEpilog(const FunctionItem& function, const VarsList& vars) {
    Match(TOKEN_END_FUNCTION);
    Tell(&Observer::partBegun, TokenPosBeg);
    EmitLoad(RESULT_OPERAND);
    WarnOfFunctionVariables(function, vars);
    EmitReturn();
    SkipWhite();
}

// END_FUNCTION_BLOCK: "RET"
void FBEpilog(const FunctionItem& function, const VarsList& vars) {
    Match(TOKEN_END_FUNCTION_BLOCK);
    Tell(&Observer::partBegun, TokenPosBeg);
    WarnOfFunctionVariables(function, vars);
    EmitReturn();
    SkipWhite();
}

// <prologue>, <statements>, <epilogue>
void FBody(const FunctionItem& function, VarsList& vars, LabelsList& labels, int& stackDepth) {
    FProlog(function);
    Body body = {vars, labels, stackDepth, true};
    Statements(body, LoopLabels(), {TOKEN_END_FUNCTION});
    FEpilog(function, vars);
}

// <prologue>, <statements>, <epilogue>
void FBBody(const FunctionItem& function, VarsList& vars, LabelsList& labels, int& stackDepth) {
    FBProlog(function);
    Body body = {vars, labels, stackDepth, false};
    Statements(body, LoopLabels(), {TOKEN_END_FUNCTION_BLOCK});
    FBEpilog(function, vars);
}

// Function = FUNCTION Name ":" Type { DefinitionSection } Statements END_FUNCTION
// "<name>:", "RESULT V <TYPE> 0", <declarations>, <body>
void DoFunction(LabelsList& labels, int& stackDepth) {
    Tell(&Observer::unitBegun);
    FunctionItem& function = DefinitionHead(MatchFuncName);
    const Typ resultType = ResultType();
    VarsList args;
    VarsList locals;
    FArgsDecls(args, locals);
    DoAllocFuncArguments(function, args, locals, IS_FUNCTION, resultType);
    FBody(function, locals, labels, stackDepth);
    Tell(&Observer::unitEnded);
}

// FunctionBlock = FUNCTION_BLOCK Name { DefinitionSection } Statements END_FUNCTION_BLOCK
// "<name>:", <declarations>, <body>
//
// QUIRK(block-calls-itself): a function block that calls itself as its first statement after its
// sections is called as a function there, and a value is dropped after the call: the name was
// scanned while the record was still that of a function. Target code is fixed.
void DoFunction_Block(LabelsList& labels, int& stackDepth) {
    Tell(&Observer::unitBegun);
    FunctionItem& function = DefinitionHead(MatchProcName);
    VarsList args;
    VarsList locals;
    FBArgsDecls(args, locals);
    DoAllocFuncArguments(function, args, locals, IS_FUNCTION_BLOCK, TYP_NONE);
    FBBody(function, locals, labels, stackDepth);
    Tell(&Observer::unitEnded);
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
    ScanName();
    MatchProgName();
    ProgramName = TokenName.toString();
    Tell(&Observer::unitNamed);
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
    ScanAfterSection();
}

// ProgramSection { ProgramSection }
// "VAR:", <declarations>
void VarsDecls(VarsList& vars) {
    Scan();
    if (!IsDeclVars(TokenChar)) {
        Abort(TXT_PROGRAM_MUST_START_WITH_DECLARATION_OF_VARIABLES);
    }
    VarProlog();
    while (IsDeclVars(TokenChar)) {
        ProgramSection(vars);
    }
}

// END_PROGRAM: "RET", after the warnings about the whole program
void Epilog(const VarsList& vars) {
    Match(TOKEN_END_PROGRAM);
    Tell(&Observer::partBegun, TokenPosBeg);
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
    Body body = {vars, labels, stackDepth, false};
    Statements(body, LoopLabels(), {TOKEN_END_PROGRAM});
    CheckLabelsInLabelsLists(labels);
    Epilog(vars);
}

}  // namespace

// Program = PROGRAM Name ProgramSection { ProgramSection } Statements END_PROGRAM
// "PROG:", "<name>", "VAR:", <declarations>, "MAIN:", <statements>, "RET"
void DoProgram(LabelsList& labels, int& stackDepth) {
    Match(TOKEN_PROGRAM);
    Tell(&Observer::unitBegun);
    VarsList vars;
    Header();
    VarsDecls(vars);
    Main(vars, labels, stackDepth);
    Tell(&Observer::unitEnded);
    labels.clear();
}
