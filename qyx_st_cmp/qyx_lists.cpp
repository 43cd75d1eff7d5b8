#include "qyx_lists.h"

#include "qyx_files.h"
#include "qyx_messages.h"
#include "qyx_scanner.h"

#include <array>

FunctionList FunctionsList;

// The parsers compare against the codes, so Token (qyx_globals.h) and this table change together.
//
// QUIRK: SHL has a higher code than SHR, and VAR_ARG and VAR_REF carry late codes among the
// sections. The codes are fixed.
const token TokensTable[TOKENS_COUNT] = {
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

// The order is that of the codes in Typ (qyx_globals.h), from TYP_BOOL on; both change together.
const typ TypsTable[TYPS_COUNT] = {
    {TYP_BOOL, "BOOL"_L1, "BL"_L1},   {TYP_SINT, "SINT"_L1, "SB"_L1},
    {TYP_USINT, "USINT"_L1, "UB"_L1}, {TYP_INT, "INT"_L1, "SI"_L1},
    {TYP_UINT, "UINT"_L1, "UI"_L1},   {TYP_DINT, "DINT"_L1, "SD"_L1},
    {TYP_UDINT, "UDINT"_L1, "UD"_L1}, {TYP_REAL, "REAL"_L1, "SR"_L1},
    {TYP_LREAL, "LREAL"_L1, "LR"_L1}, {TYP_STRING, "STRING"_L1, "PS"_L1},
    {TYP_ARRAY, "ARRAY"_L1, "PA"_L1},
};
static_assert(TYPS_COUNT == TYP_ARRAY - TYP_BOOL + 1, "one row for each declared type");

// ---------------------------------------------------------------------------------------------
// Names and records
// ---------------------------------------------------------------------------------------------

const QVector<qint64>& ScalarBounds() {
    static const QVector<qint64> bounds(ARRAY_BOUNDS_COUNT, 0);
    return bounds;
}

// FNV-1a over the case-folded characters.
std::size_t NameHash::operator()(QStringView name) const {
    std::uint64_t hash = 14695981039346656037ULL;
    for (const QChar c : name) {
        hash = (hash ^ c.toCaseFolded().unicode()) * 1099511628211ULL;
    }
    return static_cast<std::size_t>(hash);
}

bool NamesEqual::operator()(QStringView a, QStringView b) const {
    return a.size() == b.size() && StrCmp(a, b, true) == 0;
}

// ---------------------------------------------------------------------------------------------
// Tables
// ---------------------------------------------------------------------------------------------

namespace {

constexpr int NO_ROW = -1;
constexpr int TOKEN_CODES_COUNT = TOKEN_VAR_REF + 1;

// The rows of TokensTable by text and by code, told once.
struct TokensIndex {
    std::array<QString, TOKENS_COUNT> texts;
    std::unordered_map<QStringView, int, NameHash, NamesEqual> byText;
    std::array<int, TOKEN_CODES_COUNT> byCode = {};

    TokensIndex() {
        byCode.fill(NO_ROW);
        for (int row = 0; row < TOKENS_COUNT; ++row) {
            const auto index = static_cast<std::size_t>(row);
            texts[index] = TokensTable[row].text;
            byText.emplace(texts[index], row);
            byCode[TokensTable[row].code] = row;
        }
    }
};

const TokensIndex& Index() {
    static const TokensIndex index;
    return index;
}

[[noreturn]] void AbortDuplicate(QLatin1String beforeName, const QString& name) {
    Abort(StringsToString(TXT_DUPLICATE_VARIABLE_NAME, beforeName, Quoted(name)), false);
}

}  // namespace

int Lookup(QStringView text) {
    const auto found = Index().byText.find(text);
    return found == Index().byText.end() ? NO_ROW : found->second;
}

int Lookup(Token code) {
    return Index().byCode[code];
}

bool IsItReservedWord(const QString& name) {
    return Lookup(name) != NO_ROW || GetTypFromTypsTable(name) != TYP_NONE;
}

Typ GetTypFromTypsTable(const QString& name) {
    for (const typ& row : TypsTable) {
        if (name.compare(row.name, Qt::CaseInsensitive) == 0) {
            return row.code;
        }
    }
    return TYP_NONE;
}

Typ IsTypInTypsTable(const QString& name) {
    const Typ type = GetTypFromTypsTable(name);
    if (type == TYP_NONE) {
        TypeInputCodeCurrentLine();
        Unrecognized(name);
    }
    return type;
}

bool IsItInFunctionsList(const FunctionList& list, const QString& name) {
    return list.find(name) != nullptr;
}

// ---------------------------------------------------------------------------------------------
// Variables
// ---------------------------------------------------------------------------------------------

VarItem& AddVarToVarsList(VarsList& list, VarItem item) {
    CheckDuplicate(item.name, list);
    item.mayBeUninitialized = !item.isInitialized;
    item.isUsed = false;
    return list.append(std::move(item));
}

VarItem& IsVarInVarsList(const VarsList& list, const QString& name) {
    VarItem* item = list.find(name);
    if (item == nullptr) {
        Unrecognized(name);
    }
    return *item;
}

VarItem& IsArrayVarInVarsList(const VarsList& list, const QString& name) {
    VarItem& item = IsVarInVarsList(list, name);
    if (!item.isArray) {
        Abort(TXT_ARRAY_TYPE_REQUIRED, false);
    }
    return item;
}

// QUIRK: this message has two blanks before the name where CheckDuplicate has one: the text ends
// in a blank and one more is put behind it. Messages are fixed.
void IsVarAlreadyInVarsList(const VarsList& list, const QString& name) {
    if (list.find(name) != nullptr) {
        AbortDuplicate(" "_L1, name);
    }
}

void CheckDuplicate(const QString& name, const VarsList& list1, const VarsList& list2) {
    CheckDuplicate(name, list2);
    CheckDuplicate(name, list1);
}

void CheckDuplicate(const QString& name, const VarsList& list) {
    if (list.find(name) != nullptr) {
        AbortDuplicate(QLatin1String(), name);
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

LabelItem& FindOrAddLabel(LabelsList& labels, const QString& name) {
    LabelItem* found = labels.find(name);
    return found != nullptr ? *found : labels.append({name, false, false});
}

[[noreturn]] void AbortAtLabel(QLatin1String text, const QString& name) {
    Abort(StringsToString(text, ": ", Quoted(name)), false);
}

}  // namespace

void IsLabelItemInLabelLists(LabelsList& labels, const QString& name) {
    LabelItem& label = FindOrAddLabel(labels, name);
    if (label.isDefined) {
        AbortAtLabel(TXT_LABEL_ALREADY_DEFINED, name);
    }
    label.isDefined = true;
}

void AddPeferenceToLabelItemInLabelLists(LabelsList& labels, const QString& name) {
    FindOrAddLabel(labels, name).isReferenced = true;
}

void CheckLabelsInLabelsLists(const LabelsList& labels) {
    for (const LabelItem& label : labels) {
        if (label.isReferenced && !label.isDefined) {
            AbortAtLabel(TXT_LABEL_REFERENCED_BUT_NOT_SET, label.name);
        }
    }
}
