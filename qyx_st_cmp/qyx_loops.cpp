#include "qyx_loops.h"

#include "qyx_arithmetic.h"
#include "qyx_functions.h"
#include "qyx_il.h"
#include "qyx_lists.h"
#include "qyx_messages.h"
#include "qyx_nesting.h"
#include "qyx_observer.h"
#include "qyx_scanner.h"
#include "qyx_types.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <map>
#include <set>
#include <vector>

namespace {

// ---------------------------------------------------------------------------------------------
// Shared by the statements
// ---------------------------------------------------------------------------------------------

bool IsOneOf(Token code, std::initializer_list<Token> codes) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

// The end of a compound statement: keyword ";"
void MatchEnd(Token keyword) {
    Tell(&Observer::partBegun, TokenPosBeg);
    MatchAndScan(keyword);
    Match(TOKEN_SEMICOLON);
}

// Condition = BoolExpression
// It must be BOOL; `label` is that of BoolExpression.
void Condition(const VarsList& vars, Label& label) {
    if (!IsTypBoolean(BoolExpression(vars, CurrentToken.type, label))) {
        Abort(TXT_TYPE_OF_EXPRESSION_MUST_BE_BOOLEAN);
    }
}

// "JMPF <target>", [ "L1:" ]: a true operand of OR jumps past the JMPF.
void EmitJumpIfFalse(Label target, Label pendingLabel) {
    Emit(sJMPF, target);
    PostPendingLabel(pendingLabel);
}

// Compares a value that waits on the stack, and stays there, with the accumulator.
// "MOV $POP #R0", "<comparison> #R0 #A0", "TST #A0", "MOV #R0 $PUSH", "JMPF <target>"
void EmitWaitingTest(QLatin1String comparison, Label target) {
    EmitPopToR0();
    EmitR0Operation(comparison);
    EmitTest();
    EmitPushFromR0();
    Emit(sJMPF, target);
}

// ---------------------------------------------------------------------------------------------
// Labels, assignments, TICK
// ---------------------------------------------------------------------------------------------

// Label = ( Name | RESULT ) ":"
// "<NAME>:"; the statement counts as ended, no ";" follows.
void LabelDefinition(Body& body, const Spelling& spelling) {
    const Spelling& known = LabelSpelling(spelling);
    CheckLabelName(known, body.variables);
    const LabelItem& label = IsLabelItemInLabelLists(body.labels, known);
    Tell(&Observer::labelDefined, label);
    PostLabel(label.name);
    CountAsSemicolumn();
}

// Where an assignment stores its value.
struct Target {
    VarItem& variable;
    Typ type;
    Operand operand;
};

// Target = ( Name | RESULT ) [ Indices ]
// <indices>, [ <linear index>, "MOV #R0 $PUSH" ]: the index waits on the value stack.
Target ElementTarget(const VarsList& vars, const Spelling& spelling) {
    VarItem& array = IsArrayVarInVarsList(vars, spelling);
    Tell(&Observer::nameUsed, NameUse::Write, spelling);
    ArrayIndices(vars, array, true);
    Match(TOKEN_RIGHT_BRACKET);
    if (array.arrayDimensions > 1) {
        EmitLinearIndex(array);
        EmitPushFromR0();
    }
    Scan();
    return {array, array.elementType, ElementOperand(array, spelling, INDEX_ON_STACK)};
}

// The variable of that name. The token after the name is current.
Target VariableTarget(const VarsList& vars, const Spelling& spelling) {
    VarItem& variable = IsVarInVarsList(vars, spelling);
    Tell(&Observer::nameUsed, NameUse::Write, spelling);
    return {variable, variable.type, OperandOf(variable, spelling)};
}

// A variable that a statement has stored into.
void MarkAssigned(VarItem& variable) {
    variable.mayBeUninitialized = false;
    variable.isUsed = true;
}

// Aborts with Incompatible types: "INT" and function_block.
[[noreturn]] void AbortFunctionBlockAsValue(Typ target) {
    Abort(TXT_AND_FUNCTION_BLOCK,
          StringsToString(TXT_INCOMPATIBLE_TYPES, ": ", Quoted(TypToStr(target)), " ",
                          TXT_AND_FUNCTION_BLOCK));
}

// BoolExpression ";", the first token of the expression being current
// <expression>, [ "L1:" ]; aborts unless the value converts to the type.
void AssignedValue(const VarsList& vars, Typ target) {
    Label label;
    ConvertTyp(target, BoolExpression(vars, CurrentToken.type, label));
    Match(TOKEN_SEMICOLON);
    PostPendingLabel(label);
}

// target ":=" BoolExpression ";"
// <expression>, "MOV #A0 <target>"; returns the type of the target.
Typ AssignTo(const VarsList& vars, const Target& target) {
    if (target.variable.isConstant) {
        Abort(TXT_LEFT_SIDE_CANNOT_BE_ASSIGNED_TO);
    }
    MatchAndScan(TOKEN_ASSIGN);
    if (TokenChar == TOKEN_FUNCTION_BLOCK) {
        AbortFunctionBlockAsValue(target.type);
    }
    AssignedValue(vars, target.type);
    MarkAssigned(target.variable);
    EmitStore(target.operand);
    return target.type;
}

// Assignment = Label | Target ":=" BoolExpression ";"
// The store of the value, or the label. Returns the type of the target, TYP_NONE for a
// label.
Typ Assignment(Body& body) {
    if (TokenChar != TOKEN_RESULT) {
        Match(TOKEN_IDENTIFIER);
    }
    const Spelling& spelling = *TokenSpelling;
    Scan();
    if (TokenChar == TOKEN_COLON) {
        LabelDefinition(body, spelling);
        return TYP_NONE;
    }
    if (TokenChar == TOKEN_LEFT_BRACKET) {
        return AssignTo(body.variables, ElementTarget(body.variables, spelling));
    }
    return AssignTo(body.variables, VariableTarget(body.variables, spelling));
}

// Tick = TICK ":=" BoolExpression ";"
// <expression>, "MOV #A0 *TICK"
void DoTick(const VarsList& vars) {
    MatchAndScan(TOKEN_TICK);
    MatchAndScan(TOKEN_ASSIGN);
    AssignedValue(vars, TYP_UDINT);
    EmitStore(TICK);
}

// ---------------------------------------------------------------------------------------------
// IF
// ---------------------------------------------------------------------------------------------

// ConditionalBranch = Condition THEN Statements
// <condition>, "JMPF N", [ "L1:" ], <statements>; returns N, which the caller posts.
Label ConditionalBranch(Body& body, const LoopLabels& loop) {
    Tell(&Observer::partBegun, TokenPosBeg);
    Scan();
    Label pending;
    Condition(body.variables, pending);
    MatchAndScan(TOKEN_THEN);
    Label next;
    GetNewLabel(next);
    EmitJumpIfFalse(next, pending);
    Statements(body, loop, {TOKEN_ELSIF, TOKEN_ELSE, TOKEN_END_IF});
    return next;
}

// If = IF ConditionalBranch { ELSIF ConditionalBranch } [ ELSE Statements ] END_IF ";"
// <branch>, [ "JMP E", "N:", <branch> ... ], "N:" or "E:"
//
// QUIRK(unposted-label): an IF without ELSIF and ELSE draws the label E and never posts it. The
// numbers of all later labels follow from that.
void DoIf(Body& body, const LoopLabels& loop) {
    Match(TOKEN_IF);
    Label end;
    GetNewLabel(end);
    Label next = ConditionalBranch(body, loop);
    const bool isSingle = TokenChar == TOKEN_END_IF;
    if (!isSingle) {
        Emit(sJMP, end);
    }
    while (TokenChar == TOKEN_ELSIF) {
        Tell(&Observer::partBegun, TokenPosBeg);
        PostLabel(next);
        next = ConditionalBranch(body, loop);
        Emit(sJMP, end);
    }
    const bool hasElse = TokenChar == TOKEN_ELSE;
    if (hasElse) {
        Tell(&Observer::partBegun, TokenPosBeg);
        PostLabel(next);
        Scan();
        Statements(body, loop, {TOKEN_END_IF});
    }
    MatchEnd(TOKEN_END_IF);
    if (!hasElse) {
        PostLabel(next);
    }
    if (!isSingle) {
        PostLabel(end);
    }
}

// ---------------------------------------------------------------------------------------------
// Loops
// ---------------------------------------------------------------------------------------------

// While = WHILE Condition DO Statements END_WHILE ";"
// "H:", <condition>, "JMPF X", [ "L1:" ], <statements>, "JMP H", "X:"
void DoWhile(Body& body) {
    MatchAndScan(TOKEN_WHILE);
    Label head;
    Label exit;
    GetNewLabel(head);
    GetNewLabel(exit);
    PostLabel(head);
    Label pending;
    Condition(body.variables, pending);
    MatchAndScan(TOKEN_DO);
    EmitJumpIfFalse(exit, pending);
    Statements(body, {exit, head}, {TOKEN_END_WHILE});
    MatchEnd(TOKEN_END_WHILE);
    Emit(sJMP, head);
    PostLabel(exit);
}

// Repeat = REPEAT Statements UNTIL Condition END_REPEAT ";"
// "H:", <statements>, <condition>, "JMPF H", "X:"; a true operand of OR jumps straight to X.
void DoRepeat(Body& body) {
    MatchAndScan(TOKEN_REPEAT);
    Label head;
    Label exit;
    GetNewLabel(head);
    GetNewLabel(exit);
    PostLabel(head);
    Statements(body, {exit, head}, {TOKEN_UNTIL});
    Tell(&Observer::partBegun, TokenPosBeg);
    Scan();
    Label conditionExit = exit;
    Condition(body.variables, conditionExit);
    MatchEnd(TOKEN_END_REPEAT);
    Emit(sJMPF, head);
    PostLabel(exit);
}

// What differs between the two directions of FOR.
struct Direction {
    QLatin1String compareBound;  // true while the variable has not passed the bound
    QLatin1String step;
};

constexpr Direction UPWARDS = {sGE, sADD};
constexpr Direction DOWNWARDS = {sLE, sSUB};

void CheckControlType(Typ type) {
    if (!IsTypOrdinal(type)) {
        Abort(TXT_FOR_LOOP_CONTROL_VARIABLE_MUST_HAVE_ORDINAL_TYPE);
    }
}

// The start or the bound of a FOR, an Expression that converts to an integer type; its first
// token is current.
void ControlValue(const VarsList& vars, Typ control) {
    CheckControlType(ConvertTyp(control, Expression(vars, CurrentToken.type)));
}

// ForStart = Name ":=" Expression
// <expression>, "MOV #A0 @name"; returns the control variable.
VarItem& ForStart(const VarsList& vars, const Spelling& spelling) {
    VarItem& variable = IsVarInVarsList(vars, spelling);
    Tell(&Observer::nameUsed, NameUse::Write, spelling);
    CheckControlType(variable.type);
    ScanAndMatch(TOKEN_ASSIGN);
    Scan();
    ControlValue(vars, variable.type);
    MarkAssigned(variable);
    EmitStore(OperandOf(variable, spelling));
    return variable;
}

// ForBound = ( TO | DOWNTO ) Expression
// <expression>, "MOV #A0 $PUSH"; the bound stays on the value stack for the whole loop.
const Direction& ForBound(const VarsList& vars, Typ control) {
    Match(TOKEN_TO, TOKEN_DOWNTO);
    Tell(&Observer::partBegun, TokenPosBeg);
    const Direction& direction = TokenChar == TOKEN_TO ? UPWARDS : DOWNWARDS;
    Scan();
    ControlValue(vars, control);
    EmitPush();
    return direction;
}

// The test of FOR: the variable against the bound, which goes back on the stack.
void EmitForTest(const Operand& control, const Direction& direction, Label exit) {
    EmitLoad(control);
    EmitWaitingTest(direction.compareBound, exit);
}

// The step of FOR, always 1.
void EmitForStep(const Operand& control, const Direction& direction) {
    EmitLoad(control);
    Emit(direction.step, '1', ACCUMULATOR);
    EmitStore(control);
}

// For = FOR ForStart ForBound DO Statements END_FOR ";"
// <start>, <bound>, "H:", <test>, <statements>, "S:", <step>, "JMP H", "X:", "MOV $POP #NIL"
//
// QUIRK(for-by-reference): test and step address the variable by value even when it is held by
// reference, while the start is stored through the reference. Target code is fixed.
void DoFor(Body& body) {
    Match(TOKEN_FOR);
    const TokenPos begin = TokenPosBeg;
    Label head;
    Label exit;
    Label step;
    GetNewLabel(head);
    GetNewLabel(exit);
    GetNewLabel(step);
    ScanAndMatch(TOKEN_IDENTIFIER);
    const Spelling& spelling = *TokenSpelling;
    const Operand control = {BY_VALUE, spelling.utf8};
    const VarItem& variable = ForStart(body.variables, spelling);
    const Direction& direction = ForBound(body.variables, variable.type);
    ++body.stackDepth;
    Match(TOKEN_DO);
    PostLabel(head);
    EmitForTest(control, direction, exit);
    Scan();
    Statements(body, {exit, step}, {TOKEN_END_FOR});
    Tell(&Observer::partBegun, begin);
    PostLabel(step);
    EmitForStep(control, direction);
    MatchEnd(TOKEN_END_FOR);
    Emit(sJMP, head);
    PostLabel(exit);
    EmitDrop();
    --body.stackDepth;
}

// ---------------------------------------------------------------------------------------------
// CASE
// ---------------------------------------------------------------------------------------------

enum class TWhatCase : unsigned char { Single, Range };

// A label of a CASE; a single value is both its ends.
struct CaseItem {
    TWhatCase kind;
    qint64 low;
    qint64 high;
};

// The labels of the CASE being compiled and an index of their values.
struct CaseItems {
    std::vector<CaseItem> items;      // in source order; the index answers all that is asked
    std::set<qint64> ends;            // single values, and the low and high ends of ranges
    std::map<qint64, qint64> ranges;  // high ends by low ends; none inside another

    bool isInRange(qint64 value) const;
    void append(const CaseItem& item);
};

bool CaseItems::isInRange(qint64 value) const {
    const auto next = ranges.upper_bound(value);
    return next != ranges.begin() && std::prev(next)->second >= value;
}

// A range that is no duplicate lies either inside an older one or apart from all.
void CaseItems::append(const CaseItem& item) {
    items.push_back(item);
    ends.insert({item.low, item.high});
    if (item.kind == TWhatCase::Range && !isInRange(item.low)) {
        ranges.emplace(item.low, item.high);
    }
}

// QUIRK(inner-range): a new range that lies strictly inside an older one is not noticed: only
// the ends of the older range are looked for in the new one. Programs in the field rely on it.
bool IsDuplicate(const CaseItems& items, const CaseItem& item) {
    const auto end = items.ends.lower_bound(item.low);
    const bool holdsAnEnd = end != items.ends.end() && *end <= item.high;
    return holdsAnEnd || (item.kind == TWhatCase::Single && items.isInRange(item.low));
}

// Checks a new label against those before it and adds it to them.
void CheckCase(CaseItems& items, const CaseItem& item) {
    if (item.low > item.high) {
        Abort(TXT_CASE_LOW_BOUND_EXCEEDS_HIGH_BOUND);
    }
    if (IsDuplicate(items, item)) {
        Abort(TXT_CASE_DUPLICATE_CASE_LABEL);
    }
    items.append(item);
}

// Scans where a label or a separator of labels may stand: a "." ends a number there.
void ScanInCase() {
    Scan(true);
}

// A bound of a case label as the source writes it.
struct CaseBound {
    QStringView text;  // without its sign
    bool isNegative;
    qint64 value;
};

// CaseBound = [ "-" ] Integer
// The separator after it is read as well.
CaseBound ReadCaseBound() {
    const bool isNegative = TokenChar == TOKEN_MINUS;
    if (isNegative) {
        ScanInCase();
    }
    if (TokenChar != TOKEN_NUMBER) {
        Abort(TXT_ORDINAL_TYPE_REQUIRED);
    }
    const qint64 magnitude = StrToInt64(TokenName);
    CaseBound bound = {TokenName, isNegative, isNegative ? -magnitude : magnitude};
    ScanInCase();
    Match(TOKEN_COMMA, TOKEN_DOT_DOT, TOKEN_COLON);
    return bound;
}

// A test of the selector, which stays on the value stack: jumps unless the comparison holds.
// "MOV <bound> #A0", [ "SUB 0 #A0" ], <waiting test>
void EmitCaseTest(const CaseBound& bound, QLatin1String comparison, Label target) {
    EmitLoad(bound.text);
    if (bound.isNegative) {
        EmitNegate();
    }
    EmitWaitingTest(comparison, target);
}

// The rest of lo ".." hi, ".." being current
// <lo test to H>, "JMP X", "H:", <hi test to B>, "X:"
void CaseRange(CaseItems& items, const CaseBound& low, Label branch) {
    ScanInCase();
    const CaseBound high = ReadCaseBound();
    Match(TOKEN_COMMA, TOKEN_COLON);
    CheckCase(items, {TWhatCase::Range, low.value, high.value});
    Label highTest;
    Label next;
    GetNewLabelAndNextLabel(highTest, next);
    GetNewLabel(next);
    EmitCaseTest(low, sLT, highTest);
    Emit(sJMP, next);
    PostLabel(highTest);
    EmitCaseTest(high, sGT, branch);
    PostLabel(next);
}

// CaseLabel = CaseBound [ ".." CaseBound ]
// <tests>, which jump to the branch when the selector matches
void CaseLabel(CaseItems& items, Label branch) {
    Tell(&Observer::partBegun, TokenPosBeg);
    const CaseBound bound = ReadCaseBound();
    if (TokenChar == TOKEN_DOT_DOT) {
        CaseRange(items, bound, branch);
    } else {
        CheckCase(items, {TWhatCase::Single, bound.value, bound.value});
        EmitCaseTest(bound, sNE, branch);
    }
}

bool IsCaseBranchEnd(Token code) {
    return IsOneOf(code, {TOKEN_NUMBER, TOKEN_MINUS, TOKEN_ELSE, TOKEN_END_CASE});
}

// The statements of a branch, up to the next label.
//
// QUIRK(case-in-loop): the branches of a CASE know no loop: BREAK and CONTINUE are refused in
// them even when the CASE stands in a loop. The language has it so.
void CaseBranch(Body& body) {
    const NestingGuard guard;
    ScanInCase();
    while (!IsCaseBranchEnd(TokenChar)) {
        Block(body, LoopLabels());
        ScanInCase();
    }
}

// CaseElement = CaseLabel { "," CaseLabel } ":" Statements
// <tests>, "JMP N", "B:", <statements>, "JMP E", "N:"
void CaseElement(Body& body, CaseItems& items, Label branch, Label next, Label end) {
    CaseLabel(items, branch);
    while (TokenChar == TOKEN_COMMA) {
        ScanInCase();
        CaseLabel(items, branch);
    }
    Emit(sJMP, next);
    PostLabel(branch);
    CaseBranch(body);
    Emit(sJMP, end);
    PostLabel(next);
}

// CaseSelector = BoolExpression OF
// <expression>, [ "L1:" ], "MOV #A0 $PUSH"
void CaseSelector(const VarsList& vars) {
    const Typ literal = Scan();
    Label label;
    if (!IsTypOrdinal(ConvertTyp(literal, BoolExpression(vars, literal, label)))) {
        Abort(TXT_ORDINAL_TYPE_REQUIRED);
    }
    PostPendingLabel(label);
    EmitPush();
    Match(TOKEN_OF);
}

// Case = CASE CaseSelector CaseElement { CaseElement } [ ELSE Statements ] END_CASE ";"
// <selector>, { <element> }, [ <statements> ], "E:", "MOV $POP #NIL"
//
// QUIRK(exit-in-case): the selector on the value stack is not counted in the stack depth, so an
// EXIT in a branch leaves it there. Target code is fixed. For the same reason a fresh pair of
// labels is drawn after every element, the last one included.
void DoCase(Body& body) {
    Match(TOKEN_CASE);
    CaseSelector(body.variables);
    Label end;
    Label branch;
    Label next;
    GetNewLabel(end);
    GetNewLabel(branch);
    GetNewLabel(next);
    CaseItems items;
    ScanInCase();
    do {
        CaseElement(body, items, branch, next, end);
        GetNewLabel(branch);
        GetNewLabel(next);
    } while (!IsOneOf(TokenChar, {TOKEN_ELSE, TOKEN_END_CASE}));
    if (TokenChar == TOKEN_ELSE) {
        Scan();
        Statements(body, LoopLabels(), {TOKEN_END_CASE});
    }
    MatchEnd(TOKEN_END_CASE);
    PostLabel(end);
    EmitDrop();
}

// ---------------------------------------------------------------------------------------------
// Jumps
// ---------------------------------------------------------------------------------------------

// keyword ";"
// "JMP <target>"; aborts with that text outside a loop.
void JumpInLoop(Token keyword, Label target, QLatin1String outsideOfLoop) {
    MatchEnd(keyword);
    if (target.isEmpty()) {
        Abort(outsideOfLoop);
    }
    Emit(sJMP, target);
}

// Break = BREAK ";"
// "JMP <end of the loop>"
void DoBreak(Label breakLabel) {
    JumpInLoop(TOKEN_BREAK, breakLabel, TXT_BREAK_OUTSIDE_OF_LOOP);
}

// Continue = CONTINUE ";"
// "JMP <head or step of the loop>"
void DoContinue(Label continueLabel) {
    JumpInLoop(TOKEN_CONTINUE, continueLabel, TXT_CONTINUE_OUTSIDE_OF_LOOP);
}

// Exit = EXIT ";"
// "MOV $POP #NIL" for each value on the stack, [ "MOV @RESULT #A0" ], "RET"
void DoExit(Body& body) {
    MatchEnd(TOKEN_EXIT);
    for (int i = 0; i < body.stackDepth; ++i) {
        EmitDrop();
    }
    if (body.inFunction) {
        EmitLoad(RESULT_OPERAND);
    }
    EmitReturn();
}

// GoTo = GOTO Name ";"
// "JMP <NAME>"; values on the stack stay there.
void DoGoTo(LabelsList& labels) {
    MatchAndScan(TOKEN_GOTO);
    Match(TOKEN_IDENTIFIER);
    const Spelling& known = LabelSpelling(*TokenSpelling);
    ScanAndMatch(TOKEN_SEMICOLON);
    const LabelItem& label = AddPeferenceToLabelItemInLabelLists(labels, known);
    Tell(&Observer::labelUsed, label);
    Emit(sJMP, label.name);
}

// Statement = Assignment | Tick | If | While | Repeat | For | Case | Break | Continue | Exit
//     | GoTo | CallStatement
// A function called as a statement has its result dropped: "MOV $POP #NIL".
void Statement(Body& body, const LoopLabels& loop) {
    switch (TokenChar) {
        case TOKEN_IF:
            return DoIf(body, loop);
        case TOKEN_WHILE:
            return DoWhile(body);
        case TOKEN_REPEAT:
            return DoRepeat(body);
        case TOKEN_FOR:
            return DoFor(body);
        case TOKEN_CASE:
            return DoCase(body);
        case TOKEN_BREAK:
            return DoBreak(loop.breakLabel);
        case TOKEN_CONTINUE:
            return DoContinue(loop.continueLabel);
        case TOKEN_EXIT:
            return DoExit(body);
        case TOKEN_GOTO:
            return DoGoTo(body.labels);
        case TOKEN_TICK:
            return DoTick(body.variables);
        case TOKEN_FUNCTION_BLOCK:
            return DoFuncBlock(body.variables);
        case TOKEN_FUNCTION:
            DoFunc(body.variables);
            return EmitDrop();
        default:
            Assignment(body);
    }
}

}  // namespace

// Statements = { Block }
void Statements(Body& body, const LoopLabels& loop, std::initializer_list<Token> ends) {
    const NestingGuard guard;
    while (!IsOneOf(TokenChar, ends)) {
        Block(body, loop);
        Scan();
    }
}

// Block = Statement | ";"
// Every statement leaves its own ";" as the current token.
void Block(Body& body, const LoopLabels& loop) {
    [[maybe_unused]] const int depth = body.stackDepth;
    while (TokenChar != TOKEN_SEMICOLON) {
        Tell(&Observer::statementBegun);
        Statement(body, loop);
        Tell(&Observer::statementEnded);
        assert(body.stackDepth == depth);
    }
}
