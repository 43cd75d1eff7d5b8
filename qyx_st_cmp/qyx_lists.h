// The lookups, insertions and checks on reserved words, types and the lists of variables,
// functions and labels.
//
// There is no scoping: a scope is the list that the caller passes. Names compare without regard
// to case. Every failure ends the run through Abort at the current token.
#pragma once

#include "qyx_globals.h"

// ---------------------------------------------------------------------------------------------
// Reserved words and types
// ---------------------------------------------------------------------------------------------

// Whether the name is the text of any token, punctuation included, or the name of a type.
bool IsItReservedWord(const Spelling& spelling);

// The type of that name. IsTypInTypsTable aborts on an unknown name with An unrecognized keyword
// "name", its source line echoed before; GetTypFromTypsTable returns TYP_NONE.
Typ IsTypInTypsTable(const Spelling& spelling);
Typ GetTypFromTypsTable(const Spelling& spelling);

// ---------------------------------------------------------------------------------------------
// Functions
// ---------------------------------------------------------------------------------------------

bool IsItInFunctionsList(const FunctionList& list, const Spelling& spelling);

// ---------------------------------------------------------------------------------------------
// Variables
// ---------------------------------------------------------------------------------------------

// Appends the record, with its marks set for a new variable. Aborts with Duplicate variable name
// "name" if the list holds the name already.
VarItem& AddVarToVarsList(VarsList& list, VarItem item);

// The variable of that name. Aborts with An unrecognized keyword "name" if there is none.
VarItem& IsVarInVarsList(const VarsList& list, const Spelling& spelling);

// The array of that name. Aborts as above, and with Array type required on any other variable.
VarItem& IsArrayVarInVarsList(const VarsList& list, const Spelling& spelling);

// Abort with the duplicate message if a list holds the name. IsVarAlreadyInVarsList puts two
// blanks before the quoted name, CheckDuplicate one.
void IsVarAlreadyInVarsList(const VarsList& list, const Spelling& spelling);
void CheckDuplicate(const Spelling& spelling, const VarsList& list1, const VarsList& list2);
void CheckDuplicate(const Spelling& spelling, const VarsList& list);

// Aborts if locals are declared already: arguments must come first.
void CheckOnTop(const VarsList& locals);

// ---------------------------------------------------------------------------------------------
// Labels of GOTO
// ---------------------------------------------------------------------------------------------

// The spelling under which a label is known: that of its name in upper case.
const Spelling& LabelSpelling(const Spelling& spelling);

// Aborts with the duplicate message, the name in upper case, if a variable has the name of the
// label.
void CheckLabelName(const Spelling& spelling, const VarsList& list);

// Notes that the label of that LabelSpelling is defined here, and returns it. Aborts if it was
// defined before.
const LabelItem& IsLabelItemInLabelLists(LabelsList& labels, const Spelling& spelling);

// Notes that a GOTO names the label of that LabelSpelling, and returns it.
const LabelItem& AddPeferenceToLabelItemInLabelLists(LabelsList& labels,
                                                     const Spelling& spelling);

// Aborts if a label is referenced and not defined; called when all statements are compiled.
void CheckLabelsInLabelsLists(const LabelsList& labels);
