#include "machine/forms.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace {

constexpr char BLANK = ' ';
constexpr char QUOTE = '\'';

struct SectionForm {
    QLatin1String code;
    Section section;
    std::size_t numbers;  // that follow the type
};

constexpr SectionForm SECTION_FORMS[] = {
    {sV, Section::Local, 1},           {sVI, Section::Input, 1},
    {sVO, Section::Output, 1},         {sVG, Section::Global, 1},
    {sARG, Section::Argument, 1},      {sREF, Section::Reference, 1},
    {sYXVG, Section::EngineGlobal, 1}, {sYXVR, Section::EngineRegister, 4},
};
constexpr std::size_t FIELDS_BEFORE_NUMBERS = 3;  // name, code, type

constexpr InstructionForm INSTRUCTION_FORMS[] = {
    {sMOV, Operation::Move, Shape::Move},
    {sMOVA, Operation::MoveAddress, Shape::Move},
    {sADD, Operation::Add, Shape::Binary},
    {sSUB, Operation::Subtract, Shape::Binary},
    {sMUL, Operation::Multiply, Shape::Binary},
    {sDIV, Operation::Divide, Shape::Binary},
    {sMOD, Operation::Modulo, Shape::Binary},
    {sPOW, Operation::Power, Shape::Binary},
    {sBAND, Operation::BitAnd, Shape::Binary},
    {sBOR, Operation::BitOr, Shape::Binary},
    {sBXOR, Operation::BitXor, Shape::Binary},
    {sSHL, Operation::ShiftLeft, Shape::Binary},
    {sSHR, Operation::ShiftRight, Shape::Binary},
    {sROL, Operation::RotateLeft, Shape::Binary},
    {sROR, Operation::RotateRight, Shape::Binary},
    {sEQ, Operation::Equal, Shape::Binary},
    {sNE, Operation::NotEqual, Shape::Binary},
    {sLT, Operation::Less, Shape::Binary},
    {sGT, Operation::Greater, Shape::Binary},
    {sLE, Operation::LessOrEqual, Shape::Binary},
    {sGE, Operation::GreaterOrEqual, Shape::Binary},
    {sAND, Operation::And, Shape::Binary},
    {sXOR, Operation::Xor, Shape::Binary},
    {sNOT, Operation::Not, Shape::Unary},
    {sBNOT, Operation::BitNot, Shape::Unary},
    {sTST, Operation::Test, Shape::Unary},
    {sJMP, Operation::Jump, Shape::Jump},
    {sJMPF, Operation::JumpIfFalse, Shape::Jump},
    {sJMPT, Operation::JumpIfTrue, Shape::Jump},
    {sCAL, Operation::Call, Shape::Call},
    {sEXEC, Operation::Execute, Shape::Call},
    {sRET, Operation::Return, Shape::Nothing},
};

QLatin1String Latin(std::string_view text) {
    return QLatin1String(text.data(), static_cast<int>(text.size()));
}

const SectionForm* FormOfSection(std::string_view code) {
    const auto* const found =
        std::find_if(std::begin(SECTION_FORMS), std::end(SECTION_FORMS),
                     [code](const SectionForm& form) { return form.code == Latin(code); });
    return found == std::end(SECTION_FORMS) ? nullptr : found;
}

std::unordered_map<std::string_view, const InstructionForm*> FormsByKeyword() {
    std::unordered_map<std::string_view, const InstructionForm*> forms;
    for (const InstructionForm& form : INSTRUCTION_FORMS) {
        forms.emplace(View(form.keyword), &form);
    }
    return forms;
}

std::size_t OperandsOf(Shape shape) {
    switch (shape) {
        case Shape::Move:
        case Shape::Binary:
            return 2;
        case Shape::Nothing:
            return 0;
        default:
            return 1;
    }
}

// The type of which one of the two texts is that word, TYP_NONE if there is none.
Typ TypeByText(QLatin1String (*textOf)(Typ), std::string_view word) {
    for (const typ& row : TypsTable) {
        if (textOf(row.code) == Latin(word)) {
            return row.code;
        }
    }
    return TYP_NONE;
}

}  // namespace

std::size_t EndOfWord(std::string_view text, std::size_t begin) {
    bool isQuoted = false;
    std::size_t end = begin;
    for (; end < text.size() && (isQuoted || text[end] != BLANK); ++end) {
        isQuoted = isQuoted != (text[end] == QUOTE);
    }
    return end;
}

std::vector<std::string_view> WordsOf(std::string_view item) {
    constexpr std::size_t usual = 3;
    std::vector<std::string_view> words;
    words.reserve(usual);
    for (std::size_t begin = 0; begin <= item.size();) {
        const std::size_t end = EndOfWord(item, begin);
        words.push_back(item.substr(begin, end - begin));
        begin = end + 1;
    }
    return words;
}

bool IsLabelText(std::string_view word) {
    return word.size() > 1 && word.back() == ':' && word.front() != ':';
}

std::size_t FieldsOf(std::string_view sectionCode) {
    const SectionForm* const form = FormOfSection(sectionCode);
    return form == nullptr ? 0 : FIELDS_BEFORE_NUMBERS + form->numbers;
}

Section SectionOf(std::string_view sectionCode) {
    return FormOfSection(sectionCode)->section;
}

QLatin1String CodeOf(Section section) {
    return SECTION_FORMS[static_cast<std::size_t>(section)].code;
}

Typ TypeOf(std::string_view keyword) {
    return TypeByText(TypToStr, keyword);
}

Typ TypeOfShort(std::string_view letters) {
    return TypeByText(TypToShortStr, letters);
}

const InstructionForm* FormOf(std::string_view keyword) {
    static const std::unordered_map<std::string_view, const InstructionForm*> forms =
        FormsByKeyword();
    const auto found = forms.find(keyword);
    return found == forms.end() ? nullptr : found->second;
}

const InstructionForm& FormOf(Operation operation) {
    return INSTRUCTION_FORMS[static_cast<std::size_t>(operation)];
}

std::size_t WordsOfInstruction(std::string_view keyword) {
    const InstructionForm* const form = FormOf(keyword);
    return form == nullptr ? 0 : 1 + OperandsOf(form->shape);
}
