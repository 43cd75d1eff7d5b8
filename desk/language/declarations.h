// What the declaration of a name says.
#pragma once

#include "explain/words.h"
#include "language/names.h"

// The declaration of a name as it is written, in one line or, for a definition, with its
// parameters; that of a built-in in the same manner.
QString DeclarationText(const Model& model, int name);

// What the name is and where it belongs, in Markdown: "Input of program `Tank` (`VAR_INPUT`)".
QString RoleText(const Model& model, int name);

// Both, and the comments on the declaration, in Markdown.
QString NameText(const Model& model, int name);
QString NameText(const BuiltInRow& row);

// A unit by its kind and name: "program `Tank`".
QString UnitTitle(const Model& model, int unit);
