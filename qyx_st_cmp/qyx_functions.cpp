#include "qyx_functions.h"

#include "qyx_arithmetic.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_messages.h"
#include "qyx_scanner.h"
#include "qyx_types.h"

#include <initializer_list>

// ---------------------------------------------------------------------------------------------
// The built-in functions
// ---------------------------------------------------------------------------------------------

namespace {

struct Formal {
    const char* name;
    Typ type;
};

void AddBuiltIn(FunctionList& list, const char* name, bool isFunction,
                std::initializer_list<Formal> formals, Typ resultType) {
    FunctionItem function;
    function.name = QLatin1String(name);
    for (const Formal& formal : formals) {
        VarItem argument;
        argument.name = QLatin1String(formal.name);
        argument.type = formal.type;
        argument.isInitialized = true;
        argument.mayBeUninitialized = false;
        function.arguments.push_back(argument);
    }
    function.isFunction = isFunction;
    function.resultType = resultType;
    function.isUsed = true;
    function.isBuiltIn = true;
    list.append(std::move(function));
}

// A mathematical function of one LREAL.
void AddMath(FunctionList& list, const char* name) {
    AddBuiltIn(list, name, IS_FUNCTION, {{"arg1", TYP_LREAL}}, TYP_LREAL);
}

// A reader of one engine register, which four words address.
void AddGetRegister(FunctionList& list, const char* name, Typ type) {
    AddBuiltIn(list, name, IS_FUNCTION,
               {{"W0", TYP_UDINT}, {"W1", TYP_UDINT}, {"W2", TYP_UDINT}, {"W3", TYP_UDINT}},
               type);
}

// A writer of one engine register.
void AddSetRegister(FunctionList& list, const char* name, Typ type) {
    AddBuiltIn(
        list, name, IS_FUNCTION_BLOCK,
        {{"W0", TYP_UDINT}, {"W1", TYP_UDINT}, {"W2", TYP_UDINT}, {"W3", TYP_UDINT}, {"V", type}},
        TYP_LREAL);
}

}  // namespace

// QUIRK(pow-argument-names): both arguments of pow are named arg1. Parameters go by position,
// so the names never meet.
void AddBuildInFunctions(FunctionList& list) {
    for (const char* name : {"cos", "sin", "tan", "acos", "asin", "atan", "ceil", "floor",
                             "round", "exp", "fabs", "ln", "log10"}) {
        AddMath(list, name);
    }
    AddBuiltIn(list, "pow", IS_FUNCTION, {{"arg1", TYP_LREAL}, {"arg1", TYP_LREAL}}, TYP_LREAL);
    AddMath(list, "sqrt");
    AddBuiltIn(list, "yxSetGV", IS_FUNCTION_BLOCK, {{"arg1", TYP_UINT}, {"arg2", TYP_LREAL}},
               TYP_LREAL);
    AddBuiltIn(list, "yxGetGV", IS_FUNCTION, {{"arg1", TYP_UINT}}, TYP_LREAL);
    AddGetRegister(list, "yxGetRegUSINT", TYP_USINT);
    AddGetRegister(list, "yxGetRegUINT", TYP_UINT);
    AddGetRegister(list, "yxGetRegUDINT", TYP_UDINT);
    AddGetRegister(list, "yxGetRegREAL", TYP_REAL);
    AddGetRegister(list, "yxGetRegLREAL", TYP_LREAL);
    AddSetRegister(list, "yxSetRegUSINT", TYP_USINT);
    AddSetRegister(list, "yxSetRegUINT", TYP_UINT);
    AddSetRegister(list, "yxSetRegUDINT", TYP_UDINT);
    AddSetRegister(list, "yxSetRegREAL", TYP_REAL);
    AddSetRegister(list, "yxSetRegLREAL", TYP_LREAL);
}

// ---------------------------------------------------------------------------------------------
// Calls
// ---------------------------------------------------------------------------------------------

namespace {

// A by-reference parameter: the name of a variable of exactly the formal's type.
// "MOVA @name #A0"
void ReferenceParameter(const VarsList& vars, const VarItem& formal) {
    Match(TOKEN_IDENTIFIER);
    VarItem& variable = IsVarInVarsList(vars, *TokenSpelling);
    if (variable.type != formal.type) {
        Abort(TXT_TYPES_ACTUAL_FORMAL_MUST_BE_IDENTICAL, false);
    }
    Emit(sMOVA, Operand{BY_VALUE, TokenSpelling->utf8}, ACCUMULATOR);
    variable.isUsed = true;
    Scan();
}

// A by-value parameter: any expression that converts to the formal's type. A parameter past the
// last formal has none; the count of parameters refuses it later.
// <expression>, [ "L1:" ]
void ValueParameter(const VarsList& vars, const VarItem* formal, Typ literal) {
    const NestingGuard guard;
    Label label;
    const Typ typ = BoolExpression(vars, literal, label);
    if (formal != nullptr) {
        ConvertTyp(formal->type, typ, true);
    }
    PostPendingLabel(label);
}

// Parameter = BoolExpression | Name
// The actual parameter for the formal at that index; `literal` is what the Scan to its first
// token returned.
// <parameter>, "MOV #A0 $PUSH"
void DoParam(const FunctionItem& callee, const VarsList& vars, std::size_t index, Typ literal) {
    const VarItem* formal = index < callee.arguments.size() ? &callee.arguments[index] : nullptr;
    if (formal != nullptr && formal->isReference) {
        ReferenceParameter(vars, *formal);
    } else {
        ValueParameter(vars, formal, literal);
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
    Typ literal = Scan();
    if (TokenChar != TOKEN_RIGHT_PARENTHESIS) {
        DoParam(callee, vars, count, literal);
        ++count;
        while (TokenChar == TOKEN_COMMA) {
            literal = Scan();
            DoParam(callee, vars, count, literal);
            ++count;
        }
        Match(TOKEN_RIGHT_PARENTHESIS);
    }
    Scan();
    return count;
}

// The called function. The keywords FUNCTION and FUNCTION_BLOCK carry the codes of callees'
// names, yet nothing is declared under them.
FunctionItem& Callee(const FunctionList& functions, Token code) {
    Match(code);
    FunctionItem* callee = functions.find(*TokenSpelling);
    if (callee == nullptr) {
        Unrecognized(TokenName);
    }
    return *callee;
}

// Call = Name Parameters
// <parameters>; aborts when their number is wrong. `code` tells which kind of callee must come.
// Returns the callee.
FunctionItem& PassParameters(const FunctionList& functions, const VarsList& vars, Token code) {
    FunctionItem& callee = Callee(functions, code);
    callee.isUsed = true;
    Scan();
    const std::size_t count = Parameters(callee, vars);
    if (count < callee.arguments.size()) {
        Abort(TXT_NOT_ENOUGH_ACTUAL_PARAMETERS, false);
    }
    if (count > callee.arguments.size()) {
        Abort(TXT_TOO_MANY_ACTUAL_PARAMETERS, false);
    }
    return callee;
}

// "EXEC <name>" or "CAL <name>", the name as declared
void EmitCall(const FunctionItem& callee) {
    Emit(callee.isBuiltIn ? sEXEC : sCAL, callee.name);
}

// CallStatement = Call ";"
// <parameters>, "EXEC <name>" or "CAL <name>"
void CallStatement(const FunctionList& functions, const VarsList& vars, Token code) {
    const FunctionItem& callee = PassParameters(functions, vars, code);
    Match(TOKEN_SEMICOLON);
    EmitCall(callee);
}

}  // namespace

void DoFunc(const FunctionList& functions, const VarsList& vars) {
    CallStatement(functions, vars, TOKEN_FUNCTION);
}

// Call, within an expression
// <parameters>, "EXEC <name>" or "CAL <name>"
Typ DoFunc1(const FunctionList& functions, const VarsList& vars) {
    const FunctionItem& callee = PassParameters(functions, vars, TOKEN_FUNCTION);
    EmitCall(callee);
    return callee.resultType;
}

void DoFuncBlock(const FunctionList& functions, const VarsList& vars) {
    CallStatement(functions, vars, TOKEN_FUNCTION_BLOCK);
}
