#include "setup.h"

#include "qyx_files.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<qint64, 4> SCAN_LIMITS = {1500, 1500, 300, 17};

// The bytes that choose.
enum Choice { CHECKING, PROFILE_LOW, PROFILE_HIGH, SALT };

// The bits of CHECKING.
constexpr unsigned SCAN_LIMIT_BITS = 3;
constexpr unsigned CHECKS_SHIFT = 2;
constexpr unsigned CHECKS_BITS = 3;
constexpr unsigned UNINITIALIZED_BIT = 1U << 4U;
constexpr unsigned INPUTS_BIT = 1U << 5U;
constexpr unsigned NUMBERED_BIT = 1U << 6U;

// Takes the next choice, of that many values, off the number.
template <typename Chosen>
void Take(unsigned& number, unsigned values, Chosen& chosen) {
    chosen = static_cast<Chosen>(number % values);
    number /= values;
}

// All noted, none, or as they are unless set.
Checks ChecksOf(unsigned number) {
    Checks checks = number == 1 ? NoChecks() : Checks();
    if (number == 0) {
        for (std::size_t check = 0; check + 1 < CHECKS_COUNT; ++check) {
            checks.set(NameOf(static_cast<Check>(check)), QStringLiteral("note"));
        }
    }
    return checks;
}

// A script and a table are read so.
QByteArray TextOf(const MachineInput& input, Part part) {
    return SourceText(QByteArray::fromStdString(input.parts[part])).toUtf8();
}

QByteArray LinesOf(const Profile& profile) {
    return ChangedChoices(profile).join(u'\n').toUtf8();
}

// Choices that were read come out as a text that is read as the same ones.
void ReadEngine(const QByteArray& text, Profile& profile) {
    const QByteArray before = LinesOf(profile);
    const QString fault = SetChoices(profile, text);
    if (!fault.isEmpty()) {
        ExpectFault(fault);
        Expect(LinesOf(profile) == before, QStringLiteral("a choice of a wrong file is set"));
    }
    Profile again;
    Expect(SetChoices(again, LinesOf(profile)).isEmpty() && LinesOf(again) == LinesOf(profile),
           QStringLiteral("the choices are not read as they are written"));
}

}  // namespace

const unsigned PROFILES = 3 * 2 * 3 * 2 * 3 * 2 * 3 * 2 * 2 * 2 * 2 * 2;

void Expect(bool holds, const QString& what) {
    if (!holds) {
        throw Unsound{what};
    }
}

void ExpectFault(const QString& fault) {
    Expect(!fault.isEmpty(), QStringLiteral("a fault has no text"));
    Expect(!fault.endsWith(u'.') || fault.endsWith(QStringLiteral("...")),
           QStringLiteral("a fault ends with a full stop: ") + fault);
}

Profile ProfileOf(unsigned number) {
    Profile profile;
    Take(number, 3, profile.overflow);
    Take(number, 2, profile.width);
    Take(number, 3, profile.byZero);
    Take(number, 2, profile.realByZero);
    Take(number, 3, profile.rounding);
    Take(number, 2, profile.shift);
    Take(number, 3, profile.callResult);
    Take(number, 2, profile.atReturn);
    Take(number, 2, profile.atEnd);
    Take(number, 2, profile.locals);
    Take(number, 2, profile.programVariables);
    Take(number, 2, profile.tickWrite);
    return profile;
}

void BoundRun(Profile& profile, Checks& checks, qint64 scanLimit) {
    profile.scanLimit = std::min(profile.scanLimit, scanLimit);
    checks.set(NameOf(Check::ScanLimit), QStringLiteral("stop"));
}

Setup SetupOf(const MachineInput& input) {
    const unsigned checking = input.choice(CHECKING);
    const unsigned number = input.choice(PROFILE_LOW) + 256 * input.choice(PROFILE_HIGH);
    Setup setup;
    setup.profile = ProfileOf(number % PROFILES);
    setup.checks = ChecksOf(checking >> CHECKS_SHIFT & CHECKS_BITS);
    ReadEngine(TextOf(input, ENGINE), setup.profile);
    BoundRun(setup.profile, setup.checks, SCAN_LIMITS[checking & SCAN_LIMIT_BITS]);
    setup.salt = input.choice(SALT);
    setup.areInputsGiven = (checking & INPUTS_BIT) != 0;
    setup.isUninitialized = (checking & UNINITIALIZED_BIT) != 0;
    setup.isNumbered = (checking & NUMBERED_BIT) != 0;
    setup.code = QByteArray::fromStdString(input.parts[CODE]);
    setup.inputs = TextOf(input, INPUTS);
    setup.arguments = QString::fromUtf8(TextOf(input, ARGUMENTS)).split(u'\n');
    setup.tests = TextOf(input, TESTS);
    return setup;
}
