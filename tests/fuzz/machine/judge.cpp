#include "judge.h"

#include "both_ways.h"

#include "machine/inputs.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int CYCLES = 6;
constexpr int CYCLE_OF_RELEASE = 4;  // from 0, of what arguments force

// ---------------------------------------------------------------------------------------------
// Reading
// ---------------------------------------------------------------------------------------------

// The same items in the other form: lines of a listing, or a code file.
QByteArray OtherForm(const Setup& setup, const Items& items) {
    const bool isListing = setup.code.contains('\n');
    QByteArray text = isListing ? QByteArray() : QByteArray(";\n");
    for (int number = 1; number <= items.count(); ++number) {
        if (setup.isNumbered && !isListing) {
            text += QByteArray::number(number).rightJustified(4, '0') + '\t';
        }
        const std::string_view item = items.item(number);
        text.append(item.data(), static_cast<int>(item.size())).append(isListing ? ' ' : '\n');
    }
    return text;
}

// What a listing cannot hold, or would take for something else: no compiler writes it.
bool HasBothForms(const Setup& setup, const Items& items) {
    bool isPlain = !setup.code.contains('\r');
    for (int number = 1; number <= items.count(); ++number) {
        const std::string_view item = items.item(number);
        isPlain = isPlain && item.substr(0, 1) != ";" && item.find('\t') == item.npos;
    }
    return isPlain;
}

QString TextOfFindings(const Proof& proof) {
    QString text;
    for (const Finding& each : proof.findings) {
        text += QStringLiteral("%1 %2 %3\n").arg(each.item).arg(each.id, each.message);
    }
    return text;
}

void CheckOtherForm(const Setup& setup, const Code& code, const Proof& proof) {
    if (!HasBothForms(setup, code.items)) {
        return;
    }
    const CodeResult other = ReadCode(OtherForm(setup, code.items));
    Expect(!other.fault, QStringLiteral("the other form of the code is refused"));
    const bool isSame = other.code.items.count() == code.items.count() &&
                        TextOfFindings(Verify(other.code)) == TextOfFindings(proof);
    Expect(isSame, QStringLiteral("the other form of the code is another code"));
}

void CheckItem(const Items& items, int number) {
    Expect(number >= 0 && number <= items.count() + 1, QStringLiteral("there is no such item"));
    if (number > 0 && number <= items.count()) {
        NameOfItem(items, number);
    }
}

void CheckFindings(const Items& items, const Findings& findings) {
    for (const Finding& finding : findings) {
        CheckItem(items, finding.item);
        ExpectFault(finding.message);
    }
    Expect(std::is_sorted(findings.begin(), findings.end(),
                          [](const Finding& a, const Finding& b) { return a.item < b.item; }),
           QStringLiteral("the findings are in no order"));
}

// ---------------------------------------------------------------------------------------------
// What is put in
// ---------------------------------------------------------------------------------------------

Value ValueFor(Typ type, unsigned number) {
    const qint64 small = static_cast<qint64>(number % 9) - 2;
    if (type >= TYP_REAL) {
        return RealValue(type, static_cast<double>(small) * 0.75);
    }
    const Range& range = RangeOf(type);
    return WholeValue(
        type, number % 13 == 0 ? range.greatest : std::clamp(small, range.least, range.greatest));
}

// A value is read as it is written.
void CheckText(const Value& value) {
    if (value.type >= TYP_STRING || (value.isReal() && !std::isfinite(value.real))) {
        return;
    }
    Value again;
    Expect(ReadValue(TextOf(value), value.type, again) &&
               (value.isReal() ? value.real == again.real : value.whole == again.whole),
           QStringLiteral("a %1 is not read as it is written: %2")
               .arg(TypToStr(value.type), TextOf(value)));
}

// The same code executed both ways, with the same put in.
class BothWays {
public:
    BothWays(const Setup& setup, const Code& code)
        : code_(code),
          setup_(setup),
          checks_(checksOf()),
          reference_(code, setup.profile, checks_),
          machine_(code, setup.profile, checks_) {
        reference_.countExecutions();
        prepare(reference_);
        prepare(machine_);
    }

    void run() {
        const InputsResult read = ReadInputs(setup_.inputs, program());
        InputFeed feedReference(read.inputs, program());
        InputFeed feedMachine(read.inputs, program());
        compare();
        for (int cycle = 0; cycle < CYCLES && !reference_.stop(); ++cycle) {
            give(cycle);
            if (read.fault.isEmpty() && !setup_.inputs.isEmpty()) {
                feedReference.feed(reference_);
                feedMachine.feed(machine_);
            }
            Expect(reference_.cycle() == machine_.cycle(),
                   QStringLiteral("one way stops and the other goes on"));
            compare();
        }
        checkTexts();
    }

    const Machine& reference() const { return reference_; }
    const Machine& machine() const { return machine_; }

private:
    const Code& code_;
    const Setup& setup_;
    Checks checks_;
    Machine reference_;
    Machine machine_;

    const CodeUnit& program() const { return code_.program(); }

    // The arguments may set checks: "NAME=ACTION".
    Checks checksOf() const {
        Checks checks = setup_.checks;
        for (const QString& argument : setup_.arguments) {
            checks.set(argument.section(u'=', 0, 0), argument.section(u'=', 1));
        }
        Profile profile = setup_.profile;
        BoundRun(profile, checks, profile.scanLimit);
        return checks;
    }

    void prepare(Machine& machine) const {
        machine.setTickStep(100);
        for (std::size_t unit = 0; setup_.isUninitialized && unit < code_.units.size(); ++unit) {
            const std::vector<Declaration>& all = code_.units[unit].declarations;
            for (std::size_t index = 0; index < all.size(); index += 2) {
                if (all[index].section <= Section::Output && all[index].numbers[0].whole == 0) {
                    machine.setUninitialized(static_cast<int>(unit), static_cast<int>(index));
                }
            }
        }
    }

    void give(int cycle) {
        const std::vector<Declaration>& all = program().declarations;
        for (std::size_t index = 0; setup_.areInputsGiven && index < all.size(); ++index) {
            if (all[index].section == Section::Input && all[index].type < TYP_STRING) {
                const auto number = static_cast<unsigned>(cycle) * 5 +
                                    static_cast<unsigned>(index) * 3 + setup_.salt;
                const Value value = ValueFor(all[index].type, number);
                reference_.set(static_cast<int>(index), value);
                machine_.set(static_cast<int>(index), value);
            }
        }
        if (cycle == 0 || cycle == CYCLE_OF_RELEASE) {
            giveArguments(cycle == 0);
        }
    }

    // Each argument is taken for all that it may be.
    void giveArguments(bool isForced) {
        for (const QString& argument : setup_.arguments) {
            Setting setting;
            if (ReadSetting(program(), argument, setting).isEmpty()) {
                giveArgument(setting, isForced);
            }
            Condition condition;
            if (ReadCondition(program(), argument, condition).isEmpty()) {
                Holds(condition, machine_.value(condition.setting.variable));
            }
        }
    }

    void giveArgument(const Setting& setting, bool isForced) {
        for (Machine* const each : {&reference_, &machine_}) {
            isForced ? each->force(setting.variable, setting.value)
                     : each->release(setting.variable);
        }
    }

    void compare() const {
        const QString difference = DifferenceOf(code_, reference_, machine_);
        Expect(difference.isEmpty(),
               QStringLiteral("the two ways differ: %1\n%2")
                   .arg(difference, ChangedChoices(setup_.profile).join(QStringLiteral("; "))));
    }

    void checkTexts() const {
        for (std::size_t index = 0; index < program().declarations.size(); ++index) {
            CheckText(machine_.value(static_cast<int>(index)));
        }
    }
};

// ---------------------------------------------------------------------------------------------
// What the proof promises
// ---------------------------------------------------------------------------------------------

// The stack is as the proof says where the results of calls are by their use.
bool IsExcluded(Check check, const Profile& profile) {
    const bool isAboutStack = check == Check::StackLeft || check == Check::StackLeftByProgram ||
                              check == Check::StackEmpty;
    return check == Check::UnsoundCode ||
           (isAboutStack && profile.callResult == CallResult::ByUse);
}

void CheckStops(const Machine& machine, const Profile& profile) {
    if (machine.stop()) {
        Expect(!IsExcluded(machine.stop()->check, profile),
               QStringLiteral("exact code stops: ") + TextOfStop(machine.stop()));
    }
    for (const auto& [place, count] : machine.notes()) {
        Expect(!IsExcluded(place.first, profile),
               QStringLiteral("exact code has notes: ") + TextOfNotes(machine.notes()));
    }
}

void CheckProof(const Code& code, const Proof& proof, const Machine& machine,
                const Profile& profile) {
    if (proof.isExact()) {
        CheckStops(machine, profile);
    }
    for (std::size_t index = 0; index < code.instructions.size(); ++index) {
        const bool isExecuted = machine.executions()[index] > 0;
        Expect(!isExecuted || !proof.isSound() || proof.instructions[index].isReached,
               QStringLiteral("item %1 is executed and called unreached")
                   .arg(code.instructions[index].item));
    }
}

Judged JudgeRead(const Setup& setup, const Code& code) {
    const Proof proof = Verify(code);
    CheckFindings(code.items, proof.findings);
    CheckOtherForm(setup, code, proof);
    BothWays ways(setup, code);
    ways.run();
    CheckProof(code, proof, ways.reference(), setup.profile);
    return {true, proof.isSound(), ways.machine().cycles(), ways.machine().registerCycles(),
            JudgeTests(setup, &code)};
}

Judged JudgeRefused(const Setup& setup, const CodeResult& read) {
    CheckItem(read.code.items, read.fault->item);
    ExpectFault(read.fault->message);
    Judged judged;
    judged.tables = JudgeTests(setup, nullptr);
    return judged;
}

void CheckInputs(const Setup& setup, const CodeUnit& program) {
    const QString fault = ReadInputs(setup.inputs, program).fault;
    if (!fault.isEmpty()) {
        ExpectFault(fault);
        Expect(fault.startsWith(QStringLiteral("line ")),
               QStringLiteral("a fault has no place: ") + fault);
    }
}

}  // namespace

Judged Judge(std::string_view bytes) {
    const Setup setup = SetupOf(SplitInput(bytes));
    const CodeResult read = ReadCode(setup.code);
    CheckInputs(setup, read.fault ? CodeUnit() : read.code.program());
    return read.fault ? JudgeRefused(setup, read) : JudgeRead(setup, read.code);
}
