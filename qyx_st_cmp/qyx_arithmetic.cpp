#include "qyx_arithmetic.h"

#include "qyx_functions.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_messages.h"
#include "qyx_nesting.h"
#include "qyx_observer.h"
#include "qyx_scanner.h"
#include "qyx_types.h"

#include <array>
#include <initializer_list>
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
    Abort(TXT_NOT_APPLICABLE_TO_THIS_OPERAND_TYPE,
          StringsToString(TXT_OPERATOR, " ", Quoted(OperatorText(code)), " ",
                          TXT_NOT_APPLICABLE_TO_THIS_OPERAND_TYPE));
}

// Aborts with "MOD" illegal, left operand has type REAL.
[[noreturn]] void AbortIllegal(Token code, QLatin1String operandHasType, Typ type) {
    Abort(operandHasType, StringsToString(Quoted(OperatorText(code)), " ", TXT_ILLEGAL, ", ",
                                          operandHasType, " ", TypToStr(type)));
}

// ---------------------------------------------------------------------------------------------
// Binary operators
// ---------------------------------------------------------------------------------------------

Typ MulTerm(const VarsList& vars, Typ type);

// Which operands an operator takes, and with it which message refuses others.
enum class OperandClass : unsigned char { Any, Digit, Ordinal };

struct BinaryOperator {
    Token token;
    QLatin1String keyword;
    OperandClass operands;
};

void CheckOperand(const BinaryOperator& op, QLatin1String operandHasType, Typ type) {
    if (op.operands == OperandClass::Digit && !IsTypDigit(type)) {
        AbortNotApplicable(op.token);
    }
    if (op.operands == OperandClass::Ordinal && !IsTypOrdinal(type)) {
        AbortIllegal(op.token, operandHasType, type);
    }
}

// operator MulTerm
// <right operand>, "<keyword> $POP #A0"; the left operand waits on the stack already.
//
// QUIRK(right-grouping): the right operand is a whole MulTerm whatever the operator, so all
// operators but "+" and "-" group to the right: a / b * c is a / (b * c). Programs in the field
// rely on it.
Typ BinaryOperation(const BinaryOperator& op, const VarsList& vars, Typ type) {
    const NestingGuard guard;
    Match(op.token);
    CheckOperand(op, TXT_LEFT_OPERAND_HAS_TYPE, type);
    Tell(&Observer::operationBegun, type);
    const Typ rightType = ConvertTyp(type, Scan());
    const Typ merged = ConvertTyp(rightType, MulTerm(vars, rightType));
    CheckOperand(op, TXT_RIGHT_OPERAND_HAS_TYPE, merged);
    Tell(&Observer::operationEnded, merged);
    EmitStackOperation(op.keyword);
    return merged;
}

// The operators, each with its token, its keyword and the operands that it takes.
//
// QUIRK(plus-unchecked): "+" checks no operand itself: a BOOL on its left is refused by the
// conversion, in other words than those of "-".
Typ Add(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_PLUS, sADD, OperandClass::Any}, vars, type);
}

Typ Subtract(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_MINUS, sSUB, OperandClass::Digit}, vars, type);
}

Typ Multiply(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_MULTIPLY, sMUL, OperandClass::Digit}, vars, type);
}

Typ Divide(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_DIVIDE, sDIV, OperandClass::Digit}, vars, type);
}

Typ Mod(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_MOD, sMOD, OperandClass::Ordinal}, vars, type);
}

Typ BitAnd(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_AND, sBAND, OperandClass::Ordinal}, vars, type);
}

Typ BitOr(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_OR, sBOR, OperandClass::Ordinal}, vars, type);
}

Typ BitXor(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_XOR, sBXOR, OperandClass::Ordinal}, vars, type);
}

Typ BitShl(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_SHL, sSHL, OperandClass::Ordinal}, vars, type);
}

Typ BitShr(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_SHR, sSHR, OperandClass::Ordinal}, vars, type);
}

Typ BitRol(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_ROL, sROL, OperandClass::Ordinal}, vars, type);
}

Typ BitRor(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_ROR, sROR, OperandClass::Ordinal}, vars, type);
}

Typ Pow(const VarsList& vars, Typ type) {
    return BinaryOperation({TOKEN_POWER, sPOW, OperandClass::Digit}, vars, type);
}

using Operation = Typ (*)(const VarsList& vars, Typ type);

struct OperationRow {
    Token token;
    Operation operation;
};

// Operations by their tokens, null for a token that is no operator.
using OperationTable = std::array<Operation, TOKEN_CODES_COUNT>;

constexpr OperationTable ByToken(std::initializer_list<OperationRow> rows) {
    OperationTable table = {};
    for (const OperationRow& row : rows) {
        table[row.token] = row.operation;
    }
    return table;
}

constexpr OperationTable OPERATIONS = ByToken({
    {TOKEN_PLUS, Add},
    {TOKEN_MINUS, Subtract},
    {TOKEN_MULTIPLY, Multiply},
    {TOKEN_DIVIDE, Divide},
    {TOKEN_MOD, Mod},
    {TOKEN_OR, BitOr},
    {TOKEN_XOR, BitXor},
    {TOKEN_AND, BitAnd},
    {TOKEN_SHR, BitShr},
    {TOKEN_SHL, BitShl},
    {TOKEN_ROR, BitRor},
    {TOKEN_ROL, BitRol},
    {TOKEN_POWER, Pow},
});

constexpr bool HasOperations(Token first, Token last, const OperationTable& table) {
    for (std::size_t code = first; code <= last; ++code) {
        if (table[code] == nullptr) {
            return false;
        }
    }
    return true;
}
static_assert(HasOperations(TOKEN_PLUS, TOKEN_AND, OPERATIONS) &&
                  HasOperations(TOKEN_SHR, TOKEN_POWER, OPERATIONS),
              "every operator has its operation");

// "MOV #A0 $PUSH", then the operation of the current token.
Typ PushAndOperate(const VarsList& vars, Typ type) {
    EmitPush();
    return OPERATIONS[TokenChar](vars, type);
}

// ---------------------------------------------------------------------------------------------
// Operands
// ---------------------------------------------------------------------------------------------

// Warns of a variable that no assignment has reached yet. The texts must not take stack in each
// level of an expression.
Q_NEVER_INLINE void WarnIfUninitialized(const VarItem& variable, const Spelling& spelling) {
    if (variable.mayBeUninitialized) {
        WarningOf(TXT_MIGHT_NOT_HAVE_BEEN_INITIALIZED, TokenPosBeg, TXT_VARIABLE, " \"",
                  spelling.text, "\" ", TXT_MIGHT_NOT_HAVE_BEEN_INITIALIZED);
    }
}

// name
// "MOV @name #A0"
Typ LoadVariable(const VarsList& vars, const Spelling& spelling) {
    VarItem& variable = IsVarInVarsList(vars, spelling);
    EmitLoad(OperandOf(variable, spelling));
    variable.isUsed = true;
    Tell(&Observer::nameUsed, NameUse::Read, spelling);
    WarnIfUninitialized(variable, spelling);
    return variable.type;
}

// Name Indices
// <indices>, [ <linear index> ], "MOV @name[#POP.SI] #A0" or "MOV @name[#R1.SI] #A0"
//
// QUIRK(linear-index-registers): the linear index is made in #R0 while the operand names #R1.
// The engine pairs the two.
Q_NEVER_INLINE Typ LoadElement(const VarsList& vars, const Spelling& spelling) {
    VarItem& array = IsArrayVarInVarsList(vars, spelling);
    array.isUsed = true;
    Tell(&Observer::nameUsed, NameUse::Read, spelling);
    ArrayIndices(vars, array, false);
    if (array.arrayDimensions == 1) {
        EmitLoad(ElementOperand(array, spelling, INDEX_ON_STACK));
    } else {
        EmitLinearIndex(array);
        EmitLoad(ElementOperand(array, spelling, INDEX_IN_REGISTER_1));
    }
    MatchAndScan(TOKEN_RIGHT_BRACKET);
    return array.elementType;
}

// Ident = Call | ( Name | RESULT ) [ Indices ]
// The load of the value, or the code of the call.
Typ Ident(const VarsList& vars) {
    if (TokenChar == TOKEN_FUNCTION) {
        return DoFunc1(vars);
    }
    const Spelling& spelling = *TokenSpelling;
    Scan();
    if (TokenChar == TOKEN_LEFT_BRACKET) {
        return LoadElement(vars, spelling);
    }
    return LoadVariable(vars, spelling);
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
Typ Parenthesis(const VarsList& vars, Typ type) {
    const NestingGuard guard;
    const Typ literal = MatchAndScan(TOKEN_LEFT_PARENTHESIS);
    Label label;
    type = ConvertTyp(type, BoolExpression(vars, literal, label));
    Match(TOKEN_RIGHT_PARENTHESIS);
    PostPendingLabel(label);
    Scan();
    return type;
}

// "MOV *TICK #A0"
Typ TickFactor() {
    EmitLoad(TICK);
    Scan();
    return TYP_UDINT;
}

// "MOV 'TEXT' #A0"
Q_NEVER_INLINE Typ StringFactor() {
    WriteItem(sMOV, " '"_L1, TokenName, "' "_L1, ACCUMULATOR);
    Scan();
    return TYP_STRING;
}

// "MOV <number> #A0"; the type of the literal is in `type` already.
Typ NumberFactor(Typ type) {
    Match(TOKEN_NUMBER);
    EmitLoad(TokenName);
    Scan();
    return type;
}

// Factor = "(" BoolExpression ")" | Ident | TICK | String | Number
// The load of the value; a BOOL from a name is turned into a condition.
Typ Factor(const VarsList& vars, Typ type) {
    switch (TokenChar) {
        case TOKEN_LEFT_PARENTHESIS:
            return Parenthesis(vars, type);
        case TOKEN_IDENTIFIER:
        case TOKEN_FUNCTION:
        case TOKEN_RESULT:
            type = ConvertTyp(type, Ident(vars));
            if (IsTypBoolean(type)) {
                EmitCondition();
            }
            return type;
        case TOKEN_TICK:
            return TickFactor();
        case TOKEN_STRING:
            return StringFactor();
        default:
            return NumberFactor(type);
    }
}

// A number after "-". Its load is written when the token after it has been read.
void NegatedNumber() {
    const QStringView text = TokenName;
    Scan();
    EmitLoad(text);
}

// SignedFactor = [ "+" ] [ "-" ] Factor
// <factor>, with "-" followed by "SUB 0 #A0": a constant is never written with a sign.
Typ SignedFactor(const VarsList& vars, Typ type) {
    if (TokenChar == TOKEN_PLUS) {
        type = ConvertTyp(type, Scan());
    }
    if (TokenChar != TOKEN_MINUS) {
        return ConvertTyp(type, Factor(vars, type));
    }
    type = ConvertTyp(type, Scan());
    if (TokenChar == TOKEN_NUMBER) {
        NegatedNumber();
    } else {
        type = ConvertTyp(type, Factor(vars, type));
    }
    EmitNegate();
    return type;
}

// ---------------------------------------------------------------------------------------------
// The ladder
// ---------------------------------------------------------------------------------------------

// operand { operator MulTerm }
// <operand>, { "MOV #A0 $PUSH", <right operand>, "<keyword> $POP #A0" }
template <Operation operand, bool (*isOperator)(Token)>
Typ OperatorLevel(const VarsList& vars, Typ type) {
    type = ConvertTyp(type, operand(vars, type));
    while (isOperator(TokenChar)) {
        type = PushAndOperate(vars, type);
    }
    return type;
}

// PowTerm = SignedFactor { "**" MulTerm }
Typ PowTerm(const VarsList& vars, Typ type) {
    return OperatorLevel<SignedFactor, IsPowOp>(vars, type);
}

// ShiftTerm = PowTerm { ( SHL | SHR | ROL | ROR ) MulTerm }
Typ ShiftTerm(const VarsList& vars, Typ type) {
    return OperatorLevel<PowTerm, IsShiftOp>(vars, type);
}

// BitTerm = ShiftTerm { ( AND | OR | XOR ) MulTerm }
// The operators of a BOOL operand are left to BoolExpression.
Typ BitTerm(const VarsList& vars, Typ type) {
    type = ConvertTyp(type, ShiftTerm(vars, type));
    while (IsBitOp(TokenChar) && !IsTypBoolean(type)) {
        type = PushAndOperate(vars, type);
    }
    return type;
}

// MulTerm = BitTerm { ( "*" | "/" | MOD ) MulTerm }
Typ MulTerm(const VarsList& vars, Typ type) {
    return OperatorLevel<BitTerm, IsMulOp>(vars, type);
}

}  // namespace

// Expression = MulTerm { ( "+" | "-" ) MulTerm }
Typ Expression(const VarsList& vars, Typ type) {
    return OperatorLevel<MulTerm, IsAddOp>(vars, type);
}

// ---------------------------------------------------------------------------------------------
// Array elements
// ---------------------------------------------------------------------------------------------

namespace {

// An index: <expression>, "MOV #A0 $PUSH"
void ArrayIndex(const VarsList& vars, bool asDInt) {
    const NestingGuard guard;
    const Typ literal = Scan();
    const Typ type = ConvertTyp(literal, Expression(vars, literal));
    if (!IsTypOrdinal(asDInt ? ConvertTyp(TYP_DINT, type) : type)) {
        Abort(TXT_ORDINAL_TYPE_REQUIRED);
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
        Abort(TXT_ARRAY_INCORRECT_SIZE_OF_ARRAY);
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
Typ MergeUnlessBool(Typ type, Typ result) {
    return IsTypBoolean(result) ? result : ConvertTyp(type, result);
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
Typ ComparedLiteral() {
    const char value = GetBoolean() ? '1' : '0';
    Match(TOKEN_TRUE, TOKEN_FALSE);
    Scan();
    EmitLoad(value);
    return TYP_BOOL;
}

// An Expression on the right of a comparison; its type is only checked.
Typ ComparedExpression(const VarsList& vars, Typ left, Typ literal) {
    const Typ right = Expression(vars, literal);
    ConvertTyp(left, right);
    return right;
}

// Comparison = ( "=" | "<>" | "<" | ">" | "<=" | ">=" ) ( TRUE | FALSE | Expression )
// <right operand>, "<keyword> $POP #A0", "TST #A0"; the left operand waits on the stack already.
Typ Comparison(Token code, QLatin1String keyword, const VarsList& vars, Typ type) {
    Match(code);
    if (!IsTypDigit(type) && !IsTypBoolean(type)) {
        AbortIllegal(code, TXT_LEFT_OPERAND_HAS_TYPE, type);
    }
    Tell(&Observer::operationBegun, type);
    const Typ literal = Scan();
    const Typ right =
        IsBoolean(TokenChar) ? ComparedLiteral() : ComparedExpression(vars, type, literal);
    Tell(&Observer::operationEnded, right);
    EmitStackOperation(keyword);
    EmitTest();
    return TYP_BOOL;
}

// The comparisons, each with its token and its keyword.
Typ BoolEquals(const VarsList& vars, Typ type) {
    return Comparison(TOKEN_EQUAL, sEQ, vars, type);
}

Typ BoolNotEquals(const VarsList& vars, Typ type) {
    return Comparison(TOKEN_NOT_EQUAL, sNE, vars, type);
}

Typ BoolLess(const VarsList& vars, Typ type) {
    return Comparison(TOKEN_LESS, sLT, vars, type);
}

Typ BoolGreater(const VarsList& vars, Typ type) {
    return Comparison(TOKEN_GREATER, sGT, vars, type);
}

Typ BoolLessOrEquals(const VarsList& vars, Typ type) {
    return Comparison(TOKEN_LESS_OR_EQUAL, sLE, vars, type);
}

Typ BoolGreaterOrEquals(const VarsList& vars, Typ type) {
    return Comparison(TOKEN_GREATER_OR_EQUAL, sGE, vars, type);
}

constexpr OperationTable COMPARISONS = ByToken({
    {TOKEN_EQUAL, BoolEquals},
    {TOKEN_NOT_EQUAL, BoolNotEquals},
    {TOKEN_LESS, BoolLess},
    {TOKEN_GREATER, BoolGreater},
    {TOKEN_LESS_OR_EQUAL, BoolLessOrEquals},
    {TOKEN_GREATER_OR_EQUAL, BoolGreaterOrEquals},
});
static_assert(HasOperations(TOKEN_EQUAL, TOKEN_GREATER_OR_EQUAL, COMPARISONS),
              "every comparison has its operation");

// Relation = Expression [ Comparison ]
// <expression> [ "MOV #A0 $PUSH", <comparison> ]; a second comparison is left to the caller.
Typ Relation(const VarsList& vars, Typ type) {
    type = MergeUnlessBool(type, Expression(vars, type));
    if (!IsRelop(TokenChar)) {
        return type;
    }
    EmitPush();
    return COMPARISONS[TokenChar](vars, type);
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
Typ BoolFactor(const VarsList& vars, Typ type) {
    return IsBoolean(TokenChar) ? BooleanLiteral() : MergeUnlessBool(type, Relation(vars, type));
}

// "NOT #A0", "TST #A0" for a BOOL, "BNOT #A0" for an integer.
void EmitNot(Typ type) {
    if (IsTypBoolean(type)) {
        Emit(sNOT, ACCUMULATOR);
        EmitTest();
    } else if (IsTypOrdinal(type)) {
        Emit(sBNOT, ACCUMULATOR);
    } else {
        AbortNotApplicable(TOKEN_NOT);
    }
}

// NotFactor = [ NOT ] BoolFactor
// <factor> [ <negation> ]; the factor includes a comparison: NOT a = b is NOT (a = b).
Typ NotFactor(const VarsList& vars, Typ type) {
    if (TokenChar != TOKEN_NOT) {
        return MergeUnlessBool(type, BoolFactor(vars, type));
    }
    Tell(&Observer::operationBegun, TYP_NONE);
    const Typ literal = Scan();
    type = MergeUnlessBool(type, BoolFactor(vars, literal));
    Tell(&Observer::operationEnded, type);
    EmitNot(type);
    return type;
}

// The operator of a Boolean operation and its right operand, a whole BoolExpression.
//
// QUIRK(boolean-grouping): AND, OR and XOR thus group to the right, and AND does not bind
// tighter than an OR after it: a AND b OR c is a AND (b OR c). Programs in the field rely on
// it.
Typ BoolRightOperand(const VarsList& vars, Label& label) {
    const NestingGuard guard;
    Tell(&Observer::operationBegun, TYP_BOOL);
    const Typ literal = Scan();
    const Typ right = MergeUnlessBool(TYP_BOOL, BoolExpression(vars, literal, label));
    Tell(&Observer::operationEnded, right);
    return right;
}

// The left operand of a Boolean operation must be BOOL. BitTerm has taken the operator already
// where it is not, with a check of its own in the same words.
void CheckBoolLeftOperand(Token code, Typ type) {
    Match(code);
    if (!IsTypBoolean(type)) {
        // GCOVR_EXCL_START: BitTerm has refused it
        AbortIllegal(code, TXT_LEFT_OPERAND_HAS_TYPE, type);
        // GCOVR_EXCL_STOP
    }
}

// <right operand>, [ "L1:" ], "<keyword> $POP #A0", "TST #A0"
Typ StackedBoolOperation(QLatin1String keyword, const VarsList& vars) {
    Label label;
    const Typ type = BoolRightOperand(vars, label);
    PostPendingLabel(label);
    EmitStackOperation(keyword);
    EmitTest();
    return type;
}

// AND BoolExpression, the left operand on the stack.
Typ BoolAnd(const VarsList& vars, Typ type) {
    CheckBoolLeftOperand(TOKEN_AND, type);
    return StackedBoolOperation(sAND, vars);
}

// XOR BoolExpression
// "MOV #A0 $PUSH", then as AND.
Typ BoolXOr(const VarsList& vars, Typ type) {
    CheckBoolLeftOperand(TOKEN_XOR, type);
    EmitPush();
    return StackedBoolOperation(sXOR, vars);
}

// OR BoolExpression
// "JMPT L1", <right operand>: a true left operand skips the rest, with 1 in #A0 and the flag
// true. Every OR of a chain jumps to the one label.
Typ BoolOr(const VarsList& vars, Typ type, Label& label) {
    CheckBoolLeftOperand(TOKEN_OR, type);
    if (label.isEmpty()) {
        GetNewLabel(label);
    }
    Emit(sJMPT, label);
    return BoolRightOperand(vars, label);
}

// BoolTerm = NotFactor { AND BoolExpression }
// <factor>, { "MOV #A0 $PUSH", <right operand>, "AND $POP #A0", "TST #A0" }
Typ BoolTerm(const VarsList& vars, Typ type) {
    type = MergeUnlessBool(type, NotFactor(vars, type));
    while (TokenChar == TOKEN_AND) {
        EmitPush();
        type = BoolAnd(vars, type);
    }
    return type;
}

}  // namespace

// BoolExpression = BoolTerm { ( OR | XOR ) BoolExpression }
// <term>, { "JMPT L1", <right operand> | "MOV #A0 $PUSH", <right operand>, "XOR $POP #A0",
// "TST #A0" }; the caller posts L1.
Typ BoolExpression(const VarsList& vars, Typ type, Label& label) {
    type = MergeUnlessBool(type, BoolTerm(vars, type));
    while (IsOrORXor(TokenChar)) {
        type = TokenChar == TOKEN_OR ? BoolOr(vars, type, label) : BoolXOr(vars, type);
    }
    return type;
}
