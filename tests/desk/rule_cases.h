// A slip for each rule of the reasons, and a script that is nearly the same but no such slip.
#pragma once

#include <QString>

#include <vector>

struct RuleCase {
    const char* id;
    QString slip;
    const char* help;
    const char* marked;  // what the help marks, empty if that is the place of the error
    QString nearMiss;    // refused as well, but not for that reason
};

// Without the line feed that begins the literal.
inline QString Script(const char* text) {
    return QString::fromUtf8(text + 1);
}

// Statements in a program of their own: the first of them stands on line 7.
inline QString Statements(const char* text) {
    return QStringLiteral(
               "PROGRAM Demo\nVAR\n    count : INT := 0;\n    level : REAL := 0.0;\n"
               "    ready : BOOL := FALSE;\nEND_VAR") +
           QString::fromUtf8(text) + QStringLiteral("END_PROGRAM\n");
}

inline std::vector<RuleCase> RuleCases() {
    return {
        {"open-comment", Statements(R"(
count := 1;   (* one piece
)"),
         "the comment that begins here is not ended: its `*)` is missing", "(*", Script(R"(
PROGRAM Demo
VAR
END_VAR
)")},
        {"open-string", Statements(R"(
count := 'ten;
)"),
         "the string that begins here has no closing `'` on its line", "'", Statements(R"(
count := 'ten';
)")},
        {"nested-comment", Statements(R"(
(* count := 1; (* one piece *) count := 2; *)
)"),
         "comments do not nest: the one that begins on line 7 ends here", "*)", Statements(R"(
(* count := 1; (* one piece *)
count := ;
)")},
        {"directive", Script(R"(
#include "pump.st"
PROGRAM Demo
VAR
END_VAR
END_PROGRAM
)"),
         "there is no `#include`: a script stands in one file, as it is compiled", "", Script(R"(
# first version
PROGRAM Demo
VAR
END_VAR
END_PROGRAM
)")},
        {"foreign-comment", Statements(R"(
/* one piece */
count := 1;
)"),
         "a comment is written `(* ... *)`, or `// ...` up to the end of the line", "",
         Statements(R"(
--count;
)")},
        {"braces", Statements(R"(
IF ready {
    count := 1;
}
)"),
         "statements stand between `THEN` and `END_IF`, without braces", "", Statements(R"(
count := {1};
)")},
        {"double-quotes", Statements(R"(
count := "ten";
)"),
         "a string stands between apostrophes, as in `'text'`, and no variable can hold one", "",
         Statements(R"(
count := 'ten';
)")},
        {"digits-with-underscore", Statements(R"(
level := 1_000.5;
)"),
         "no `_` stands in a number: write `1000.5`", "1_000", Statements(R"(
level := 1 _000;
)")},
        {"exponent-without-point", Statements(R"(
level := 1e-3;
)"),
         "a real number needs a point: write `1.0e-3`", "", Statements(R"(
level := 1 e3;
)")},
        {"base-of-other-languages", Statements(R"(
count := 0xFF;
)"),
         "a base is written before a `#`: write `16#FF`", "", Statements(R"(
count := 1xFF;
)")},
        {"letter-after-number", Statements(R"(
level := 2.5f;
)"),
         "a number has no letters after it: leave out `f`", "", Statements(R"(
level := 2.5 f;
)")},
        {"base-in-case-label", Statements(R"(
CASE count OF
    16#1F: ready := TRUE;
END_CASE;
)"),
         "a label of `CASE` has decimal digits: write `31`", "", Statements(R"(
CASE count OF
    10#31: ready := TRUE;
END_CASE;
)")},
        {"unknown-base", Statements(R"(
count := 10#25;
)"),
         "decimal is what a number is without a base: leave out `10#`", "", Statements(R"(
count := 16#G;
)")},
        {"literal-of-time", Statements(R"(
count := T#5s;
)"),
         "there are no times and dates, so no `T#`: write a plain number in a unit of your "
         "choice, such as milliseconds",
         "", Statements(R"(
count := T # 5;
)")},
        {"typed-literal", Statements(R"(
count := INT#5;
)"),
         "a value is written without its type: write `5`", "", Statements(R"(
count := LENGTH#5;
)")},
        {"decimal-comma", Statements(R"(
level := 2,5;
)"),
         "a fraction follows a point: write `2.5`", "2,5", Statements(R"(
level := 2 , 5;
)")},
        {"large-integer", Statements(R"(
level := 5000000000;
)"),
         "the largest integer is `4294967295`: write `5000000000.0` if a real number will do", "",
         Statements(R"(
level := 16#123456789;
)")},
        {"else-if", Statements(R"(
IF count > 10 THEN
    level := 2.0;
ELSE IF count > 5 THEN
    level := 1.0;
END_IF;
)"),
         "`ELSE IF` begins one more `IF`, which needs an `END_IF` of its own: write `ELSIF`",
         "ELSE IF", Statements(R"(
IF count > 10 THEN
    level := 2.0;
ELSE
    IF count > 5 THEN
        level := 1.0;
END_IF;
)")},
        {"else-after-else", Statements(R"(
IF count > 10 THEN
    level := 2.0;
ELSE
    level := 0.0;
ELSIF count > 5 THEN
    level := 1.0;
END_IF;
)"),
         "the `IF` of line 7 has its `ELSE` already, and nothing but `END_IF` comes after that",
         "", Statements(R"(
WHILE ready DO
    level := 0.0;
ELSE
    level := 1.0;
END_WHILE;
)")},
        {"repeat-without-until", Statements(R"(
REPEAT
    count := count + 1;
END_REPEAT;
)"),
         "a `REPEAT` ends with its condition: write `UNTIL condition END_REPEAT;`", "",
         Statements(R"(
WHILE ready DO
    count := count + 1;
END_REPEAT;
)")},
        {"semicolon-before-end-repeat", Statements(R"(
REPEAT
    count := count + 1;
UNTIL count > 10;
END_REPEAT;
)"),
         "no `;` stands between the condition and `END_REPEAT`", "", Statements(R"(
REPEAT
    count := count + 1;
UNTIL count > 10;
)")},
        {"missing-end", Statements(R"(
FOR count := 1 TO 10 DO
    IF ready THEN
        level := level + 1.0;
END_FOR;
)"),
         "the `IF` of line 8 has no `END_IF`", "IF", Statements(R"(
FOR count := 1 TO 10 DO
    level := level + 1.0;
END_IF;
)")},
        {"wrong-end", Statements(R"(
WHILE ready DO
    ready := FALSE;
END_IF;
)"),
         "the `WHILE` of line 7 ends with `END_WHILE`, not with `END_IF`", "", Statements(R"(
ready := FALSE;
END_IF;
)")},
        {"stray-end", Statements(R"(
ready := FALSE;
END_WHILE;
)"),
         "no `WHILE` is open here that this `END_WHILE` could belong to", "", Statements(R"(
WHILE ready DO
    ready := FALSE;
END_IF;
)")},
        {"missing-then", Statements(R"(
IF count > 10
    level := 0.0;
END_IF;
)"),
         "`THEN` is missing at the end of the head of `IF`", "\n", Statements(R"(
IF ready
    count > 10 THEN
    level := 0.0;
END_IF;
)")},
        {"missing-do", Statements(R"(
WHILE count > 10
    count := count - 1;
END_WHILE;
)"),
         "`DO` is missing at the end of the head of `WHILE`", "\n", Statements(R"(
WHILE ready
    count > 10 DO
    count := count - 1;
END_WHILE;
)")},
        {"missing-of", Statements(R"(
CASE count
    1: ready := TRUE;
END_CASE;
)"),
         "`OF` is missing at the end of the head of `CASE`", "\n", Statements(R"(
CASE count )
    1: ready := TRUE;
END_CASE;
)")},
        {"missing-semicolon", Statements(R"(
count := 1
level := 2.0;
)"),
         "a `;` is missing after `1`", "\n", Statements(R"(
count := 1
    level + 1;
)")},
        {"section-without-end", Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;

    count := 1;
END_PROGRAM
)"),
         "the `VAR` of line 2 has no `END_VAR`", "VAR", Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;
    count := 1;
END_VAR
END_PROGRAM
)")},
        {"section-of-other-dialects", Script(R"(
FUNCTION_BLOCK Double
VAR_IN_OUT
    value : REAL;
END_VAR
    value := value * 2;
END_FUNCTION_BLOCK

PROGRAM Demo
VAR
    level : REAL := 1.0;
END_VAR
    Double(level);
END_PROGRAM
)"),
         "there is no `VAR_IN_OUT`: use `VAR_REF`", "VAR_IN_OUT", Script(R"(
PROGRAM Demo
VARIABLES
    level : REAL := 1.0;
END_VAR
END_PROGRAM
)")},
        {"section-of-other-unit", Script(R"(
FUNCTION Twice : REAL
VAR_INPUT
    value : REAL;
END_VAR
    RESULT := value * 2;
END_FUNCTION

PROGRAM Demo
VAR
    level : REAL := 1.0;
END_VAR
    level := Twice(level);
END_PROGRAM
)"),
         "parameters by value are declared in `VAR_ARG`", "", Script(R"(
FUNCTION Twice : REAL
VAR
END_VAR
VAR_INPUTS
    value : REAL;
END_VAR
    RESULT := value * 2;
END_FUNCTION
)")},
        {"section-after-statements", Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    count := 1;
VAR
    ready : BOOL := FALSE;
END_VAR
    ready := TRUE;
END_PROGRAM
)"),
         "all sections stand before the first statement of their unit", "", Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    IF count > 1 THEN
VAR
    ready : BOOL := FALSE;
END_VAR
    END_IF;
END_PROGRAM
)")},
        {"arguments-after-variables", Script(R"(
FUNCTION Twice : INT
VAR
    sum : INT;
END_VAR
VAR_ARG
    value : INT;
END_VAR
    sum := value + value;
    RESULT := sum;
END_FUNCTION

PROGRAM Demo
VAR
    count : INT := 1;
END_VAR
    count := Twice(count);
END_PROGRAM
)"),
         "move this `VAR_ARG` before the `VAR` of line 2", "", Script(R"(
FUNCTION Twice : INT
VAR
    sum : INT;
END_VAR
VAR_GLOBAL
    value : INT;
END_VAR
END_FUNCTION
)")},
        {"qualifier-of-section", Script(R"(
PROGRAM Demo
VAR RETAIN
    count : INT := 0;
END_VAR
    count := count + 1;
END_PROGRAM
)"),
         "there is no `RETAIN`: a section is its keyword alone", "RETAIN", Script(R"(
PROGRAM Demo
VAR
    first : INT;
    RETAIN count : INT := 0;
END_VAR
END_PROGRAM
)")},
        {"missing-end-of-unit", Script(R"(
FUNCTION Seven : INT
VAR
END_VAR
    RESULT := 7;

PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    count := Seven();
END_PROGRAM
)"),
         "the `FUNCTION` `Seven` of line 1 has no `END_FUNCTION`", "FUNCTION", Script(R"(
PROGRAM Demo
VAR
END_VAR
FUNCTION Seven : INT
    RESULT := 7;
END_FUNCTION
END_PROGRAM
)")},
        {"definition-within-program", Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    FUNCTION Seven : INT
        RESULT := 7;
    END_FUNCTION
    count := Seven();
END_PROGRAM
)"),
         "definitions stand before the program: move this `FUNCTION` there", "", Script(R"(
FUNCTION Eight : INT
    RESULT := 8;
FUNCTION Seven : INT
    RESULT := 7;
END_FUNCTION
)")},
        {"end-of-other-unit", Script(R"(
FUNCTION_BLOCK Clear
VAR_REF
    value : INT;
END_VAR
    value := 0;
END_FUNCTION

PROGRAM Demo
VAR
    count : INT := 1;
END_VAR
    Clear(count);
END_PROGRAM
)"),
         "a `FUNCTION_BLOCK` ends with `END_FUNCTION_BLOCK`, not with `END_FUNCTION`", "",
         Statements(R"(
IF ready THEN
    count := 1;
END_PROGRAM
)")},
        {"no-program", Script(R"(
FUNCTION Seven : INT
    RESULT := 7;
END_FUNCTION
)"),
         "the script has no `PROGRAM`; one stands at its end, from `PROGRAM name` to "
         "`END_PROGRAM`",
         "", Script(R"(
PROGRAM Demo
VAR
END_VAR
)")},
        {"program-without-section", Script(R"(
PROGRAM Demo
    TICK := 0;
END_PROGRAM
)"),
         "a program has a section before its statements, if only an empty one: write `VAR "
         "END_VAR`",
         "", Script(R"(
PROGRAM
    TICK := 0;
END_PROGRAM
)")},
        {"body-without-section", Script(R"(
FUNCTION_BLOCK Restart
    TICK := 0;
END_FUNCTION_BLOCK

PROGRAM Demo
VAR
END_VAR
    Restart();
END_PROGRAM
)"),
         "a section stands before the statements of `Restart`, if only an empty one: write `VAR "
         "END_VAR`",
         "", Script(R"(
FUNCTION_BLOCK Restart : INT
    TICK := 0;
END_FUNCTION_BLOCK
)")},
        {"block-with-type", Script(R"(
FUNCTION_BLOCK Seven : INT
VAR
END_VAR
    RESULT := 7;
END_FUNCTION_BLOCK

PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    count := Seven();
END_PROGRAM
)"),
         "a function block has no result: write `FUNCTION Seven : INT`, or leave the type out",
         "", Script(R"(
FUNCTION_BLOCK Seven ; INT
VAR
END_VAR
END_FUNCTION_BLOCK
)")},
        {"function-without-type", Script(R"(
FUNCTION Seven
VAR
END_VAR
    RESULT := 7;
END_FUNCTION

PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    count := Seven();
END_PROGRAM
)"),
         "a function has the type of its result, as in `FUNCTION Seven : REAL`; without a result "
         "it is a `FUNCTION_BLOCK`",
         "\n", Script(R"(
FUNCTION Seven :
VAR
    x INT;
END_VAR
END_FUNCTION
)")},
        {"semicolon-after-unit", Script(R"(
FUNCTION Seven : INT
    RESULT := 7;
END_FUNCTION;

PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    count := Seven();
END_PROGRAM
)"),
         "no `;` follows `END_FUNCTION`", "", Script(R"(
;
PROGRAM Demo
VAR
END_VAR
END_PROGRAM
)")},
        {"section-outside", Script(R"(
VAR_GLOBAL
    count : INT := 0;
END_VAR

PROGRAM Demo
    count := 1;
END_PROGRAM
)"),
         "a section stands within a program or definition: move this `VAR_GLOBAL` after "
         "`PROGRAM` and its name",
         "", Script(R"(
VAR_EXTERNAL
    count : INT := 0;
END_VAR
)")},
        {"type-definition", Script(R"(
TYPE
    Mode : (off, on);
END_TYPE

PROGRAM Demo
VAR
    state : Mode := off;
END_VAR
    state := on;
END_PROGRAM
)"),
         "there are no enumerations: use `INT` for `Mode`, and a constant for each name, as in "
         "`CONSTANT off : INT := 0; CONSTANT on : INT := 1;`; a label of `CASE` is the number "
         "itself",
         "TYPE\n    Mode : (off, on);\nEND_TYPE", Script(R"(
TYPE
    Mode : (off, on);
PROGRAM Demo
VAR
END_VAR
END_PROGRAM
)")},
        {"unit-of-other-dialects", Script(R"(
CONFIGURATION Plant
END_CONFIGURATION

PROGRAM Demo
VAR
    state : INT := 0;
END_VAR
    state := 1;
END_PROGRAM
)"),
         "there is no `CONFIGURATION`: a script is its functions and function blocks, then one "
         "program",
         "", Script(R"(
Mode : (off, on);
PROGRAM Demo
VAR
END_VAR
END_PROGRAM
)")},
        {"statement-outside", Script(R"(
count := 1;
)"),
         "statements stand within `PROGRAM name VAR END_VAR ... END_PROGRAM`", "", Script(R"(
count : INT := 1;
)")},
        {"address", Script(R"(
PROGRAM Demo
VAR
    ready AT %IX0.0 : BOOL;
    count : INT := 0;
END_VAR
    IF ready THEN
        count := 1;
    END_IF;
END_PROGRAM
)"),
         "variables have no addresses: declare an input in `VAR_INPUT`, an output in "
         "`VAR_OUTPUT`, or a register in `VAR_YXREGISTER`",
         "", Statements(R"(
count := %5;
)")},
        {"several-names", Script(R"(
PROGRAM Demo
VAR
    low, high : REAL;
END_VAR
    low := 1.0;
    high := 2.0;
END_PROGRAM
)"),
         "each declaration has one name: write `low : REAL; high : REAL;`", "", Script(R"(
PROGRAM Demo
VAR
    low, 5 : REAL;
END_VAR
END_PROGRAM
)")},
        {"type-before-name", Script(R"(
PROGRAM Demo
VAR
    INT count;
END_VAR
    count := 1;
END_PROGRAM
)"),
         "the name stands before its type: write `count : INT`", "INT count", Script(R"(
PROGRAM Demo
VAR
    INT : count;
END_VAR
END_PROGRAM
)")},
        {"missing-colon", Script(R"(
PROGRAM Demo
VAR
    count INT;
END_VAR
    count := 1;
END_PROGRAM
)"),
         "a `:` stands between a name and its type: write `count : INT`", " ", Script(R"(
PROGRAM Demo
VAR
    count WORD;
END_VAR
END_PROGRAM
)")},
        {"enumeration", Script(R"(
PROGRAM Demo
VAR
    mode : (off, on) := off;
END_VAR
    mode := on;
END_PROGRAM
)"),
         "there are no enumerations: write `mode : INT`, and a constant for each name, as in "
         "`CONSTANT off : INT := 0; CONSTANT on : INT := 1;`; a label of `CASE` is the number "
         "itself",
         "", Script(R"(
PROGRAM Demo
VAR
    mode : (1, 2);
END_VAR
END_PROGRAM
)")},
        {"range-of-type", Script(R"(
PROGRAM Demo
VAR
    retries : INT (0..5) := 0;
END_VAR
    retries := 1;
END_PROGRAM
)"),
         "a type has neither a range nor a size: leave out `(0..5)`", "(0..5)", Script(R"(
PROGRAM Demo
VAR
    retries : INT (0..5 := 0;
END_VAR
END_PROGRAM
)")},
        {"missing-type", Script(R"(
PROGRAM Demo
VAR
    limit := 5;
END_VAR
    limit := limit + 1;
END_PROGRAM
)"),
         "a declaration names the type, as in `limit : INT`", "", Script(R"(
PROGRAM Demo
VAR
    limit : 5;
END_VAR
END_PROGRAM
)")},
        {"double-semicolon", Script(R"(
PROGRAM Demo
VAR
    limit : INT := 5;;
END_VAR
    limit := limit + 1;
END_PROGRAM
)"),
         "this `;` is one too many: a declaration has one, at its end", "", Script(R"(
PROGRAM Demo
VAR
    limit : INT := 5;,
END_VAR
END_PROGRAM
)")},
        {"comment-before-name", Script(R"(
PROGRAM Demo
VAR
    limit : (* pieces *) INT := 5;
END_VAR
    limit := limit + 1;
END_PROGRAM
)"),
         "no comment may stand here: put it at the end of the line", "", Script(R"(
PROGRAM Demo
VAR
    limit : (off, on);
END_VAR
END_PROGRAM
)")},
        {"misplaced-constant", Script(R"(
PROGRAM Demo
VAR_INPUT
    CONSTANT limit : INT := 5;
END_VAR
VAR
    count : INT := 0;
END_VAR
    count := limit;
END_PROGRAM
)"),
         "constants stand in `VAR` or `VAR_GLOBAL`", "", Script(R"(
PROGRAM Demo
VAR
    CONSTANT limit : INT;
END_VAR
END_PROGRAM
)")},
        {"constant-without-value", Script(R"(
PROGRAM Demo
VAR
    CONSTANT limit : INT;
    count : INT := 0;
END_VAR
    count := limit;
END_PROGRAM
)"),
         "a constant gets its value where it is declared, as in `CONSTANT limit : INT := 1;`", "",
         Script(R"(
PROGRAM Demo
VAR
    CONSTANT limit : INT = 5;
END_VAR
END_PROGRAM
)")},
        {"argument-with-value", Script(R"(
FUNCTION Twice : INT
VAR_ARG
    value : INT := 1;
END_VAR
    RESULT := value * 2;
END_FUNCTION

PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    count := Twice(count);
END_PROGRAM
)"),
         "every call gives `value` its value: leave out the one here", "", Script(R"(
FUNCTION Twice : INT
VAR_ARG
    value : INT = 1;
END_VAR
END_FUNCTION
)")},
        {"missing-unit-name", Script(R"(
PROGRAM
VAR
    count : INT := 0;
END_VAR
    count := 1;
END_PROGRAM
)"),
         "the name is missing after `PROGRAM`", "\n", Script(R"(
PROGRAM IF
VAR
END_VAR
END_PROGRAM
)")},
        {"reserved-name", Script(R"(
PROGRAM Demo
VAR
    to : INT := 0;
END_VAR
    to := 1;
END_PROGRAM
)"),
         "`to` is a word of the language in any spelling: choose another name, such as `to_1`",
         "", Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;
    IF count > 1 THEN
    END_IF;
END_PROGRAM
)")},
        {"name-of-function", Script(R"(
PROGRAM Demo
VAR
    round : INT := 0;
END_VAR
    round := round + 1;
END_PROGRAM
)"),
         "`round` is a built-in function: choose another name, such as `round_1`", "", Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;
    yxSetGV(1, 2.0);
END_PROGRAM
)")},
        {"declared-twice", Script(R"(
PROGRAM Demo
VAR_INPUT
    speed : INT;
END_VAR
VAR
    Speed : REAL := 0.0;
END_VAR
    Speed := 1.0;
END_PROGRAM
)"),
         "`Speed` is declared on line 3 already; capital and small letters are the same", "speed",
         Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;

    count := 1;
END_PROGRAM
)")},
        {"hyphen-in-name", Script(R"(
PROGRAM Demo
VAR
    level-max : REAL := 5.0;
END_VAR
    level-max := 6.0;
END_PROGRAM
)"),
         "a name has no `-` in it: write `level_max`", "level-max", Script(R"(
PROGRAM Demo
VAR
    level - max : REAL := 5.0;
END_VAR
END_PROGRAM
)")},
        {"digit-before-name", Script(R"(
PROGRAM Demo
VAR
    2nd : REAL := 5.0;
END_VAR
    2nd := 6.0;
END_PROGRAM
)"),
         "a name begins with a letter or `_`: write `_2nd`", "2nd", Script(R"(
PROGRAM Demo
VAR
    2 nd : REAL := 5.0;
END_VAR
END_PROGRAM
)")},
        {"letter-of-no-name", Script(R"(
PROGRAM Demo
VAR
    höhe : REAL := 5.0;
END_VAR
    höhe := 6.0;
END_PROGRAM
)"),
         "`ö` is no letter of names; those are A to Z, a to z, `_`, А to Я and а to я", "",
         Script(R"(
PROGRAM Demo
VAR
    h? : REAL := 5.0;
END_VAR
END_PROGRAM
)")},
        {"type-of-other-dialects", Script(R"(
PROGRAM Demo
VAR
    mask : WORD := 16#FF;
END_VAR
    mask := mask AND 16#0F;
END_PROGRAM
)"),
         "there is no `WORD`: use `UINT`, which has 16 bits", "", Script(R"(
PROGRAM Demo
VAR
    mask : WORDS := 16#FF;
END_VAR
END_PROGRAM
)")},
        {"type-of-time", Script(R"(
PROGRAM Demo
VAR
    begin : TIME;
END_VAR
    begin := TICK;
END_PROGRAM
)"),
         "there are no times and dates: count in a `UDINT`, with `TICK` for a clock", "",
         Script(R"(
PROGRAM Demo
VAR
    begin : TIMER;
END_VAR
END_PROGRAM
)")},
        {"type-of-text", Script(R"(
PROGRAM Demo
VAR
    mode : STRING;
END_VAR
    mode := 'auto';
END_PROGRAM
)"),
         "no variable holds a text: give each text a number, such as a `USINT`", "",
         Statements(R"(
count := 'auto';
)")},
        {"type-of-parts", Script(R"(
PROGRAM Demo
VAR
    values : ARRAY[1..2] OF INT;
    sum : INT := 0;
END_VAR
    sum := values[1] + values[2];
END_PROGRAM
)"),
         "there are no arrays: declare a variable for each element", "", Statements(R"(
count := count[1];
)")},
        {"standard-block", Script(R"(
PROGRAM Demo
VAR_INPUT
    button : BOOL;
END_VAR
VAR
    rise : R_TRIG;
    count : INT := 0;
END_VAR
    rise(CLK := button);
    IF rise.Q THEN
        count := count + 1;
    END_IF;
END_PROGRAM
)"),
         "there are no edge detectors: remember the last value in a `BOOL := FALSE` and compare",
         "", Script(R"(
PROGRAM Demo
VAR
    rise : TRIGGER;
END_VAR
END_PROGRAM
)")},
        {"instance-of-block", Script(R"(
FUNCTION_BLOCK Raise
VAR_REF
    value : INT;
END_VAR
    value := value + 1;
END_FUNCTION_BLOCK

PROGRAM Demo
VAR
    first : Raise;
    count : INT := 0;
END_VAR
    first(count);
END_PROGRAM
)"),
         "function blocks have no instances: leave this declaration out and call `Raise(value)` "
         "itself",
         "", Script(R"(
FUNCTION Seven : INT
    RESULT := 7;
END_FUNCTION
PROGRAM Demo
VAR
    first : Seven;
END_VAR
END_PROGRAM
)")},
        {"function-without-result", Script(R"(
FUNCTION Clear : VOID
VAR_REF
    value : INT;
END_VAR
    value := 0;
END_FUNCTION

PROGRAM Demo
VAR
    count : INT := 1;
END_VAR
    Clear(count);
END_PROGRAM
)"),
         "what has no result is a function block: write `FUNCTION_BLOCK Clear`", "", Script(R"(
PROGRAM Demo
VAR
    nothing : VOID;
END_VAR
END_PROGRAM
)")},
        {"misspelt-type", Script(R"(
PROGRAM Demo
VAR
    count : DIINT := 0;
END_VAR
    count := 1;
END_PROGRAM
)"),
         "did you mean `DINT`?", "", Script(R"(
PROGRAM Demo
VAR
    count : Counter := 0;
END_VAR
END_PROGRAM
)")},
        {"number-for-truth", Script(R"(
PROGRAM Demo
VAR
    ready : BOOL := 1;
END_VAR
    ready := FALSE;
END_PROGRAM
)"),
         "a `BOOL` is no number: write `TRUE`", "", Script(R"(
PROGRAM Demo
VAR
    ready : BOOL := 2;
END_VAR
END_PROGRAM
)")},
        {"truth-for-number", Script(R"(
PROGRAM Demo
VAR
    ready : INT := TRUE;
END_VAR
    ready := FALSE;
END_PROGRAM
)"),
         "`ready` is a number: declare it as `ready : BOOL`, or begin with 0 or 1", "", Script(R"(
PROGRAM Demo
VAR
    ready : INT := 'yes';
END_VAR
END_PROGRAM
)")},
        {"computed-initial-value", Script(R"(
PROGRAM Demo
VAR
    limit : INT := 24 * 60;
END_VAR
    limit := limit + 1;
END_PROGRAM
)"),
         "an initial value is a literal; assign this one in a statement, `limit := ...;`", "",
         Script(R"(
PROGRAM Demo
VAR
    limit : INT := 24 60;
END_VAR
END_PROGRAM
)")},
        {"equals-for-assign", Statements(R"(
count = 1;
)"),
         "`=` compares; a value is assigned with `:=`", "", Statements(R"(
count == 1;
)")},
        {"named-parameter", Statements(R"(
level := sqrt(value := 2.0);
)"),
         "parameters go by position: leave out `value :=`", "value :=", Statements(R"(
level := (value := 2.0);
)")},
        {"assign-for-equals", Statements(R"(
IF count := 1 THEN
    ready := TRUE;
END_IF;
)"),
         "`:=` assigns; values are compared with `=`", "", Statements(R"(
count := count := 1;
)")},
        {"chained-assignment", Statements(R"(
count := level := 1;
)"),
         "each assignment is a statement: write `level := ...; count := level;`", "",
         Statements(R"(
count := level + 1 := 2;
)")},
        {"step-of-for", Statements(R"(
FOR count := 10 TO 1 BY -1 DO
    level := level + count;
END_FOR;
)"),
         "there is no `BY`: count down with `DOWNTO` in place of `TO`", "", Statements(R"(
FOR count := 10 TO 1 UP 2 DO
    level := level + count;
END_FOR;
)")},
        {"bounds-of-for", Statements(R"(
FOR count := 1..10 DO
    level := level + count;
END_FOR;
)"),
         "the bounds of a `FOR` are written `FOR i := 1 TO 10 DO`", "", Statements(R"(
FOR count := 1 TO 10.5 DO
    level := level + count;
END_FOR;
)")},
        {"real-in-for", Statements(R"(
FOR level := 1 TO 10 DO
    count := count + 1;
END_FOR;
)"),
         "a `FOR` counts with an integer: `level` is `REAL`, declare it as `INT`", "",
         Statements(R"(
FOR other := 1 TO 10 DO
    count := count + 1;
END_FOR;
)")},
        {"jump-out-of-case", Statements(R"(
WHILE ready DO
    CASE count OF
        1: BREAK;
    END_CASE;
    count := count - 1;
END_WHILE;
)"),
         "`BREAK` does not reach out of this `CASE` to the `WHILE` of line 7: set a variable "
         "here and test it after `END_CASE`",
         "CASE", Statements(R"(
CASE count OF
    1: BREAK;
END_CASE;
)")},
        {"break-in-branch", Statements(R"(
CASE count OF
    1: level := 1.0;
        BREAK;
    2: level := 2.0;
END_CASE;
)"),
         "a branch of `CASE` ends before the next label by itself: leave out the `BREAK`", "",
         Statements(R"(
IF ready THEN
    BREAK;
END_IF;
)")},
        {"break-without-loop", Statements(R"(
IF ready THEN
    BREAK;
END_IF;
)"),
         "no loop is open here; `EXIT` leaves the whole `PROGRAM`", "", Statements(R"(
CONTINUE;
)")},
        {"return", Script(R"(
FUNCTION Limited : INT
VAR_ARG
    value : INT;
END_VAR
    IF value > 100 THEN
        RETURN 100;
    END_IF;
    RESULT := value;
END_FUNCTION

PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    count := Limited(count);
END_PROGRAM
)"),
         "there is no `RETURN`: assign the value to `RESULT`, then write `EXIT;` to leave the "
         "function",
         "RETURN", Statements(R"(
RETURNS;
)")},
        {"name-as-label", Script(R"(
PROGRAM Demo
VAR
    CONSTANT running : INT := 2;
    state : INT := 0;
END_VAR
    CASE state OF
        running: state := 0;
    END_CASE;
END_PROGRAM
)"),
         "a label of `CASE` is a number: write `2` for `running`", "running", Statements(R"(
CASE level OF
    1: count := 0;
END_CASE;
)")},
        {"no-label", Statements(R"(
CASE count OF
ELSE
    level := 0.0;
END_CASE;
)"),
         "a `CASE` has at least one branch, as in `1: ...;`", "", Statements(R"(
CASE count OF
    level: count := 1;
END_CASE;
)")},
        {"selector-of-case", Statements(R"(
CASE ready OF
    1: count := 0;
END_CASE;
)"),
         "`ready` is `BOOL`, and `CASE` asks for an integer: use `IF`", "", Statements(R"(
CASE count OF
    ready: count := 0;
END_CASE;
)")},
        {"colon-after-else", Statements(R"(
CASE count OF
    1: level := 1.0;
ELSE:
    level := 0.0;
END_CASE;
)"),
         "no `:` follows `ELSE`", "", Statements(R"(
CASE count OF
    1: level := 1.0;
ELSE,
    level := 0.0;
END_CASE;
)")},
        {"no-colon-after-label", Statements(R"(
CASE count OF
    1 level := 1.0;
END_CASE;
)"),
         "a `:` follows a label of `CASE`, as in `1: ...;`", "", Statements(R"(
CASE count OF
    1 - 2: level := 1.0;
END_CASE;
)")},
        {"declaration-among-statements", Statements(R"(
other : INT := 5;
)"),
         "declare `other` in a section, before `END_VAR`", "other : INT", Statements(R"(
other: count := INT;
)")},
        {"label-like-variable", Statements(R"(
count : 5;
)"),
         "`count` and `:` make a label, and a variable of that name is declared on line 3; a "
         "value is assigned with `:=`",
         "", Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;
    COUNT : INT := 0;
END_VAR
END_PROGRAM
)")},
        {"assigned-constant", Script(R"(
PROGRAM Demo
VAR
    CONSTANT limit : INT := 5;
END_VAR
    limit := limit + 1;
END_PROGRAM
)"),
         "`limit` is a constant: leave out the `CONSTANT` of line 3 if it is to change",
         "CONSTANT", Script(R"(
PROGRAM Demo
VAR
    CONSTANT limit : INT := 5;
END_VAR
    limits := 6;
END_PROGRAM
)")},
        {"update", Statements(R"(
count += 2;
)"),
         "write `count := count + ...;`", "", Statements(R"(
count := count ++ 2;
)")},
        {"value-without-target", Statements(R"(
count + 1;
)"),
         "a value alone is no statement: assign it, as in `count := ...;`", "", Statements(R"(
5;
)")},
        {"result-by-name", Script(R"(
FUNCTION Twice : INT
VAR_ARG
    value : INT;
END_VAR
    Twice := value * 2;
END_FUNCTION

PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    count := Twice(count);
END_PROGRAM
)"),
         "the result of a function is assigned to `RESULT`, not to `Twice`", "Twice",
         Statements(R"(
sqrt := 5;
)")},
        {"result-outside", Statements(R"(
RESULT := 5;
)"),
         "`RESULT` exists in functions alone; a program has `VAR_OUTPUT`", "RESULT",
         Statements(R"(
result_1 := 5;
)")},
        {"call-of-instance", Statements(R"(
timer(IN := ready, PT := 5);
)"),
         "there is no function block `timer` above, and function blocks have no instances",
         "timer", Statements(R"(
timer(ready, 5);
)")},
        {"count-of-parameters", Statements(R"(
level := pow(level);
)"),
         "`pow` has 2 parameters, and the call gives 1: `pow(LREAL, LREAL)`", "pow",
         Statements(R"(
level := pow(level, 2.0;
)")},
        {"type-of-reference", Script(R"(
FUNCTION_BLOCK Raise
VAR_REF
    value : INT;
END_VAR
    value := value + 1;
END_FUNCTION_BLOCK

PROGRAM Demo
VAR
    count : DINT := 0;
END_VAR
    Raise(count);
END_PROGRAM
)"),
         "`count` is `DINT`, but `value` of `Raise` is `INT` and passed by reference: pass a "
         "variable of just that type",
         "", Script(R"(
FUNCTION_BLOCK Raise
VAR_REF
    value : INT;
END_VAR
END_FUNCTION_BLOCK
PROGRAM Demo
VAR
    count : DINT := 0;
END_VAR
    Raise(counts);
END_PROGRAM
)")},
        {"value-for-reference", Script(R"(
FUNCTION_BLOCK Raise
VAR_REF
    value : INT;
END_VAR
    value := value + 1;
END_FUNCTION_BLOCK

PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
    count := 5;
    Raise(5);
END_PROGRAM
)"),
         "`value` of `Raise` is passed by reference: pass a variable, not a value", "",
         Statements(R"(
yxSetGV(* 5, 2.0);
)")},
        {"block-as-value", Statements(R"(
level := yxSetGV(3, 1.5);
)"),
         "`yxSetGV` is a function block and gives no value: call it in a statement of its own",
         "", Statements(R"(
level := * 2;
)")},
        {"comparison-before-logic", Statements(R"(
IF count > 0 AND level > 2.0 THEN
    ready := TRUE;
END_IF;
)"),
         "between numbers `AND` binds tighter than `>`: put each comparison in parentheses, "
         "`(count > 0) AND (...)`",
         "count > 0", Statements(R"(
IF count AND ready THEN
    ready := TRUE;
END_IF;
)")},
        {"two-comparisons", Statements(R"(
IF 0 < count < 10 THEN
    ready := TRUE;
END_IF;
)"),
         "a comparison has one sign: join two with `AND`, as in `(0 < count) AND (count < ...)`",
         "0 < count", Statements(R"(
IF TRUE = ready THEN
    ready := TRUE;
END_IF;
)")},
        {"sign-pair", Statements(R"(
count := count*-1;
)"),
         "two signs that touch are one token: write `* -`", "", Statements(R"(
count =+ 1;
)")},
        {"foreign-comparison", Statements(R"(
IF count != 1 THEN
    ready := TRUE;
END_IF;
)"),
         "this comparison is written `<>`", "!=", Statements(R"(
count == 1;
)")},
        {"foreign-logic", Statements(R"(
ready := ready && (count > 0);
)"),
         "write `AND`", "&&", Statements(R"(
count := &count;
)")},
        {"foreign-arithmetic", Statements(R"(
count := count % 2;
)"),
         "the remainder of a division is written `MOD`", "", Statements(R"(
count := 50%;
)")},
        {"dereference", Statements(R"(
count := level^;
)"),
         "there are no pointers: write `level` alone, and pass a variable by reference, in "
         "`VAR_REF`",
         "level^", Statements(R"(
count := ^level;
)")},
        {"conditional-operator", Statements(R"(
count := ready ? 1 : 2;
)"),
         "there is no `? :`: choose the value with `IF ... THEN ... ELSE ... END_IF;`", "",
         Statements(R"(
count := count @ 1;
)")},
        {"operator-as-function", Statements(R"(
count := SHL(count, 2);
)"),
         "`SHL` stands between its operands, as in `a SHL b`", "", Statements(R"(
count := SHL count;
)")},
        {"index", Statements(R"(
level := level[1];
)"),
         "there are no arrays, so `level` has no elements: use a variable for each value", "",
         Statements(R"(
level := [1];
)")},
        {"member", Statements(R"(
level := pump.level;
)"),
         "there are no structures and no instances, so nothing is reached with `.`: use a "
         "variable of its own, such as `pump_level`",
         "pump.level", Statements(R"(
level := pump . level;
)")},
        {"bit-of-variable", Statements(R"(
ready := count.3;
)"),
         "a bit has no name of its own: write `((count SHR 3) AND 1) = 1`", "count.3",
         Statements(R"(
ready := count .3;
)")},
        {"literal-on-the-left", Statements(R"(
IF TRUE = ready THEN
    count := 1;
END_IF;
)"),
         "`TRUE` stands on the right of a comparison: write `ready = TRUE`", "", Statements(R"(
IF TRUE ready THEN
    count := 1;
END_IF;
)")},
        {"not-after-operator", Statements(R"(
ready := (count = 1) = NOT ready;
)"),
         "`NOT` needs parentheses after an operator: write `(NOT ready)`", "", Statements(R"(
ready := (count = 1) = * ready;
)")},
        {"open-parenthesis", Statements(R"(
count := 2 * (count + 1;
)"),
         "this `(` has no `)`", "(", Statements(R"(
level := pow(level 2.0);
)")},
        {"stray-parenthesis", Statements(R"(
count := 2 * count + 1);
)"),
         "this `)` has no `(`", "", Statements(R"(
count := (2 * count + );
)")},
        {"number-as-truth", Statements(R"(
ready := 1;
)"),
         "a `BOOL` is no number: write `TRUE`", "1", Statements(R"(
ready := count + 1;
)")},
        {"truth-as-number", Statements(R"(
count := ready;
)"),
         "a `BOOL` is not converted: write `IF ready THEN count := 1; ELSE count := 0; END_IF;`",
         "ready", Statements(R"(
ready := count;
)")},
        {"truth-in-arithmetic", Statements(R"(
count := ready + 1;
)"),
         "`+` takes numbers, and a `BOOL` is none: choose the number with `IF`", "",
         Statements(R"(
ready := ready AND level;
)")},
        {"text-as-value", Statements(R"(
count := 'ten';
)"),
         "no variable holds a text: give each text a number", "", Statements(R"(
count := ten;
)")},
        {"real-for-integer", Statements(R"(
level := yxGetGV(level);
)"),
         "a parameter of type `UINT` takes no real number: assign the number to a variable of "
         "type `UINT` first, and pass that",
         "", Statements(R"(
level := yxGetGV(ready);
)")},
        {"number-as-condition", Statements(R"(
IF count THEN
    ready := TRUE;
END_IF;
)"),
         "a condition is a `BOOL`: compare the value, as in `count <> 0`", "count", Statements(R"(
IF count == 1 THEN
    ready := TRUE;
END_IF;
)")},
        {"real-for-operator", Statements(R"(
count := level MOD 2;
)"),
         "`MOD` takes no real number: assign it to an integer variable first, and use that", "",
         Statements(R"(
ready := NOT level;
)")},
        {"elsif-of-other-languages", Statements(R"(
IF count > 10 THEN
    level := 2.0;
ELSEIF count > 5 THEN
    level := 1.0;
END_IF;
)"),
         "did you mean `ELSIF`?", "ELSEIF", Statements(R"(
IF count > 10 THEN
    level := ELSEIF;
END_IF;
)")},
        {"end-of-other-languages", Statements(R"(
FOR count := 1 TO 10 DO
    level := level + 1.0;
NEXT;
)"),
         "the `FOR` of line 7 ends with `END_FOR;`", "NEXT", Statements(R"(
NEXT;
)")},
        {"word-of-other-languages", Script(R"(
PROGRAM Demo
VAR
    count : INT := 0;
END_VAR
BEGIN
    count := 1;
END_PROGRAM
)"),
         "there is no `BEGIN`: statements follow `END_VAR` directly", "BEGIN", Statements(R"(
count := BEGIN;
)")},
        {"defined-below", Script(R"(
FUNCTION Fourfold : INT
VAR_ARG
    value : INT;
END_VAR
    RESULT := Twice(Twice(value));
END_FUNCTION

FUNCTION Twice : INT
VAR_ARG
    value : INT;
END_VAR
    RESULT := value * 2;
END_FUNCTION

PROGRAM Demo
VAR
    count : INT := 1;
END_VAR
    count := Fourfold(count);
END_PROGRAM
)"),
         "`Twice` is defined on line 8: move its definition above its first use", "Twice",
         Script(R"(
FUNCTION Fourfold : INT
VAR_ARG
    value : INT;
END_VAR
    RESULT := Twice(value);
END_FUNCTION
PROGRAM Twice
VAR
END_VAR
END_PROGRAM
)")},
        {"standard-function", Statements(R"(
level := ABS(level);
)"),
         "the absolute value is `fabs`", "ABS", Statements(R"(
level := ABS;
)")},
        {"conversion-function", Statements(R"(
level := INT_TO_REAL(count);
)"),
         "a variable of any type of number takes any number: leave out `INT_TO_REAL`",
         "INT_TO_REAL", Statements(R"(
level := INT_TO_LEVEL(count);
)")},
        {"declared-elsewhere", Script(R"(
FUNCTION Scaled : REAL
VAR_ARG
    value : REAL;
END_VAR
    RESULT := value * gain;
END_FUNCTION

PROGRAM Demo
VAR
    gain : REAL := 2.0;
    level : REAL := 1.0;
END_VAR
    gain := gain + 1.0;
    level := Scaled(level);
END_PROGRAM
)"),
         "`gain` is a variable of `Demo`: pass it in `VAR_ARG`, or in `VAR_REF` to change it",
         "gain", Script(R"(
FUNCTION Scaled : REAL
VAR_ARG
    value : REAL;
END_VAR
    RESULT := value * gain;
END_FUNCTION
PROGRAM Gain
VAR
END_VAR
    gain: TICK := 0;
END_PROGRAM
)")},
        {"misspelt-name", Statements(R"(
cuont := 1;
)"),
         "did you mean `count`?", "cuont", Statements(R"(
pressure := 1;
)")},
        {"misspelt-word", Statements(R"(
IF ready THNE
    count := 1;
END_IF;
)"),
         "did you mean `THEN`?", "", Statements(R"(
IF ready SO
    count := 1;
END_IF;
)")},
        {"misspelt-end-of-section", Script(R"(
PROGRAM Demo
VAR_INPUT
    count : INT := 0;
END_VAR_INPUT
    count := 1;
END_PROGRAM
)"),
         "every section ends with `END_VAR`", "END_VAR_INPUT", Script(R"(
PROGRAM Demo
VAR_INPUT
    count : INT := 0;
ENDING
    count := 1;
END_PROGRAM
)")},
        {"missing-label", Statements(R"(
GOTO finish;
)"),
         "no label `finish:` stands anywhere for this `GOTO`", "finish", Statements(R"(
GOTO 5;
)")},
        {"undeclared-name", Statements(R"(
pressure := 1.5;
)"),
         "`Demo` has no variable `pressure`: declare it in a section, as in `pressure : INT;`",
         "pressure", Statements(R"(
cuont := 1;
)")},
    };
}
