// Scripts with errors of each kind. A line that ends in a comment //! has an error, //!! two, and
// //? a note that the check stopped there; no other line has one. What is to be seen is the way
// past the first error: another stands after it.
#pragma once

#include <vector>

struct RepairCase {
    const char* name;
    const char* script;
};

inline const std::vector<RepairCase>& DeclarationCases() {
    static const std::vector<RepairCase> CASES = {
        {"a type that is none", R"(PROGRAM P
VAR
    a : WORD; //!
    b : INT := 0;
END_VAR
    a := 2;
    IF a > 1 THEN b := a; END_IF;
    b := ; //!
END_PROGRAM
)"},
        {"nothing follows from a type that is none", R"(PROGRAM P
VAR
    s : TEXT; //!
    b : BOOL := FALSE;
END_VAR
    b := s;
    s := TRUE;
    s := 'a';
    IF s THEN b := TRUE; END_IF;
    WHILE NOT s DO b := s AND b; END_WHILE;
    CASE s OF 1: b := s; END_CASE;
    b := b OR s;
    b := 1; //!
END_PROGRAM
)"},
        {"a type that is missing", R"(PROGRAM P
VAR
    a : ; //!
    b : INT := ; //!
END_VAR
    a := b;
    b := ; //!
END_PROGRAM
)"},
        {"a declaration without its semicolon", R"(PROGRAM P
VAR
    a : INT := 0
    b : INT := 0; //!
END_VAR
    a := b;
    a := ; //!
END_PROGRAM
)"},
        {"the last declaration without its semicolon", R"(PROGRAM P
VAR
    a : INT := 0
END_VAR //!
    a := a + 1;
    a := ; //!
END_PROGRAM
)"},
        {"a declaration without its colon", R"(PROGRAM P
VAR
    a INT := 0; //!
    b : INT := 0;
END_VAR
    a := b;
    a := ; //!
END_PROGRAM
)"},
        {"equals for the initial value", R"(PROGRAM P
VAR
    a : INT = 0; //!
    b : BOOL := 1; //!
END_VAR
    a := a + 1;
    b := a > 1;
END_PROGRAM
)"},
        {"names in a list", R"(PROGRAM P
VAR
    a, b : INT; //!
    c : INT := 0;
END_VAR
    a := c;
    b := a;
    c := b + ; //!
END_PROGRAM
)"},
        {"a name that is taken", R"(PROGRAM P
VAR
    a : INT := 0;
    A : BOOL := TRUE; //!
END_VAR
    a := a + 1;
    a := ; //!
END_PROGRAM
)"},
        {"a reserved word as a name", R"(PROGRAM P
VAR
    to : INT := 0; //!
    b : INT := 0;
END_VAR
    b := b + 1;
    b := ; //!
END_PROGRAM
)"},
        {"the name of a built-in as a name", R"(PROGRAM P
VAR
    cos : REAL := 0.0; //!
    b : REAL := 0.0;
END_VAR
    b := cos + 1.0;
    b := cos(b);
    b := ; //!
END_PROGRAM
)"},
        {"a constant without its value", R"(PROGRAM P
VAR
    CONSTANT a : INT; //!
    b : INT := 0;
END_VAR
    b := a;
    b := ; //!
END_PROGRAM
)"},
        {"an initial value of another type", R"(PROGRAM P
VAR
    a : INT := 'text'; //!
    b : BOOL := 2.5; //!
END_VAR
    a := a + 1;
    b := a; //!
END_PROGRAM
)"},
        {"a section that does not end before the statements", R"(PROGRAM P
VAR
    a : INT := 0;
    a := a + 1; //!
    a := ; //!
END_PROGRAM
)"},
        {"a section that does not end before the next", R"(PROGRAM P
VAR_INPUT
    a : INT;
VAR //!
    b : INT := 0;
END_VAR
    b := a;
    b := ; //!
END_PROGRAM
)"},
        {"an empty section that does not end", R"(PROGRAM P
VAR
    IF TRUE THEN //!
    END_IF;
    CONTINUE; //!
END_PROGRAM
)"},
        {"a section of global variables of the engine", R"(PROGRAM P
VAR_YXGLOBAL
    a : INT; //!
    b : INT(2);
    c : INT(x); //!
END_VAR
    a := b + c;
    a := ; //!
END_PROGRAM
)"},
        {"a section of registers of the engine", R"(PROGRAM P
VAR_YXREGISTER
    a : INT(1, 2, 3); //!
    b : INT(1, 2, 3, 4);
    c : INT; //!
END_VAR
    a := b + c;
    a := ; //!
END_PROGRAM
)"},
        {"two declarations on a line", R"(PROGRAM P
VAR
    a : WORD; b : BOOL := FALSE; //!
END_VAR
    b := a > 1;
    b := ; //!
END_PROGRAM
)"},
    };
    return CASES;
}

inline const std::vector<RepairCase>& StatementCases() {
    static const std::vector<RepairCase> CASES = {
        {"an expression that is not finished", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := a + ; //!
    a := (a; //!
    a := a a; //!
    a := a) + 1; //!
END_PROGRAM
)"},
        {"a statement without its semicolon", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := 1
    a := 2; //!
    a := 1
    IF a = 1 THEN a := 2; END_IF; //!
    a := 1
END_PROGRAM //!
)"},
        {"equals for an assignment", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a = 1; //!
    IF a = 1 THEN
        a = 2; //!
    END_IF;
    a == 3; //!
END_PROGRAM
)"},
        {"a value of another type", R"(PROGRAM P
VAR a : INT := 0; b : BOOL := FALSE; END_VAR
    a := b; //!
    b := a; //!
    b := 'text'; //!
    a := 1.5;
END_PROGRAM
)"},
        {"a jump outside of a loop", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    EXIT;
    a := a + 1;
    CONTINUE; //!
    BREAK; //!
END_PROGRAM
)"},
        {"a call that is wrong", R"(FUNCTION Sum : INT
VAR_ARG a : INT; b : INT; END_VAR
    RESULT := a + b;
END_FUNCTION
PROGRAM P
VAR x : INT := 0; r : REAL := 0.0; END_VAR
    x := Sum(1); //!
    x := Sum(1, 2, 3); //!
    x := Sum(1, 'b'); //!
    x := Sum; //!
    x := Sum(a := 1, b := 2); //!
    Sum(1, 2);
    r := cos(); //!
    x := Sum(1, 2);
END_PROGRAM
)"},
        {"no statement at all", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    ? //!
    a := 1;
    5 := a; //!
    ;
    a : INT; //!
    a := ; //!
END_PROGRAM
)"},
        {"an assignment to what cannot be written", R"(PROGRAM P
VAR CONSTANT c : INT := 1; a : INT := 0; END_VAR
    c := 2; //!
    a := c;
    a := ; //!
END_PROGRAM
)"},
        {"a name that is not declared is shown once", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := gone; //!
    gone := a;
    IF gone > 1 THEN a := gone + 1; END_IF;
    gone := TRUE;
    a := other; //!
    a := ; //!
END_PROGRAM
)"},
        {"a name that is not declared is shown in each unit", R"(FUNCTION F : INT
VAR_ARG a : INT; END_VAR
    RESULT := a + gone; //!
END_FUNCTION
PROGRAM P
VAR a : INT := 0; END_VAR
    a := F(gone); //!
    gone := 1;
END_PROGRAM
)"},
        {"a name that is not declared beside one of which nothing is known", R"(PROGRAM P
VAR
    s : TEXT; //!
    a : INT := 0;
END_VAR
    a := s + gone; //!
    gone := s;
    a := s + more; //!
END_PROGRAM
)"},
        {"a name that is not declared in a unit without a section", R"(FUNCTION F : INT
    RESULT := gone; //!
END_FUNCTION
PROGRAM P
VAR a : INT := 0; END_VAR
    a := F();
    a := ; //!
END_PROGRAM
)"},
        {"a function that is not declared", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := Gone(a) + 1; //!
    a := Gone(a);
    Gone(a);
    a := ; //!
END_PROGRAM
)"},
        {"a label that is not defined", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    GOTO nowhere;
    IF a > 1 THEN GOTO here; END_IF;
here:
    a := ; //!
END_PROGRAM //!
)"},
        {"a label that is defined twice", R"(PROGRAM P
VAR a : INT := 0; END_VAR
here:
    a := 1;
here: //!
    GOTO here;
    a := ; //!
END_PROGRAM
)"},
        {"a jump to no name", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    GOTO ; //!
    GOTO 5; //!
    a := ; //!
END_PROGRAM
)"},
        {"a string that is not ended", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := 'one; //!
    a := 2;
    a := ; //!
END_PROGRAM
)"},
        {"a number that cannot be read", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := 3#1; //!
    a := 99999999999999999999999;
    a := 1_000; //!
    a := ; //!
END_PROGRAM
)"},
        {"signs that mean nothing", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := a % 2; //!
    a := a && 1; //!
    a := a ! 1; //!
    a += 1; //!
END_PROGRAM
)"},
        {"a comment that is not ended", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := ; //!
    a := 1; (* open //!?
    a := ;
END_PROGRAM
)"},
    };
    return CASES;
}

inline const std::vector<RepairCase>& HeadCases() {
    static const std::vector<RepairCase> CASES = {
        {"the condition of an IF", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF THEN //!
        a := 1;
    ELSIF a + THEN //!
        a := ; //!
    ELSIF a THEN //!
        a := 2;
    ELSE
        a := 3;
    END_IF;
    IF a := 1 THEN a := ; END_IF; //!!
END_PROGRAM
)"},
        {"an IF without THEN", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF a > 1
        a := 1; //!
    ELSIF a > 2
        a := ; //!!
    END_IF;
    a := ; //!
END_PROGRAM
)"},
        {"the condition of a WHILE", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    WHILE DO //!
        a := ; //!
        EXIT;
    END_WHILE;
    WHILE a DO a := ; END_WHILE; //!!
    WHILE a > 1
        a := 1; //!
    END_WHILE;
    WHILE a > THEN //!
        a := ; //!
    END_WHILE;
END_PROGRAM
)"},
        {"the condition of an UNTIL", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    REPEAT
        a := ; //!
    UNTIL a END_REPEAT; //!
    REPEAT
        a := 1;
    UNTIL END_REPEAT; //!
    REPEAT
        a := 1;
    UNTIL a > 1; END_REPEAT; //!
    REPEAT
        a := 1;
    UNTIL a >
    END_REPEAT; //!
    a := ; //!
END_PROGRAM
)"},
        {"the start and the bound of a FOR", R"(PROGRAM P
VAR a : INT := 0; i : INT; END_VAR
    FOR i := TO 3 DO a := 1; END_FOR; //!
    FOR i := TRUE TO 3 DO a := 1; END_FOR; //!
    FOR i := 1 TO DO a := ; END_FOR; //!!
    FOR i := 1 TO 2.5 DO a := 1; END_FOR; //!
    FOR i := 1 DOWNTO 'a' DO a := 1; END_FOR; //!
    a := ; //!
END_PROGRAM
)"},
        {"the variable of a FOR", R"(PROGRAM P
VAR a : INT := 0; r : REAL := 0.0; i : INT; END_VAR
    FOR r := 1 TO 3 DO a := ; CONTINUE; END_FOR; //!!
    FOR 1 TO 3 DO a := 1; END_FOR; //!
    FOR i = 1 TO 3 DO a := 1; END_FOR; //!
    FOR gone := 1 TO 3 DO a := gone; END_FOR; //!
    FOR DO a := 1; END_FOR; //!
    a := ; //!
END_PROGRAM
)"},
        {"a FOR without TO or DO", R"(PROGRAM P
VAR a : INT := 0; i : INT; END_VAR
    FOR i := 1 DO a := 1; END_FOR; //!
    FOR i := 1 TO 3
        a := 1; //!
    END_FOR;
    FOR i := 1 TO 3 BY 2 DO a := 1; END_FOR; //!
    FOR i := 1, 3 DO a := 1; END_FOR; //!
    a := ; //!
END_PROGRAM
)"},
        {"the value of a CASE", R"(PROGRAM P
VAR a : INT := 0; r : REAL := 0.0; END_VAR
    CASE OF 1: a := 1; END_CASE; //!
    CASE r OF 1: a := ; END_CASE; //!!
    CASE a
        1: a := 1; //!
    END_CASE;
    a := ; //!
END_PROGRAM
)"},
        {"the labels of a CASE", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    CASE a OF
        1: a := 1;
        1: a := 2; //!
        'x': a := 3; //!
        a: a := 4; //!
        4, : a := 5; //!
        6..: a := 6; //!
        9..7: a := 7; //!
        10 a := 8; //!
    ELSE
        a := ; //!
    END_CASE;
    a := ; //!
END_PROGRAM
)"},
    };
    return CASES;
}

inline const std::vector<RepairCase>& StructureCases() {
    static const std::vector<RepairCase> CASES = {
        {"an IF without END_IF at the end of the unit", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := ; //!
    IF a > 1 THEN
        a := 1;
END_PROGRAM //!
)"},
        {"an IF without END_IF in a loop", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    WHILE a > 1 DO
        IF a > 1 THEN
            a := 1;
    END_WHILE; //!
    a := ; //!
END_PROGRAM
)"},
        {"a FOR without END_FOR in an IF", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF a > 1 THEN
        FOR a := 1 TO 3 DO
            a := 1;
    ELSE //!
        a := ; //!
    END_IF;
    a := ; //!
END_PROGRAM
)"},
        {"a WHILE without END_WHILE in a CASE", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    CASE a OF
        1: WHILE a > 1 DO
            a := 1;
    END_CASE; //!
    a := ; //!
END_PROGRAM
)"},
        {"an IF without END_IF before the next label", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    CASE a OF
        1: WHILE a > 1 DO
            IF a > 1 THEN
                a := 1;
        2: a := ; //!!
        3, 4: a := ; //!
    ELSE
        a := 3;
    END_CASE;
END_PROGRAM
)"},
        {"a CASE without END_CASE in a REPEAT", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    REPEAT
        CASE a OF
            1: a := 1;
    UNTIL a > 1 END_REPEAT; //!
    a := ; //!
END_PROGRAM
)"},
        {"a REPEAT without its end in an IF", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF a > 1 THEN
        REPEAT
            a := 1;
    END_IF; //!
    a := ; //!
END_PROGRAM
)"},
        {"a REPEAT without UNTIL", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    REPEAT
        a := 1;
    END_REPEAT; //!
    a := ; //!
END_PROGRAM
)"},
        {"a missing end at the end of a function", R"(FUNCTION F : INT
VAR_ARG a : INT; END_VAR
    WHILE a > 1 DO
        IF a > 1 THEN
            RESULT := a;
END_FUNCTION //!
PROGRAM P
VAR a : INT := 0; END_VAR
    a := F(a);
    a := ; //!
END_PROGRAM
)"},
        {"an end of another kind", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF a > 1 THEN
        a := 1;
    END_WHILE; //!
    END_IF;
    a := ; //!
END_PROGRAM
)"},
        {"ends that nothing asks for", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    END_IF; //!
    a := 1;
    END_FOR; //!
    ELSE //!
    a := 2;
    ELSIF a > 1 THEN //!
    a := 3;
    UNTIL a > 1; //!
    a := ; //!
END_PROGRAM
)"},
        {"a second ELSE", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF a > 1 THEN
        a := 1;
    ELSE
        a := 2;
    ELSE //!
        a := 3;
    END_IF;
    a := ; //!
END_PROGRAM
)"},
        {"an ELSIF after the ELSE", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF a > 1 THEN
        a := 1;
    ELSE
        a := 2;
    ELSIF a > 3 THEN //!
        a := 3;
    END_IF;
    a := ; //!
END_PROGRAM
)"},
        {"an end without its semicolon", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF a > 1 THEN
        a := 1;
    END_IF
    a := 2; //!
    WHILE a > 1 DO a := 1; END_WHILE
    a := ; //!!
END_PROGRAM
)"},
        {"ELSE IF", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF a > 1 THEN
        a := 1;
    ELSE IF a > 2 THEN
        a := 2;
    END_IF;
    a := ; //!
END_PROGRAM //!
)"},
        {"a keyword that is misspelt", R"(PROGRAM P
VAR a : INT := 0; i : INT; END_VAR
    IFF a > 1 THEN //!
        a := ; //!
    ELSIF a > 2 THEN
        a := 2;
    END_IF;
    WHLE a > 1 DO //!
        a := ; //!
    END_WHILE;
    FRO i := 1 TO 3 DO //!
        IF a > 1 THEN EXIT; END_IF;
    END_FOR;
    SWITCH a OF //!
        1: a := ; //!
        2: a := 2;
    END_CASE;
    a := ; //!
END_PROGRAM
)"},
        {"an ELSIF that is misspelt", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    WHILE a > 1 DO
        IF a > 1 THEN
            a := 1;
        ELSEIF a > 2 THEN //!
            a := 2;
        END_IF;
        a := ; //!
    END_WHILE;
END_PROGRAM
)"},
        {"a keyword that is missing", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a > 1 THEN //!
        a := 1;
    END_IF;
    a > 1 THEN //!
    a := ; //!
END_PROGRAM
)"},
        {"a section among the statements", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := 1;
VAR //!
    b : INT := 0;
END_VAR
    b := a;
    a := b;
    a := ; //!
END_PROGRAM
)"},
#ifndef YXST_SANITIZED  // which takes more stack
        {"deep nesting ends the check", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    a := ; //!
    a := @; //!?
    a := ;
END_PROGRAM
)"},
#endif
    };
    return CASES;
}

inline const std::vector<RepairCase>& UnitCases() {
    static const std::vector<RepairCase> CASES = {
        {"a section of another kind of unit", R"(FUNCTION F : INT
VAR_INPUT a : INT; END_VAR //!
    RESULT := a;
END_FUNCTION
PROGRAM P
VAR_ARG a : INT; END_VAR //!
VAR b : INT := 0; END_VAR
    b := F(a);
    b := ; //!
END_PROGRAM
)"},
        {"arguments after other sections", R"(FUNCTION F : INT
VAR x : INT := 0; END_VAR
VAR_ARG a : INT; END_VAR //!
    RESULT := a + x;
END_FUNCTION
PROGRAM P
VAR b : INT := 0; END_VAR
    b := F(b);
    b := ; //!
END_PROGRAM
)"},
        {"a program without a section", R"(PROGRAM P
    b := 1; //!!
    CONTINUE; //!
END_PROGRAM
)"},
        {"a function without its type", R"(FUNCTION F
VAR_ARG a : INT; END_VAR //!
    RESULT := a;
END_FUNCTION
PROGRAM P
VAR b : INT := 0; END_VAR
    b := F(b);
    b := ; //!
END_PROGRAM
)"},
        {"a function of a type that is none", R"(FUNCTION F : TEXT //!
VAR_ARG a : INT; END_VAR
    RESULT := 'a';
END_FUNCTION
PROGRAM P
VAR b : INT := 0; END_VAR
    b := F(b);
    b := ; //!
END_PROGRAM
)"},
        {"a unit without a name", R"(FUNCTION : INT //!
VAR_ARG a : INT; END_VAR
    RESULT := a;
END_FUNCTION
PROGRAM
VAR b : INT := 0; END_VAR //!
    b := ; //!
END_PROGRAM
)"},
        {"two functions of one name", R"(FUNCTION F : INT
VAR_ARG a : INT; END_VAR
    RESULT := a;
END_FUNCTION
FUNCTION F : INT //!
    RESULT := 1;
END_FUNCTION
PROGRAM P
VAR b : INT := 0; END_VAR
    b := F(b);
    b := ; //!
END_PROGRAM
)"},
        {"a semicolon after the head", R"(FUNCTION F : INT; //!
VAR_ARG a : INT; END_VAR
    RESULT := a;
END_FUNCTION
PROGRAM P; //!
VAR b : INT := 0; END_VAR
    b := F(b);
    b := ; //!
END_PROGRAM
)"},
        {"a semicolon after END_VAR", R"(PROGRAM P
VAR b : INT := 0; END_VAR;
    b := ; //!
END_PROGRAM
)"},
        {"a function that is not ended", R"(FUNCTION F : INT
VAR_ARG a : INT; END_VAR
    RESULT := a;
PROGRAM P //!
VAR b : INT := 0; END_VAR
    b := F(b);
    b := ; //!
END_PROGRAM
)"},
        {"the end of another kind of unit", R"(FUNCTION_BLOCK F
VAR_ARG a : INT; END_VAR
    a := ; //!
END_FUNCTION //!
PROGRAM P
VAR b : INT := 0; END_VAR
    F(b);
    b := ; //!
END_FUNCTION //!
)"},
        {"text before the first unit", R"(Version 2.0 of the pump //!
PROGRAM P
VAR b : INT := 0; END_VAR
    b := ; //!
END_PROGRAM
)"},
        {"text between units", R"(FUNCTION F : INT
    RESULT := 1;
END_FUNCTION;  //!
PROGRAM P
VAR b : INT := 0; END_VAR
    b := F();
    b := ; //!
END_PROGRAM
)"},
        {"a section before the first unit", R"(VAR_GLOBAL //!
    g : INT;
END_VAR
PROGRAM P
VAR b : INT := 0; END_VAR
    b := ; //!
END_PROGRAM
)"},
        {"a function that calls one after it", R"(FUNCTION F : INT
    RESULT := G() + 1; //!
END_FUNCTION
FUNCTION G : INT
    RESULT := ; //!
END_FUNCTION
PROGRAM P
VAR b : INT := 0; END_VAR
    b := F() + G();
END_PROGRAM
)"},
        {"a block as a value and a function as a statement", R"(FUNCTION_BLOCK Set
VAR_REF r : INT; END_VAR
    r := 1;
END_FUNCTION_BLOCK
PROGRAM P
VAR b : INT := 0; END_VAR
    b := Set(b); //!
    Set(1); //!
    Set(b + 1); //!
    Set(b);
    b := ; //!
END_PROGRAM
)"},
        {"an end in two words", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    IF a > 1 THEN
        a := 2;
    END IF; //!
    a := ; //!
END PROGRAM //!
)"},
        {"literals with types", R"(PROGRAM P
VAR a : INT := 0; r : REAL := 0.0; END_VAR
    a := INT#5; //!
    a := ; //!
    IF r > REAL#1.0 THEN //!
        a := 2 + ; //!
    END_IF;
END_PROGRAM
)"},
        {"words of the language as names", R"(PROGRAM P
VAR
    if : INT; //!
    case : INT; //!
    function : BOOL; //!
    a : INT := 0;
END_VAR
    a := ; //!
END_PROGRAM
)"},
        {"a section of another dialect", R"(PROGRAM P
VAR a : INT := 0; END_VAR
VAR_TEMP
    t : INT := 0; //!
    u : INT := 0;
END_VAR
    a := t + u;
    a := ; //!
END_PROGRAM
)"},
        {"a section of another dialect that is the first", R"(PROGRAM P
VAR_TEMP //!
    t : INT := 0;
END_VAR
    t := t + 1;
    t := ; //!
END_PROGRAM
)"},
        {"a program without a section and with other errors", R"(PROGRAM P
    x := ; //!!
    y := ; //!
END_PROGRAM
)"},
        {"nothing but a function", R"(FUNCTION F : INT
    RESULT := ; //!
END_FUNCTION //!
)"},
        {"a program that is not ended", R"(PROGRAM P
VAR b : INT := 0; END_VAR
    b := ; //!
    b := 1; //!
)"},
    };
    return CASES;
}

// After a slip whose mend is certain the rest of its piece is checked as well.
inline const std::vector<RepairCase>& MendCases() {
    static const std::vector<RepairCase> CASES = {
        {"functions that are not built in, within each other", R"(PROGRAM P
VAR
    a : REAL := 0.0;
    n : INT := 0;
END_VAR
    a := MIN(MAX(a, 1_0), n) + ABS(a) * gone; //!!!!!
    n := REAL_TO_INT(a) MOD 3 + 1_0; //!!
    IF INT_TO_BOOL(n) AND BOOL_TO_INT(n > 1) = 1 THEN n := ; END_IF; //!!!
    n := WORD_TO_INT(n) + ; //!!
END_PROGRAM
)"},
        {"nothing follows from a function that is not built in", R"(PROGRAM P
VAR
    a : BOOL := FALSE;
    n : INT := 0;
END_VAR
    a := SEL(a, a, n > 0); //!
    n := n MOD LIMIT(0, n, 3); //!
    n := LIMIT(0);
    a := ; //!
END_PROGRAM
)"},
        {"the result under the name of the function", R"(FUNCTION F : INT
VAR_ARG x : INT; END_VAR
    F := x + gone; //!!
END_FUNCTION
PROGRAM P
VAR b : INT := 0; END_VAR
    b := F(b);
    b := ; //!
END_PROGRAM
)"},
        {"signs and numbers of other languages", R"(PROGRAM P
VAR
    a : INT := 0;
    b : BOOL := FALSE;
    t : TON; //!
END_VAR
    b := a == 1 AND b = b2; //!!!
    IF t.Q && b THEN a := 1; END_IF;
    IF b && t == 1_000 || (a != 2) THEN a := ; END_IF; //!!!!!!
    a = 2 + gone; //!!
    a := 1E9 + 2E3; //!!
END_PROGRAM
)"},
        {"comparisons before logic", R"(PROGRAM P
VAR
    a : REAL := 0.0;
    b : BOOL := FALSE;
END_VAR
    b := a > 1.0 AND a < 2.0 AND NOT a = 3.0 OR gone; //!!
    IF NOT (a > 1.0 AND a < 2.0)) THEN b := ; END_IF; //!!!
END_PROGRAM
)"},
        {"parameters by name", R"(FUNCTION F : REAL
VAR_ARG
    x : REAL;
    y : REAL;
END_VAR
    RESULT := x + y;
END_FUNCTION
PROGRAM P
VAR a : REAL := 0.0; END_VAR
    a := F(x := a, y := gone); //!!
    a := F(y := a, x := 1.0); //!
    a := ; //!
END_PROGRAM
)"},
        {"elements of an array that is refused", R"(PROGRAM P
VAR
    a : ARRAY[0..3] OF REAL; //!
    b : BOOL := FALSE;
END_VAR
    a[0] := a[1] + a[2] * gone; //!
    b := a[b + 1] > 2.0;
    b := b[1]; //!
    a := ; //!
END_PROGRAM
)"},
        {"types and variables outside of the units", R"(TYPE Mode : (off, on); END_TYPE //!
VAR_GLOBAL //!
    total : INT;
END_VAR
TYPE //!
    Pump : STRUCT
        speed : REAL;
    END_STRUCT;
END_TYPE
PROGRAM P
VAR
    m : Mode := off;
    p : Pump;
    a : INT := 0;
END_VAR
    m := on;
    total := total + 1;
    CASE m OF
        off: a := 1;
        on: a := 2;
    END_CASE;
    a := speed; //!
END_PROGRAM
)"},
        {"comments and pragmas of other languages", R"({attribute 'hide'} //!
FUNCTION F : INT
VAR END_VAR
    RESULT := 1;
END_FUNCTION; //!
/* main */ //!
PROGRAM P
VAR a : INT := 0; END_VAR
    {warn} a := ; //!!
    /* text */ a := ; //!!
#region one //!
    a := F() + ; //!
#endregion //!
END_PROGRAM
)"},
        {"the end of a program after a directive", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    CASE a OF
        1: a := 2;
    ELSE: a := ; //!!
    END_CASE; //!
#endregion //!
)"},
        {"sections of a block that go by other words", R"(FUNCTION_BLOCK B
VAR_INPUT //!
    x : INT;
END_VAR
VAR_OUTPUT //!
    y : INT;
END_VAR
    y := x;
END_FUNCTION_BLOCK
PROGRAM P
VAR
    first : B; //!
    a : INT := 0;
END_VAR
    B(1, a);
    B(1); //!
END_PROGRAM
)"},
        {"types that have another name", R"(PROGRAM P
VAR
    w : WORD := 16#FF; //!
    b : BOOLEAN := FALSE; //!
    a : INT := 0;
END_VAR
    w.3 := TRUE; //!
    b := w;
    a := ; //!
END_PROGRAM
)"},
        {"enumerations, ranges and texts of variables", R"(PROGRAM P
VAR
    m : (off, on) := off; //!
    r : INT(0..5) := 0; //!
    s : STRING := 'abc; //!
    t : STRING(20) := 'a'; //!
    b : BOOL := FALSE;
END_VAR
    m := on;
    CASE m OF
        off: b := TRUE;
        on: b := FALSE;
    END_CASE;
    s := 'a';
    r := r + ; //!
END_PROGRAM
)"},
        {"words that are nearly right", R"(PROGRAM P
VAR a : INT := 0; END_VAR
    REPAET
        a := a + 1; //!
        IF a > 1 THEN a := ; ENDIF; //!!
    UNTIL a > 3 END_REPEAT;
    WHILE a > 0 DO a := a - 1; WEND; //!
    a := ; //!
END_PROGRAM
)"},
    };
    return CASES;
}
