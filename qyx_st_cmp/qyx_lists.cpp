#include "qyx_lists.h"

#include "qyx_files.h"
#include "qyx_messages.h"
#include "qyx_scanner.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <iterator>

FunctionList FunctionsList;

// The parsers compare against the codes, so Token (qyx_globals.h) and this table change together.
//
// QUIRK(token-codes): SHL has a higher code than SHR, and VAR_ARG and VAR_REF carry late codes
// among the sections. The codes are fixed. clang-format off
constexpr token TokensTable[] = {
    {TOKEN_PROGRAM, "PROGRAM"_L1},
    {TOKEN_END_PROGRAM, "END_PROGRAM"_L1},
    {TOKEN_SEMICOLON, ";"_L1},
    {TOKEN_COLON, ":"_L1},
    {TOKEN_DOT, "."_L1},
    {TOKEN_DOT_DOT, ".."_L1},
    {TOKEN_COMMA, ","_L1},
    {TOKEN_ASSIGN, ":="_L1},
    {TOKEN_BREAK, "BREAK"_L1},
    {TOKEN_CONTINUE, "CONTINUE"_L1},
    {TOKEN_EXIT, "EXIT"_L1},
    {TOKEN_RESULT, "RESULT"_L1},
    {TOKEN_CONSTANT, "CONSTANT"_L1},
    {TOKEN_VAR, "VAR"_L1},
    {TOKEN_VAR_INPUT, "VAR_INPUT"_L1},
    {TOKEN_VAR_OUTPUT, "VAR_OUTPUT"_L1},
    {TOKEN_VAR_GLOBAL, "VAR_GLOBAL"_L1},
    {TOKEN_VAR_ARG, "VAR_ARG"_L1},
    {TOKEN_VAR_REF, "VAR_REF"_L1},
    {TOKEN_VAR_YXGLOBAL, "VAR_YXGLOBAL"_L1},
    {TOKEN_VAR_YXREGISTER, "VAR_YXREGISTER"_L1},
    {TOKEN_END_VAR, "END_VAR"_L1},
    {TOKEN_LINE_COMMENT, "//"_L1},
    {TOKEN_COMMENT_BEGIN, "(*"_L1},
    {TOKEN_COMMENT_END, "*)"_L1},
    {TOKEN_PLUS, "+"_L1},
    {TOKEN_MINUS, "-"_L1},
    {TOKEN_MULTIPLY, "*"_L1},
    {TOKEN_DIVIDE, "/"_L1},
    {TOKEN_MOD, "MOD"_L1},
    {TOKEN_OR, "OR"_L1},
    {TOKEN_XOR, "XOR"_L1},
    {TOKEN_AND, "AND"_L1},
    {TOKEN_NOT, "NOT"_L1},
    {TOKEN_SHL, "SHL"_L1},
    {TOKEN_SHR, "SHR"_L1},
    {TOKEN_ROR, "ROR"_L1},
    {TOKEN_ROL, "ROL"_L1},
    {TOKEN_POWER, "**"_L1},
    {TOKEN_GOTO, "GOTO"_L1},
    {TOKEN_TRUE, "TRUE"_L1},
    {TOKEN_FALSE, "FALSE"_L1},
    {TOKEN_EQUAL, "="_L1},
    {TOKEN_NOT_EQUAL, "<>"_L1},
    {TOKEN_LESS, "<"_L1},
    {TOKEN_GREATER, ">"_L1},
    {TOKEN_LESS_OR_EQUAL, "<="_L1},
    {TOKEN_GREATER_OR_EQUAL, ">="_L1},
    {TOKEN_LEFT_PARENTHESIS, "("_L1},
    {TOKEN_RIGHT_PARENTHESIS, ")"_L1},
    {TOKEN_LEFT_BRACKET, "["_L1},
    {TOKEN_RIGHT_BRACKET, "]"_L1},
    {TOKEN_IF, "IF"_L1},
    {TOKEN_THEN, "THEN"_L1},
    {TOKEN_ELSIF, "ELSIF"_L1},
    {TOKEN_ELSE, "ELSE"_L1},
    {TOKEN_END_IF, "END_IF"_L1},
    {TOKEN_FOR, "FOR"_L1},
    {TOKEN_TO, "TO"_L1},
    {TOKEN_DOWNTO, "DOWNTO"_L1},
    {TOKEN_DO, "DO"_L1},
    {TOKEN_END_FOR, "END_FOR"_L1},
    {TOKEN_REPEAT, "REPEAT"_L1},
    {TOKEN_UNTIL, "UNTIL"_L1},
    {TOKEN_END_REPEAT, "END_REPEAT"_L1},
    {TOKEN_WHILE, "WHILE"_L1},
    {TOKEN_END_WHILE, "END_WHILE"_L1},
    {TOKEN_CASE, "CASE"_L1},
    {TOKEN_OF, "OF"_L1},
    {TOKEN_END_CASE, "END_CASE"_L1},
    {TOKEN_TICK, "TICK"_L1},
    {TOKEN_FUNCTION, "FUNCTION"_L1},
    {TOKEN_END_FUNCTION, "END_FUNCTION"_L1},
    {TOKEN_FUNCTION_BLOCK, "FUNCTION_BLOCK"_L1},
    {TOKEN_END_FUNCTION_BLOCK, "END_FUNCTION_BLOCK"_L1},
};
// clang-format on
static_assert(std::size(TokensTable) == TOKENS_COUNT, "one row for each token");

// The order is that of the codes in Typ (qyx_globals.h), from TYP_BOOL on; both change together.
// clang-format off
constexpr typ TypsTable[] = {
    {TYP_BOOL, "BOOL"_L1, "BL"_L1},
    {TYP_SINT, "SINT"_L1, "SB"_L1},
    {TYP_USINT, "USINT"_L1, "UB"_L1},
    {TYP_INT, "INT"_L1, "SI"_L1},
    {TYP_UINT, "UINT"_L1, "UI"_L1},
    {TYP_DINT, "DINT"_L1, "SD"_L1},
    {TYP_UDINT, "UDINT"_L1, "UD"_L1},
    {TYP_REAL, "REAL"_L1, "SR"_L1},
    {TYP_LREAL, "LREAL"_L1, "LR"_L1},
    {TYP_STRING, "STRING"_L1, "PS"_L1},
    {TYP_ARRAY, "ARRAY"_L1, "PA"_L1},
};
// clang-format on
static_assert(std::size(TypsTable) == TYPS_COUNT, "one row for each declared type");

// ---------------------------------------------------------------------------------------------
// Names and records
// ---------------------------------------------------------------------------------------------

const QVector<qint64>& ScalarBounds() {
    static const QVector<qint64> bounds(ARRAY_BOUNDS_COUNT, 0);
    return bounds;
}

namespace {

struct SpellingSlot {
    std::size_t textHash = 0;
    const Spelling* spelling = nullptr;

    explicit operator bool() const { return spelling != nullptr; }
    std::size_t hash() const { return textHash; }
};

struct NameSlot {
    const Name* name = nullptr;

    explicit operator bool() const { return name != nullptr; }
    std::size_t hash() const { return name->hash; }
};

constexpr std::size_t ASCII_COUNT = 128;

constexpr std::size_t HASH_SEED = 0xCBF29CE484222325;
constexpr std::size_t HASH_FACTOR = 0x9E3779B97F4A7C15;
constexpr unsigned HASH_SHIFT = 32;

std::size_t Mix(std::size_t hash, std::size_t value) {
    hash = (hash ^ value) * HASH_FACTOR;
    return hash ^ (hash >> HASH_SHIFT);
}

// Four characters at a time, then the rest one by one.
std::size_t HashOf(QStringView text) {
    constexpr qsizetype step = sizeof(std::size_t) / sizeof(QChar);
    std::size_t hash = HASH_SEED;
    qsizetype i = 0;
    for (; i + step <= text.size(); i += step) {
        std::size_t four = 0;
        std::memcpy(&four, text.data() + i, sizeof four);
        hash = Mix(hash, four);
    }
    for (; i < text.size(); ++i) {
        hash = Mix(hash, text[i].unicode());
    }
    return hash;
}

ushort Folded(QChar c) {
    const ushort unit = c.unicode();
    const bool isCapital = unit >= 'A' && unit <= 'Z';
    if (unit < ASCII_COUNT) {
        return isCapital ? static_cast<ushort>(unit - 'A' + 'a') : unit;
    }
    return c.toCaseFolded().unicode();
}

std::size_t FoldedHashOf(QStringView text) {
    std::size_t hash = HASH_SEED;
    for (const QChar c : text) {
        hash = Mix(hash, Folded(c));
    }
    return hash;
}

// Whether the spelling is that text. The UTF-8 form of a short name lies in the spelling itself
// and of an ASCII name it is as long as the text, so that most names are compared without a
// detour.
bool IsSpelled(const Spelling& spelling, QStringView text) {
    if (spelling.utf8.size() != static_cast<std::size_t>(text.size())) {
        return spelling.text == text;
    }
    return std::equal(text.begin(), text.end(), spelling.utf8.begin(),
                      [](QChar c, char ascii) { return c == QLatin1Char(ascii); });
}

// All names and their spellings, the reserved words and the types from the start.
class NameTable {
public:
    NameTable() {
        for (int row = 0; row < TOKENS_COUNT; ++row) {
            addName(TokensTable[row].text, row, NO_ROW);
        }
        for (int row = 0; row < TYPS_COUNT; ++row) {
            addName(TypsTable[row].name, NO_ROW, row);
        }
    }

    const Spelling& spellingOf(QStringView text) {
        const std::size_t hash = HashOf(text);
        const SpellingSlot found = spellingSlots_.find(hash, [=](const SpellingSlot& slot) {
            return slot.textHash == hash && IsSpelled(*slot.spelling, text);
        });
        return found ? *found.spelling : addSpelling(text, hash);
    }

private:
    static constexpr std::size_t USUAL_SIZE = 1024;  // slots that most programs can do with

    std::deque<Name> names_;
    std::deque<Spelling> spellings_;
    HashSlots<NameSlot> nameSlots_ = HashSlots<NameSlot>(USUAL_SIZE);
    HashSlots<SpellingSlot> spellingSlots_ = HashSlots<SpellingSlot>(USUAL_SIZE);

    const Name& addName(const QString& text, int row, int typeRow) {
        names_.push_back({FoldedHashOf(text), text, row, typeRow});
        nameSlots_.insert({&names_.back()});
        return names_.back();
    }

    const Name& nameOf(QStringView text) {
        const std::size_t hash = FoldedHashOf(text);
        const NameSlot found = nameSlots_.find(hash, [=](const NameSlot& slot) {
            return slot.name->hash == hash && StrCmp(slot.name->text, text, true) == 0;
        });
        return found ? *found.name : addName(text.toString(), NO_ROW, NO_ROW);
    }

    const Spelling& addSpelling(QStringView text, std::size_t hash) {
        const Name& name = nameOf(text);
        spellings_.push_back(
            {&name, name.hash, name.row, text.toString(), text.toUtf8().toStdString()});
        spellingSlots_.insert({hash, &spellings_.back()});
        return spellings_.back();
    }
};

constexpr int TOKEN_CODES_COUNT = TOKEN_VAR_REF + 1;
using RowsByCode = std::array<int, TOKEN_CODES_COUNT>;

constexpr RowsByCode MakeRowsByCode() {
    RowsByCode rows = {};
    for (int& row : rows) {
        row = NO_ROW;
    }
    for (int row = 0; row < TOKENS_COUNT; ++row) {
        rows[TokensTable[row].code] = row;
    }
    return rows;
}

constexpr RowsByCode ROWS_BY_CODE = MakeRowsByCode();

// Token codes by the first character and the second, which is 0 where there is none.
using PunctuationTable = std::array<std::array<Token, ASCII_COUNT>, ASCII_COUNT>;

constexpr PunctuationTable MakePunctuationTable() {
    PunctuationTable table = {};
    for (auto& tokens : table) {
        for (Token& code : tokens) {
            code = TOKEN_UNKNOWN;
        }
    }
    for (const token& row : TokensTable) {
        if (row.text.size() <= 2) {
            const auto first = static_cast<unsigned char>(row.text.data()[0]);
            const auto second = static_cast<unsigned char>(row.text.data()[1]);
            table[first][second] = row.code;
        }
    }
    return table;
}

constexpr PunctuationTable PUNCTUATION = MakePunctuationTable();

[[noreturn]] void AbortDuplicate(QLatin1String beforeName, QStringView name) {
    Abort(StringsToString(TXT_DUPLICATE_VARIABLE_NAME, beforeName, Quoted(name)), false);
}

}  // namespace

const Spelling& SpellingOf(QStringView text) {
    static NameTable& table = *new NameTable;  // never deleted: the process ends first
    return table.spellingOf(text);
}

QStringView KeepText(const QString& text) {
    return SpellingOf(text).text;
}

Token PunctuationToken(QStringView text) {
    const std::size_t first = text[0].unicode();
    const std::size_t second = text.size() > 1 ? text[1].unicode() : 0;
    const bool isAscii = first < ASCII_COUNT && second < ASCII_COUNT;
    return isAscii ? PUNCTUATION[first][second] : TOKEN_UNKNOWN;
}

int Lookup(QStringView text) {
    return SpellingOf(text).row;
}

int Lookup(Token code) {
    return ROWS_BY_CODE[code];
}

bool IsItReservedWord(const Spelling& name) {
    return name.row != NO_ROW || name.name->typeRow != NO_ROW;
}

Typ GetTypFromTypsTable(QStringView name) {
    const int row = SpellingOf(name).name->typeRow;
    return row == NO_ROW ? TYP_NONE : TypsTable[row].code;
}

Typ IsTypInTypsTable(QStringView name) {
    const Typ type = GetTypFromTypsTable(name);
    if (type == TYP_NONE) {
        TypeInputCodeCurrentLine();
        Unrecognized(name);
    }
    return type;
}

bool IsItInFunctionsList(const FunctionList& list, const Spelling& name) {
    return list.find(name) != nullptr;
}

// ---------------------------------------------------------------------------------------------
// Variables
// ---------------------------------------------------------------------------------------------

VarItem& AddVarToVarsList(VarsList& list, VarItem item) {
    const Spelling& name = SpellingOf(item.name);
    CheckDuplicate(name, list);
    item.mayBeUninitialized = !item.isInitialized;
    item.isUsed = false;
    return list.append(name.name, std::move(item));
}

VarItem& IsVarInVarsList(const VarsList& list, const Spelling& name) {
    VarItem* item = list.find(name);
    if (item == nullptr) {
        Unrecognized(name.text);
    }
    return *item;
}

VarItem& IsArrayVarInVarsList(const VarsList& list, const Spelling& name) {
    VarItem& item = IsVarInVarsList(list, name);
    if (!item.isArray) {
        Abort(TXT_ARRAY_TYPE_REQUIRED, false);
    }
    return item;
}

// QUIRK(two-blanks): this message has two blanks before the name where CheckDuplicate has one:
// the text ends in a blank and one more is put behind it. Messages are fixed.
void IsVarAlreadyInVarsList(const VarsList& list, const Spelling& name) {
    if (list.find(name) != nullptr) {
        AbortDuplicate(" "_L1, name.text);
    }
}

void CheckDuplicate(const Spelling& name, const VarsList& list1, const VarsList& list2) {
    CheckDuplicate(name, list2);
    CheckDuplicate(name, list1);
}

void CheckDuplicate(const Spelling& name, const VarsList& list) {
    if (list.find(name) != nullptr) {
        AbortDuplicate(QLatin1String(), name.text);
    }
}

void CheckOnTop(const VarsList& locals) {
    if (!locals.isEmpty()) {
        Abort(TXT_ARGUMENTS_MUST_BE_ON_TOP, false);
    }
}

// ---------------------------------------------------------------------------------------------
// Labels
// ---------------------------------------------------------------------------------------------

namespace {

LabelItem& FindOrAddLabel(LabelsList& labels, QStringView name) {
    LabelItem* found = labels.find(name);
    return found != nullptr ? *found : labels.append({name.toString(), false, false});
}

[[noreturn]] void AbortAtLabel(QLatin1String text, QStringView name) {
    Abort(StringsToString(text, ": ", Quoted(name)), false);
}

}  // namespace

void IsLabelItemInLabelLists(LabelsList& labels, QStringView name) {
    LabelItem& label = FindOrAddLabel(labels, name);
    if (label.isDefined) {
        AbortAtLabel(TXT_LABEL_ALREADY_DEFINED, name);
    }
    label.isDefined = true;
}

void AddPeferenceToLabelItemInLabelLists(LabelsList& labels, QStringView name) {
    FindOrAddLabel(labels, name).isReferenced = true;
}

void CheckLabelsInLabelsLists(const LabelsList& labels) {
    for (const LabelItem& label : labels) {
        if (label.isReferenced && !label.isDefined) {
            AbortAtLabel(TXT_LABEL_REFERENCED_BUT_NOT_SET, label.name);
        }
    }
}
