// The machine: what each operation, store and call gives, by the default choices and by others.

#include "machine/machine.h"

#include "both_ways.h"

#include "facts/compile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Code CodeOf(const QString& script) {
    const CompileResult result = CompileAndWait(Source(QStringLiteral("script.st"), script));
    if (!result.facts || !result.facts->isCompiled()) {
        throw std::runtime_error("not compiled: " + script.toStdString());
    }
    QByteArray text;
    for (const ItemFact& item : result.facts->items) {
        const std::string_view code = result.facts->codeOf(item.text);
        text.append(code.data(), static_cast<int>(code.size())).append(' ');
    }
    CodeResult read = ReadCode(text);
    if (read.fault) {
        throw std::runtime_error("not read: " + read.fault->message.toStdString());
    }
    return std::move(read.code);
}

// A frame with a variable of each type, the results in those that end in 1.
QString Script(const QString& statements, const QString& definitions = {}) {
    return definitions + QStringLiteral(R"(
PROGRAM P
VAR_YXGLOBAL g : INT (7); h : DINT (7); END_VAR
VAR_YXREGISTER r : UINT (1, 2, 3, 4); END_VAR
VAR
    b : BOOL := FALSE; b1 : BOOL := FALSE;
    s : SINT := 0; s1 : SINT := 0; us : USINT := 0; us1 : USINT := 0;
    i : INT := 0; i1 : INT := 0; ui : UINT := 0; ui1 : UINT := 0;
    d : DINT := 0; d1 : DINT := 0; ud : UDINT := 0; ud1 : UDINT := 0;
    x : REAL := 0.0; x1 : REAL := 0.0; y : LREAL := 0.0; y1 : LREAL := 0.0;
END_VAR
)") + statements +
           QStringLiteral("\nEND_PROGRAM\n");
}

// A run of some cycles, and what became of it. It must be the same where each cycle is executed
// an item at a time.
class Executed {
public:
    explicit Executed(const QString& script, const QStringList& choices = {}, int cycles = 1,
                      const Checks& checks = Checks())
        : code_(CodeOf(script)), machine_(code_, profileOf(choices), checks) {
        Machine reference(code_, profileOf(choices), checks);
        reference.setItemwise();
        reference.setTickStep(100);
        machine_.setTickStep(100);
        for (int cycle = 0; cycle < cycles; ++cycle) {
            reference.cycle();
            machine_.cycle();
            EXPECT_EQ(DifferenceOf(code_, reference, machine_).toStdString(), "");
        }
    }

    Machine& machine() { return machine_; }
    int variable(const char* name) const {
        return code_.program().variable(QString::fromLatin1(name));
    }
    std::string text(const char* name) const {
        return TextOf(machine_.value(variable(name))).toStdString();
    }
    // The checks that were noted, each with how often.
    std::vector<std::string> notes() const {
        std::map<QString, qint64> counts;
        for (const auto& [place, count] : machine_.notes()) {
            counts[NameOf(place.first)] += count;
        }
        std::vector<std::string> texts;
        texts.reserve(counts.size());
        for (const auto& [name, count] : counts) {
            texts.push_back(name.toStdString() + " " + std::to_string(count));
        }
        return texts;
    }
    std::string stop() const {
        return machine_.stop() ? NameOf(machine_.stop()->check).toStdString() : "";
    }

private:
    Code code_;
    Machine machine_;

    static Profile profileOf(const QStringList& choices) {
        Profile profile;
        const QString failure = SetChoices(profile, choices.join(QLatin1Char('\n')).toUtf8());
        EXPECT_EQ(failure.toStdString(), "");
        return profile;
    }
};

struct Example {
    const char* statements;
    const char* variable;
    const char* value;
    std::vector<std::string> notes = {};
    QStringList choices = {};
};

void ExpectAll(const std::vector<Example>& examples) {
    for (const Example& each : examples) {
        SCOPED_TRACE(std::string(each.statements) + " / " +
                     each.choices.join(QLatin1String(", ")).toStdString());
        const Executed run(Script(QString::fromLatin1(each.statements)), each.choices);
        EXPECT_EQ(run.stop(), "");
        EXPECT_EQ(run.text(each.variable), each.value);
        EXPECT_EQ(run.notes(), each.notes);
    }
}

// ---------------------------------------------------------------------------------------------
// Operations
// ---------------------------------------------------------------------------------------------

TEST(Machine, WholeNumbersHave64Bits) {
    ExpectAll({
        {"d := -7; d1 := d / 2;", "d1", "-3"},
        {"d := -7; d1 := d MOD 2;", "d1", "-1"},
        {"d := 7; d1 := d MOD -2;", "d1", "1"},
        {"i := 30000; i1 := (i + i + i) / 3;", "i1", "30000"},
        {"d1 := 2 ** 30;", "d1", "1073741824"},
        {"d := -2; d1 := d ** 3;", "d1", "-8"},
        {"d1 := 2 ** -1;", "d1", "0"},
        {"d := -1; i := -3; d1 := d ** i;", "d1", "-1"},
        {"d := 0; d1 := d ** 0;", "d1", "1"},
        {"d1 := 12 AND 10;", "d1", "8"},
        {"d1 := 12 OR 3;", "d1", "15"},
        {"d1 := 12 XOR 10;", "d1", "6"},
        {"s := 5; s1 := NOT s;", "s1", "-6"},
        {"us := 5; us1 := NOT us;", "us1", "250"},
        {"s := 5; d1 := NOT (s * -100);", "d1", "-13"},
        {"y := 2 ** 62; y1 := 2.0 * (2 ** 62);", "y1", "9.223372036854776e+18"},
    });
}

TEST(Machine, WholeNumbersBeyond64BitsFollowTheChoice) {
    const char* const sum = "d := 2; y1 := (d ** 62) + (d ** 62);";
    const char* const power = "d := -2; y1 := d ** 65;";
    ExpectAll({
        {sum, "y1", "-9.223372036854776e+18", {"store-overflow 1"}},
        {sum, "y1", "9.223372036854776e+18", {"store-overflow 1"}, {"overflow = saturate"}},
        {power, "y1", "0.0", {"store-overflow 1"}},
        {power, "y1", "-9.223372036854776e+18", {"store-overflow 1"}, {"overflow = saturate"}},
        {"d := 2; y1 := (d ** 62) * 2;", "y1", "-9.223372036854776e+18", {"store-overflow 1"}},
        {"d := 2; y1 := -(d ** 62) - (d ** 62) - 1;",
         "y1",
         "9.223372036854776e+18",
         {"store-overflow 1"}},
    });
}

TEST(Machine, OperationsWithARealAreReal) {
    ExpectAll({
        {"x := 7.0; x1 := x / 2;", "x1", "3.5"},
        {"d := 7; x1 := d / 2.0;", "x1", "3.5"},
        {"y1 := 0.1 + 0.2;", "y1", "0.30000000000000004"},
        {"y1 := 2.0 ** 0.5;", "y1", "1.4142135623730951"},
        {"x := 0.1; b1 := x = 0.1;", "b1", "FALSE"},
        {"x := 0.1; b1 := x = 0.1;", "b1", "TRUE", {}, {"width = typed"}},
        {"y1 := 1.0 / 0.0;", "y1", "inf", {"not-finite 1"}},
        {"y1 := (0.0 / 0.0) + 1.0;", "y1", "nan", {"not-finite 1"}},
        {"y := 0.0 / 0.0; b1 := y <> y;", "b1", "TRUE", {"not-finite 1"}},
    });
}

TEST(Machine, TypedWidthNarrowsEachResult) {
    ExpectAll({
        {"i := 30000; i1 := (i + i) / 2;",
         "i1",
         "-2768",
         {"store-overflow 1"},
         {"width = typed"}},
        {"i := 30000; i1 := (i + i) / 2;",
         "i1",
         "16383",
         {"store-overflow 1"},
         {"width = typed", "overflow = saturate"}},
        {"d1 := 1 SHL 10;", "d1", "1024"},
        {"d1 := 1 SHL 10;", "d1", "0", {"shift-range 1"}, {"width = typed"}},
        {"us := 1; s := 100; d1 := s ROR 255 * us;",
         "d1",
         "200",
         {"store-overflow 1"},
         {"width = typed"}},
    });
}

TEST(Machine, ShiftsKnowTheWidthOfTheirOperand) {
    ExpectAll({
        {"s := -8; s1 := s SHR 1;", "s1", "124"},
        {"i := -8; i1 := i SHR 1;", "i1", "32764"},
        {"s := -8; s1 := s SHR 0;", "s1", "-8"},
        {"us := 129; us1 := us ROL 1;", "us1", "3"},
        {"us := 129; us1 := us ROR 1;", "us1", "192"},
        {"us := 129; us1 := us ROL 9;", "us1", "3"},
        {"us := 129; i := -1; us1 := us ROL i;", "us1", "192"},
        {"s := 64; s1 := s ROL 1;", "s1", "-128"},
        {"us := 200; us1 := us SHR 8;", "us1", "0", {"shift-range 1"}},
        {"us := 200; us1 := us SHR 9;", "us1", "100", {"shift-range 1"}, {"shift = modulo"}},
        {"us := 200; i := -1; us1 := us SHR i;", "us1", "0", {"shift-range 1"}},
        {"d := 3; d1 := d SHL 64;", "d1", "0", {"shift-range 1"}},
        {"d := 3; d1 := d SHL 65;", "d1", "6", {"shift-range 1"}, {"shift = modulo"}},
    });
}

TEST(Machine, TruthValues) {
    ExpectAll({
        {"b := TRUE; b1 := b AND (3 > 2);", "b1", "TRUE"},
        {"b := TRUE; b1 := b XOR b;", "b1", "FALSE"},
        {"b1 := NOT b;", "b1", "TRUE"},
        {"b1 := b OR (2 >= 3) OR (1 <> 2);", "b1", "TRUE"},
        {"IF b OR (d = 0) THEN d1 := 1; ELSE d1 := 2; END_IF;", "d1", "1"},
    });
}

TEST(Machine, DivisionByZeroFollowsTheChoice) {
    const Executed stopped(Script(QStringLiteral("d := 5 / d;")));
    EXPECT_EQ(stopped.stop(), "division-by-zero");
    Checks noted;
    EXPECT_EQ(noted.set(QStringLiteral("division-by-zero"), QStringLiteral("note")), QString());
    const QString script = Script(QStringLiteral("d1 := 5 / d; i1 := 5 MOD i; s1 := s ** -1;"));
    const Executed zero(script, {QStringLiteral("divide-by-zero = zero")}, 1, noted);
    EXPECT_EQ(zero.text("d1") + zero.text("i1") + zero.text("s1"), "000");
    EXPECT_THAT(zero.notes(), ElementsAre("division-by-zero 3"));
    const Executed one(script, {QStringLiteral("divide-by-zero = one")}, 1, noted);
    EXPECT_EQ(one.text("d1") + one.text("i1") + one.text("s1"), "501");
    const Executed reals(Script(QStringLiteral("x := 1.0 / x;")),
                         {QStringLiteral("real-by-zero = stop")});
    EXPECT_EQ(reals.stop(), "division-by-zero");
}

TEST(Machine, MixedDivisionIsToldIfAsked) {
    Checks checks;
    EXPECT_EQ(checks.set(QStringLiteral("mixed-division"), QStringLiteral("note")), QString());
    const Executed run(Script(QStringLiteral("x1 := d / 2.0; y1 := y / 2.0; d1 := d / 2;")), {},
                       1, checks);
    EXPECT_THAT(run.notes(), ElementsAre("mixed-division 1"));
}

// ---------------------------------------------------------------------------------------------
// Stores
// ---------------------------------------------------------------------------------------------

TEST(Machine, WhatDoesNotFitFollowsTheChoice) {
    const char* const store = "d := 300; us1 := d; s1 := d;";
    ExpectAll({
        {store, "us1", "44", {"store-overflow 2"}},
        {store, "s1", "44", {"store-overflow 2"}},
        {store, "us1", "255", {"store-overflow 2"}, {"overflow = saturate"}},
        {store, "s1", "127", {"store-overflow 2"}, {"overflow = saturate"}},
        {"d := -1; ud1 := d;", "ud1", "4294967295", {"store-overflow 1"}},
        {"d := 200; s1 := d;", "s1", "-56", {"store-overflow 1"}},
    });
    const Executed stopped(Script(QLatin1String(store)), {QStringLiteral("overflow = stop")});
    EXPECT_EQ(stopped.stop(), "store-overflow");
    EXPECT_EQ(stopped.text("us1"), "0");
}

TEST(Machine, RealsAreRoundedAsChosen) {
    const char* const store = "x := 2.5; i1 := x; x := -1.5; d1 := x; x := 3.0; s1 := x;";
    ExpectAll({
        {store, "i1", "2", {"real-to-int 2"}},
        {store, "d1", "-2", {"real-to-int 2"}},
        {store, "i1", "3", {"real-to-int 2"}, {"real-to-int = away"}},
        {store, "d1", "-2", {"real-to-int 2"}, {"real-to-int = away"}},
        {store, "d1", "-1", {"real-to-int 2"}, {"real-to-int = truncate"}},
        {"y := 1.0E39; x1 := y;", "x1", "inf", {"not-finite 1"}},
        {"y := 0.1; x1 := y; y1 := x1;", "y1", "0.10000000149011612"},
        {"y := 0.1; x1 := y;", "x1", "0.1"},
    });
    for (const char* const tooLarge : {"x := 40000.0; i1 := x;", "y := 0.0 / 0.0; d1 := y;"}) {
        EXPECT_EQ(Executed(Script(QLatin1String(tooLarge))).stop(), "real-to-int") << tooLarge;
    }
}

TEST(Machine, InitialValuesAreMadeToFit) {
    const Executed low(
        QStringLiteral("PROGRAM P VAR a : DINT := -4294967295; END_VAR END_PROGRAM"));
    EXPECT_EQ(low.text("a"), "1");
    const Executed run(
        QStringLiteral("PROGRAM P VAR a : SINT := 200; b : INT := 16#FF; "
                       "c : REAL := -2.5; f : BOOL := TRUE; END_VAR END_PROGRAM"));
    EXPECT_EQ(run.text("a"), "-56");
    EXPECT_EQ(run.text("b"), "255");
    EXPECT_EQ(run.text("c"), "-2.5");
    EXPECT_EQ(run.text("f"), "TRUE");
    EXPECT_THAT(run.notes(), ElementsAre("store-overflow 1"));
    Executed stopped(QStringLiteral("PROGRAM P VAR a : SINT := 1.0E10; END_VAR END_PROGRAM"));
    EXPECT_EQ(stopped.stop(), "real-to-int");
    EXPECT_FALSE(stopped.machine().cycle());
    EXPECT_EQ(stopped.machine().cycles(), 0);
    stopped.machine().setUninitialized(0, 0);
    stopped.machine().set(0, WholeValue(TYP_SINT, 5));
    EXPECT_EQ(stopped.text("a"), "5");
}

// ---------------------------------------------------------------------------------------------
// Statements
// ---------------------------------------------------------------------------------------------

TEST(Machine, LoopsAndBranches) {
    ExpectAll({
        {"FOR i := 1 TO 4 DO d1 := d1 + i; END_FOR;", "d1", "10"},
        {"FOR i := 4 DOWNTO 2 DO d1 := 10 * d1 + i; END_FOR;", "d1", "432"},
        {"FOR i := 5 TO 4 DO d1 := 1; END_FOR;", "d1", "0"},
        {"FOR i := 1 TO 9 DO IF i = 3 THEN CONTINUE; END_IF; IF i = 5 THEN BREAK; END_IF; "
         "d1 := d1 + i; END_FOR;",
         "d1", "7"},
        {"WHILE d1 < 5 DO d1 := d1 + 2; END_WHILE;", "d1", "6"},
        {"REPEAT d1 := d1 + 1; UNTIL (d1 > 3) OR (d1 = 2) END_REPEAT;", "d1", "2"},
        {"d := 5; CASE d OF 1: d1 := 1; 3..5, 9: d1 := 2; ELSE d1 := 3; END_CASE;", "d1", "2"},
        {"d := -2; CASE d OF -2: d1 := 1; END_CASE;", "d1", "1"},
        {"d := 7; CASE d OF 1..6: d1 := 1; ELSE d1 := 3; END_CASE;", "d1", "3"},
        {"again: d1 := d1 + 1; IF d1 < 4 THEN GOTO again; END_IF;", "d1", "4"},
    });
}

TEST(Machine, VariablesAreKeptBetweenCyclesUnlessChosen) {
    const QString script = QStringLiteral(
        "PROGRAM P VAR n : INT := 5; t : UDINT := 0; END_VAR "
        "VAR_GLOBAL k : INT := 1; END_VAR "
        "n := n + 1; k := k + 1; t := TICK; END_PROGRAM");
    const Executed kept(script, {}, 3);
    EXPECT_EQ(kept.text("n"), "8");
    EXPECT_EQ(kept.text("t"), "200");
    const Executed reset(script, {QStringLiteral("program-variables = initial")}, 3);
    EXPECT_EQ(reset.text("n"), "6");
    EXPECT_EQ(reset.text("k"), "4");
}

TEST(Machine, TickIsSetBesideTheCounterUnlessChosen) {
    const QString script = Script(QStringLiteral("TICK := 5; ud1 := TICK;"));
    Executed beside(script, {}, 2);
    EXPECT_EQ(beside.text("ud1"), "100");
    EXPECT_EQ(beside.machine().tickSetting(), 5U);
    Executed counter(script, {QStringLiteral("tick-write = counter")}, 2);
    EXPECT_EQ(counter.text("ud1"), "5");
    EXPECT_EQ(counter.machine().tick(), 105U);
    EXPECT_FALSE(counter.machine().tickSetting());
}

TEST(Machine, ForcedVariablesKeepTheirValue) {
    Executed run(Script(QStringLiteral("d1 := d1 + 1; g := g + 1;")), {}, 1);
    run.machine().force(run.variable("d1"), WholeValue(TYP_DINT, 50));
    run.machine().force(run.variable("g"), WholeValue(TYP_INT, 9));
    run.machine().cycle();
    EXPECT_EQ(run.text("d1") + " " + run.text("g"), "50 9");
    run.machine().release(run.variable("d1"));
    run.machine().cycle();
    EXPECT_EQ(run.text("d1"), "51");
}

TEST(Machine, UnsetVariablesAreToldWhereTheyAreKnown) {
    Executed run(Script(QStringLiteral("d1 := d; d := 1; d1 := d;")), {}, 0);
    run.machine().setUninitialized(0, run.variable("d"));
    run.machine().cycle();
    EXPECT_THAT(run.notes(), ElementsAre("uninitialized-read 1"));
    Executed set(Script(QStringLiteral("d1 := d;")), {}, 0);
    set.machine().setUninitialized(0, set.variable("d"));
    set.machine().set(set.variable("d"), WholeValue(TYP_DINT, 3));
    set.machine().cycle();
    EXPECT_THAT(set.notes(), IsEmpty());
}

// ---------------------------------------------------------------------------------------------
// Engine objects
// ---------------------------------------------------------------------------------------------

TEST(Machine, EngineObjectsAreKnownByTheirNumbers) {
    ExpectAll({
        {"g := 5; h := h + 1;", "g", "6"},
        {"yxSetGV(7, 3.0); i1 := g;", "i1", "3"},
        {"g := 12; y1 := yxGetGV(7);", "y1", "12.0"},
        {"yxSetGV(8, 2.5); y1 := yxGetGV(8);", "y1", "2.5"},
        {"yxSetRegUINT(1, 2, 3, 4, 77); ui1 := r;", "ui1", "77"},
        {"r := 9; y1 := yxGetRegLREAL(1, 2, 3, 4);", "y1", "9.0"},
        {"yxSetRegREAL(1, 2, 3, 5, 1.5); x1 := yxGetRegREAL(1, 2, 3, 5);", "x1", "1.5"},
        {"us1 := yxGetRegUSINT(9, 9, 9, 9);", "us1", "0"},
        {"h := 70000;", "g", "4464", {"store-overflow 1"}},
    });
}

TEST(Machine, BuiltInsAreThoseOfTheLibrary) {
    ExpectAll({
        {"y1 := pow(2.0, 10.0);", "y1", "1024.0"},
        {"y1 := sqrt(2.0);", "y1", "1.4142135623730951"},
        {"y1 := round(2.5) + round(-2.5);", "y1", "0.0"},
        {"y1 := round(2.5);", "y1", "3.0"},
        {"y1 := floor(-0.5);", "y1", "-1.0"},
        {"y1 := ceil(0.5);", "y1", "1.0"},
        {"y1 := fabs(-3);", "y1", "3.0"},
        {"y1 := ln(exp(1.0)) + log10(1000.0);", "y1", "4.0"},
        {"y1 := sin(0.0) + cos(0.0) + tan(0.0) + asin(0.0) + acos(1.0) + atan(0.0);", "y1",
         "1.0"},
        {"y1 := sqrt(-1.0);", "y1", "nan", {"not-finite 1"}},
    });
}

// ---------------------------------------------------------------------------------------------
// Calls
// ---------------------------------------------------------------------------------------------

constexpr const char* DEFINITIONS = R"(
FUNCTION Twice : INT
VAR_ARG a : INT; END_VAR
    RESULT := 2 * a;
END_FUNCTION
FUNCTION Chosen : INT
VAR_ARG a : INT; END_VAR
    CASE a OF
        1: RESULT := 10; EXIT;
    ELSE RESULT := 20;
    END_CASE;
END_FUNCTION
FUNCTION_BLOCK Raise
VAR_ARG by : INT; END_VAR
VAR_REF target : DINT; END_VAR
VAR calls : INT := 0; END_VAR
    calls := calls + 1;
    target := target + by * calls;
END_FUNCTION_BLOCK
FUNCTION_BLOCK RaiseTwice
VAR_REF both : DINT; END_VAR
    Raise(1, both);
    Raise(2, both);
END_FUNCTION_BLOCK
)";

TEST(Machine, ParametersByValueAndByReference) {
    const QString definitions = QString::fromLatin1(DEFINITIONS);
    const Executed run(
        Script(QStringLiteral("d := 5; RaiseTwice(d); i1 := Twice(300) + Twice(Twice(1));"),
               definitions));
    EXPECT_EQ(run.text("d"), "8");
    EXPECT_EQ(run.text("i1"), "604");
    const Executed retained(Script(QStringLiteral("d := 5; RaiseTwice(d);"), definitions),
                            {QStringLiteral("locals = retained")});
    EXPECT_EQ(retained.text("d"), "10");
    const Executed narrowed(Script(QStringLiteral("d := 70000; i1 := Twice(d);"), definitions));
    EXPECT_EQ(narrowed.text("i1"), "8928");
    EXPECT_THAT(narrowed.notes(), ElementsAre("store-overflow 1"));
}

// A call in an expression, a call as a statement inside FOR, and a function left by EXIT out of
// CASE: one reading of the stack gives the right numbers for all three.
TEST(Machine, OneReadingOfTheStackFitsAllCalls) {
    const QString definitions = QString::fromLatin1(DEFINITIONS);
    const QString script = Script(
        QStringLiteral("i1 := 1 + Twice(3); FOR i := 1 TO 3 DO Twice(i); d1 := d1 + 1; END_FOR; "
                       "ui1 := 5 + Chosen(1);"),
        definitions);
    std::vector<std::string> right;
    for (const char* const result : {"by-use", "accumulator", "both"}) {
        for (const char* const atReturn : {"restore", "keep"}) {
            const QStringList choices = {
                QStringLiteral("call-result = %1").arg(QLatin1String(result)),
                QStringLiteral("return-stack = %1").arg(QLatin1String(atReturn)),
                QStringLiteral("scan-limit = 10000")};
            Checks stopAtLimit = NoChecks();
            stopAtLimit.set(QStringLiteral("scan-limit"), QStringLiteral("stop"));
            const Executed run(script, choices, 1, stopAtLimit);
            if (run.text("i1") == "7" && run.text("d1") == "3" && run.text("ui1") == "15") {
                right.push_back(std::string(result) + " " + atReturn);
            }
        }
    }
    EXPECT_THAT(right, ElementsAre("by-use restore"));
}

TEST(Machine, ValuesLeftOnTheStackAreTold) {
    const QString definitions = QString::fromLatin1(DEFINITIONS);
    EXPECT_EQ(Executed(Script(QStringLiteral("i1 := Chosen(1);"), definitions)).stop(),
              "stack-left");
    const QString program = Script(QStringLiteral("CASE d OF 0: d1 := d1 + 1; EXIT; END_CASE;"));
    const Executed noted(program, {}, 3);
    EXPECT_THAT(noted.notes(), ElementsAre("stack-left 3"));
    EXPECT_EQ(noted.text("d1"), "3");
    const Executed kept(program, {QStringLiteral("scan-stack = keep")}, 3);
    EXPECT_EQ(kept.text("d1"), "3");
}

TEST(Machine, JumpsIntoALoopFindAnEmptyStack) {
    const QString script =
        Script(QStringLiteral("GOTO inside; FOR i := 1 TO 2 DO inside: d1 := d1 + 1; END_FOR;"));
    EXPECT_EQ(Executed(script).stop(), "stack-empty");
    Checks off;
    off.set(QStringLiteral("stack-empty"), QStringLiteral("off"));
    EXPECT_EQ(Executed(script, {}, 1, off).text("d1"), "1");
}

TEST(Machine, RecursionStopsUnlessAllowed) {
    const QString definitions = QStringLiteral(R"(
FUNCTION Sum : DINT
VAR_ARG n : DINT; END_VAR
VAR rest : DINT; END_VAR
    RESULT := n;
    IF n > 0 THEN rest := Sum(n - 1); RESULT := n + rest; END_IF;
END_FUNCTION
)");
    const QString script = Script(QStringLiteral("d1 := Sum(4);"), definitions);
    EXPECT_EQ(Executed(script).stop(), "recursion");
    Checks noted;
    noted.set(QStringLiteral("recursion"), QStringLiteral("note"));
    const Executed run(script, {}, 1, noted);
    EXPECT_EQ(run.text("d1"), "10");
    EXPECT_THAT(run.notes(), ElementsAre("recursion 4"));
    const QString deep = Script(QStringLiteral("d1 := Sum(20000);"), definitions);
    EXPECT_EQ(Executed(deep, {}, 1, noted).stop(), "recursion");
}

TEST(Machine, ACycleThatDoesNotEndIsStopped) {
    const Executed run(Script(QStringLiteral("WHILE TRUE DO d1 := d1 + 1; END_WHILE;")),
                       {QStringLiteral("scan-limit = 1000")});
    EXPECT_EQ(run.stop(), "scan-limit");
}

// ---------------------------------------------------------------------------------------------
// Code that makes no sense
// ---------------------------------------------------------------------------------------------

constexpr const char* HEAD = "PROG: P VAR: x V INT 0 MAIN: ";

TEST(Machine, AMissingDeclarationIsThatOfABool) {
    const Executed run(QStringLiteral(
        "PROGRAM P VAR on : BOOL := True; off : BOOL := False; x : INT := 0; END_VAR "
        "IF NOT on THEN x := 1; on := TRUE; END_IF; END_PROGRAM"));
    EXPECT_EQ(run.stop(), "");
    EXPECT_EQ(run.text("x") + run.text("on"), "1TRUE");
    EXPECT_EQ(run.variable("off"), NOWHERE);
}

TEST(Machine, UnsoundCodeStopsTheRun) {
    const char* const codes[] = {
        "",
        "L1: ",
        "JMP L1 RET ",
        "MOV @y #A0 RET ",
        "MOV @x #A0 ",
        "MOVA #A0 @x RET ",
        "MOV 'A' #A0 SUB 0 #A0 RET ",
        "MOV 'A' #A0 MOV #A0 @x RET ",
        "MOV 1.5 #A0 BNOT #A0 RET ",
        "MOV 1.5 #A0 MOV #A0 $PUSH MOD $POP #A0 RET ",
        "MOV 1.5 #A0 MOV #A0 $PUSH BAND $POP #A0 RET ",
        "CAL P RET ",
        "EXEC P RET ",
        "MOV @x[#R1.SI] #A0 RET ",
        "MOV #A0 $PUSH MOV #A0 @x[#POP.SI] RET ",
    };
    for (const char* const code : codes) {
        CodeResult read = ReadCode(QByteArray(HEAD) + code);
        ASSERT_FALSE(read.fault) << code << read.fault->message.toStdString();
        Machine machine(read.code, Profile(), NoChecks());
        EXPECT_FALSE(machine.cycle()) << code;
        EXPECT_EQ(NameOf(machine.stop()->check), QLatin1String("unsound-code")) << code;
    }
}

TEST(Machine, TheStackHasAnEnd) {
    CodeResult read = ReadCode(QByteArray(HEAD) + "L1: MOV #A0 $PUSH JMP L1 RET ");
    Machine machine(read.code, Profile(), NoChecks());
    EXPECT_FALSE(machine.cycle());
}

// ---------------------------------------------------------------------------------------------
// Choices, checks, values
// ---------------------------------------------------------------------------------------------

TEST(Profile, ChoicesAreSetByTheirTexts) {
    Profile profile;
    EXPECT_EQ(
        SetChoices(profile, "# ours\n\noverflow = saturate # as the engine\r\nscan-limit=5"),
        QString());
    EXPECT_EQ(ChangedChoices(profile), QStringList({QStringLiteral("overflow = saturate"),
                                                    QStringLiteral("scan-limit = 5")}));
    EXPECT_EQ(ChangedChoices(Profile()), QStringList());
    EXPECT_EQ(SetChoices(profile, "shift = modulo\noverflow = none"),
              QStringLiteral("line 2: overflow is wrap, saturate or stop, not \"none\""));
    EXPECT_EQ(profile.shift, Shift::Zero);
    EXPECT_EQ(SetChoices(profile, "overflaw = wrap"),
              QStringLiteral("line 1: no choice has the key \"overflaw\""));
    EXPECT_EQ(SetChoices(profile, "scan-limit = 0"),
              QStringLiteral("line 1: scan-limit is a whole number from 1 on, not \"0\""));
}

TEST(Profile, ChecksAreSetByTheirTexts) {
    Checks checks;
    EXPECT_EQ(checks.actionOf(Check::StackLeft), Action::Stop);
    EXPECT_EQ(checks.actionOf(Check::StackLeftByProgram), Action::Note);
    EXPECT_EQ(checks.set(QStringLiteral("stack-left"), QStringLiteral("off")), QString());
    EXPECT_EQ(checks.actionOf(Check::StackLeft), Action::Off);
    EXPECT_EQ(checks.actionOf(Check::StackLeftByProgram), Action::Off);
    EXPECT_EQ(checks.set(QStringLiteral("stack-left"), QStringLiteral("never")),
              QStringLiteral("a check is off, note or stop, not \"never\""));
    EXPECT_EQ(checks.set(QStringLiteral("stack"), QStringLiteral("off")),
              QStringLiteral("no check has the name \"stack\""));
}

TEST(Values, AreReadByTheTypeOfTheirVariable) {
    struct Row {
        const char* text;
        Typ type;
        const char* value;  // empty if it is refused
    };
    const Row rows[] = {
        {"true", TYP_BOOL, "TRUE"},
        {"0", TYP_BOOL, "FALSE"},
        {"2", TYP_BOOL, ""},
        {"-128", TYP_SINT, "-128"},
        {"128", TYP_SINT, ""},
        {"16#ff", TYP_USINT, "255"},
        {"1.5", TYP_INT, ""},
        {"65535", TYP_UINT, "65535"},
        {"5", TYP_REAL, "5.0"},
        {"0.1", TYP_REAL, "0.1"},
        {"-2.5e-3", TYP_LREAL, "-0.0025"},
        {"1.0e99", TYP_REAL, ""},
        {"x", TYP_LREAL, ""},
        {"'A'", TYP_INT, ""},
    };
    for (const Row& row : rows) {
        Value value;
        const bool isRead = ReadValue(QString::fromLatin1(row.text), row.type, value);
        EXPECT_EQ(isRead ? TextOf(value).toStdString() : "", row.value) << row.text;
    }
}

}  // namespace
