// Target code, decoded: units, declarations and instructions.
//
// A reader who begins here finds the way of the code through the machine: `items` divides the
// text, this unit decodes each item once, `verifier` proves that the code is sound, `machine`
// executes it: an item at a time, or by what `lower` makes of it and `registers` executes.
// Records refer to each other by their index.
#pragma once

#include "machine/forms.h"
#include "machine/items.h"
#include "machine/literals.h"

#include <QHash>
#include <QString>

#include <array>
#include <vector>

constexpr int NOWHERE = -1;  // the index of nothing

struct Declaration {
    QString name;  // as declared
    Section section;
    Typ type;
    std::vector<Literal> numbers;  // the initial value, or the engine's numbers
    int item;                      // of a missing one the first that names the variable
    bool isMissing = false;        // an empty item stands in its place
};

// Where an instruction takes a value from, or puts it.
enum class OperandKind : unsigned char {
    Nowhere,       // it has no such operand
    Accumulator,   // #A0
    Register0,     // #R0
    Push,          // $PUSH
    Pop,           // $POP
    Nil,           // #NIL
    Tick,          // *TICK
    Variable,      // @name
    Referred,      // ^name
    ElementByPop,  // @name[#POP.SI]
    ElementByR1,   // @name[#R1.SI]
    Literal,       // a number or a string
};

struct CodeOperand {
    OperandKind kind = OperandKind::Nowhere;
    int index = NOWHERE;     // of a declaration of the unit (NOWHERE: not declared), or a literal
    Typ element = TYP_NONE;  // of an array
};

struct Instruction {
    Operation operation;
    CodeOperand from;      // the source or the left operand
    CodeOperand to;        // the destination, or the accumulator
    int target = NOWHERE;  // of a jump: the instruction, of a call: the unit, or the built-in
    int item;
};

enum class UnitKind : unsigned char { Function, FunctionBlock, Program };

struct CodeUnit {
    UnitKind kind = UnitKind::FunctionBlock;
    QString name;
    std::vector<Declaration> declarations;
    int emptyDeclarations = 0;  // items that should declare something and are empty
    int begin = 0;              // its first instruction
    int end = 0;                // after its last one
    int firstItem = 0;
    int lastItem = 0;

    // The parameters stand before the other variables, the result before them.
    std::vector<int> parameters;
    int result = NOWHERE;

    QHash<QString, int> variables;  // by the folded name
    int variable(const QString& spelling) const;
};

struct CodeLabel {
    QString name;
    int unit;
    int instruction;  // the one that follows it
    int item;
};

struct BuiltIn {
    QString name;
    std::vector<Typ> parameters;
    Typ result;  // TYP_NONE if it gives none
};

struct Code {
    Items items;
    std::vector<CodeUnit> units;  // the program is the last
    std::vector<Instruction> instructions;
    std::vector<Literal> literals;
    std::vector<CodeLabel> labels;

    const CodeUnit& program() const { return units.back(); }
    // The unit that holds an instruction.
    int unitOf(int instruction) const;
};

struct CodeResult {
    Code code;                       // up to the fault, if there is one
    std::optional<CodeFault> fault;  // why the code cannot be decoded
};

// Decodes a code file or a listing. What is wrong with single items or their order is a fault;
// what their operands mean to each other is the verifier's to tell: a jump, a call or a variable
// may lead nowhere.
CodeResult ReadCode(const QByteArray& text);

// The built-ins that the engine offers, in the order of the catalogue.
const std::vector<BuiltIn>& EngineBuiltIns();

// Whether a script can have that name: letters, digits and "_".
bool IsName(const QString& text);
// A name in the form that all its spellings have in common.
QString FoldedName(const QString& name);

// "L" and a number, as the compiler makes labels; one of a script may look the same.
bool IsGeneratedLabel(const QString& name);
