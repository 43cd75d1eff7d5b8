// What is known about names: the tables of reserved words and types, and the lookups, insertions
// and checks on the lists of variables, functions and labels.
//
// There is no scoping: a scope is the list that the caller passes. Names compare without regard
// to case. Every failure ends the run through Abort at the current token.
#pragma once

#include "qyx_globals.h"

// ---------------------------------------------------------------------------------------------
// Tables
// ---------------------------------------------------------------------------------------------

// The token of one or two characters that are no letters, TOKEN_UNKNOWN if they make up none.
Token PunctuationToken(QStringView text);

// Whether the name is the text of any token, punctuation included, or the name of a type.
bool IsItReservedWord(const Spelling& name);

// The type of that name. IsTypInTypsTable aborts on an unknown name with An unrecognized keyword
// "name", its source line echoed before; GetTypFromTypsTable returns TYP_NONE.
Typ IsTypInTypsTable(QStringView name);
Typ GetTypFromTypsTable(QStringView name);

// ---------------------------------------------------------------------------------------------
// Functions
// ---------------------------------------------------------------------------------------------

bool IsItInFunctionsList(const FunctionList& list, const Spelling& name);

// ---------------------------------------------------------------------------------------------
// Variables
// ---------------------------------------------------------------------------------------------

// Appends the record, with its marks set for a new variable. Aborts with Duplicate variable name
// "name" if the list holds the name already.
VarItem& AddVarToVarsList(VarsList& list, VarItem item);

// The variable of that name. Aborts with An unrecognized keyword "name" if there is none.
VarItem& IsVarInVarsList(const VarsList& list, const Spelling& name);

// The array of that name. Aborts as above, and with Array type required on any other variable.
VarItem& IsArrayVarInVarsList(const VarsList& list, const Spelling& name);

// Abort with the duplicate message if a list holds the name. IsVarAlreadyInVarsList puts two
// blanks before the quoted name, CheckDuplicate one.
void IsVarAlreadyInVarsList(const VarsList& list, const Spelling& name);
void CheckDuplicate(const Spelling& name, const VarsList& list1, const VarsList& list2);
void CheckDuplicate(const Spelling& name, const VarsList& list);

// Aborts if locals are declared already: arguments must come first.
void CheckOnTop(const VarsList& locals);

// ---------------------------------------------------------------------------------------------
// Labels of GOTO; names are upper case
// ---------------------------------------------------------------------------------------------

// Notes that the label is defined here. Aborts if it was defined before.
void IsLabelItemInLabelLists(LabelsList& labels, QStringView name);

// Notes that a GOTO names the label.
void AddPeferenceToLabelItemInLabelLists(LabelsList& labels, QStringView name);

// Aborts if a label is referenced and not defined; called when all statements are compiled.
void CheckLabelsInLabelsLists(const LabelsList& labels);
