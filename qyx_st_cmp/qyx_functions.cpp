#include "qyx_functions.h"

#include "qyx_arithmetic.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_messages.h"
#include "qyx_nesting.h"
#include "qyx_observer.h"
#include "qyx_scanner.h"
#include "qyx_types.h"

#include <initializer_list>

// ---------------------------------------------------------------------------------------------
// The built-in functions
// ---------------------------------------------------------------------------------------------

namespace {

struct Formal {
    QLatin1String name;
    Typ type;
};

const Spelling& SpellingOfBuiltIn(QLatin1String name) {
    return SpellingOf(QString(name));
}

VarItem ArgumentOfBuiltIn(const Formal& formal) {
    VarItem argument;
    argument.spelling = &SpellingOfBuiltIn(formal.name);
    argument.type = formal.type;
    argument.isInitialized = true;
    argument.mayBeUninitialized = false;
    return argument;
}

void AddBuiltIn(FunctionList& list, QLatin1String name, bool isFunction,
                std::initializer_list<Formal> formals, Typ resultType) {
    FunctionItem function;
    function.spelling = &SpellingOfBuiltIn(name);
    for (const Formal& formal : formals) {
        function.arguments.push_back(ArgumentOfBuiltIn(formal));
    }
    function.isFunction = isFunction;
    function.resultType = resultType;
    function.isUsed = true;
    function.isBuiltIn = true;
    list.append(std::move(function));
}

// A mathematical function of one LREAL.
void AddMath(FunctionList& list, QLatin1String name) {
    AddBuiltIn(list, name, IS_FUNCTION, {{"arg1"_L1, TYP_LREAL}}, TYP_LREAL);
}

constexpr Formal W0 = {"W0"_L1, TYP_UDINT};
constexpr Formal W1 = {"W1"_L1, TYP_UDINT};
constexpr Formal W2 = {"W2"_L1, TYP_UDINT};
constexpr Formal W3 = {"W3"_L1, TYP_UDINT};

// A reader of one engine register, which four words address.
void AddGetRegister(FunctionList& list, QLatin1String name, Typ type) {
    AddBuiltIn(list, name, IS_FUNCTION, {W0, W1, W2, W3}, type);
}

// A writer of one engine register.
void AddSetRegister(FunctionList& list, QLatin1String name, Typ type) {
    AddBuiltIn(list, name, IS_FUNCTION_BLOCK, {W0, W1, W2, W3, {"V"_L1, type}}, TYP_LREAL);
}

// One adder for each built-in.
void add_cos(FunctionList& list) {
    AddMath(list, "cos"_L1);
}

void add_sin(FunctionList& list) {
    AddMath(list, "sin"_L1);
}

void add_tan(FunctionList& list) {
    AddMath(list, "tan"_L1);
}

void add_acos(FunctionList& list) {
    AddMath(list, "acos"_L1);
}

void add_asin(FunctionList& list) {
    AddMath(list, "asin"_L1);
}

void add_atan(FunctionList& list) {
    AddMath(list, "atan"_L1);
}

void add_ceil(FunctionList& list) {
    AddMath(list, "ceil"_L1);
}

void add_floor(FunctionList& list) {
    AddMath(list, "floor"_L1);
}

void add_round(FunctionList& list) {
    AddMath(list, "round"_L1);
}

void add_exp(FunctionList& list) {
    AddMath(list, "exp"_L1);
}

void add_fabs(FunctionList& list) {
    AddMath(list, "fabs"_L1);
}

void add_ln(FunctionList& list) {
    AddMath(list, "ln"_L1);
}

void add_log10(FunctionList& list) {
    AddMath(list, "log10"_L1);
}

// QUIRK(pow-argument-names): both arguments of pow are named arg1. Parameters go by position, so
// the names never meet.
void add_pow(FunctionList& list) {
    AddBuiltIn(list, "pow"_L1, IS_FUNCTION, {{"arg1"_L1, TYP_LREAL}, {"arg1"_L1, TYP_LREAL}},
               TYP_LREAL);
}

void add_sqrt(FunctionList& list) {
    AddMath(list, "sqrt"_L1);
}

void add_yxSetGV(FunctionList& list) {
    AddBuiltIn(list, "yxSetGV"_L1, IS_FUNCTION_BLOCK,
               {{"arg1"_L1, TYP_UINT}, {"arg2"_L1, TYP_LREAL}}, TYP_LREAL);
}

void add_yxGetGV(FunctionList& list) {
    AddBuiltIn(list, "yxGetGV"_L1, IS_FUNCTION, {{"arg1"_L1, TYP_UINT}}, TYP_LREAL);
}

void add_yxGetRegUSINT(FunctionList& list) {
    AddGetRegister(list, "yxGetRegUSINT"_L1, TYP_USINT);
}

void add_yxGetRegUINT(FunctionList& list) {
    AddGetRegister(list, "yxGetRegUINT"_L1, TYP_UINT);
}

void add_yxGetRegUDINT(FunctionList& list) {
    AddGetRegister(list, "yxGetRegUDINT"_L1, TYP_UDINT);
}

void add_yxGetRegREAL(FunctionList& list) {
    AddGetRegister(list, "yxGetRegREAL"_L1, TYP_REAL);
}

void add_yxGetRegLREAL(FunctionList& list) {
    AddGetRegister(list, "yxGetRegLREAL"_L1, TYP_LREAL);
}

void add_yxSetRegUSINT(FunctionList& list) {
    AddSetRegister(list, "yxSetRegUSINT"_L1, TYP_USINT);
}

void add_yxSetRegUINT(FunctionList& list) {
    AddSetRegister(list, "yxSetRegUINT"_L1, TYP_UINT);
}

void add_yxSetRegUDINT(FunctionList& list) {
    AddSetRegister(list, "yxSetRegUDINT"_L1, TYP_UDINT);
}

void add_yxSetRegREAL(FunctionList& list) {
    AddSetRegister(list, "yxSetRegREAL"_L1, TYP_REAL);
}

void add_yxSetRegLREAL(FunctionList& list) {
    AddSetRegister(list, "yxSetRegLREAL"_L1, TYP_LREAL);
}

}  // namespace

void AddBuildInFunctions(FunctionList& list) {
    for (const auto add :
         {add_cos,           add_sin,           add_tan,           add_acos,
          add_asin,          add_atan,          add_ceil,          add_floor,
          add_round,         add_exp,           add_fabs,          add_ln,
          add_log10,         add_pow,           add_sqrt,          add_yxSetGV,
          add_yxGetGV,       add_yxGetRegUSINT, add_yxGetRegUINT,  add_yxGetRegUDINT,
          add_yxGetRegREAL,  add_yxGetRegLREAL, add_yxSetRegUSINT, add_yxSetRegUINT,
          add_yxSetRegUDINT, add_yxSetRegREAL,  add_yxSetRegLREAL}) {
        add(list);
    }
}

// ---------------------------------------------------------------------------------------------
// Calls
// ---------------------------------------------------------------------------------------------

namespace {

// A by-reference parameter: the name of a variable of exactly the formal's type.
// "MOVA @name #A0"
Q_NEVER_INLINE void ReferenceParameter(const VarsList& vars, const VarItem& formal) {
    Match(TOKEN_IDENTIFIER);
    VarItem& variable = IsVarInVarsList(vars, *TokenSpelling);
    if (variable.type != formal.type) {
        Abort(TXT_TYPES_ACTUAL_FORMAL_MUST_BE_IDENTICAL);
    }
    Emit(sMOVA, Operand{BY_VALUE, TokenSpelling->utf8}, ACCUMULATOR);
    variable.isUsed = true;
    Tell(&Observer::nameUsed, NameUse::Reference, *TokenSpelling);
    Scan();
}

// A by-value parameter: any expression that converts to the formal's type. A parameter past the
// last formal has none; the count of parameters refuses it later.
// <expression>, [ "L1:" ]
void ValueParameter(const VarsList& vars, const VarItem* formal) {
    const NestingGuard guard;
    Label label;
    const Typ type = BoolExpression(vars, CurrentToken.type, label);
    if (formal != nullptr) {
        ConvertTyp(formal->type, type, true);
    }
    PostPendingLabel(label);
}

// Parameter = BoolExpression | Name
// The actual parameter for the formal at that index; its first token is current.
// <parameter>, "MOV #A0 $PUSH"
void DoParam(const FunctionItem& callee, const VarsList& vars, std::size_t index) {
    const VarItem* formal = index < callee.arguments.size() ? &callee.arguments[index] : nullptr;
    if (formal != nullptr && formal->isReference) {
        ReferenceParameter(vars, *formal);
    } else {
        ValueParameter(vars, formal);
    }
    EmitPush();
}

// Parameters = [ "(" [ Parameter { "," Parameter } ] ")" ]
// Returns the number of parameters.
std::size_t Parameters(const FunctionItem& callee, const VarsList& vars) {
    std::size_t count = 0;
    if (TokenChar != TOKEN_LEFT_PARENTHESIS) {
        return count;
    }
    Scan();
    if (TokenChar != TOKEN_RIGHT_PARENTHESIS) {
        DoParam(callee, vars, count);
        ++count;
        while (TokenChar == TOKEN_COMMA) {
            Scan();
            DoParam(callee, vars, count);
            ++count;
        }
    }
    MatchAndScan(TOKEN_RIGHT_PARENTHESIS);
    return count;
}

// The called function. The keywords FUNCTION and FUNCTION_BLOCK carry the codes of callees'
// names, yet nothing is declared with their names.
FunctionItem& Callee(Token code) {
    Match(code);
    FunctionItem* callee = FunctionsList.find(*TokenSpelling);
    if (callee == nullptr) {
        Unrecognized(TokenName);
    }
    Tell(&Observer::nameUsed, NameUse::Call, *TokenSpelling);
    return *callee;
}

void CheckCount(std::size_t actual, std::size_t formal) {
    if (actual < formal) {
        Abort(TXT_NOT_ENOUGH_ACTUAL_PARAMETERS);
    }
    if (actual > formal) {
        Abort(TXT_TOO_MANY_ACTUAL_PARAMETERS);
    }
}

// Call = Name Parameters
// <parameters>; aborts when their number is wrong. `code` is the kind of callee that must come.
// Returns the callee.
const FunctionItem& PassParameters(const VarsList& vars, Token code) {
    FunctionItem& callee = Callee(code);
    callee.isUsed = true;
    Scan();
    CheckCount(Parameters(callee, vars), callee.arguments.size());
    return callee;
}

// "EXEC <name>" or "CAL <name>", the name as declared
void EmitCall(const FunctionItem& callee) {
    Emit(callee.isBuiltIn ? sEXEC : sCAL, std::string_view(callee.spelling->utf8));
}

// CallStatement = Call ";"
// <parameters>, "EXEC <name>" or "CAL <name>"
void CallStatement(const VarsList& vars, Token code) {
    const FunctionItem& callee = PassParameters(vars, code);
    Match(TOKEN_SEMICOLON);
    EmitCall(callee);
}

}  // namespace

void DoFunc(const VarsList& vars) {
    CallStatement(vars, TOKEN_FUNCTION);
}

// Call, within an expression
// <parameters>, "EXEC <name>" or "CAL <name>"
Typ DoFunc1(const VarsList& vars) {
    const FunctionItem& callee = PassParameters(vars, TOKEN_FUNCTION);
    EmitCall(callee);
    return callee.resultType;
}

void DoFuncBlock(const VarsList& vars) {
    CallStatement(vars, TOKEN_FUNCTION_BLOCK);
}
