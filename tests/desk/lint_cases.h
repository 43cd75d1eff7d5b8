// Scripts that the lints fire on, and some that are nearly the same and have nothing.
#pragma once

#include <QString>

#include <vector>

struct LintCase {
    const char* id;
    QString script;
    const char* marked;
    const char* message;
    const char* help = "";
};

// Statements in a program that has variables of all kinds.
inline QString LintedStatements(const char* text) {
    return QStringLiteral(
               "FUNCTION Twice : INT VAR_ARG x : INT; END_VAR RESULT := x; END_FUNCTION\n"
               "PROGRAM Demo\n"
               "VAR_INPUT a : INT; b : INT; c : INT; r : REAL; q : REAL; l : LREAL;\n"
               "          x : BOOL; y : BOOL; z : BOOL; u : USINT; w : UDINT;\n"
               "END_VAR\n") +
           QString::fromUtf8(text) + QStringLiteral("\nEND_PROGRAM\n");
}

// The same with a function of these statements before it.
inline QString LintedFunction(const char* text) {
    return QStringLiteral("FUNCTION Find : INT VAR_ARG n : INT; END_VAR VAR i : INT; END_VAR\n") +
           QString::fromUtf8(text) +
           QStringLiteral(
               "\nEND_FUNCTION\nPROGRAM Demo VAR_INPUT a : INT; END_VAR\n"
               "a := Find(a);\nEND_PROGRAM\n");
}

inline QString Declared(const char* declarations) {
    return QStringLiteral("PROGRAM Demo\n") + QString::fromUtf8(declarations) +
           QStringLiteral("\nEND_PROGRAM\n");
}

inline std::vector<LintCase> CasesOfStatements() {
    constexpr const char* inLoop = "\"EXIT\" ends the whole of \"Demo\", not the loop alone";
    constexpr const char* inCase =
        "\"EXIT\" ends the whole of \"Demo\" and leaves the value of the \"CASE\" on the stack";
    constexpr const char* breakHelp = "`BREAK` leaves the loop";
    constexpr const char* caseHelp =
        "a branch ends by itself; to leave `Demo`, set a variable and `EXIT` after `END_CASE`";
    return {
        {"exit-in-loop", LintedStatements("WHILE x DO EXIT; END_WHILE; a := b;"), "EXIT", inLoop,
         breakHelp},
        {"exit-in-loop",
         LintedStatements("FOR a := 1 TO 9 DO IF x THEN b := 1; EXIT; END_IF; END_FOR; a := b;"),
         "EXIT", inLoop, breakHelp},
        {"exit-in-loop",
         LintedStatements("IF y THEN REPEAT EXIT; UNTIL x END_REPEAT; END_IF; a := b;"), "EXIT",
         inLoop, breakHelp},
        {"exit-in-loop", LintedStatements("WHILE x DO WHILE y DO EXIT; END_WHILE; END_WHILE;"),
         "EXIT", inLoop, breakHelp},
        {"exit-in-loop", LintedStatements("CASE a OF 1: b := 2; EXIT; END_CASE;"), "EXIT", inCase,
         caseHelp},
        {"exit-in-loop",
         LintedStatements("WHILE x DO CASE a OF 1: IF y THEN EXIT; END_IF; END_CASE; END_WHILE;"),
         "EXIT", inCase, caseHelp},
        {"exit-in-loop", LintedStatements("CASE a OF 1: WHILE x DO EXIT; END_WHILE; END_CASE;"),
         "EXIT", inLoop, breakHelp},
        {"exit-in-loop",
         LintedFunction("RESULT := 0; FOR i := 1 TO n DO IF i = 3 THEN EXIT; END_IF; END_FOR;\n"
                        "RESULT := n;"),
         "EXIT", "\"EXIT\" ends the whole of \"Find\", not the loop alone", breakHelp},
        {"exit-in-loop",
         LintedFunction("FOR i := 1 TO n DO IF i = 3 THEN RESULT := i; ELSE EXIT; END_IF;\n"
                        "END_FOR; RESULT := n;"),
         "EXIT", "\"EXIT\" ends the whole of \"Find\", not the loop alone", breakHelp},
        {"exit-in-loop",
         LintedFunction("CASE n OF 1: FOR i := 1 TO n DO RESULT := i; EXIT; END_FOR; END_CASE;\n"
                        "RESULT := n;"),
         "EXIT",
         "\"EXIT\" ends the whole of \"Find\" and leaves the value of the \"CASE\" on the stack",
         "a branch ends by itself; to leave `Find`, set a variable and `EXIT` after `END_CASE`"},
        {"label-in-case", LintedStatements("CASE a OF 1: b := 2; RUNNING: b := 3; END_CASE;"),
         "RUNNING", "\"RUNNING:\" begins no branch of the \"CASE\": it is a label for \"GOTO\"",
         "a branch begins with numbers: write the value of `RUNNING`"},
        {"label-in-case", LintedStatements("CASE a OF 1: b := 2; Others: b := 3; END_CASE;"),
         "Others", "\"Others:\" begins no branch of the \"CASE\": it is a label for \"GOTO\"",
         "the branch for all other values is `ELSE`, without a `:`"},
        {"unused-label", LintedStatements("again: a := b;"), "again",
         "No \"GOTO\" names the label \"again\"", "leave the label out"},
        {"unused-label",
         LintedStatements("CASE a OF 1: IF x THEN again: b := 2; END_IF; END_CASE;"), "again",
         "No \"GOTO\" names the label \"again\"", "leave the label out"},
        {"hidden-case-range",
         LintedStatements("CASE a OF\n-1..10, 20: b := 1;\n21..30: b := 2;\n 2 .. 5: b := 3;\n"
                          "END_CASE;"),
         "2 .. 5", "No value reaches \"2 .. 5\": \"-1..10\" on line 7 takes all of it"},
        {"hidden-case-range",
         LintedStatements("CASE a OF -9..-1: b := 1; -5..-3: b := 2; END_CASE;"), "-5..-3",
         "No value reaches \"-5..-3\": \"-9..-1\" on line 6 takes all of it"},
    };
}

inline std::vector<LintCase> CasesOfDeclarations() {
    return {
        {"declaration-after-constants",
         Declared("VAR CONSTANT\n  low : INT := 1;\n  high : INT := 2;\nEND_VAR\n"
                  "VAR_INPUT a : INT; END_VAR a := low + high;"),
         "high",
         "\"high\" is no constant: \"CONSTANT\" belongs to the first declaration of the section"
         " alone",
         "write `CONSTANT` before `high` too"},
        {"declaration-after-constants",
         Declared("VAR CONSTANT\n  low : INT := 1;\n  high : INT;\nEND_VAR\n"
                  "VAR_INPUT a : INT; END_VAR a := low;"),
         "high",
         "\"high\" is no constant: \"CONSTANT\" belongs to the first declaration of the section"
         " alone",
         "write `CONSTANT` before `high` too, and give it a value"},
        {"declaration-after-constants",
         Declared("VAR\n  CONSTANT\n  low : INT := 1;\n  high : INT := 2;\nEND_VAR\n"
                  "VAR_INPUT a : INT; END_VAR a := low + high;"),
         "high",
         "\"high\" is no constant: \"CONSTANT\" belongs to the first declaration of the section"
         " alone",
         "write `CONSTANT` before `high` too"},
        {"bool-initial-true", Declared("VAR p : BOOL := True; END_VAR p := NOT p;"), "True",
         "\"p\" is missing from the code: as an initial value \"True\" has no meaning",
         "write `TRUE`"},
        {"bool-initial-true", Declared("VAR_INPUT p : BOOL := fALSE; END_VAR p := NOT p;"),
         "fALSE", "\"p\" is missing from the code: as an initial value \"fALSE\" has no meaning",
         "write `FALSE`"},
        {"constant-out-of-range", Declared("VAR s : SINT := 128; END_VAR s := s + 1;"), "128",
         "\"128\" does not fit into \"s\": a \"SINT\" is from -128 to 127"},
        {"constant-out-of-range", Declared("VAR s : SINT := -129; END_VAR s := s + 1;"), "-129",
         "\"-129\" does not fit into \"s\": a \"SINT\" is from -128 to 127"},
        {"constant-out-of-range", LintedStatements("u := 256;"), "256",
         "\"256\" does not fit into \"u\": a \"USINT\" is from 0 to 255"},
        {"constant-out-of-range", LintedStatements("w := + - 1;"), "+ - 1",
         "\"+ - 1\" does not fit into \"w\": a \"UDINT\" is from 0 to 4294967295"},
        {"constant-out-of-range", LintedStatements("a := 16#10000;"), "16#10000",
         "\"16#10000\" does not fit into \"a\": an \"INT\" is from -32768 to 32767"},
        {"constant-out-of-range", LintedStatements("u := 8#400;"), "8#400",
         "\"8#400\" does not fit into \"u\": a \"USINT\" is from 0 to 255"},
        {"constant-out-of-range", LintedStatements("a := 32768.0;"), "32768.0",
         "\"32768.0\" does not fit into \"a\": an \"INT\" is from -32768 to 32767"},
        {"constant-out-of-range", LintedStatements("r := 1.0E39;"), "1.0E39",
         "\"1.0E39\" does not fit into \"r\": no number of type \"REAL\" is as large"},
        {"constant-out-of-range", LintedStatements("l := -1.0E309;"), "-1.0E309",
         "\"-1.0E309\" does not fit into \"l\": no number of type \"LREAL\" is as large"},
        {"constant-out-of-range",
         LintedStatements("w := 99999999999999999999999999999999999999999999;"),
         "99999999999999999999999999999999999999999999",
         "\"999999999999999999...999999999999999999\" does not fit into \"w\": a \"UDINT\" is "
         "from"
         " 0 to 4294967295"},
        {"constant-out-of-range", LintedStatements("FOR u := 256 DOWNTO 9 DO a := 1; END_FOR;"),
         "256", "\"256\" does not fit into \"u\": a \"USINT\" is from 0 to 255"},
        {"constant-out-of-range", LintedStatements("FOR u := 0 TO 300 DO a := 1; END_FOR;"),
         "300", "\"300\" does not fit into \"u\": a \"USINT\" is from 0 to 255"},
        {"constant-out-of-range", LintedStatements("FOR u := 0 TO 255 DO a := 1; END_FOR;"),
         "255",
         "The loop never ends by its bound: \"u\" never gets above it, as a \"USINT\" is from 0"
         " to 255",
         "count with a wider type, or do the last round after the loop"},
        {"constant-out-of-range", LintedStatements("FOR u := 9 DOWNTO 0 DO a := 1; END_FOR;"),
         "0",
         "The loop never ends by its bound: \"u\" never gets below it, as a \"USINT\" is from 0"
         " to 255",
         "count with a wider type, or do the last round after the loop"},
        {"constant-out-of-range", LintedStatements("CASE u OF 1, 256: a := 1; END_CASE;"), "256",
         "\"256\" does not fit into \"u\": a \"USINT\" is from 0 to 255"},
        {"constant-out-of-range", LintedStatements("CASE u OF -1..5: a := 1; END_CASE;"), "-1",
         "\"-1\" does not fit into \"u\": a \"USINT\" is from 0 to 255"},
        {"constant-out-of-range", LintedFunction("RESULT := 70000 (* all *);"), "70000",
         "\"70000\" does not fit into \"RESULT\": an \"INT\" is from -32768 to 32767"},
        {"look-alike-names",
         Declared("VAR_INPUT\n Alarm : INT;\n Аlarm : INT;\nEND_VAR Alarm := Аlarm;"), "Аlarm",
         "\"Аlarm\" is another name than \"Alarm\", which looks like it: the letter \"А\" at "
         "place"
         " 1 is Cyrillic here and Latin on line 3"},
        {"look-alike-names", Declared("VAR_INPUT\n ТОК : INT; тoк : INT;\nEND_VAR ТОК := тoк;"),
         "тoк",
         "\"тoк\" is another name than \"ТОК\", which looks like it: the letter \"o\" at place 2"
         " is Latin here and Cyrillic on line 3"},
        {"look-alike-names", LintedStatements("Twiсe: a := Twice(a); GOTO Twiсe;"), "Twiсe",
         "\"Twiсe\" is another name than \"Twice\", which looks like it: the letter \"с\" at "
         "place"
         " 4 is Cyrillic here and Latin on line 1"},
        {"look-alike-names", Declared("VAR_INPUT соs : LREAL; END_VAR соs := cos(соs);"), "соs",
         "\"соs\" is another name than \"cos\", which looks like it: the letter \"с\" at place 1"
         " is Cyrillic here and Latin there"},
    };
}

// What the operators of statements are grouped as.
inline LintCase Grouped(const char* id, const char* statements, const char* marked,
                        const char* message) {
    return {id, LintedStatements(statements), marked, message,
            "write the parentheses that are meant"};
}

inline std::vector<LintCase> CasesOfGrouping() {
    constexpr const char* grouping = "surprising-grouping";
    constexpr const char* condition = "surprising-condition";
    return {
        Grouped(grouping, "a := b * c / 3600;", "b * c / 3600",
                "This is grouped as \"b * (c / 3600)\""),
        Grouped(grouping, "r := r * c / 3600;", "r * c / 3600",
                "This is grouped as \"r * (c / 3600)\""),
        Grouped(grouping, "r := r / q * 2.0;", "r / q * 2.0",
                "This is grouped as \"r / (q * 2.0)\""),
        Grouped(grouping, "a := a / b / c / 2;", "a / b / c / 2",
                "This is grouped as \"a / (b / (c / 2))\""),
        Grouped(grouping, "a := 1 + a * b * c\n  MOD 2 + 1;", "a * b * c\n  MOD 2",
                "This is grouped as \"a * b * (c MOD 2)\""),
        Grouped(grouping, "a := a + b AND 7;", "a + b AND 7",
                "This is grouped as \"a + (b AND 7)\""),
        Grouped(grouping, "a := a AND b + 7;", "a AND b + 7",
                "This is grouped as \"(a AND b) + 7\""),
        Grouped(grouping, "a := a SHL 8 OR b;", "a SHL 8 OR b",
                "This is grouped as \"a SHL (8 OR b)\""),
        Grouped(grouping, "a := Twice(a / b * (c + 1)) - c;", "a / b * (c + 1)",
                "This is grouped as \"a / (b * (c + 1))\""),
        Grouped(grouping, "a := a ** b ** 2;", "a ** b ** 2",
                "This is grouped as \"a ** (b ** 2)\""),
        Grouped(grouping, "a := -a ** 2;", "-a ** 2", "This is grouped as \"(-a) ** 2\""),
        Grouped(grouping, "a := NOT a AND b;", "NOT a AND b",
                "This is grouped as \"NOT (a AND b)\""),
        Grouped(grouping, "x := a / b / c > 1;", "a / b / c",
                "This is grouped as \"a / (b / c)\""),
        Grouped(grouping, "a := a / b (* per (shift) *) / // of\n 2;",
                "a / b (* per (shift) *) / // of\n 2", "This is grouped as \"a / (b / 2)\""),
        Grouped(grouping, "a := a / (a + a + a + a + a + a + a + a + a + a + a) / b;",
                "a / (a + a + a + a + a + a + a + a + a + a + a) / b",
                "This is grouped as \"a / ((a + a + a + a + a...a + a + a + a) / b)\""),
        Grouped(condition, "x := x AND y OR z;", "x AND y OR z",
                "This is grouped as \"x AND (y OR z)\""),
        Grouped(condition, "x := x AND y AND NOT z OR a > 1;", "x AND y AND NOT z OR a > 1",
                "This is grouped as \"x AND y AND (NOT z OR a > 1)\""),
        Grouped(condition, "x := x XOR y OR z;", "x XOR y OR z",
                "This is grouped as \"x XOR (y OR z)\""),
        Grouped(condition, "x := x OR y AND z OR (a > 1);", "y AND z OR (a > 1)",
                "This is grouped as \"y AND (z OR (a > 1))\""),
        Grouped(condition, "IF x AND y XOR z THEN END_IF;", "x AND y XOR z",
                "This is grouped as \"x AND (y XOR z)\""),
        Grouped(condition, "x := a = 16#0F OR 16#10;", "a = 16#0F OR 16#10",
                "This is grouped as \"a = (16#0F OR 16#10)\""),
        Grouped(condition, "x := a = b OR -1;", "a = b OR -1",
                "This is grouped as \"a = (b OR -1)\""),
        Grouped(condition, "x := a > -1 OR b;", "a > -1 OR b",
                "This is grouped as \"a > (-1 OR b)\""),
        {grouping,
         QStringLiteral("FUNCTION Cut : INT VAR_ARG x : REAL; END_VAR RESULT := 2;\n"
                        "IF x > 1.0 THEN RESULT := 3; END_IF; END_FUNCTION\n"
                        "PROGRAM P VAR_INPUT a : INT; r : REAL; END_VAR\n"
                        "a := a * Cut(r) / 2;\nEND_PROGRAM\n"),
         "a * Cut(r) / 2", "This is grouped as \"a * (Cut(r) / 2)\"",
         "write the parentheses that are meant"},
        {condition,
         Declared("VAR CONSTANT idle : INT := 1; CONSTANT done : INT := 2; END_VAR\n"
                  "VAR_INPUT state : INT; run : BOOL; END_VAR run := state = idle OR done;"),
         "state = idle OR done", "This is grouped as \"state = (idle OR done)\"",
         "write the parentheses that are meant"},
        Grouped(condition, "x := a > 0 OR b;", "a > 0 OR b",
                "This is grouped as \"a > (0 OR b)\""),
    };
}

inline std::vector<LintCase> CasesOfValues() {
    constexpr const char* trueHelp = "compare it with a number, as in `a <> 0`";
    constexpr const char* falseHelp = "compare it with a number, as in `a = 0`";
    constexpr const char* realHelp = "compare their distance, as in `fabs(x - y) < 0.001`";
    constexpr const char* farHelp = "compare their distance, as in `fabs(x - y) >= 0.001`";
    constexpr const char* constant = "constant-condition";
    return {
        {"bool-and-number", LintedStatements("x := a = TRUE;"), "a = TRUE",
         "The number \"a\" is compared with 1", trueHelp},
        {"bool-and-number", LintedStatements("x := a = FALSE;"), "a = FALSE",
         "The number \"a\" is compared with 0", falseHelp},
        {"bool-and-number", LintedStatements("x := a <> TRUE;"), "a <> TRUE",
         "The number \"a\" is compared with 1", falseHelp},
        {"bool-and-number", LintedStatements("x := a >= TRUE;"), "a >= TRUE",
         "The number \"a\" is compared with 1", "compare it with a number"},
        {"bool-and-number", LintedStatements("x := a <> false;"), "a <> false",
         "The number \"a\" is compared with 0", trueHelp},
        {"bool-and-number", LintedStatements("x := r = y;"), "r = y",
         "The number \"r\" is compared with a \"BOOL\", which is 1 or 0"},
        {"real-equality", LintedStatements("x := r = q;"), "r = q",
         "Reals are compared with \"=\", and what is computed is hardly ever equal", realHelp},
        {"real-equality", LintedStatements("x := a + l <> 2;"), "a + l <> 2",
         "Reals are compared with \"<>\", and what is computed is hardly ever equal", farHelp},
        {"real-equality", LintedStatements("x := a = 0.5;"), "a = 0.5",
         "Reals are compared with \"=\", and what is computed is hardly ever equal", realHelp},
        {constant, LintedStatements("IF TRUE THEN a := 1; END_IF;"), "TRUE",
         "The condition is always true"},
        {constant, LintedStatements("IF x THEN ELSIF (NOT TRUE) THEN a := 1; END_IF;"),
         "(NOT TRUE)", "The condition is never true"},
        {constant, LintedStatements("IF ((1 <= -1) OR (2.5 >= (2))) THEN a := 1; END_IF;"),
         "((1 <= -1) OR (2.5 >= (2)))", "The condition is always true"},
        {constant, LintedStatements("IF (1 < 1) XOR (2 > 3) THEN a := 1; END_IF;"),
         "(1 < 1) XOR (2 > 3)", "The condition is never true"},
        {constant, LintedStatements("IF (1 = 1) AND (2 <> 3) THEN a := 1; END_IF;"),
         "(1 = 1) AND (2 <> 3)", "The condition is always true"},
        {constant, LintedStatements("IF (1 + 1 = 2) AND TRUE THEN a := 1; END_IF;"),
         "(1 + 1 = 2) AND TRUE", "The condition is always the same"},
        {constant, LintedStatements("WHILE 1 = 1 DO a := a + 1; END_WHILE;"), "1 = 1",
         "The loop never ends"},
        {constant, LintedStatements("WHILE FALSE DO a := 1; BREAK; END_WHILE;"), "FALSE",
         "The loop never runs"},
        {constant, LintedStatements("REPEAT a := a + 1; UNTIL FALSE END_REPEAT;"), "FALSE",
         "The loop never ends"},
        {constant, LintedStatements("REPEAT a := a + 1; UNTIL TRUE END_REPEAT;"), "TRUE",
         "The loop runs once"},
        {constant,
         LintedStatements("WHILE x DO BREAK; END_WHILE; WHILE TRUE DO a := a + 1; END_WHILE;"),
         "TRUE", "The loop never ends"},
        {"useless-allow", LintedStatements("a := b; // yxst:allow real-equality"),
         "real-equality", "\"real-equality\" finds nothing on this line",
         "leave `real-equality` out of the comment"},
        {"useless-allow", LintedStatements("a := b; (* yxst:allow unused-labels *)"),
         "unused-labels", "There is no lint \"unused-labels\"", "did you mean `unused-label`?"},
        {"useless-allow", LintedStatements("a := b; // yxst:allow is-declared-but-never-used-in"),
         "is-declared-but-never-used-in", "There is no lint \"is-declared-but-never-used-in\"",
         "warnings of the compiler cannot be allowed"},
        {"useless-allow", LintedStatements("a := b; // yxst:allow qqqqqqqqqqqqqqqqq, so it is"),
         "qqqqqqqqqqqqqqqqq", "There is no lint \"qqqqqqqqqqqqqqqqq\""},
        {"useless-allow", LintedStatements("a := b; // yxst: allow real-equality"), "yxst: allow",
         "This comment allows nothing",
         "write `yxst:allow`, in small letters and without blanks"},
        {"useless-allow", LintedStatements("a := b; // YXST:ALLOW REAL-EQUALITY"), "YXST:ALLOW",
         "This comment allows nothing",
         "write `yxst:allow`, in small letters and without blanks"},
        {"useless-allow", LintedStatements("a := b; // it is fine, yxst:allow"), "yxst:allow",
         "This comment names no lint to allow"},
        {"useless-allow", LintedStatements("a := b; // yxst:allow useless-allow"),
         "useless-allow", "\"useless-allow\" finds nothing on this line",
         "leave `useless-allow` out of the comment"},
    };
}

// Scripts without a finding.
inline std::vector<QString> ScriptsWithoutLints() {
    std::vector<QString> scripts = {
        LintedFunction("FOR i := 1 TO n DO IF i = 3 THEN RESULT := i; n := 1; EXIT; END_IF;\n"
                       "END_FOR; RESULT := n;"),
        LintedFunction("RESULT := n; EXIT;"),
        Declared("VAR\n  CONSTANT low : INT := 1;\n  high : INT := 2;\nEND_VAR\n"
                 "VAR_INPUT a : INT; END_VAR a := low + high;"),
        Declared(
            "VAR CONSTANT low : INT := 1;\n  CONSTANT high : INT := 2;\nEND_VAR\n"
            "VAR mean : INT := 2; END_VAR\nVAR_INPUT a : INT; END_VAR a := low + high + mean;"),
        Declared("VAR CONSTANT low : INT := 1;\n  sum : INT := 2;\nEND_VAR sum := sum + low;"),
        Declared(
            "VAR p : BOOL := TRUE; q : BOOL := false; r : BOOL := true; END_VAR p := q OR r;"),
        Declared("VAR s : SINT := 16#FF; i : INT := -32768; u : UDINT := 4294967295; b : BOOL := "
                 "TRUE; n : REAL := 3.4E38; m : REAL := 5.; END_VAR s := s + i + u + n + m; "
                 "b := NOT b;"),
        Declared("VAR_YXGLOBAL g : SINT (300); END_VAR VAR_INPUT вес : INT; Bec : INT; "
                 "ВЭС : INT; END_VAR g := вес + Bec + ВЭС;"),
        QStringLiteral("FUNCTION F : INT VAR_ARG А : INT; END_VAR RESULT := А; END_FUNCTION\n"
                       "PROGRAM P VAR_INPUT A : INT; END_VAR A := F(A); END_PROGRAM\n"),
    };
    for (const char* statements : {
             "WHILE x DO EXIT; END_WHILE;",
             "IF x THEN WHILE y DO EXIT; END_WHILE; ELSE a := 1; END_IF;",
             "WHILE x DO EXIT; END_WHILE; EXIT;",
             "IF x THEN EXIT; END_IF; a := 1;",
             "WHILE x DO BREAK; END_WHILE; a := b;",
             "CASE a OF 1: again: b := 2; GOTO AGAIN; END_CASE;",
             "GOTO over; over: a := 1;",
             "CASE a OF 1..5: b := 1; 6, 7..9: b := 2; -1: b := 3; ELSE b := 4; END_CASE;",
             "CASE a OF 1..9: CASE b OF 2..3: c := 1; END_CASE; 10: c := 2; END_CASE;",
             "a := a * b * c + a - b - c + a / b - (a / b) / c;",
             "r := q * r / 3.5 + q * a / l;",
             "a := a AND b AND 7; a := a OR b AND 3; a := a + b ** 2; a := (-a) ** 2;",
             "a := - (a ** 2); a := 2 ** a; a := NOT a; a := (NOT a) AND b;",
             "x := x AND y AND z; x := x OR y OR z; x := x OR y AND z; x := x XOR y AND z;",
             "x := NOT x AND NOT y; x := NOT a > 1; x := x = y AND z; x := x AND a + 1 > b;",
             "x := a = b AND 15; x := a AND 15 = 3; x := a = 16#0F AND b; x := a = 7;",
             "x := a = 7 + b;",
             "FOR u := 0 TO 254 DO a := 1; END_FOR; FOR u := 255 DOWNTO 1 DO a := 1; END_FOR;",
             "FOR a := 1 TO 16#FFFF DO b := 1; END_FOR; FOR u := 0 TO a DO b := 1; END_FOR;",
             "CASE u OF 0..255: a := 1; END_CASE; CASE u + 1 OF 256: a := 1; END_CASE;",
             "x := x = TRUE; x := a > 1; x := (* none *) 1 = TRUE;",
             "x := r = 0.0; x := 0 <> l; x := r > q; x := a = b; x := r <> -0.0;",
             "WHILE TRUE DO a := a + 1; IF a > 9 THEN BREAK; END_IF; END_WHILE;",
             "WHILE TRUE DO a := a + 1; IF a > 9 THEN EXIT; END_IF; END_WHILE;",
             "REPEAT a := a + 1; IF x THEN GOTO e; END_IF; UNTIL FALSE END_REPEAT; e: a := 1;",
             "REPEAT a := a + 1; IF a > 9 THEN BREAK; END_IF; a := 2; UNTIL TRUE END_REPEAT;",
             "IF x OR TRUE THEN a := 1; END_IF; WHILE a = TICK DO a := 1; END_WHILE;",
             "IF Twice(1) = 2 THEN a := 1; END_IF;",
             "u := 255; a := -32768; w := 16#FFFFFFFF; u := 2#11111111; u := 300 + u; r := 1;",
             "x := a = TRUE; // yxst:allow bool-and-number",
             "x := a = TRUE; // yxst:allow bool-and-number the switch of the old panel",
             "x := a = TRUE; (* as before; yxst:allow bool-and-number *)",
             "x := (r = q) AND (a = TRUE); // yxst:allow bool-and-number, real-equality",
             "x := a = TRUE; // yxst:allow bool-and-number, because it is so, as before",
             "x := (r = q) AND (a = TRUE); // yxst:allow bool-and-number real-equality so it is",
             "a := b; (* for the old panel\n yxst:allow bool-and-number *) x := a = TRUE;",
             "x := a = TRUE; (* for the old panel\n yxst:allow bool-and-number *) a := b;",
             "a := b; // on the page of yxst: allow me to say so",
             "a := b; // yxst:allow unused-label, useless-allow",
             "a := b; // see yxst:allowance and no-yxst:allow or yxst:allow-all",
         }) {
        scripts.push_back(LintedStatements(statements));
    }
    return scripts;
}
