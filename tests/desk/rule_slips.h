// More slips: other forms of those that have a case of their own, and errors without a reason.
#pragma once

#include "rule_cases.h"

struct Slip {
    const char* id;
    QString script;
    const char* help;
    const char* marked;
};

// Statements in a program that has more variables: the first of them stands on line 14.
inline QString Lines(const char* text) {
    return QStringLiteral(
               "PROGRAM Demo\nVAR_INPUT\n    a : INT;\n    b : INT;\n    level : REAL;\n"
               "    ready : BOOL;\n    fault : BOOL;\nEND_VAR\nVAR\n    i : INT := 0;\n"
               "    level_max : REAL := 0.0;\n    big : LREAL;\nEND_VAR") +
           QString::fromUtf8(text) + QStringLiteral("END_PROGRAM\n");
}

inline std::vector<Slip> OtherSlips() {
    return {
        {"equals-for-assign", Script(R"(
PROGRAM P
VAR
    a : INT = 5;
END_VAR
    a := 1;
END_PROGRAM
)"),
         "an initial value follows `:=`, not `=`", ""},
        {"chained-assignment", Lines(R"(
    a := b := 2;
)"),
         "each assignment is a statement: write `b := ...; a := b;`", ""},
        {"foreign-comparison", Lines(R"(
    IF a == 1 THEN
        b := 2;
    END_IF;
)"),
         "this comparison is written `=`", "=="},
        {"foreign-comparison", Lines(R"(
    IF a =< 1 THEN
        b := 2;
    END_IF;
)"),
         "this comparison is written `<=`", "=<"},
        {"foreign-comparison", Lines(R"(
    IF a => 1 THEN
        b := 2;
    END_IF;
)"),
         "this comparison is written `>=`", "=>"},
        {"foreign-logic", Lines(R"(
    IF !ready THEN
        b := 2;
    END_IF;
)"),
         "write `NOT`", "!"},
        {"foreign-logic", Lines(R"(
    IF ready || fault THEN
        b := 2;
    END_IF;
)"),
         "write `OR`", "||"},
        {"missing-semicolon", Lines(R"(
    yxSetGV(1, 2.0)
    b := 2;
)"),
         "a `;` is missing after `)`", "\n"},
        {"missing-semicolon", Lines(R"(
    IF ready THEN
        a := 1;
    END_IF
    b := 2;
)"),
         "a `;` is missing after `END_IF`", "\n"},
        {"missing-semicolon", Lines(R"(
    a := b
    IF ready THEN
        a := 1;
    END_IF;
)"),
         "a `;` is missing after `b`", "\n"},
        {"missing-semicolon", Lines(R"(
    a := b
)"),
         "a `;` is missing after `b`", "\n"},
        {"missing-semicolon", Lines(R"(
    IF ready THEN
        a := 1;
    END_IF
)"),
         "a `;` is missing after `END_IF`", "\n"},
        {"missing-semicolon", Script(R"(
PROGRAM P
VAR
    a : INT
    b : INT;
END_VAR
    a := b;
END_PROGRAM
)"),
         "a `;` is missing after `INT`", "\n"},
        {"missing-semicolon", Script(R"(
PROGRAM P
VAR
    a : INT := 5
    b : INT;
END_VAR
    a := b;
END_PROGRAM
)"),
         "a `;` is missing after `5`", "\n"},
        {"missing-semicolon", Script(R"(
PROGRAM P
VAR
    a : INT := 5
END_VAR
    a := 1;
END_PROGRAM
)"),
         "a `;` is missing after `5`", "\n"},
        {"missing-colon", Script(R"(
PROGRAM P
VAR
    a INT;
END_VAR
    a := 1;
END_PROGRAM
)"),
         "a `:` stands between a name and its type: write `a : INT`", " "},
        {"type-before-name", Script(R"(
PROGRAM P
VAR
    INT a;
END_VAR
    a := 1;
END_PROGRAM
)"),
         "the name stands before its type: write `a : INT`", "INT a"},
        {"type-before-name", Script(R"(
PROGRAM P
VAR
    bool a;
END_VAR
    a := 1;
END_PROGRAM
)"),
         "the name stands before its type: write `a : bool`", "bool a"},
        {"reserved-name", Script(R"(
PROGRAM P
VAR
    exit : INT;
END_VAR
    exit := 1;
END_PROGRAM
)"),
         "`exit` is a word of the language in any spelling: choose another name, such as "
         "`exit_1`",
         ""},
        {"reserved-name", Script(R"(
PROGRAM P
VAR
    real : INT;
END_VAR
END_PROGRAM
)"),
         "`real` is a word of the language in any spelling: choose another name, such as "
         "`real_1`",
         ""},
        {"reserved-name", Script(R"(
FUNCTION shl : INT
VAR
END_VAR
    RESULT := 1;
END_FUNCTION
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "`shl` is a word of the language in any spelling: choose another name, such as `shl_1`",
         ""},
        {"name-of-function", Script(R"(
FUNCTION sqrt : INT
VAR
END_VAR
    RESULT := 1;
END_FUNCTION
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "`sqrt` is a built-in function: choose another name, such as `sqrt_1`", ""},
        {"reserved-name", Script(R"(
PROGRAM case
VAR
END_VAR
END_PROGRAM
)"),
         "`case` is a word of the language in any spelling: choose another name, such as "
         "`case_1`",
         ""},
        {"misspelt-name", Lines(R"(
    a := levl_max;
)"),
         "did you mean `level_max`?", "levl_max"},
        {"misspelt-name", Lines(R"(
    a := srqt(4.0);
)"),
         "did you mean `sqrt`?", "srqt"},
        {"misspelt-name", Lines(R"(
    yxSetGv2(1, 2.0);
)"),
         "did you mean `yxSetGV`?", "yxSetGv2"},
        {"misspelt-name", Lines(R"(
    IF ready THEN
        a := 1;
    ENDIF;
)"),
         "did you mean `END_IF`?", "ENDIF"},
        {"misspelt-name", Lines(R"(
    FOR i := 1 TO 10 DO
        a := 1;
    ENDFOR;
)"),
         "did you mean `END_FOR`?", "ENDFOR"},
        {"misspelt-name", Lines(R"(
    WHILE ready DO
        a := 1;
    END_WHLE;
)"),
         "did you mean `END_WHILE`?", "END_WHLE"},
        {"end-of-other-languages", Lines(R"(
    IF ready THEN
        a := 1;
    END IF;
)"),
         "the `IF` of line 14 ends with `END_IF;`", "END"},
        {"several-names", Script(R"(
PROGRAM P
VAR
    a, b, c : INT;
END_VAR
    a := 1;
END_PROGRAM
)"),
         "each declaration has one name: write `a : INT; b : INT; c : INT;`", ""},
        {"undeclared-name", Lines(R"(
    foo := 7;
)"),
         "`Demo` has no variable `foo`: declare it in a section, as in `foo : INT;`", "foo"},
        {"undeclared-name", Lines(R"(
    zebra := 1;
)"),
         "`Demo` has no variable `zebra`: declare it in a section, as in `zebra : INT;`",
         "zebra"},
        {"declared-elsewhere", Script(R"(
FUNCTION F : INT
VAR_ARG
    x : INT;
END_VAR
    RESULT := x + gain;
END_FUNCTION
PROGRAM P
VAR
    gain : INT := 2;
END_VAR
    gain := F(gain);
END_PROGRAM
)"),
         "`gain` is a variable of `P`: pass it in `VAR_ARG`, or in `VAR_REF` to change it",
         "gain"},
        {"defined-below", Script(R"(
FUNCTION F : INT
VAR_ARG
    x : INT;
END_VAR
    RESULT := G(x);
END_FUNCTION
FUNCTION G : INT
VAR_ARG
    x : INT;
END_VAR
    RESULT := x;
END_FUNCTION
PROGRAM P
VAR
    gain : INT := 2;
END_VAR
    gain := F(gain);
END_PROGRAM
)"),
         "`G` is defined on line 7: move its definition above its first use", "G"},
        {"defined-below", Script(R"(
PROGRAM P
VAR
    gain : INT := 2;
END_VAR
    Bump(gain);
END_PROGRAM
FUNCTION_BLOCK Bump
VAR_REF
    x : INT;
END_VAR
    x := x + 1;
END_FUNCTION_BLOCK
)"),
         "`Bump` is defined on line 7: move its definition above its first use", "Bump"},
        {"type-of-parts", Script(R"(
PROGRAM P
VAR
    w : STRUCT x : INT; END_STRUCT;
END_VAR
END_PROGRAM
)"),
         "there are no structures: declare a variable for each part", ""},
        {"standard-block", Script(R"(
PROGRAM P
VAR
    t1 : TON;
END_VAR
    t1(IN := TRUE, PT := T#5s);
END_PROGRAM
)"),
         "there are no timers: remember `TICK` in a `UDINT := 0` and compare the difference", ""},
        {"instance-of-block", Script(R"(
FUNCTION_BLOCK Bump
VAR_REF
    x : INT;
END_VAR
    x := x + 1;
END_FUNCTION_BLOCK
PROGRAM P
VAR
    b1 : Bump;
    n : INT := 0;
END_VAR
    b1(n);
END_PROGRAM
)"),
         "function blocks have no instances: leave this declaration out and call `Bump(x)` "
         "itself",
         ""},
        {"misspelt-type", Script(R"(
PROGRAM P
VAR
    n : INTT := 0;
END_VAR
    n := 1;
END_PROGRAM
)"),
         "did you mean `INT`?", ""},
        {"type-of-other-dialects", Script(R"(
PROGRAM P
VAR
    n : BOOLEAN;
END_VAR
END_PROGRAM
)"),
         "a truth value has the type `BOOL`", ""},
        {"missing-type", Script(R"(
PROGRAM P
VAR
    n : ;
END_VAR
END_PROGRAM
)"),
         "a declaration names the type, as in `n : INT`", ""},
        {"missing-type", Script(R"(
PROGRAM P
VAR
    n := 5;
END_VAR
END_PROGRAM
)"),
         "a declaration names the type, as in `n : INT`", ""},
        {"function-without-type", Script(R"(
FUNCTION F
VAR_ARG
    x : INT;
END_VAR
    RESULT := x;
END_FUNCTION
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "a function has the type of its result, as in `FUNCTION F : REAL`; without a result it "
         "is a `FUNCTION_BLOCK`",
         "\n"},
        {"function-without-result", Script(R"(
FUNCTION F : VOID
VAR
END_VAR
END_FUNCTION
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "what has no result is a function block: write `FUNCTION_BLOCK F`", ""},
        {"block-with-type", Script(R"(
FUNCTION_BLOCK F : INT
VAR
END_VAR
END_FUNCTION_BLOCK
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "a function block has no result: write `FUNCTION F : INT`, or leave the type out", ""},
        {"typed-literal", Lines(R"(
    level := REAL#5.0;
)"),
         "a value is written without its type: write `5.0`", ""},
        {"typed-literal", Lines(R"(
    ready := BOOL#1;
)"),
         "a value is written without its type: write `TRUE`", ""},
        {"typed-literal", Lines(R"(
    a := WORD#16#FF;
)"),
         "a value is written without its type: write `16#FF`", ""},
        {"literal-of-time", Lines(R"(
    a := TIME#5s;
)"),
         "there are no times and dates, so no `TIME#`: write a plain number in a unit of your "
         "choice, such as milliseconds",
         ""},
        {"digits-with-underscore", Lines(R"(
    a := 1_000;
)"),
         "no `_` stands in a number: write `1000`", "1_000"},
        {"digits-with-underscore", Lines(R"(
    a := 16#FF_FF;
)"),
         "no `_` stands in a number: write `16#FFFF`", "16#FF_FF"},
        {"digits-with-underscore", Lines(R"(
    a := 2#1010_1010;
)"),
         "no `_` stands in a number: write `2#10101010`", "2#1010_1010"},
        {"digits-with-underscore", Lines(R"(
    level := 1.000_5;
)"),
         "no `_` stands in a number: write `1.0005`", "1.000_5"},
        {"exponent-without-point", Lines(R"(
    level := 1e3;
)"),
         "a real number needs a point: write `1.0e3`", ""},
        {"exponent-without-point", Lines(R"(
    level := 2E+3;
)"),
         "a real number needs a point: write `2.0E+3`", ""},
        {"base-of-other-languages", Lines(R"(
    a := 0b11;
)"),
         "a base is written before a `#`: write `2#11`", ""},
        {"letter-after-number", Lines(R"(
    a := 5L;
)"),
         "a number has no letters after it: leave out `L`", ""},
        {"decimal-comma", Lines(R"(
    level := 1,5;
)"),
         "a fraction follows a point: write `1.5`", "1,5"},
        {"named-parameter", Script(R"(
FUNCTION Scale : REAL
VAR_ARG
    value : REAL;
    factor : REAL;
    offset : REAL;
END_VAR
    RESULT := value * factor + offset;
END_FUNCTION
PROGRAM P
VAR
    a : REAL := 1.0;
END_VAR
    a := Scale(factor := 2.0, value := (a + 1) * 2);
END_PROGRAM
)"),
         "parameters go by position: write `Scale((a + 1) * 2, 2.0, offset)`", "factor :="},
        {"named-parameter", Lines(R"(
    level := sqrt(x := 4.0);
)"),
         "parameters go by position: leave out `x :=`", "x :="},
        {"named-parameter", Lines(R"(
    yxSetGV(number := 3, value := 1.5);
)"),
         "parameters go by position: leave out `number :=`", "number :="},
        {"named-parameter", Lines(R"(
    yxSetGV(3, v => level);
)"),
         "parameters go by position: leave out `v =>`", "v =>"},
        {"step-of-for", Lines(R"(
    FOR i := 1 TO 10 BY 2 DO
        a := i;
    END_FOR;
)"),
         "there is no `BY`, the step is always 1: use a `WHILE` loop for any other", ""},
        {"return", Lines(R"(
    IF ready THEN
        RETURN;
    END_IF;
)"),
         "there is no `RETURN`: `EXIT` leaves the `PROGRAM`", "RETURN"},
        {"jump-out-of-case", Lines(R"(
    FOR i := 1 TO 10 DO
        CASE i OF
            1: BREAK;
        END_CASE;
    END_FOR;
)"),
         "`BREAK` does not reach out of this `CASE` to the `FOR` of line 14: set a variable here "
         "and test it after `END_CASE`",
         "CASE"},
        {"jump-out-of-case", Lines(R"(
    WHILE ready DO
        CASE i OF
            1: CONTINUE;
        END_CASE;
    END_WHILE;
)"),
         "`CONTINUE` does not reach out of this `CASE` to the `WHILE` of line 14: set a variable "
         "here and test it after `END_CASE`",
         "CASE"},
        {"jump-out-of-case", Lines(R"(
    REPEAT
        CASE i OF
            1: a := 1;
            ELSE BREAK;
        END_CASE;
    UNTIL ready END_REPEAT;
)"),
         "`BREAK` does not reach out of this `CASE` to the `REPEAT` of line 14: set a variable "
         "here and test it after `END_CASE`",
         "CASE"},
        {"missing-end", Lines(R"(
    FOR i := 1 TO 10 DO
        a := 1;
    b := 2;
)"),
         "the `FOR` of line 14 has no `END_FOR`", "FOR"},
        {"missing-end", Lines(R"(
    WHILE ready DO
        a := 1;
    b := 2;
)"),
         "the `WHILE` of line 14 has no `END_WHILE`", "WHILE"},
        {"missing-end", Lines(R"(
    CASE a OF
        1: b := 2;
        2: b := 3;
    a := 1;
)"),
         "the `CASE` of line 14 has no `END_CASE`", "CASE"},
        {"missing-end", Lines(R"(
    REPEAT
        a := 1;
    UNTIL a > 3;
)"),
         "the `REPEAT` of line 14 has no `END_REPEAT`", "REPEAT"},
        {"missing-end", Lines(R"(
    REPEAT
        a := 1;
)"),
         "the `REPEAT` of line 14 has no `END_REPEAT`", "REPEAT"},
        {"missing-then", Lines(R"(
    IF a > 1 DO
        a := 1;
    END_IF;
)"),
         "the head of `IF` ends with `THEN`, not with `DO`", ""},
        {"missing-do", Lines(R"(
    FOR i := 1 TO 5
        a := 1;
    END_FOR;
)"),
         "`DO` is missing at the end of the head of `FOR`", "\n"},
        {"missing-do", Lines(R"(
    FOR i := 1 TO 5 THEN
        a := 1;
    END_FOR;
)"),
         "the head of `FOR` ends with `DO`, not with `THEN`", ""},
        {"missing-of", Lines(R"(
    CASE a DO
        1: b := 1;
    END_CASE;
)"),
         "the head of `CASE` ends with `OF`, not with `DO`", ""},
        {"real-in-for", Lines(R"(
    FOR i := 1 TO level DO
        a := 1;
    END_FOR;
)"),
         "the bounds of a `FOR` are integers: assign the value to an integer variable first and "
         "use that",
         ""},
        {"selector-of-case", Lines(R"(
    CASE level OF
        1: a := 1;
    END_CASE;
)"),
         "`level` is `REAL`, and `CASE` asks for an integer: assign it to an `INT` first and use "
         "that",
         ""},
        {"type-definition", Script(R"(
TYPE
    Pump : STRUCT
        on : BOOL;
    END_STRUCT;
END_TYPE
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "there are no structures: declare a variable for each part of each `Pump`",
         "TYPE\n    Pump : STRUCT\n        on : BOOL;\n    END_STRUCT;\nEND_TYPE"},
        {"type-definition", Script(R"(
TYPE Percent : REAL; END_TYPE
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "types have no other names: write `REAL` for `Percent`",
         "TYPE Percent : REAL; END_TYPE"},
        {"type-definition", Script(R"(
TYPE Mode : (off := 1, on := 4); END_TYPE
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "there are no enumerations: use `INT` for `Mode`, and a constant for each name, as in "
         "`CONSTANT off : INT := 0;`; a label of `CASE` is the number itself",
         "TYPE Mode : (off := 1, on := 4); END_TYPE"},
        {"dereference", Lines(R"(
    i^ := 2;
)"),
         "there are no pointers: write `i` alone, and pass a variable by reference, in `VAR_REF`",
         "i^"},
        {"missing-semicolon", Lines(R"(
    CASE a OF
        1: i := 2
        2, 3: i := 3;
    END_CASE;
)"),
         "a `;` is missing after `2`", "\n"},
        {"name-as-label", Lines(R"(
    CASE a OF
        1: busy: a := 1;
        busy: a := 2;
    END_CASE;
)"),
         "a label of `CASE` is a number: write one for `busy`", "busy"},
        {"name-as-label", Lines(R"(
    CASE a OF
        1: a := 1;
        OTHERS: a := 2;
    END_CASE;
    CASE a OF
        1: a := 1;
        OTHERS: a := 2;
    END_CASE;
)"),
         "the branch for all other values is `ELSE`, without a `:`", "OTHERS"},
        {"step-of-for", Lines(R"(
    FOR i := 0 TO 10 STEP 2 DO
        b := i;
    END_FOR;
)"),
         "there is no `STEP`, the step is always 1: use a `WHILE` loop for any other", ""},
        {"name-as-label", Lines(R"(
    CASE a OF
        limit: a := 1;
    END_CASE;
)"),
         "a label of `CASE` is a number: write one for `limit`", "limit"},
        {"name-as-label", Script(R"(
PROGRAM P
VAR
    CONSTANT one : INT := 1;
    a : INT := 0;
END_VAR
    CASE a OF
        one: a := 1;
    END_CASE;
END_PROGRAM
)"),
         "a label of `CASE` is a number: write `1` for `one`", "one"},
        {"name-as-label", Script(R"(
PROGRAM P
VAR
    CONSTANT one : INT := 1;
    CONSTANT two : INT := 2;
    a : INT := 0;
END_VAR
    CASE a OF
        1: a := 1;
        two: a := 4;
    END_CASE;
END_PROGRAM
)"),
         "a label of `CASE` is a number: write `2` for `two`", "two"},
        {"no-label", Lines(R"(
    CASE a OF
        'A': a := 1;
    END_CASE;
)"),
         "a label of `CASE` is a number, as in `1: ...;`", ""},
        {"word-of-other-languages", Lines(R"(
    SWITCH a
        1: b := 1;
    END_SWITCH;
)"),
         "branches by number are written `CASE ... OF ... END_CASE;`", "SWITCH"},
        {"section-without-end", Script(R"(
PROGRAM P
VAR_INPUT
    a : INT := 0;
VAR
    b : INT;
END_VAR
END_PROGRAM
)"),
         "the `VAR_INPUT` of line 2 has no `END_VAR`", "VAR_INPUT"},
        {"declaration-among-statements", Lines(R"(
    c : INT := 5;
    a := c;
)"),
         "declare `c` in a section, before `END_VAR`", "c : INT"},
        {"number-as-truth", Lines(R"(
    ready := a;
)"),
         "`a` is a number: compare it, as in `(a <> 0)`", "a"},
        {"truth-as-number", Lines(R"(
    a := ready;
)"),
         "a `BOOL` is not converted: write `IF ready THEN a := 1; ELSE a := 0; END_IF;`",
         "ready"},
        {"truth-as-number", Lines(R"(
    big := ready;
)"),
         "a `BOOL` is not converted: write `IF ready THEN big := 1; ELSE big := 0; END_IF;`",
         "ready"},
        {"number-as-truth", Lines(R"(
    ready := 0;
)"),
         "a `BOOL` is no number: write `FALSE`", "0"},
        {"number-as-truth", Lines(R"(
    ready := 5;
)"),
         "a `BOOL` is `TRUE` or `FALSE`, and no number", "5"},
        {"truth-for-number", Script(R"(
PROGRAM P
VAR
    a : INT := TRUE;
END_VAR
END_PROGRAM
)"),
         "`a` is a number: declare it as `a : BOOL`, or begin with 0 or 1", ""},
        {"computed-initial-value", Script(R"(
PROGRAM P
VAR
    a : INT := 2 * 5;
END_VAR
END_PROGRAM
)"),
         "an initial value is a literal; assign this one in a statement, `a := ...;`", ""},
        {"computed-initial-value", Script(R"(
PROGRAM P
VAR
    CONSTANT n : INT := 3;
    a : INT := n;
END_VAR
END_PROGRAM
)"),
         "an initial value is a literal; assign this one in a statement, `a := ...;`", ""},
        {"computed-initial-value", Script(R"(
PROGRAM P
VAR
    a : INT := (3);
END_VAR
END_PROGRAM
)"),
         "an initial value is a literal; assign this one in a statement, `a := ...;`", ""},
        {"computed-initial-value", Script(R"(
PROGRAM P
VAR
    a : REAL := sqrt(2.0);
END_VAR
END_PROGRAM
)"),
         "an initial value is a literal; assign this one in a statement, `a := ...;`", ""},
        {"computed-initial-value", Script(R"(
PROGRAM P
VAR
    a : BOOL := NOT TRUE;
END_VAR
END_PROGRAM
)"),
         "an initial value is a literal; assign this one in a statement, `a := ...;`", ""},
        {"computed-initial-value", Script(R"(
PROGRAM P
VAR
    a : BOOL := TRUE AND FALSE;
END_VAR
END_PROGRAM
)"),
         "an initial value is a literal; assign this one in a statement, `a := ...;`", ""},
        {"truth-as-number", Lines(R"(
    level := sqrt(ready);
)"),
         "a `BOOL` does not count as a number: choose the number with `IF`", ""},
        {"truth-as-number", Lines(R"(
    a := a + ready;
)"),
         "a `BOOL` does not count as a number: choose the number with `IF`", ""},
        {"truth-in-arithmetic", Lines(R"(
    a := ready - 1;
)"),
         "`-` takes numbers, and a `BOOL` is none: choose the number with `IF`", ""},
        {"real-for-operator", Lines(R"(
    fault := level AND ready;
)"),
         "`AND` takes no real number: compare it first, in parentheses", ""},
        {"number-as-condition", Lines(R"(
    IF a THEN
        b := 1;
    END_IF;
)"),
         "a condition is a `BOOL`: compare the value, as in `a <> 0`", "a"},
        {"number-as-condition", Lines(R"(
    IF sqrt(2.0) THEN
        b := 1;
    END_IF;
)"),
         "a condition is a `BOOL`: compare the value, as in `... <> 0`", ""},
        {"comparison-before-logic", Lines(R"(
    ready := a > 0 AND b > 0;
)"),
         "between numbers `AND` binds tighter than `>`: put each comparison in parentheses, `(a "
         "> 0) AND (...)`",
         "a > 0"},
        {"comparison-before-logic", Lines(R"(
    IF a > 0 AND b < 10 THEN
        i := 1;
    END_IF;
)"),
         "between numbers `AND` binds tighter than `>`: put each comparison in parentheses, `(a "
         "> 0) AND (...)`",
         "a > 0"},
        {"comparison-before-logic", Lines(R"(
    IF a = 1 OR a = 2 THEN
        i := 1;
    END_IF;
)"),
         "between numbers `OR` binds tighter than `=`: put each comparison in parentheses, `(a = "
         "1) OR (...)`",
         "a = 1"},
        {"comparison-before-logic", Lines(R"(
    IF level > 1.0 OR level < 0.5 THEN
        i := 1;
    END_IF;
)"),
         "between numbers `OR` binds tighter than `>`: put each comparison in parentheses, "
         "`(level > 1.0) OR (...)`",
         "level > 1.0"},
        {"comparison-before-logic", Lines(R"(
    IF a > 0 AND ready THEN
        i := 1;
    END_IF;
)"),
         "between numbers `AND` binds tighter than `>`: put each comparison in parentheses, `(a "
         "> 0) AND (...)`",
         "a > 0"},
        {"comparison-before-logic", Lines(R"(
    IF level > 1.0 AND ready THEN
        i := 1;
    END_IF;
)"),
         "between numbers `AND` binds tighter than `>`: put each comparison in parentheses, "
         "`(level > 1.0) AND (...)`",
         "level > 1.0"},
        {"comparison-before-logic", Lines(R"(
    IF a > 0 AND NOT ready THEN
        i := 1;
    END_IF;
)"),
         "between numbers `AND` binds tighter than `>`: put each comparison in parentheses, `(a "
         "> 0) AND (...)`",
         "a > 0"},
        {"comparison-before-logic", Lines(R"(
    IF level > 1 AND a > 2 THEN
        i := 1;
    END_IF;
)"),
         "between numbers `AND` binds tighter than `>`: put each comparison in parentheses, "
         "`(level > 1) AND (...)`",
         "level > 1"},
        {"two-comparisons", Lines(R"(
    IF 0 < a < 10 THEN
        i := 1;
    END_IF;
)"),
         "a comparison has one sign: join two with `AND`, as in `(0 < a) AND (a < ...)`",
         "0 < a"},
        {"two-comparisons", Lines(R"(
    IF a = b = ready THEN
        i := 1;
    END_IF;
)"),
         "a comparison has one sign: join two with `AND`, as in `(a = b) AND (b = ...)`",
         "a = b"},
        {"program-without-section", Script(R"(
PROGRAM P;
VAR
END_VAR
END_PROGRAM
)"),
         "no `;` follows the name of the program", ""},
        {"braces", Script(R"(
{attribute 'x'}
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "there are no pragmas, and a comment is written `(* ... *)`: leave out what stands in "
         "braces",
         ""},
        {"unit-of-other-dialects", Script(R"(
CONFIGURATION c
END_CONFIGURATION
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "there is no `CONFIGURATION`: a script is its functions and function blocks, then one "
         "program",
         ""},
        {"braces", Lines(R"(
    { comment }
    a := 1;
)"),
         "there are no pragmas, and a comment is written `(* ... *)`: leave out what stands in "
         "braces",
         ""},
        {"section-of-other-dialects", Script(R"(
PROGRAM P
VAR_TEMP
    a : INT;
END_VAR
END_PROGRAM
)"),
         "there is no `VAR_TEMP`: use `VAR`", "VAR_TEMP"},
        {"section-of-other-unit", Script(R"(
FUNCTION_BLOCK F
VAR_OUTPUT
    a : INT;
END_VAR
    a := 1;
END_FUNCTION_BLOCK
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "what goes out of a definition is declared in `VAR_REF`, or is the `RESULT` of a "
         "function",
         ""},
        {"section-of-other-unit", Script(R"(
PROGRAM P
VAR_ARG
    a : INT;
END_VAR
END_PROGRAM
)"),
         "a program is called by nobody: use `VAR_INPUT` in place of `VAR_ARG`", ""},
        {"section-of-other-dialects", Script(R"(
PROGRAM P
VAR
    b : INT;
END_VAR
VAR_TEMP
    a : INT;
END_VAR
END_PROGRAM
)"),
         "there is no `VAR_TEMP`: use `VAR`", "VAR_TEMP"},
        {"section-of-other-dialects", Script(R"(
PROGRAM P
VAR
    b : INT;
END_VAR
VAR_EXTERNAL
    a : INT;
END_VAR
    b := a;
END_PROGRAM
)"),
         "there is no `VAR_EXTERNAL`: use `VAR_GLOBAL`", "VAR_EXTERNAL"},
        {"assigned-constant", Script(R"(
PROGRAM P
VAR CONSTANT
    b : INT := 5;
    c : INT := 5;
END_VAR
    b := 5;
END_PROGRAM
)"),
         "`b` is a constant: leave out the `CONSTANT` of line 2 if it is to change", "CONSTANT"},
        {"constant-without-value", Script(R"(
PROGRAM P
VAR
    CONSTANT b : INT;
END_VAR
END_PROGRAM
)"),
         "a constant gets its value where it is declared, as in `CONSTANT b : INT := 1;`", ""},
        {"several-names", Script(R"(
PROGRAM P
VAR
    a, b : REAL;
END_VAR
END_PROGRAM
)"),
         "each declaration has one name: write `a : REAL; b : REAL;`", ""},
        {"result-outside", Script(R"(
FUNCTION_BLOCK F
VAR_ARG
    x : INT;
END_VAR
    RESULT := x;
END_FUNCTION_BLOCK
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "a function block has no result: give a value back in `VAR_REF`, or make it a "
         "`FUNCTION`",
         "RESULT"},
        {"count-of-parameters", Lines(R"(
    level := sqrt();
)"),
         "`sqrt` has 1 parameter, and the call gives 0: `sqrt(LREAL)`", "sqrt"},
        {"count-of-parameters", Lines(R"(
    level := sqrt(1.0, 2.0);
)"),
         "`sqrt` has 1 parameter, and the call gives 2: `sqrt(LREAL)`", "sqrt"},
        {"count-of-parameters", Lines(R"(
    yxSetGV(1, 2.0, 3);
)"),
         "`yxSetGV` has 2 parameters, and the call gives 3: `yxSetGV(UINT, LREAL)`", "yxSetGV"},
        {"count-of-parameters", Lines(R"(
    yxSetGV(1);
)"),
         "`yxSetGV` has 2 parameters, and the call gives 1: `yxSetGV(UINT, LREAL)`", "yxSetGV"},
        {"count-of-parameters", Script(R"(
FUNCTION F : INT
VAR
END_VAR
    RESULT := 1;
END_FUNCTION
PROGRAM P
VAR
    a : INT;
END_VAR
    a := F(a);
END_PROGRAM
)"),
         "`F` has 0 parameters, and the call gives 1: `F()`", "F"},
        {"value-for-reference", Script(R"(
FUNCTION_BLOCK F
VAR_REF
    x : INT;
END_VAR
    x := 1;
END_FUNCTION_BLOCK
PROGRAM P
VAR
    a : DINT := 0;
END_VAR
    F(5);
END_PROGRAM
)"),
         "`x` of `F` is passed by reference: pass a variable, not a value", ""},
        {"type-of-reference", Script(R"(
FUNCTION_BLOCK F
VAR_REF
    x : INT;
END_VAR
    x := 1;
END_FUNCTION_BLOCK
PROGRAM P
VAR
    a : DINT := 0;
END_VAR
    F(a);
END_PROGRAM
)"),
         "`a` is `DINT`, but `x` of `F` is `INT` and passed by reference: pass a variable of "
         "just that type",
         ""},
        {"value-without-target", Lines(R"(
    a + 1;
)"),
         "a value alone is no statement: assign it, as in `a := ...;`", ""},
        {"value-without-target", Lines(R"(
    a;
)"),
         "a value alone is no statement: assign it, as in `a := ...;`", ""},
        {"update", Lines(R"(
    a++;
)"),
         "write `a := a + 1;`", ""},
        {"update", Lines(R"(
    a += 1;
)"),
         "write `a := a + ...;`", ""},
        {"update", Lines(R"(
    a -= 1;
)"),
         "write `a := a - ...;`", ""},
        {"foreign-arithmetic", Lines(R"(
    a := a ^ 2;
)"),
         "a power is written `**`, an exclusive or `XOR`", ""},
        {"foreign-arithmetic", Lines(R"(
    a := a DIV 2;
)"),
         "`/` divides integers as well: write `/`", ""},
        {"index", Lines(R"(
    a := b[1];
)"),
         "there are no arrays, so `b` has no elements: use a variable for each value", ""},
        {"member", Lines(R"(
    a := pump.speed;
)"),
         "there are no structures and no instances, so nothing is reached with `.`: use a "
         "variable of its own, such as `pump_speed`",
         "pump.speed"},
        {"member", Lines(R"(
    a := b.speed;
)"),
         "there are no structures and no instances, so nothing is reached with `.`: use a "
         "variable of its own, such as `b_speed`",
         "b.speed"},
        {"member", Lines(R"(
    b.speed := 1;
)"),
         "there are no structures and no instances, so nothing is reached with `.`: use a "
         "variable of its own, such as `b_speed`",
         "b.speed"},
        {"member", Lines(R"(
    IF timer.Q THEN
        a := 1;
    END_IF;
)"),
         "there are no structures and no instances, so nothing is reached with `.`: use a "
         "variable of its own, such as `timer_Q`",
         "timer.Q"},
        {"bit-of-variable", Lines(R"(
    i.4 := TRUE;
)"),
         "a bit has no name of its own: set it with `i := i OR 16;`, clear it with "
         "`i := i OR 16; i := i XOR 16;`",
         "i.4"},
        {"bit-of-variable", Lines(R"(
    ready := a.0;
)"),
         "a bit has no name of its own: write `((a SHR 0) AND 1) = 1`", "a.0"},
        {"missing-end-of-unit", Script(R"(
PROGRAM P
VAR
    a : INT;
END_VAR
    a := 1;
)"),
         "the `PROGRAM` `P` of line 1 has no `END_PROGRAM`", "PROGRAM"},
        {"missing-end-of-unit", Script(R"(
FUNCTION F : INT
VAR
END_VAR
    RESULT := 1;

PROGRAM P
VAR
    a : INT;
END_VAR
    a := F;
END_PROGRAM
)"),
         "the `FUNCTION` `F` of line 1 has no `END_FUNCTION`", "FUNCTION"},
        {"missing-end-of-unit", Script(R"(
FUNCTION F : INT
VAR
END_VAR
    RESULT := 1;

FUNCTION G : INT
VAR
END_VAR
    RESULT := 1;
END_FUNCTION
PROGRAM P
VAR
    a : INT;
END_VAR
    a := F;
END_PROGRAM
)"),
         "the `FUNCTION` `F` of line 1 has no `END_FUNCTION`", "FUNCTION"},
        {"end-of-other-unit", Script(R"(
PROGRAM P
VAR
    a : INT;
END_VAR
    a := 1;
END_FUNCTION
)"),
         "a `PROGRAM` ends with `END_PROGRAM`, not with `END_FUNCTION`", ""},
        {"stray-end", Lines(R"(
    IF ready THEN
        a := 1;
    END_IF;
    END_IF;
)"),
         "no `IF` is open here that this `END_IF` could belong to", ""},
        {"stray-end", Lines(R"(
    IF ready THEN
        a := 1;
    END_IF;
    ELSE
        b := 1;
    END_IF;
)"),
         "no `IF` is open here that this `ELSE` could belong to", ""},
        {"declared-twice", Script(R"(
PROGRAM P
VAR
    a : INT := 0;
    A : INT;
END_VAR
END_PROGRAM
)"),
         "`A` is declared on line 3 already; capital and small letters are the same", "a"},
        {"body-without-section", Script(R"(
FUNCTION F : INT
    TICK := 1;
    RESULT := 1;
END_FUNCTION
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "a section stands before the statements of `F`, if only an empty one: write `VAR "
         "END_VAR`",
         ""},
        {"undeclared-name", Lines(R"(
    b1(a);
)"),
         "no function or function block `b1` is built in or defined above", "b1"},
        {"missing-label", Lines(R"(
    GOTO done;
)"),
         "no label `done:` stands anywhere for this `GOTO`", "done"},
        {"sign-pair", Lines(R"(
    a := b+-1;
)"),
         "two signs that touch are one token: write `+ -`", ""},
        {"sign-pair", Lines(R"(
    ready := a=-1;
)"),
         "two signs that touch are one token: write `= -`", ""},
        {"letter-of-no-name", Script(R"(
PROGRAM P
VAR
    счёт : INT := 0;
END_VAR
    счёт := 1;
END_PROGRAM
)"),
         "`ё` is no letter of names; those are A to Z, a to z, `_`, А to Я and а to я", ""},
        {"label-like-variable", Lines(R"(
    a: b := 1;
)"),
         "`a` and `:` make a label, and a variable of that name is declared on line 3; a value "
         "is assigned with `:=`",
         ""},
        {"argument-with-value", Script(R"(
FUNCTION F : INT
VAR_ARG
    x : INT := 5;
END_VAR
    RESULT := x;
END_FUNCTION
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
         "every call gives `x` its value: leave out the one here", ""},
        {"standard-function", Lines(R"(
    a := MIN(a, b);
)"),
         "it is not built in: choose the value with `IF`, or define a function of that name",
         "MIN"},
        {"conversion-function", Lines(R"(
    a := REAL_TO_INT(level);
)"),
         "a variable of any type of number takes any number: leave out `REAL_TO_INT`",
         "REAL_TO_INT"},
        {"standard-function", Lines(R"(
    a := TRUNC(level);
)"),
         "the part before the point is `floor`, of negative numbers `ceil`", "TRUNC"},
        {"standard-function", Lines(R"(
    level := EXPT(level, 2);
)"),
         "a power is written `a ** b` or `pow(a, b)`", "EXPT"},
        {"standard-function", Lines(R"(
    level := LOG(level);
)"),
         "the logarithm to the base 10 is `log10`, the natural one `ln`", "LOG"},
        {"undeclared-name", Lines(R"(
    a := THIS^.x;
)"),
         "`Demo` has no variable `THIS`: declare it in a section, as in `THIS : INT;`", "THIS"},
        {"undeclared-name", Lines(R"(
    print('x');
)"),
         "no function or function block `print` is built in or defined above", "print"},
        {"undeclared-name", Lines(R"(
    ready := ON;
)"),
         "`Demo` has no variable `ON`: declare it in a section, as in `ON : INT;`", "ON"},
        {"update", Lines(R"(
    --a;
)"),
         "write `a := a - 1;`", ""},
        {"foreign-comparison", Lines(R"(
    level := sqrt(a => b);
)"),
         "this comparison is written `>=`", "=>"},
        {"type-of-other-dialects", Script(R"(
PROGRAM P
VAR
    w : BYTE;
END_VAR
END_PROGRAM
)"),
         "there is no `BYTE`: use `USINT`, which has 8 bits", ""},
        {"type-of-other-dialects", Script(R"(
PROGRAM P
VAR
    w : LWORD;
END_VAR
END_PROGRAM
)"),
         "there is no type of 64 bits: use two `UDINT`", ""},
        {"type-of-text", Script(R"(
PROGRAM P
VAR
    w : CHAR;
END_VAR
END_PROGRAM
)"),
         "a character is a number: use `USINT`", ""},
        {"type-of-parts", Script(R"(
PROGRAM P
VAR
    w : POINTER TO INT;
END_VAR
END_PROGRAM
)"),
         "there are no pointers: pass a variable by reference, in `VAR_REF`", ""},
        {"standard-block", Script(R"(
PROGRAM P
VAR
    w : SR;
END_VAR
END_PROGRAM
)"),
         "there are no latches: write `q := set OR (q AND NOT reset);`", ""},
        {"standard-block", Script(R"(
PROGRAM P
VAR
    w : CTU;
END_VAR
END_PROGRAM
)"),
         "there are no counters: count in a `UINT := 0`", ""},
        {"step-of-for", Lines(R"(
    FOR i := 1 TO 10 BY 1 DO
        a := i;
    END_FOR;
)"),
         "the step is always 1: leave out `BY 1`", ""},
        {"foreign-arithmetic", Lines(R"(
    a := a << 2;
)"),
         "a shift is written `SHL`", ""},
        {"foreign-arithmetic", Lines(R"(
    a := a >> 2;
)"),
         "a shift is written `SHR`", ""},
        {"foreign-logic", Lines(R"(
    ready := ready OR_ELSE fault;
)"),
         "write `OR`", "OR_ELSE"},
        {"section-of-other-unit", Script(R"(
FUNCTION F : INT
VAR_GLOBAL
    x : INT;
END_VAR
END_FUNCTION
)"),
         "`VAR_GLOBAL` stands in the program alone: pass its variables to `F` in `VAR_ARG` or "
         "`VAR_REF`",
         ""},
        {"conversion-function", Lines(R"(
    a := BOOL_TO_INT(ready);
)"),
         "there is no conversion of a `BOOL`: choose the number with `IF`", "BOOL_TO_INT"},
        {"conversion-function", Lines(R"(
    ready := INT_TO_BOOL(a);
)"),
         "there is no conversion to a `BOOL`: compare, as in `a <> 0`", "INT_TO_BOOL"},
        {"undeclared-name", Lines(R"(
    a := INT_TO_STRING(a);
)"),
         "no function or function block `INT_TO_STRING` is built in or defined above",
         "INT_TO_STRING"},
        {"declared-elsewhere", Script(R"(
FUNCTION F : INT
VAR_ARG
    x : INT;
END_VAR
    RESULT := x;
END_FUNCTION
PROGRAM P
VAR
    a : INT;
END_VAR
    a := x;
    a := F(a);
END_PROGRAM
)"),
         "`x` is a variable of `F`: the program sees variables of its own alone", "x"},
        {"misspelt-word", Script(R"(
FUNTION F : INT
)"),
         "did you mean `FUNCTION`?", ""},
        {"name-of-function", Script(R"(
FUNCTION F : INT
    RESULT := 1;
END_FUNCTION
PROGRAM P
VAR
    f : INT;
END_VAR
END_PROGRAM
)"),
         "`f` is the function of line 1: choose another name, such as `f_1`", ""},
        {"missing-label", Lines(R"(
    again: a := 1;
    GOTO agian;
)"),
         "did you mean `again`?", "agian"},
        {"value-without-target", Lines(R"(
    a(1);
)"),
         "`a` is a variable and cannot be called", ""},
        {"typed-literal", Lines(R"(
    ready := BOOL#0;
)"),
         "a value is written without its type: write `FALSE`", ""},
        {"unknown-base", Lines(R"(
    a := 3#12;
)"),
         "the bases are `2#`, `8#` and `16#`, written just so", ""},
        {"base-of-other-languages", Lines(R"(
    a := 0o17;
)"),
         "a base is written before a `#`: write `8#17`", ""},
        {"misplaced-constant", Script(R"(
FUNCTION F : INT
VAR_ARG
    CONSTANT x : INT := 1;
END_VAR
END_FUNCTION
)"),
         "constants stand in `VAR`", ""},
        {"constant-without-value", Script(R"(
PROGRAM P
VAR
    CONSTANT x : BOOL;
END_VAR
END_PROGRAM
)"),
         "a constant gets its value where it is declared, as in `CONSTANT x : BOOL := TRUE;`",
         ""},
        {"number-for-truth", Script(R"(
PROGRAM P
VAR
    x : BOOL := 0;
END_VAR
END_PROGRAM
)"),
         "a `BOOL` is no number: write `FALSE`", ""},
        {"truth-as-number", Lines(R"(
    level := yxGetGV(ready) AND a > 0;
)"),
         "a `BOOL` does not count as a number: choose the number with `IF`", ""},
        {"literal-on-the-left", Lines(R"(
    ready := TRUE = 1;
)"),
         "`TRUE` stands on the right of a comparison: write `... = TRUE`", ""},
    };
}

inline std::vector<QString> ScriptsWithoutReason() {
    return {
        Lines(R"(
    a := b
    -a := 3;
)"),
        Lines(R"(
    a := 50%;
)"),
        Lines(R"(
    CONTINUE;
)"),
        Lines(R"(
    fault := NOT level;
)"),
        Script(R"(
This is a program.
PROGRAM P
VAR
END_VAR
END_PROGRAM
)"),
        Lines(R"(
    5;
)"),
        Lines(R"(
    a := 2 b;
)"),
        Lines(R"(
    a := 5 b;
)"),
        Lines(R"(
    ready := ready ~ fault;
)"),
        Lines(R"(
    a := INT;
)"),
        Lines(R"(
    IF ready
        fault THEN
        a := 1;
    END_IF;
)"),
        Lines(R"(
    a := 'x' - 1;
)"),
        Lines(R"(
    a := FUNCTION;
)"),
    };
}
