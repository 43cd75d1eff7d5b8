// The target code: its keywords, its operands and the emitters of its items.
//
// The engine has an accumulator (#A0), scratch registers (#R0, #R1), a value stack and a
// condition flag. An expression leaves its value in the accumulator; a value that must wait goes
// onto the stack. An item is its keyword and operands with one blank between them; source before
// destination, left operand before right.
#pragma once

#include "qyx_files.h"
#include "qyx_globals.h"
#include "qyx_text.h"

#include <string_view>

// Keywords
inline constexpr QLatin1String sPROG = "PROG"_L1;      // opens the program header
inline constexpr QLatin1String sVAR = "VAR"_L1;        // opens the declarations
inline constexpr QLatin1String sBODY = "BODY"_L1;      // opens a function's body
inline constexpr QLatin1String sMAIN = "MAIN"_L1;      // opens the program's body
inline constexpr QLatin1String sLABEL = "L"_L1;        // begins a code label
inline constexpr QLatin1String sV = "V"_L1;            // declares a variable
inline constexpr QLatin1String sVI = "VI"_L1;          // declares an input
inline constexpr QLatin1String sVO = "VO"_L1;          // declares an output
inline constexpr QLatin1String sVG = "VG"_L1;          // declares a global
inline constexpr QLatin1String sARG = "VA"_L1;         // declares an argument
inline constexpr QLatin1String sREF = "VR"_L1;         // declares a by-reference argument
inline constexpr QLatin1String sYXVG = "YVG"_L1;       // declares an engine global
inline constexpr QLatin1String sYXVR = "YVR"_L1;       // declares an engine register
inline constexpr QLatin1String sCAL = "CAL"_L1;        // calls a user's definition
inline constexpr QLatin1String sEXEC = "EXEC"_L1;      // calls a built-in
inline constexpr QLatin1String sJMP = "JMP"_L1;        // jumps
inline constexpr QLatin1String sJMPF = "JMPF"_L1;      // jumps if the flag is false
inline constexpr QLatin1String sJMPT = "JMPT"_L1;      // jumps if the flag is true
inline constexpr QLatin1String sMOV = "MOV"_L1;        // moves a value
inline constexpr QLatin1String sMOVA = "MOVA"_L1;      // moves an address
inline constexpr QLatin1String sADD = "ADD"_L1;        // adds
inline constexpr QLatin1String sSUB = "SUB"_L1;        // subtracts; negates as 0 minus a value
inline constexpr QLatin1String sMUL = "MUL"_L1;        // multiplies
inline constexpr QLatin1String sDIV = "DIV"_L1;        // divides
inline constexpr QLatin1String sMOD = "MOD"_L1;        // remainder
inline constexpr QLatin1String sNE = "NE"_L1;          // compares: not equal
inline constexpr QLatin1String sEQ = "EQ"_L1;          // compares: equal
inline constexpr QLatin1String sGT = "GT"_L1;          // compares: greater
inline constexpr QLatin1String sGE = "GE"_L1;          // compares: greater or equal
inline constexpr QLatin1String sLT = "LT"_L1;          // compares: less
inline constexpr QLatin1String sLE = "LE"_L1;          // compares: less or equal
inline constexpr QLatin1String sTST = "TST"_L1;        // sets the flag from a value
inline constexpr QLatin1String sOR = "OR"_L1;          // logical or; OR compiles to jumps instead
inline constexpr QLatin1String sXOR = "XOR"_L1;        // logical exclusive or
inline constexpr QLatin1String sAND = "AND"_L1;        // logical and
inline constexpr QLatin1String sNOT = "NOT"_L1;        // logical negation
inline constexpr QLatin1String sBOR = "BOR"_L1;        // bitwise or
inline constexpr QLatin1String sBXOR = "BXOR"_L1;      // bitwise exclusive or
inline constexpr QLatin1String sBAND = "BAND"_L1;      // bitwise and
inline constexpr QLatin1String sBNOT = "BNOT"_L1;      // bitwise complement
inline constexpr QLatin1String sNG = "NG"_L1;          // negation; minus compiles to SUB instead
inline constexpr QLatin1String sSHL = "SHL"_L1;        // shifts left
inline constexpr QLatin1String sSHR = "SHR"_L1;        // shifts right
inline constexpr QLatin1String sROL = "ROL"_L1;        // rotates left
inline constexpr QLatin1String sROR = "ROR"_L1;        // rotates right
inline constexpr QLatin1String sPOW = "POW"_L1;        // power
inline constexpr QLatin1String sRET = "RET"_L1;        // returns
inline constexpr QLatin1String sRESULT = "RESULT"_L1;  // the result variable of a function

// Operands
inline constexpr QLatin1String ACCUMULATOR = "#A0"_L1;
inline constexpr QLatin1String REGISTER_0 = "#R0"_L1;
inline constexpr QLatin1String PUSH = "$PUSH"_L1;  // as a destination
inline constexpr QLatin1String POP = "$POP"_L1;    // as a source
inline constexpr QLatin1String NIL = "#NIL"_L1;    // as a destination: the value is dropped
inline constexpr QLatin1String TICK = "*TICK"_L1;
inline constexpr char BY_VALUE = '@';      // before the name of a variable
inline constexpr char BY_REFERENCE = '^';  // before the name of a variable held by reference

// A variable as an operand, "@name" or "^name", or an element of an array, "@name[#POP.SI]"; the
// name as the source spells it at that use.
struct Operand {
    char mark;
    std::string_view name;           // UTF-8
    QLatin1String index = {};        // where the index of an element is, empty for a variable
    QLatin1String elementType = {};  // the short code of its type
};

// The bytes that an operand takes at most: exactly those of an element of an array.
std::size_t PartSize(const Operand& operand);
char* PutPart(char* to, const Operand& operand);

// The result variable of a function, "@RESULT"
inline constexpr Operand RESULT_OPERAND = {BY_VALUE, "RESULT"};

// The operand of a variable with the spelling of this use. Only the result variable can have a
// reserved name, as no declaration takes one; it is always spelled RESULT.
Operand OperandOf(const VarItem& variable, const Spelling& spelling);

// The operand of an element of an array, whose index is in that place.
inline constexpr QLatin1String INDEX_ON_STACK = "#POP"_L1;
inline constexpr QLatin1String INDEX_IN_REGISTER_1 = "#R1"_L1;
Operand ElementOperand(const VarItem& array, const Spelling& spelling, QLatin1String index);

// "<keyword> <first> <second>"
template <typename First, typename Second>
Q_ALWAYS_INLINE void Emit(QLatin1String keyword, const First& first, const Second& second) {
    WriteItem(keyword, ' ', first, ' ', second);
}

// "<keyword> <operand>"
template <typename Single>
Q_ALWAYS_INLINE void Emit(QLatin1String keyword, const Single& operand) {
    WriteItem(keyword, ' ', operand);
}

// "MOV <source> #A0"
template <typename Source>
Q_ALWAYS_INLINE void EmitLoad(const Source& source) {
    Emit(sMOV, source, ACCUMULATOR);
}

// "MOV #A0 <destination>"
template <typename Destination>
Q_ALWAYS_INLINE void EmitStore(const Destination& destination) {
    Emit(sMOV, ACCUMULATOR, destination);
}

void EmitPush();                                 // "MOV #A0 $PUSH"
void EmitPop();                                  // "MOV $POP #A0"
void EmitPopToR0();                              // "MOV $POP #R0"
void EmitPushFromR0();                           // "MOV #R0 $PUSH"
void EmitDrop();                                 // "MOV $POP #NIL"
void EmitStackOperation(QLatin1String keyword);  // "<keyword> $POP #A0"
void EmitR0Operation(QLatin1String keyword);     // "<keyword> #R0 #A0"
void EmitNegate();                               // "SUB 0 #A0"
void EmitTest();                                 // "TST #A0"
void EmitReturn();                               // "RET"

// ---------------------------------------------------------------------------------------------
// Code labels
// ---------------------------------------------------------------------------------------------

// Draws the next label.
void GetNewLabel(Label& label);

// Draws the next label and shows the one after it without drawing it.
void GetNewLabelAndNextLabel(Label& label, Label& next);

// A label as a part of an item, "L" and its number.
std::size_t PartSize(Label part);
char* PutPart(char* to, Label part);

// Writes the item "<label>:".
template <typename Text>
void PostLabel(const Text& label) {
    WriteItem(label, ':');
}

// Posts the label of short-circuit jumps if an expression has drawn one.
void PostPendingLabel(Label label);
