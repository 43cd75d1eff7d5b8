// What the format of target code leaves to the engine: the choices that the machine makes, and
// the checks that tell where code depends on one. The manual's page about the machine has each of
// them.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

enum class Overflow : unsigned char { Wrap, Saturate, Stop };
enum class Width : unsigned char { Wide, Typed };
enum class ByZero : unsigned char { Stop, Zero, One };
enum class RealByZero : unsigned char { Ieee, Stop };
enum class Rounding : unsigned char { Even, Away, Truncate };
enum class Shift : unsigned char { Zero, Modulo };
enum class CallResult : unsigned char { ByUse, Accumulator, Both };
enum class StackAtReturn : unsigned char { Restore, Keep };
enum class StackAtEnd : unsigned char { Clear, Keep };
enum class Locals : unsigned char { Initial, Retained };
enum class ProgramVariables : unsigned char { Retained, Initial };
enum class TickWrite : unsigned char { Setting, Counter };

struct Profile {
    Overflow overflow = Overflow::Wrap;
    Width width = Width::Wide;
    ByZero byZero = ByZero::Stop;
    RealByZero realByZero = RealByZero::Ieee;
    Rounding rounding = Rounding::Even;
    Shift shift = Shift::Zero;
    CallResult callResult = CallResult::ByUse;
    StackAtReturn atReturn = StackAtReturn::Restore;
    StackAtEnd atEnd = StackAtEnd::Clear;
    Locals locals = Locals::Initial;
    ProgramVariables programVariables = ProgramVariables::Retained;
    TickWrite tickWrite = TickWrite::Setting;
    qint64 scanLimit = 10'000'000;  // instructions of a cycle
};

// Sets a choice by its key and value as texts. What is wrong with them, empty if nothing is.
QString SetChoice(Profile& profile, const QString& key, const QString& value);

// Sets the choices of a text of lines "key = value". What is wrong, with its line, empty if
// nothing is; then none is set.
QString SetChoices(Profile& profile, const QByteArray& text);

// The choices that differ from the defaults, each "key = value".
QStringList ChangedChoices(const Profile& profile);

enum class Check : unsigned char {
    StoreOverflow,
    DivisionByZero,
    NotFinite,
    RealToInt,
    MixedDivision,
    ShiftRange,
    StackLeft,           // by a function or function block
    StackLeftByProgram,  // the same check, with an action of its own unless one is set
    StackEmpty,
    Recursion,
    ScanLimit,
    UninitializedRead,
    UnsoundCode,  // always stops: what the verifier refuses
};
constexpr std::size_t CHECKS_COUNT = static_cast<std::size_t>(Check::UnsoundCode) + 1;

enum class Action : unsigned char { Off, Note, Stop };

// What each check does.
class Checks {
public:
    Checks();  // the defaults

    Action actionOf(Check check) const { return actions_[static_cast<std::size_t>(check)]; }
    void setAll(Action action) { actions_.fill(action); }
    // Sets a check by its name and action as texts. What is wrong with them, empty if nothing is.
    QString set(const QString& name, const QString& action);

private:
    std::array<Action, CHECKS_COUNT> actions_;
};

// Checks of which none is on.
Checks NoChecks();

// The checks that differ from the defaults, each by its name and its action.
using ChangedChecks = std::vector<std::pair<QString, QString>>;
ChangedChecks ChangesOf(const Checks& checks);

// The name of a check, by which it is set and explained: "store-overflow".
QString NameOf(Check check);
