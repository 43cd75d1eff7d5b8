#include "qyx_lists.h"

#include "qyx_files.h"
#include "qyx_messages.h"

FunctionList FunctionsList;

// ---------------------------------------------------------------------------------------------
// Reserved words and types
// ---------------------------------------------------------------------------------------------

bool IsItReservedWord(const Spelling& spelling) {
    return spelling.row != NO_ROW || spelling.identity->typRow != NO_ROW;
}

Typ GetTypFromTypsTable(const Spelling& spelling) {
    const int row = spelling.identity->typRow;
    return row == NO_ROW ? TYP_NONE : TypsTable[row].code;
}

Typ IsTypInTypsTable(const Spelling& spelling) {
    const Typ type = GetTypFromTypsTable(spelling);
    if (type == TYP_NONE) {
        TypeInputCodeCurrentLine();
        Unrecognized(spelling.text);
    }
    return type;
}

bool IsItInFunctionsList(const FunctionList& list, const Spelling& spelling) {
    return list.find(spelling) != nullptr;
}

// ---------------------------------------------------------------------------------------------
// Variables
// ---------------------------------------------------------------------------------------------

namespace {

[[noreturn]] void AbortDuplicate(QLatin1String beforeName, QStringView name) {
    Abort(TXT_DUPLICATE_VARIABLE_NAME,
          StringsToString(TXT_DUPLICATE_VARIABLE_NAME, beforeName, Quoted(name)));
}

}  // namespace

VarItem& AddVarToVarsList(VarsList& list, VarItem item) {
    CheckDuplicate(*item.spelling, list);
    item.mayBeUninitialized = !item.isInitialized;
    item.isUsed = false;
    return list.append(std::move(item));
}

VarItem& IsVarInVarsList(const VarsList& list, const Spelling& spelling) {
    VarItem* item = list.find(spelling);
    if (item == nullptr) {
        Unrecognized(spelling.text);
    }
    return *item;
}

VarItem& IsArrayVarInVarsList(const VarsList& list, const Spelling& spelling) {
    VarItem& item = IsVarInVarsList(list, spelling);
    if (!item.isArray) {
        Abort(TXT_ARRAY_TYPE_REQUIRED);
    }
    return item;
}

// QUIRK(two-blanks): this message has two blanks before the name where CheckDuplicate has one:
// the text ends in a blank and one more is put after it. Messages are fixed.
void IsVarAlreadyInVarsList(const VarsList& list, const Spelling& spelling) {
    if (list.find(spelling) != nullptr) {
        AbortDuplicate(" "_L1, spelling.text);
    }
}

void CheckDuplicate(const Spelling& spelling, const VarsList& list1, const VarsList& list2) {
    CheckDuplicate(spelling, list2);
    CheckDuplicate(spelling, list1);
}

void CheckDuplicate(const Spelling& spelling, const VarsList& list) {
    if (list.find(spelling) != nullptr) {
        AbortDuplicate(QLatin1String(), spelling.text);
    }
}

void CheckOnTop(const VarsList& locals) {
    if (!locals.isEmpty()) {
        Abort(TXT_ARGUMENTS_MUST_BE_ON_TOP);
    }
}

// ---------------------------------------------------------------------------------------------
// Labels
// ---------------------------------------------------------------------------------------------

namespace {

constexpr ushort DOTLESS_I = 0x0131;

LabelItem& FindOrAddLabel(LabelsList& labels, const Spelling& spelling) {
    LabelItem* found = labels.find(spelling);
    return found != nullptr ? *found
                            : labels.append({&spelling, spelling.text.toUpper(), false, false});
}

[[noreturn]] void AbortAtLabel(QLatin1String text, QStringView name) {
    Abort(text, StringsToString(text, ": ", Quoted(name)));
}

}  // namespace

// The dotless i is the one letter of names whose capital is that of another letter, so a name
// with it is not the name in upper case; all others are.
const Spelling& LabelSpelling(const Spelling& spelling) {
    const bool isOther = spelling.text.contains(QChar(DOTLESS_I));
    return isOther ? SpellingOf(spelling.text.toUpper()) : spelling;
}

void CheckLabelName(const Spelling& spelling, const VarsList& list) {
    if (list.find(spelling) != nullptr) {
        AbortDuplicate(QLatin1String(), spelling.text.toUpper());
    }
}

const LabelItem& IsLabelItemInLabelLists(LabelsList& labels, const Spelling& spelling) {
    LabelItem& label = FindOrAddLabel(labels, spelling);
    if (label.isDefined) {
        AbortAtLabel(TXT_LABEL_ALREADY_DEFINED, label.name);
    }
    label.isDefined = true;
    return label;
}

const LabelItem& AddPeferenceToLabelItemInLabelLists(LabelsList& labels,
                                                     const Spelling& spelling) {
    LabelItem& label = FindOrAddLabel(labels, spelling);
    label.isReferenced = true;
    return label;
}

void CheckLabelsInLabelsLists(const LabelsList& labels) {
    for (const LabelItem& label : labels) {
        if (label.isReferenced && !label.isDefined) {
            AbortAtLabel(TXT_LABEL_REFERENCED_BUT_NOT_SET, label.name);
        }
    }
}
