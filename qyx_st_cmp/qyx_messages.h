// Every text that the compiler shows, and the functions that report errors and warnings.
//
// The texts are quoted by users and by other programs: their wording, its faults and the blanks
// at their ends included, is fixed. Texts marked "not raised" are part of the catalogue too.
#pragma once

#include "qyx_files.h"
#include "qyx_globals.h"
#include "qyx_text.h"

// ---------------------------------------------------------------------------------------------
// Diagnostics
//
// A diagnostic is one line, "Error: Line L, Column C: text" with L and C counted from 1, sent to
// the outputs as WHAT_DIAGNOSTIC. With `force` it goes to standard output whatever the options,
// with ";" in front, and nowhere else. Without a position of its own it shows the begin of the
// current token.
// ---------------------------------------------------------------------------------------------

// Writes a warning; the compilation goes on. The constant of the catalogue tells its kind.
void Warning(QLatin1String constant, const QString& text, bool force = false);
void Warning(QLatin1String constant, TokenPos pos, const QString& text, bool force = false);

// The same for a text of parts, which is not composed unless some output takes it: a name may be
// as long as the source, and warnings as many.
template <typename... Parts>
void WarningOf(QLatin1String constant, TokenPos pos, const Parts&... parts) {
    Warning(constant, pos, AreDiagnosticsTaken() ? StringsToString(parts...) : QString());
}

// Writes an error and returns: the caller ends the run.
void Error(QLatin1String constant, const QString& text, bool force = false);

// Closes all files, deletes the code file and ends the process with status 1.
[[noreturn]] void Fail();

// Writes an error, then fails. The error is a constant of the catalogue, or a text that is put
// together and the constant that tells its kind.
[[noreturn]] void Abort(QLatin1String constant, bool force = false);
[[noreturn]] void Abort(QLatin1String constant, const QString& text, bool force = false);

// Aborts with `what` + " expected".
[[noreturn]] void Expected(const QString& what);

// Aborts with Undefined Identifier "name".
[[noreturn]] void Undefined(QStringView name);

// Aborts with An unrecognized keyword "name".
[[noreturn]] void Unrecognized(QStringView name);

// ---------------------------------------------------------------------------------------------
// The catalogue
// ---------------------------------------------------------------------------------------------

inline constexpr QLatin1String TXT_TRADEMARK = "Ambrel Software. ST compiler version 2.00."_L1;
inline constexpr QLatin1String TXT_THE = "The"_L1;
inline constexpr QLatin1String TXT_INPUT_FILE_NOT_FOUND = "A input file not found"_L1;
inline constexpr QLatin1String TXT_BUILD_SUCCESSFUL = "Build successful."_L1;
inline constexpr QLatin1String TXT_PROGRAM_MUST_START_WITH_DECLARATION_OF_VARIABLES =
    "The program must start with a declaration of variables"_L1;
inline constexpr QLatin1String TXT_UNEXPECTED_DATA_AFTER_END_PROGRAM =
    "An unexpected data after \"END_PROGRAM\""_L1;
inline constexpr QLatin1String TXT_BREAK_OUTSIDE_OF_LOOP = "\"BREAK\" outside of loop"_L1;
inline constexpr QLatin1String TXT_CONTINUE_OUTSIDE_OF_LOOP = "\"CONTINUE\" outside of loop"_L1;
inline constexpr QLatin1String TXT_BOOLEAN_LITERAL = "A boolean literal"_L1;
inline constexpr QLatin1String TXT_UNRECOGNIZED_KEYWORD = "An unrecognized keyword"_L1;
inline constexpr QLatin1String TXT_UNEXPECTED_END_OF_INPUT_FILE =
    "An unexpected end of input file"_L1;
inline constexpr QLatin1String TXT_OPEN_FAILED_ON_INPUT_FILE =
    "File open failed for input file"_L1;
inline constexpr QLatin1String TXT_OPEN_FAILED_ON_OUTPUT_FILE =
    "File open failed for output file"_L1;
inline constexpr QLatin1String TXT_OPEN_FAILED_ON_OUTPUT_FILE_LST =
    "File open failed for output LST file"_L1;
inline constexpr QLatin1String TXT_OPEN_FAILED_ON_OUTPUT_FILE_RES =
    "File open failed for output RES file"_L1;
inline constexpr QLatin1String TXT_OPEN_FAILED_ON_OUTPUT_FILE_ERR =
    "File open failed for output ERR file"_L1;
inline constexpr QLatin1String TXT_PROBLEM_READING_INPUT_FILE = "A problem reading input file"_L1;
inline constexpr QLatin1String TXT_PROBLEM_WRITING_OUTPUT_FILE =
    "A problem writing output file"_L1;
inline constexpr QLatin1String TXT_PROBLEM_WRITING_OUTPUT_FILE_LST =
    "A problem writing output LST file"_L1;  // not raised
inline constexpr QLatin1String TXT_PROBLEM_WRITING_OUTPUT_FILE_RES =
    "A problem writing output RES file"_L1;  // not raised
inline constexpr QLatin1String TXT_PROBLEM_WRITING_OUTPUT_FILE_ERR =
    "A problem writing output ERR file"_L1;  // not raised
inline constexpr QLatin1String TXT_A_LOT_OF_LENGTH_IN_INPUT_STRING =
    "A lot of length in input string"_L1;  // not raised
inline constexpr QLatin1String TXT_ERROR = "Error"_L1;
inline constexpr QLatin1String TXT_WARNING = "Warning"_L1;
inline constexpr QLatin1String TXT_EXPECTED = "expected"_L1;
inline constexpr QLatin1String TXT_EXPECTED_BUT = "expected but"_L1;
inline constexpr QLatin1String TXT_IDENTIFIER = "Identifier"_L1;
inline constexpr QLatin1String TXT_UNDEFINED_IDENTIFIER = "Undefined Identifier"_L1;
inline constexpr QLatin1String TXT_UNDECLARED_IDENTIFIER =
    "Undeclared Identifier"_L1;  // not raised
inline constexpr QLatin1String TXT_IDENTIFIER_EXPECTED_BUT_NUMBER_FOUND =
    "The identifier was expected but a number found"_L1;
inline constexpr QLatin1String TXT_IDENTIFIER_EXPECTED_BUT = "The identifier was expected but"_L1;
inline constexpr QLatin1String TXT_EXPRESSION_EXPECTED_BUT =
    "The expression was expected but"_L1;  // not raised
inline constexpr QLatin1String TXT_NUMBER = "Number"_L1;
inline constexpr QLatin1String TXT_NUMBER_EXPECTED_BUT =
    "The number was expected but"_L1;  // not raised
inline constexpr QLatin1String TXT_HEX_NUMBER_EXPECTED_BUT = "The HEX number was expected but"_L1;
inline constexpr QLatin1String TXT_OCT_NUMBER_EXPECTED_BUT = "The OCT number was expected but"_L1;
inline constexpr QLatin1String TXT_BIN_NUMBER_EXPECTED_BUT = "The BIN number was expected but"_L1;
inline constexpr QLatin1String TXT_STRING_EXPECTED_BUT = "The string was expected but"_L1;
inline constexpr QLatin1String TXT_UNTERMINATED_STRING = "Unterminated string"_L1;
inline constexpr QLatin1String TXT_PROGRAMNAME_EXPECTED_BUT =
    "The program name was expected but"_L1;
inline constexpr QLatin1String TXT_FUNCTIONNAME_EXPECTED_BUT =
    "The function name was expected but"_L1;
inline constexpr QLatin1String TXT_PROCEDURENAME_EXPECTED_BUT =
    "The procedure name was expected but"_L1;
inline constexpr QLatin1String TXT_OPERATION_EXPECTED_BUT =
    "The operation was expected but"_L1;  // not raised
inline constexpr QLatin1String TXT_FOUND = "found"_L1;
inline constexpr QLatin1String TXT_MAX_COUNT_OF_VARIABLES_IS =
    "Max count of variables is  "_L1;  // not raised
inline constexpr QLatin1String TXT_DUPLICATE_VARIABLE_NAME = "Duplicate variable name "_L1;
inline constexpr QLatin1String TXT_DUPLICATE_FUNCTION_NAME = "Duplicate function name "_L1;
inline constexpr QLatin1String TXT_ARGUMENTS_MUST_BE_ON_TOP =
    "Arguments must be declared at the top of the variable list "_L1;
inline constexpr QLatin1String TXT_LINE = "Line"_L1;
inline constexpr QLatin1String TXT_POS = "Column"_L1;
inline constexpr QLatin1String TXT_AND = "and"_L1;
inline constexpr QLatin1String TXT_OR = "or"_L1;
inline constexpr QLatin1String TXT_BAD_SUFFIX_ON_NUMBER = "Bad suffix on number"_L1;
inline constexpr QLatin1String TXT_INCOMPATIBLE_TYPES = "Incompatible types"_L1;
inline constexpr QLatin1String TXT_ILLEGAL = "illegal"_L1;
inline constexpr QLatin1String TXT_IS_ILLEGAL = "is illegal"_L1;  // not raised
inline constexpr QLatin1String TXT_HERE_IS_ILLEGAL = "here is illegal"_L1;
inline constexpr QLatin1String TXT_LEFT_OPERAND_HAS_TYPE = "left operand has type"_L1;
inline constexpr QLatin1String TXT_RIGHT_OPERAND_HAS_TYPE = "right operand has type"_L1;
inline constexpr QLatin1String TXT_LEFT_SIDE_CANNOT_BE_ASSIGNED_TO =
    "Left side cannot be assigned to"_L1;
inline constexpr QLatin1String TXT_OPERATOR = "Operator"_L1;
inline constexpr QLatin1String TXT_NOT_APPLICABLE_TO_THIS_OPERAND_TYPE =
    "not applicable to this operand type"_L1;
inline constexpr QLatin1String TXT_FOR_LOOP_CONTROL_VARIABLE_MUST_HAVE_DIGIT_TYPE =
    "For loop control variable must have the digit type"_L1;  // not raised
inline constexpr QLatin1String TXT_FOR_LOOP_CONTROL_VARIABLE_MUST_HAVE_ORDINAL_TYPE =
    "For loop control variable must have the ordinal type"_L1;
inline constexpr QLatin1String TXT_USING_RESERVED_WORD = "Using a reserved word"_L1;
inline constexpr QLatin1String TXT_USING_FUNCTION_NAME = "Using a function name"_L1;
inline constexpr QLatin1String TXT_ORDINAL_TYPE_REQUIRED = "A ordinal type required"_L1;
inline constexpr QLatin1String TXT_LABEL_ALREADY_DEFINED = "The label is already defined"_L1;
inline constexpr QLatin1String TXT_LABEL_REFERENCED_BUT_NOT_SET =
    "The label is referenced but not set"_L1;
inline constexpr QLatin1String TXT_ARRAY_UNKNOWN_SIZE = "Unknown size"_L1;  // not raised
inline constexpr QLatin1String TXT_ARRAY_CANNOT_ALLOCATE_AN_ARRAY_SIZE =
    "Cannot allocate an array size"_L1;  // not raised
inline constexpr QLatin1String TXT_ARRAY_CANNOT_ALLOCATE_AN_ARRAY_DIMENSION_GREATER =
    "Cannot allocate an array dimension greater"_L1;  // not raised
inline constexpr QLatin1String TXT_ARRAY_TYPE_REQUIRED = "Array type required"_L1;
inline constexpr QLatin1String TXT_ARRAY_INCORRECT_SIZE_OF_ARRAY =
    "Incorrect size of the array"_L1;
inline constexpr QLatin1String TXT_TYPE_OF_EXPRESSION_MUST_BE_BOOLEAN =
    "The type of expression must be \"BOOLEAN\""_L1;
inline constexpr QLatin1String TXT_CASE_DUPLICATE_CASE_LABEL = "Duplicate case label"_L1;
inline constexpr QLatin1String TXT_CASE_LOW_BOUND_EXCEEDS_HIGH_BOUND =
    "Low bound exceeds high bound"_L1;
inline constexpr QLatin1String TXT_STRING_DISABLED_IN_CURRENT_VERTION =
    "Type STRING is disabled in the current version"_L1;
inline constexpr QLatin1String TXT_ARRAY_DISABLED_IN_CURRENT_VERTION =
    "Type ARRAY is disabled in the current version"_L1;
inline constexpr QLatin1String TXT_THIS_VAIABLE_CANNOT_BE_CONSTANT =
    "This variable declaration cannot be a constant"_L1;
inline constexpr QLatin1String TXT_THIS_VAIABLE_CANNOT_BE_INITIALIZED =
    "This variable declaration cannot be initialized"_L1;
inline constexpr QLatin1String TXT_TOO_MUCH_CONSTANT = "Too much the constants"_L1;
inline constexpr QLatin1String TXT_NOT_ENOUGH_ACTUAL_PARAMETERS =
    "Not enough actual parameters"_L1;
inline constexpr QLatin1String TXT_TOO_MANY_ACTUAL_PARAMETERS = "Too many actual parameters"_L1;
inline constexpr QLatin1String TXT_TYPES_ACTUAL_FORMAL_MUST_BE_IDENTICAL =
    "Types of actual and formal parameters must be identical"_L1;
inline constexpr QLatin1String TXT_AND_FUNCTION_BLOCK = "and function_block"_L1;
inline constexpr QLatin1String TXT_VARIABLE = "The variable"_L1;
inline constexpr QLatin1String TXT_FUNCTION = "The function"_L1;
inline constexpr QLatin1String TXT_FUNCTION_BLOCK = "The function_block"_L1;
inline constexpr QLatin1String TXT_IS_DECLARED_BUT_NEVER_USED = "is declared but never used"_L1;
inline constexpr QLatin1String TXT_IS_DECLARED_BUT_NEVER_USED_IN =
    "is declared but never used in"_L1;
inline constexpr QLatin1String TXT_MIGHT_NOT_HAVE_BEEN_INITIALIZED =
    "might not have been initialized"_L1;
inline constexpr QLatin1String TXT_MIGHT_NOT_HAVE_BEEN_INITIALIZED_IN =
    "might not have been initialized in"_L1;
inline constexpr QLatin1String TXT_RETURN_VALUE_OF_FUNCTION = "Return value of function"_L1;
inline constexpr QLatin1String TXT_MIGHT_BE_UNDEFINED = "might be undefined"_L1;
inline constexpr QLatin1String TXT_DECLARATION_CANNOT_BE_HERE =
    "declaration cannot be used here"_L1;
inline constexpr QLatin1String TXT_TOO_DEEP_NESTING = "Too deep nesting"_L1;
inline constexpr QLatin1String TXT_OUT_OF_MEMORY = "Out of memory"_L1;
inline constexpr QLatin1String TXT_ARGUMENTS_ERROR =
    "Error arguments.\n"
    "Usage: yxstcmp <YX script input file name> <YX code output file name>"
    " [-l] [-s] [-i] [-c] [-m] [-n] [-r] [-e]\n"
    "Where:\n"
    "\t-l\t-Save to output LST file\n"
    "\t-s\t-Show output on screen\n"
    "\t-i\t-Show input script lines in LST file\n"
    "\t-c\t-Show input commented script lines in LST file\n"
    "\t-m\t-Show messages in LST file\n"
    "\t-n\t-Show line numbers in LST file\n"
    "\t-r\t-Save to output RES file\n"
    "\t-e\t-Save to output ERR file\n"_L1;
