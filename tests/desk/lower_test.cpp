// Register code: what is executed by it, what it gives up, and that its cycles are those of the
// machine that executes an item at a time.

#include "machine/lower.h"

#include "both_ways.h"

#include "machine/flow.h"
#include "machine/machine.h"

#include <gmock/gmock.h>

#include <climits>

using testing::ElementsAre;

namespace {

constexpr const char* HEAD =
    "PROG: P VAR: x V INT 0 y V DINT 0 b V BOOL 0 r V LREAL 0 g YVG INT 7 MAIN: ";

CodeResult Read(const QByteArray& statements, const QByteArray& units = {}) {
    return ReadCode(units + HEAD + statements);
}

// The operations that the statements are lowered to, without what counts items.
std::vector<RegisterOperation> OperationsOf(const QByteArray& statements) {
    const CodeResult read = Read(statements);
    EXPECT_FALSE(read.fault) << statements.toStdString();
    Memory memory;
    for (const Literal& literal : read.code.literals) {
        memory.literals.push_back(WholeValue(literal.type, literal.whole));
    }
    UnitCells& cells = memory.units.emplace_back();
    for (const Declaration& declaration : read.code.program().declarations) {
        Cell cell;
        cell.type = declaration.type;
        cells.initial.push_back(cell);
    }
    cells.ofCalls.push_back(cells.initial);
    const Profile profile;
    const Checks checks = NoChecks();
    const RegisterCode code = Lower({read.code, profile, checks, false}, memory);
    std::vector<RegisterOperation> operations;
    for (const RegisterInstruction& instruction : code.instructions) {
        operations.push_back(instruction.operation);
    }
    return operations;
}

// Executes code both ways for three cycles; how many of them were register code.
struct BothWays {
    explicit BothWays(const QByteArray& statements, const Checks& checks = Checks(),
                      const Profile& profile = Profile(), const QByteArray& units = {})
        : read(Read(statements, units)),
          reference(read.code, profile, checks),
          machine(read.code, profile, checks) {
        EXPECT_FALSE(read.fault) << statements.toStdString();
        reference.setItemwise();
    }

    void execute(int cycles = 3) {
        for (int cycle = 0; cycle < cycles; ++cycle) {
            reference.cycle();
            machine.cycle();
            EXPECT_EQ(DifferenceOf(read.code, reference, machine).toStdString(), "");
        }
    }

    CodeResult read;
    Machine reference;
    Machine machine;
};

Checks Noted(const char* check) {
    Checks checks;
    checks.set(QString::fromLatin1(check), QStringLiteral("note"));
    return checks;
}

// ---------------------------------------------------------------------------------------------
// What becomes of the code
// ---------------------------------------------------------------------------------------------

using R = RegisterOperation;

TEST(Lower, AnAssignmentIsAnInstruction) {
    EXPECT_THAT(OperationsOf("MOV @x #A0 MOV #A0 $PUSH MOV 1 #A0 ADD $POP #A0 MOV #A0 @x RET "),
                ElementsAre(R::AddFit, R::End));
    EXPECT_THAT(OperationsOf("MOV @x #A0 MOV #A0 $PUSH MOV @x #A0 ADD $POP #A0 MOV #A0 @y RET "),
                ElementsAre(R::Add, R::End));
    EXPECT_THAT(OperationsOf("MOV @x #A0 MOV #A0 @y RET "), ElementsAre(R::Copy, R::End));
    EXPECT_THAT(OperationsOf("MOV @y #A0 MOV #A0 @x RET "), ElementsAre(R::Fit, R::End));
}

TEST(Lower, AConditionIsAJump) {
    EXPECT_THAT(OperationsOf("MOV @b #A0 MOV #A0 $PUSH MOV #A0 $PUSH MOV 1 #A0 EQ $POP #A0 "
                             "TST #A0 MOV $POP #A0 JMPF L1 MOV 1 #A0 MOV #A0 @x L1: RET "),
                ElementsAre(R::JumpIfNotEqual, R::Copy, R::End));
    EXPECT_THAT(OperationsOf("MOV @x #A0 MOV #A0 $PUSH MOV 3 #A0 LT $POP #A0 TST #A0 MOV #A0 "
                             "$PUSH MOV @y #A0 MOV #A0 $PUSH MOV 4 #A0 GT $POP #A0 TST #A0 AND "
                             "$POP #A0 TST #A0 JMPF L1 MOV 1 #A0 MOV #A0 @x L1: RET "),
                ElementsAre(R::JumpIfLessOrEqual, R::JumpIfLessOrEqual, R::Copy, R::End));
    EXPECT_THAT(OperationsOf("MOV 1 #A0 EQ 1 #A0 TST #A0 JMPF L1 MOV #A0 @b L1: RET "),
                ElementsAre(R::Copy, R::End));
}

TEST(Lower, ARoundOfALoopHasOneJump) {
    EXPECT_THAT(OperationsOf("MOV 1 #A0 MOV #A0 @x MOV 9 #A0 MOV #A0 $PUSH L1: MOV @x #A0 MOV "
                             "$POP #R0 GE #R0 #A0 TST #A0 MOV #R0 $PUSH JMPF L2 L3: MOV @x #A0 "
                             "ADD 1 #A0 MOV #A0 @x JMP L1 L2: MOV $POP #NIL RET "),
                ElementsAre(R::Copy, R::Copy, R::JumpIfLess, R::AddFit, R::JumpIfLessOrEqual,
                            R::Jump, R::End));
}

TEST(Lower, ValuesThatWaitAreKeptFromStores) {
    BothWays run(
        "MOV @x #A0 MOV #A0 $PUSH MOV @x #A0 ADD 1 #A0 MOV #A0 @x MOV @x #A0 SUB $POP "
        "#A0 MOV #A0 @y RET ");
    run.execute();
    EXPECT_EQ(run.machine.value(1).whole, -1);
    EXPECT_EQ(run.machine.registerCycles(), 3);
}

// What an operation can give is known only as far as its operands are.
TEST(Lower, ResultsThatMayNotFitAreLookedAt) {
    const QByteArray examples[] = {
        "MOV @y #A0 MOV #A0 $PUSH MOV 32769 #A0 MOD $POP #A0 MOV #A0 @x RET ",
        "MOV @y #A0 MOV #A0 $PUSH MOV 2 #A0 SUB $POP #A0 MOV #A0 @y RET ",
        "MOV 1 #A0 MOV #A0 $PUSH MOV @y #A0 SUB $POP #A0 MOV #A0 @y RET ",
        "MOV @y #A0 ADD 1 #A0 MOV #A0 @y RET ",
    };
    for (const QByteArray& statements : examples) {
        for (const qint64 value : {32767, 32768, -32768, -32769, INT_MAX, INT_MIN}) {
            BothWays run(statements);
            run.reference.set(1, WholeValue(TYP_DINT, value));
            run.machine.set(1, WholeValue(TYP_DINT, value));
            run.execute(1);
            EXPECT_EQ(run.machine.registerCycles(), 1);
        }
    }
}

// Each operation on the stack doubles what the condition is made of.
TEST(Lower, ConditionsDoNotGrowBeyondTheirCode) {
    const QByteArray doubled = QByteArray("MOV #A0 $PUSH AND $POP #A0 ").repeated(200);
    const std::vector<RegisterOperation> operations =
        OperationsOf("MOV @x #A0 " + doubled + "TST #A0 JMPF L1 MOV #A0 @b L1: RET ");
    EXPECT_LT(operations.size(), 2000U);
}

// ---------------------------------------------------------------------------------------------
// What it gives up
// ---------------------------------------------------------------------------------------------

struct GivenUp {
    const char* statements;
    qint64 registerCycles;
    Checks checks = Checks();
};

TEST(Lower, WhatIsNotUsualIsExecutedAnItemAtATime) {
    const GivenUp examples[] = {
        {"MOV 1 #A0 MOV #A0 @x RET ", 3},
        {"MOV @z #A0 RET ", 0},
        {"MOV 'A' #A0 RET ", 0},
        {"MOV $POP #A0 RET ", 0, NoChecks()},
        {"MOV #A0 @x RET ", 0},
        {"JMPT L1 L1: RET ", 0},
        {"MOV @x #A0 ", 0},
        {"MOV 300 #A0 MOV #A0 $PUSH MOV 200 #A0 MUL $POP #A0 MOV #A0 @x RET ", 3},
        {"MOV 1 #A0 MOV #A0 $PUSH MOV @x #A0 DIV $POP #A0 MOV #A0 @x RET ", 0},
        {"MOV 1 #A0 MOV #A0 $PUSH RET ", 3},
        {"MOV @r #A0 MOV #A0 $PUSH MOV @x #A0 DIV $POP #A0 MOV #A0 @r RET ", 3},
    };
    for (const GivenUp& example : examples) {
        SCOPED_TRACE(example.statements);
        BothWays run(example.statements, example.checks);
        run.execute();
        EXPECT_EQ(run.machine.registerCycles(), example.registerCycles);
    }
}

// Where the stack has two heights the way that came second gives up.
TEST(Lower, WaysMayJoinWithDifferentStacks) {
    BothWays run("MOV @b #A0 TST #A0 JMPF L1 MOV 1 #A0 MOV #A0 $PUSH L1: RET ",
                 Noted("stack-left"));
    run.reference.set(2, TruthValue(true));
    run.machine.set(2, TruthValue(true));
    run.execute();
    EXPECT_LT(run.machine.registerCycles(), 3);
}

TEST(Lower, ACycleThatIsGivenUpLeavesNothing) {
    const char* const statements =
        "MOV 300 #A0 MOV #A0 $PUSH MOV 200 #A0 MUL $POP #A0 MOV #A0 @x MOV @y #A0 ADD 1 #A0 "
        "MOV #A0 @y MOV 7 #A0 MOV #A0 *TICK MOV 1 #A0 MOV #A0 $PUSH MOV @y #A0 MOV #A0 $PUSH "
        "MOV 3 #A0 SUB $POP #A0 DIV $POP #A0 MOV #A0 @x RET ";
    BothWays run(statements, Noted("division-by-zero"));
    run.execute(5);
    EXPECT_TRUE(run.machine.stop());
    EXPECT_EQ(run.machine.registerCycles(), 2);
}

TEST(Lower, TheScanLimitEndsTheRunAtItsInstruction) {
    for (const qint64 limit : {5, 99, 100, 101, 106, 1000}) {
        Profile profile;
        profile.scanLimit = limit;
        BothWays run("L1: MOV @y #A0 ADD 1 #A0 MOV #A0 @y MOV @b #A0 TST #A0 JMPF L1 RET ",
                     Checks(), profile);
        run.execute();
        EXPECT_EQ(run.machine.registerCycles(), 0);
        EXPECT_EQ(run.machine.instructions(), limit);
    }
}

TEST(Lower, ForcedVariablesAreKept) {
    BothWays run("MOV @x #A0 ADD 1 #A0 MOV #A0 @x MOV @x #A0 MOV #A0 @g RET ");
    run.execute(1);
    for (const int variable : {0, 0, 4}) {
        run.reference.force(variable, WholeValue(TYP_INT, 50));
        run.machine.force(variable, WholeValue(TYP_INT, 50));
        run.execute(1);
    }
    EXPECT_EQ(run.machine.registerCycles(), 1);
    for (const int variable : {4, 0}) {
        run.reference.release(variable);
        run.machine.release(variable);
        run.execute(1);
    }
    EXPECT_EQ(run.machine.registerCycles(), 2);
    EXPECT_EQ(run.machine.value(0).whole, 51);
}

TEST(Lower, UnsetVariablesAreToldAtEachReadUntilTheyAreSet) {
    const char* const statements =
        "MOV @x #A0 MOV #A0 $PUSH MOV @x #A0 ADD $POP #A0 MOV #A0 @y MOV @b #A0 TST #A0 JMPF L1 "
        "MOV #A0 @x L1: RET ";
    BothWays run(statements);
    run.execute(1);
    run.reference.setUninitialized(0, 0);
    run.machine.setUninitialized(0, 0);
    run.execute(2);
    EXPECT_EQ(run.machine.notes().size(), 2U);
    EXPECT_EQ(run.machine.notes().begin()->second, 2);
    run.reference.set(2, TruthValue(true));
    run.machine.set(2, TruthValue(true));
    run.execute(8);
    EXPECT_EQ(run.machine.notes().begin()->second, 3);
    EXPECT_EQ(run.machine.registerCycles(), 11);
}

TEST(Lower, UnsetVariablesThatAStopIsForEndTheRun) {
    Checks checks;
    checks.set("uninitialized-read", "stop");
    BothWays run("MOV 1 #A0 MOV #A0 @y MOV @x #A0 RET ", checks);
    run.reference.setUninitialized(0, 0);
    run.machine.setUninitialized(0, 0);
    run.execute(1);
    EXPECT_EQ(run.machine.stop()->item, InstructionAt(run.read.code, 2).item);
}

// ---------------------------------------------------------------------------------------------
// Ends from outside
// ---------------------------------------------------------------------------------------------

// By register code, with counts and without, and an item at a time.
void ExpectInterruption(const QByteArray& statements, const QByteArray& units = {}) {
    const CodeResult read = Read(statements, units);
    ASSERT_FALSE(read.fault) << statements.toStdString();
    for (const bool isCounting : {true, false}) {
        for (const bool isItemwise : {true, false}) {
            Machine machine(read.code, Profile(), NoChecks());
            std::atomic<bool> isAsked = true;
            machine.setInterrupt(isAsked);
            if (!isCounting) {
                machine.setUncounted();
            }
            if (isItemwise) {
                machine.setItemwise();
            }
            EXPECT_FALSE(machine.cycle());
            ASSERT_TRUE(machine.interruption());
            EXPECT_GE(machine.interruption()->item, InstructionAt(read.code, 0).item);
            EXPECT_FALSE(machine.stop());
            EXPECT_FALSE(machine.cycle());
            EXPECT_EQ(machine.cycles(), 0);
        }
    }
}

TEST(Lower, WhateverIsEndlessIsInterrupted) {
    ExpectInterruption("L1: JMP L1 RET ");
    ExpectInterruption("L1: MOV @x #A0 ADD 1 #A0 MOV #A0 @x JMP L1 RET ");
    ExpectInterruption("L1: MOV @b #A0 TST #A0 JMPF L1 RET ");
    ExpectInterruption("L1: MOV @b #A0 TST #A0 JMPT L2 JMP L1 L2: RET ");
    ExpectInterruption("L1: MOV @b #A0 TST #A0 JMPF L2 JMP L3 L2: JMP L1 L3: RET ");
    ExpectInterruption("JMP L2 L1: MOV @x #A0 L2: MOV @y #A0 JMP L1 RET ");
    QByteArray units = "F0: RESULT V INT 0 BODY: MOV @RESULT #A0 RET ";
    for (int unit = 1; unit < 60; ++unit) {
        const QByteArray call = "CAL F" + QByteArray::number(unit - 1) + " MOV $POP #NIL ";
        units += "F" + QByteArray::number(unit) + ": RESULT V INT 0 BODY: " + call + call +
                 "MOV @RESULT #A0 RET ";
    }
    ExpectInterruption("CAL F59 MOV $POP #NIL RET ", units);
}

// ---------------------------------------------------------------------------------------------
// Calls
// ---------------------------------------------------------------------------------------------

constexpr const char* DOUBLED =
    "Doubled: RESULT V INT 0 a VA INT 0 BODY: MOV $POP #A0 MOV #A0 @a MOV @a #A0 MOV #A0 $PUSH "
    "MOV @a #A0 ADD $POP #A0 MOV #A0 @RESULT MOV @RESULT #A0 RET ";

TEST(Lower, ResultsThatWaitAreKeptFromTheNextCall) {
    BothWays run(
        "MOV 3 #A0 MOV #A0 $PUSH CAL Doubled MOV #A0 $PUSH MOV 20 #A0 MOV #A0 $PUSH "
        "CAL Doubled ADD $POP #A0 MOV #A0 @x RET ",
        Checks(), Profile(), DOUBLED);
    run.execute();
    EXPECT_EQ(run.machine.value(0).whole, 46);
    EXPECT_EQ(run.machine.registerCycles(), 3);
}

TEST(Lower, UnitsThatCallThemselvesAreExecutedAnItemAtATime) {
    BothWays run("CAL Again RET ", Noted("recursion"), Profile(),
                 "Again: n V INT 0 BODY: MOV @n #A0 TST #A0 JMPT L1 CAL Again L1: RET ");
    run.execute();
    EXPECT_EQ(run.machine.registerCycles(), 0);
}

TEST(Lower, EngineObjectsAreKnownAfterTheirFirstUse) {
    BothWays run(
        "MOV @y #A0 ADD 1 #A0 MOV #A0 @y MOV @y #A0 MOV #A0 $PUSH EXEC yxGetGV MOV #A0 "
        "@r MOV 7 #A0 MOV #A0 $PUSH MOV @y #A0 MOV #A0 $PUSH EXEC yxSetGV RET ");
    run.execute(1);
    EXPECT_EQ(run.machine.registerCycles(), 0);
    for (int cycle = 0; cycle < 20; ++cycle) {
        run.reference.set(1, WholeValue(TYP_DINT, 0));
        run.machine.set(1, WholeValue(TYP_DINT, 0));
        run.execute(1);
    }
    EXPECT_GT(run.machine.registerCycles(), 15);
    EXPECT_EQ(run.machine.value(4).whole, 1);
}

}  // namespace
