#include "qyx_arithmetic.h"

#include "qyx_functions.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_messages.h"
#include "qyx_scanner.h"
#include "qyx_types.h"

#include <iterator>
#include <string>

namespace {

// ---------------------------------------------------------------------------------------------
// Operator classes
// ---------------------------------------------------------------------------------------------

bool IsBetween(Token code, Token first, Token last) {
    return code >= first && code <= last;
}

bool IsAddOp(Token code) {
    return IsBetween(code, TOKEN_PLUS, TOKEN_MINUS);
}

bool IsMulOp(Token code) {
    return IsBetween(code, TOKEN_MULTIPLY, TOKEN_MOD);
}

bool IsBitOp(Token code) {
    return IsBetween(code, TOKEN_OR, TOKEN_AND);
}

bool IsShiftOp(Token code) {
    return IsBetween(code, TOKEN_SHR, TOKEN_ROL);
}

bool IsPowOp(Token code) {
    return code == TOKEN_POWER;
}

bool IsOrORXor(Token code) {
    return IsBetween(code, TOKEN_OR, TOKEN_XOR);
}

bool IsRelop(Token code) {
    return IsBetween(code, TOKEN_EQUAL, TOKEN_GREATER_OR_EQUAL);
}

bool IsBoolean(Token code) {
    return IsBetween(code, TOKEN_TRUE, TOKEN_FALSE);
}

// The text of an operator, as its messages quote it.
QLatin1String OperatorText(Token code) {
    return TokensTable[Lookup(code)].text;
}

// Aborts with Operator "-" not applicable to this operand type.
[[noreturn]] void AbortNotApplicable(Token code) {
    Abort(StringsToString(TXT_OPERATOR, " ", Quoted(OperatorText(code)), " ",
                          TXT_NOT_APPLICABLE_TO_THIS_OPERAND_TYPE),
          false);
}

// Aborts with "MOD" illegal, left operand has type REAL.
[[noreturn]] void AbortIllegal(Token code, QLatin1String operandHasType, Typ typ) {
    Abort(StringsToString(Quoted(OperatorText(code)), " ", TXT_ILLEGAL, ", ", operandHasType, " ",
                          TypToStr(typ)),
          false);
}

// ---------------------------------------------------------------------------------------------
// Binary operators
// ---------------------------------------------------------------------------------------------

Typ MulTerm(const VarsList& vars, Typ typ);

// Which operands an operator takes, and with it which message refuses others.
enum class OperandClass : unsigned char { Any, Digit, Ordinal };

struct BinaryOperator {
    Token token;
    QLatin1String keyword;
    OperandClass operands;
};

void CheckOperand(const BinaryOperator& op, QLatin1String operandHasType, Typ typ) {
    if (op.operands == OperandClass::Digit && !IsTypDigit(typ)) {
        AbortNotApplicable(op.token);
    }
    if (op.operands == OperandClass::Ordinal && !IsTypOrdinal(typ)) {
        AbortIllegal(op.token, operandHasType, typ);
    }
}

// operator MulTerm
// <right operand>, "<keyword> $POP #A0"; the left operand waits on the stack already.
//
// QUIRK(right-grouping): the right operand is a whole MulTerm whatever the operator, so all
// operators but "+" and "-" group to the right: a / b * c is a / (b * c). Programs in the field
// rely on it.
Typ BinaryOperation(const BinaryOperator& op, const VarsList& vars, Typ typ) {
    const NestingGuard guard;
    Match(op.token);
    CheckOperand(op, TXT_LEFT_OPERAND_HAS_TYPE, typ);
    const Typ rightTyp = ConvertTyp(typ, Scan(), false);
    const Typ merged = ConvertTyp(rightTyp, MulTerm(vars, rightTyp), false);
    CheckOperand(op, TXT_RIGHT_OPERAND_HAS_TYPE, merged);
    EmitStackOperation(op.keyword);
    return merged;
}

// The operators, each with its token, its keyword and the operands that it takes.
//
// QUIRK(plus-unchecked): "+" checks no operand itself: a BOOL on its left is refused by the
// conversion, in other words than those of "-".
Typ Add(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_PLUS, sADD, OperandClass::Any}, vars, typ);
}

Typ Subtract(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_MINUS, sSUB, OperandClass::Digit}, vars, typ);
}

Typ Multiply(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_MULTIPLY, sMUL, OperandClass::Digit}, vars, typ);
}

Typ Divide(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_DIVIDE, sDIV, OperandClass::Digit}, vars, typ);
}

Typ Mod(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_MOD, sMOD, OperandClass::Ordinal}, vars, typ);
}

Typ BitAnd(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_AND, sBAND, OperandClass::Ordinal}, vars, typ);
}

Typ BitOr(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_OR, sBOR, OperandClass::Ordinal}, vars, typ);
}

Typ BitXor(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_XOR, sBXOR, OperandClass::Ordinal}, vars, typ);
}

Typ BitShl(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_SHL, sSHL, OperandClass::Ordinal}, vars, typ);
}

Typ BitShr(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_SHR, sSHR, OperandClass::Ordinal}, vars, typ);
}

Typ BitRol(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_ROL, sROL, OperandClass::Ordinal}, vars, typ);
}

Typ BitRor(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_ROR, sROR, OperandClass::Ordinal}, vars, typ);
}

Typ Pow(const VarsList& vars, Typ typ) {
    return BinaryOperation({TOKEN_POWER, sPOW, OperandClass::Digit}, vars, typ);
}

using Operation = Typ (*)(const VarsList& vars, Typ typ);

// In the order of the token codes from TOKEN_PLUS to TOKEN_POWER; NOT stands among them and is no
// binary operator. The codes (qyx_globals.h) and these rows change together.
constexpr Operation OPERATIONS[] = {
    Add,       // TOKEN_PLUS
    Subtract,  // TOKEN_MINUS
    Multiply,  // TOKEN_MULTIPLY
    Divide,    // TOKEN_DIVIDE
    Mod,       // TOKEN_MOD
    BitOr,     // TOKEN_OR
    BitXor,    // TOKEN_XOR
    BitAnd,    // TOKEN_AND
    nullptr,   // TOKEN_NOT
    BitShr,    // TOKEN_SHR
    BitShl,    // TOKEN_SHL
    BitRor,    // TOKEN_ROR
    BitRol,    // TOKEN_ROL
    Pow,       // TOKEN_POWER
};
static_assert(std::size(OPERATIONS) == TOKEN_POWER - TOKEN_PLUS + 1, "one row for each code");

// "MOV #A0 $PUSH", then the operation of the current token.
Typ PushAndOperate(const VarsList& vars, Typ typ) {
    EmitPush();
    return OPERATIONS[TokenChar - TOKEN_PLUS](vars, typ);
}

// ---------------------------------------------------------------------------------------------
// Operands
// ---------------------------------------------------------------------------------------------

// Warns of a variable that no assignment has reached yet.
void WarnIfUninitialized(const VarItem& variable, const Spelling& name) {
    if (variable.mayBeUninitialized) {
        Warning(StringsToString(TXT_VARIABLE, " ", Quoted(name.text), " ",
                                TXT_MIGHT_NOT_HAVE_BEEN_INITIALIZED),
                false);
    }
}

// name
// "MOV @name #A0"
Typ LoadVariable(const VarsList& vars, const Spelling& name) {
    VarItem& variable = IsVarInVarsList(vars, name);
    EmitLoad(OperandOf(variable, name));
    variable.isUsed = true;
    WarnIfUninitialized(variable, name);
    return variable.type;
}

// Name Indices
// <indices>, [ <linear index> ], "MOV @name[#POP.SI] #A0" or "MOV @name[#R1.SI] #A0"
//
// QUIRK(linear-index-registers): the linear index is made in #R0 while the operand names #R1.
// The engine pairs the two.
Typ LoadElement(const VarsList& vars, const Spelling& name) {
    VarItem& array = IsArrayVarInVarsList(vars, name);
    array.isUsed = true;
    ArrayIndices(vars, array, false);
    if (array.arrayDimensions == 1) {
        EmitLoad(ElementOperand(array, name, INDEX_ON_STACK));
    } else {
        EmitLinearIndex(array);
        EmitLoad(ElementOperand(array, name, INDEX_IN_REGISTER_1));
    }
    Match(TOKEN_RIGHT_BRACKET);
    Scan();
    return array.elementType;
}

// Ident = Call | ( Name | RESULT ) [ Indices ]
// The load of the value, or the code of the call.
Typ Ident(const VarsList& vars) {
    if (TokenChar == TOKEN_FUNCTION) {
        return DoFunc1(FunctionsList, vars);
    }
    const Spelling& name = *TokenSpelling;
    Scan();
    if (TokenChar == TOKEN_LEFT_BRACKET) {
        return LoadElement(vars, name);
    }
    return LoadVariable(vars, name);
}

// Turns a loaded BOOL into a condition and keeps the value: the flag is set from a copy.
void EmitCondition() {
    EmitPush();
    EmitPush();
    EmitLoad('1');
    EmitStackOperation(sEQ);
    EmitTest();
    EmitPop();
}

// "(" BoolExpression ")"
// <expression>, [ "L1:" ]; the expression starts without the types around it.
Typ Parenthesis(const VarsList& vars, Typ typ) {
    const NestingGuard guard;
    Match(TOKEN_LEFT_PARENTHESIS);
    const Typ literal = Scan();
    Label label;
    typ = ConvertTyp(typ, BoolExpression(vars, literal, label), false);
    Match(TOKEN_RIGHT_PARENTHESIS);
    PostPendingLabel(label);
    Scan();
    return typ;
}

// "MOV *TICK #A0"
Typ TickFactor() {
    EmitLoad(TICK);
    Scan();
    return TYP_UDINT;
}

// "MOV 'TEXT' #A0"
Typ StringFactor() {
    WriteItem(sMOV, " '"_L1, TokenName, "' "_L1, ACCUMULATOR);
    Scan();
    return TYP_STRING;
}

// "MOV <number> #A0"; the type of the literal is in `typ` already.
Typ NumberFactor(Typ typ) {
    Match(TOKEN_NUMBER);
    EmitLoad(TokenName);
    Scan();
    return typ;
}

// Factor = "(" BoolExpression ")" | Ident | TICK | String | Number
// The load of the value; a BOOL from a name is turned into a condition.
Typ Factor(const VarsList& vars, Typ typ) {
    switch (TokenChar) {
        case TOKEN_LEFT_PARENTHESIS:
            return Parenthesis(vars, typ);
        case TOKEN_IDENTIFIER:
        case TOKEN_FUNCTION:
        case TOKEN_RESULT:
            typ = ConvertTyp(typ, Ident(vars), false);
            if (IsTypBoolean(typ)) {
                EmitCondition();
            }
            return typ;
        case TOKEN_TICK:
            return TickFactor();
        case TOKEN_STRING:
            return StringFactor();
        default:
            return NumberFactor(typ);
    }
}

// A number behind "-". Its load is written when the token behind it has been read.
void NegatedNumber() {
    const QStringView text = TokenName;
    Scan();
    EmitLoad(text);
}

// SignedFactor = [ "+" ] [ "-" ] Factor
// <factor>, with "-" followed by "SUB 0 #A0": a constant is never written with a sign.
Typ SignedFactor(const VarsList& vars, Typ typ) {
    if (TokenChar == TOKEN_PLUS) {
        typ = ConvertTyp(typ, Scan(), false);
    }
    if (TokenChar != TOKEN_MINUS) {
        return ConvertTyp(typ, Factor(vars, typ), false);
    }
    typ = ConvertTyp(typ, Scan(), false);
    if (TokenChar == TOKEN_NUMBER) {
        NegatedNumber();
    } else {
        typ = ConvertTyp(typ, Factor(vars, typ), false);
    }
    EmitNegate();
    return typ;
}

// ---------------------------------------------------------------------------------------------
// The ladder
// ---------------------------------------------------------------------------------------------

// operand { operator MulTerm }
// <operand>, { "MOV #A0 $PUSH", <right operand>, "<keyword> $POP #A0" }
template <Operation operand, bool (*isOperator)(Token)>
Typ OperatorLevel(const VarsList& vars, Typ typ) {
    typ = ConvertTyp(typ, operand(vars, typ), false);
    while (isOperator(TokenChar)) {
        typ = PushAndOperate(vars, typ);
    }
    return typ;
}

// PowTerm = SignedFactor { "**" MulTerm }
Typ PowTerm(const VarsList& vars, Typ typ) {
    return OperatorLevel<SignedFactor, IsPowOp>(vars, typ);
}

// ShiftTerm = PowTerm { ( SHL | SHR | ROL | ROR ) MulTerm }
Typ ShiftTerm(const VarsList& vars, Typ typ) {
    return OperatorLevel<PowTerm, IsShiftOp>(vars, typ);
}

// BitTerm = ShiftTerm { ( AND | OR | XOR ) MulTerm }
// The operators of a BOOL operand are left to BoolExpression.
Typ BitTerm(const VarsList& vars, Typ typ) {
    typ = ConvertTyp(typ, ShiftTerm(vars, typ), false);
    while (IsBitOp(TokenChar) && !IsTypBoolean(typ)) {
        typ = PushAndOperate(vars, typ);
    }
    return typ;
}

// MulTerm = BitTerm { ( "*" | "/" | MOD ) MulTerm }
Typ MulTerm(const VarsList& vars, Typ typ) {
    return OperatorLevel<BitTerm, IsMulOp>(vars, typ);
}

}  // namespace

// Expression = MulTerm { ( "+" | "-" ) MulTerm }
Typ Expression(const VarsList& vars, Typ typ) {
    return OperatorLevel<MulTerm, IsAddOp>(vars, typ);
}

// ---------------------------------------------------------------------------------------------
// Array elements
// ---------------------------------------------------------------------------------------------

namespace {

// An index: <expression>, "MOV #A0 $PUSH"
void ArrayIndex(const VarsList& vars, bool asDInt) {
    const NestingGuard guard;
    const Typ literal = Scan();
    const Typ typ = ConvertTyp(literal, Expression(vars, literal), false);
    if (!IsTypOrdinal(asDInt ? ConvertTyp(TYP_DINT, typ, false) : typ)) {
        Abort(TXT_ORDINAL_TYPE_REQUIRED, false);
    }
    EmitPush();
}

}  // namespace

// Indices = "[" Expression { "," Expression } "]"
// Up to the "]", which the caller matches.
void ArrayIndices(const VarsList& vars, const VarItem& array, bool asDInt) {
    int count = 0;
    do {
        ArrayIndex(vars, asDInt);
        ++count;
    } while (TokenChar == TOKEN_COMMA);
    if (count != array.arrayDimensions) {
        Abort(TXT_ARRAY_INCORRECT_SIZE_OF_ARRAY, false);
    }
}

// "MOV $POP #R0", then from the second-last index to the first, with m elements for each step of
// the index: "MOV <m> #A0", "MUL $POP #A0", "ADD #R0 #A0", "MOV #A0 #R0"
void EmitLinearIndex(const VarItem& array) {
    EmitPopToR0();
    qint64 elements = 1;
    for (int dimension = array.arrayDimensions - 1; dimension > 0; --dimension) {
        elements *= array.arrayBounds.at(dimension);
        EmitLoad(std::string_view(std::to_string(elements)));
        EmitStackOperation(sMUL);
        EmitR0Operation(sADD);
        EmitStore(REGISTER_0);
    }
}

// ---------------------------------------------------------------------------------------------
// Boolean expressions
// ---------------------------------------------------------------------------------------------

namespace {

// A BOOL result is taken as it is; any other is merged into the type so far.
Typ MergeUnlessBool(Typ typ, Typ result) {
    return IsTypBoolean(result) ? result : ConvertTyp(typ, result, false);
}

// With TRUE or FALSE current: whether it is TRUE. Aborts on any other token.
bool GetBoolean() {
    if (!IsBoolean(TokenChar)) {
        Expected(TXT_BOOLEAN_LITERAL);  // GCOVR_EXCL_LINE: every caller has looked
    }
    return TokenChar == TOKEN_TRUE;
}

// TRUE | FALSE on the right of a comparison: "MOV 1 #A0" or "MOV 0 #A0"
//
// QUIRK(number-compared-with-literal): no type is checked here, so a number may be compared
// with TRUE. Programs rely on it.
void ComparedLiteral() {
    const char value = GetBoolean() ? '1' : '0';
    Match(TOKEN_TRUE, TOKEN_FALSE);
    Scan();
    EmitLoad(value);
}

// Comparison = ( "=" | "<>" | "<" | ">" | "<=" | ">=" ) ( TRUE | FALSE | Expression )
// <right operand>, "<keyword> $POP #A0", "TST #A0"; the left operand waits on the stack already.
Typ Comparison(Token code, QLatin1String keyword, const VarsList& vars, Typ typ) {
    Match(code);
    if (!IsTypDigit(typ) && !IsTypBoolean(typ)) {
        AbortIllegal(code, TXT_LEFT_OPERAND_HAS_TYPE, typ);
    }
    const Typ literal = Scan();
    if (IsBoolean(TokenChar)) {
        ComparedLiteral();
    } else {
        ConvertTyp(typ, Expression(vars, literal), false);  // only a check
    }
    EmitStackOperation(keyword);
    EmitTest();
    return TYP_BOOL;
}

// The comparisons, each with its token and its keyword.
Typ BoolEquals(const VarsList& vars, Typ typ) {
    return Comparison(TOKEN_EQUAL, sEQ, vars, typ);
}

Typ BoolNotEquals(const VarsList& vars, Typ typ) {
    return Comparison(TOKEN_NOT_EQUAL, sNE, vars, typ);
}

Typ BoolLess(const VarsList& vars, Typ typ) {
    return Comparison(TOKEN_LESS, sLT, vars, typ);
}

Typ BoolGreater(const VarsList& vars, Typ typ) {
    return Comparison(TOKEN_GREATER, sGT, vars, typ);
}

Typ BoolLessOrEquals(const VarsList& vars, Typ typ) {
    return Comparison(TOKEN_LESS_OR_EQUAL, sLE, vars, typ);
}

Typ BoolGreaterOrEquals(const VarsList& vars, Typ typ) {
    return Comparison(TOKEN_GREATER_OR_EQUAL, sGE, vars, typ);
}

// In the order of the token codes from TOKEN_EQUAL to TOKEN_GREATER_OR_EQUAL; the codes
// (qyx_globals.h) and these rows change together.
constexpr Operation COMPARISONS[] = {
    BoolEquals,           // TOKEN_EQUAL
    BoolNotEquals,        // TOKEN_NOT_EQUAL
    BoolLess,             // TOKEN_LESS
    BoolGreater,          // TOKEN_GREATER
    BoolLessOrEquals,     // TOKEN_LESS_OR_EQUAL
    BoolGreaterOrEquals,  // TOKEN_GREATER_OR_EQUAL
};
static_assert(std::size(COMPARISONS) == TOKEN_GREATER_OR_EQUAL - TOKEN_EQUAL + 1,
              "one row for each code");

// Relation = Expression [ Comparison ]
// <expression> [ "MOV #A0 $PUSH", <comparison> ]; a second comparison is left to the caller.
Typ Relation(const VarsList& vars, Typ typ) {
    typ = MergeUnlessBool(typ, Expression(vars, typ));
    if (!IsRelop(TokenChar)) {
        return typ;
    }
    EmitPush();
    return COMPARISONS[TokenChar - TOKEN_EQUAL](vars, typ);
}

// TRUE | FALSE: "MOV 1 #A0" or "MOV 0 #A0", then "EQ 1 #A0", "TST #A0"
Typ BooleanLiteral() {
    const char value = GetBoolean() ? '1' : '0';
    Scan();
    EmitLoad(value);
    Emit(sEQ, '1', ACCUMULATOR);
    EmitTest();
    return TYP_BOOL;
}

// BoolFactor = TRUE | FALSE | Relation
Typ BoolFactor(const VarsList& vars, Typ typ) {
    return IsBoolean(TokenChar) ? BooleanLiteral() : MergeUnlessBool(typ, Relation(vars, typ));
}

// "NOT #A0", "TST #A0" for a BOOL, "BNOT #A0" for an integer.
void EmitNot(Typ typ) {
    if (IsTypBoolean(typ)) {
        Emit(sNOT, ACCUMULATOR);
        EmitTest();
    } else if (IsTypOrdinal(typ)) {
        Emit(sBNOT, ACCUMULATOR);
    } else {
        AbortNotApplicable(TOKEN_NOT);
    }
}

// NotFactor = [ NOT ] BoolFactor
// <factor> [ <negation> ]; the factor includes a comparison: NOT a = b is NOT (a = b).
Typ NotFactor(const VarsList& vars, Typ typ) {
    if (TokenChar != TOKEN_NOT) {
        return MergeUnlessBool(typ, BoolFactor(vars, typ));
    }
    const Typ literal = Scan();
    typ = MergeUnlessBool(typ, BoolFactor(vars, literal));
    EmitNot(typ);
    return typ;
}

// The operator of a Boolean operation and its right operand, a whole BoolExpression.
//
// QUIRK(boolean-grouping): AND, OR and XOR thus group to the right, and AND does not bind
// tighter than an OR behind it: a AND b OR c is a AND (b OR c). Programs in the field rely on
// it.
Typ BoolRightOperand(const VarsList& vars, Label& label) {
    const NestingGuard guard;
    const Typ literal = Scan();
    return MergeUnlessBool(TYP_BOOL, BoolExpression(vars, literal, label));
}

// The left operand of a Boolean operation must be BOOL. BitTerm has taken the operator already
// where it is not, with a check of its own in the same words.
void CheckBoolLeftOperand(Token code, Typ typ) {
    Match(code);
    if (!IsTypBoolean(typ)) {
        AbortIllegal(code, TXT_LEFT_OPERAND_HAS_TYPE, typ);  // GCOVR_EXCL_LINE: never, as told
    }
}

// <right operand>, [ "L1:" ], "<keyword> $POP #A0", "TST #A0"
Typ StackedBoolOperation(QLatin1String keyword, const VarsList& vars) {
    Label label;
    const Typ typ = BoolRightOperand(vars, label);
    PostPendingLabel(label);
    EmitStackOperation(keyword);
    EmitTest();
    return typ;
}

// AND BoolExpression, the left operand on the stack.
Typ BoolAnd(const VarsList& vars, Typ typ) {
    CheckBoolLeftOperand(TOKEN_AND, typ);
    return StackedBoolOperation(sAND, vars);
}

// XOR BoolExpression
// "MOV #A0 $PUSH", then as AND.
Typ BoolXOr(const VarsList& vars, Typ typ) {
    CheckBoolLeftOperand(TOKEN_XOR, typ);
    EmitPush();
    return StackedBoolOperation(sXOR, vars);
}

// OR BoolExpression
// "JMPT L1", <right operand>: a true left operand skips the rest, with 1 in #A0 and the flag
// true. Every OR of a chain jumps to the one label.
Typ BoolOr(const VarsList& vars, Typ typ, Label& label) {
    CheckBoolLeftOperand(TOKEN_OR, typ);
    if (label.isEmpty()) {
        GetNewLabel(label);
    }
    Emit(sJMPT, label);
    return BoolRightOperand(vars, label);
}

// BoolTerm = NotFactor { AND BoolExpression }
// <factor>, { "MOV #A0 $PUSH", <right operand>, "AND $POP #A0", "TST #A0" }
Typ BoolTerm(const VarsList& vars, Typ typ) {
    typ = MergeUnlessBool(typ, NotFactor(vars, typ));
    while (TokenChar == TOKEN_AND) {
        EmitPush();
        typ = BoolAnd(vars, typ);
    }
    return typ;
}

}  // namespace

// BoolExpression = BoolTerm { ( OR | XOR ) BoolExpression }
// <term>, { "JMPT L1", <right operand> | "MOV #A0 $PUSH", <right operand>, "XOR $POP #A0",
// "TST #A0" }; the caller posts L1.
Typ BoolExpression(const VarsList& vars, Typ typ, Label& label) {
    typ = MergeUnlessBool(typ, BoolTerm(vars, typ));
    while (IsOrORXor(TokenChar)) {
        typ = TokenChar == TOKEN_OR ? BoolOr(vars, typ, label) : BoolXOr(vars, typ);
    }
    return typ;
}
