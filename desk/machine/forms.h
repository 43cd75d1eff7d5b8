// The words of target code, and the forms that its items have.
#pragma once

#include "facts/source.h"

#include "qyx_globals.h"
#include "qyx_il.h"
#include "qyx_types.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <string_view>
#include <vector>

constexpr std::string_view PROGRAM_ENTRY = "PROG:";
constexpr std::string_view DECLARATIONS_ENTRY = "VAR:";
constexpr std::string_view MAIN_ENTRY = "MAIN:";
constexpr std::string_view BODY_ENTRY = "BODY:";
constexpr std::string_view RETURN = "RET";
constexpr char COMMENT_MARK = ';';  // begins a line of a listing that is no item

inline std::string_view TextAt(const QByteArray& text, Span span) {
    return {text.constData() + span.begin, static_cast<std::size_t>(span.length())};
}
inline QString TextOf(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}

inline std::string_view View(QLatin1String text) {
    return {text.data(), static_cast<std::size_t>(text.size())};
}

// The words of an item, of which there is one more than there are blanks between them; a string
// is a word, whatever blanks it holds.
std::vector<std::string_view> WordsOf(std::string_view item);
// Where the word that begins there ends: at a blank or at the end of the text.
std::size_t EndOfWord(std::string_view text, std::size_t begin);

// "NAME:"
bool IsLabelText(std::string_view word);

// Where a variable is declared, by the code in its declaration.
enum class Section : unsigned char {
    Local,           // V
    Input,           // VI
    Output,          // VO
    Global,          // VG
    Argument,        // VA
    Reference,       // VR
    EngineGlobal,    // YVG
    EngineRegister,  // YVR
};

// The words of a declaration with that code in its second place; 0 if no section has it.
std::size_t FieldsOf(std::string_view sectionCode);
// The section; the code must be that of one.
Section SectionOf(std::string_view sectionCode);
QLatin1String CodeOf(Section section);

// The type by its keyword in capitals, TYP_NONE if no type has it.
Typ TypeOf(std::string_view keyword);
// The type by its two letters, TYP_NONE if no type has them.
Typ TypeOfShort(std::string_view letters);

enum class Operation : unsigned char {
    Move,
    MoveAddress,
    Add,
    Subtract,
    Multiply,
    Divide,
    Modulo,
    Power,
    BitAnd,
    BitOr,
    BitXor,
    ShiftLeft,
    ShiftRight,
    RotateLeft,
    RotateRight,
    Equal,
    NotEqual,
    Less,
    Greater,
    LessOrEqual,
    GreaterOrEqual,
    And,
    Xor,
    Not,
    BitNot,
    Test,
    Jump,
    JumpIfFalse,
    JumpIfTrue,
    Call,
    Execute,
    Return,
};

// What follows the keyword of an instruction.
enum class Shape : unsigned char {
    Move,    // a source and a destination
    Binary,  // a left operand, and the accumulator
    Unary,   // the accumulator
    Jump,    // a label
    Call,    // the name of a unit or of a built-in
    Nothing,
};

struct InstructionForm {
    QLatin1String keyword;
    Operation operation;
    Shape shape;
};

// The form of the instructions with that keyword, null if there are none.
const InstructionForm* FormOf(std::string_view keyword);
const InstructionForm& FormOf(Operation operation);

// The words of an instruction with its keyword; 0 if there is none with that keyword.
std::size_t WordsOfInstruction(std::string_view keyword);
