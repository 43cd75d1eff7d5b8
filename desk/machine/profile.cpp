#include "machine/profile.h"

#include "qyx_text.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace {

// A choice: the words for its values, and access to it by the index of the word.
struct Choice {
    QLatin1String key;
    std::vector<QLatin1String> values;  // the first is the default
    int (*get)(const Profile&);
    void (*set)(Profile&, int);
};

template <auto Member>
Choice MakeChoice(const char* key, std::initializer_list<const char*> values) {
    using Chosen = std::decay_t<decltype(std::declval<Profile>().*Member)>;
    Choice choice = {
        QLatin1String(key),
        {},
        [](const Profile& profile) { return static_cast<int>(profile.*Member); },
        [](Profile& profile, int index) { profile.*Member = static_cast<Chosen>(index); }};
    std::transform(values.begin(), values.end(), std::back_inserter(choice.values),
                   [](const char* value) { return QLatin1String(value); });
    return choice;
}

const std::vector<Choice>& Choices() {
    static const std::vector<Choice> choices = {
        MakeChoice<&Profile::overflow>("overflow", {"wrap", "saturate", "stop"}),
        MakeChoice<&Profile::width>("width", {"wide", "typed"}),
        MakeChoice<&Profile::byZero>("divide-by-zero", {"stop", "zero", "one"}),
        MakeChoice<&Profile::realByZero>("real-by-zero", {"ieee", "stop"}),
        MakeChoice<&Profile::rounding>("real-to-int", {"even", "away", "truncate"}),
        MakeChoice<&Profile::shift>("shift", {"zero", "modulo"}),
        MakeChoice<&Profile::callResult>("call-result", {"by-use", "accumulator", "both"}),
        MakeChoice<&Profile::atReturn>("return-stack", {"restore", "keep"}),
        MakeChoice<&Profile::atEnd>("scan-stack", {"clear", "keep"}),
        MakeChoice<&Profile::locals>("locals", {"initial", "retained"}),
        MakeChoice<&Profile::programVariables>("program-variables", {"retained", "initial"}),
        MakeChoice<&Profile::tickWrite>("tick-write", {"setting", "counter"}),
    };
    return choices;
}

constexpr QLatin1String SCAN_LIMIT = "scan-limit"_L1;

struct CheckRow {
    QLatin1String name;
    Action action;  // unless one is set
};

// In the order of Check.
constexpr CheckRow CHECK_ROWS[CHECKS_COUNT] = {
    {"store-overflow"_L1, Action::Note}, {"division-by-zero"_L1, Action::Stop},
    {"not-finite"_L1, Action::Note},     {"real-to-int"_L1, Action::Note},
    {"mixed-division"_L1, Action::Off},  {"shift-range"_L1, Action::Note},
    {"stack-left"_L1, Action::Stop},     {"stack-left"_L1, Action::Note},
    {"stack-empty"_L1, Action::Stop},    {"recursion"_L1, Action::Stop},
    {SCAN_LIMIT, Action::Stop},          {"uninitialized-read"_L1, Action::Note},
    {"unsound-code"_L1, Action::Stop},
};
constexpr std::size_t CHANGEABLE_CHECKS = static_cast<std::size_t>(Check::UnsoundCode);
constexpr QLatin1String ACTIONS[] = {"off"_L1, "note"_L1, "stop"_L1};

QString Quoted(const QString& text) {
    return u'"' + text + u'"';
}

// "a, b or c"
template <typename Words>
QString OneOf(const Words& words) {
    QString text;
    for (auto word = std::begin(words); word != std::end(words); ++word) {
        const bool isLast = std::next(word) == std::end(words);
        text += word == std::begin(words) ? QString() : QString(isLast ? " or " : ", ");
        text += *word;
    }
    return text;
}

QString SetScanLimit(Profile& profile, const QString& value) {
    bool isNumber = false;
    const qint64 limit = value.toLongLong(&isNumber);
    if (!isNumber || limit < 1) {
        return QStringLiteral("scan-limit is a whole number from 1 on, not ") + Quoted(value);
    }
    profile.scanLimit = limit;
    return {};
}

}  // namespace

QString SetChoice(Profile& profile, const QString& key, const QString& value) {
    if (key == SCAN_LIMIT) {
        return SetScanLimit(profile, value);
    }
    const std::vector<Choice>& all = Choices();
    const auto choice = std::find_if(all.begin(), all.end(),
                                     [&key](const Choice& row) { return row.key == key; });
    if (choice == all.end()) {
        return QStringLiteral("no choice has the key ") + Quoted(key);
    }
    const auto found = std::find(choice->values.begin(), choice->values.end(), value);
    if (found == choice->values.end()) {
        return QStringLiteral("%1 is %2, not %3").arg(key, OneOf(choice->values), Quoted(value));
    }
    choice->set(profile, static_cast<int>(found - choice->values.begin()));
    return {};
}

QString SetChoices(Profile& profile, const QByteArray& text) {
    Profile changed = profile;
    int number = 0;
    for (const QByteArray& line : text.split('\n')) {
        ++number;
        const QString content = QString::fromUtf8(line).section(u'#', 0, 0).trimmed();
        if (content.isEmpty()) {
            continue;
        }
        const QString failure = SetChoice(changed, content.section(u'=', 0, 0).trimmed(),
                                          content.section(u'=', 1).trimmed());
        if (!failure.isEmpty()) {
            return QStringLiteral("line %1: %2").arg(number).arg(failure);
        }
    }
    profile = changed;
    return {};
}

QStringList ChangedChoices(const Profile& profile) {
    QStringList changed;
    for (const Choice& choice : Choices()) {
        const int index = choice.get(profile);
        if (index != 0) {
            changed += choice.key + QStringLiteral(" = ") +
                       choice.values[static_cast<std::size_t>(index)];
        }
    }
    if (profile.scanLimit != Profile().scanLimit) {
        changed += SCAN_LIMIT + QStringLiteral(" = %1").arg(profile.scanLimit);
    }
    return changed;
}

Checks::Checks() {
    std::transform(std::begin(CHECK_ROWS), std::end(CHECK_ROWS), actions_.begin(),
                   [](const CheckRow& row) { return row.action; });
}

Checks NoChecks() {
    Checks checks;
    checks.setAll(Action::Off);
    return checks;
}

// The check of the stack is one with two defaults; that of unsound code cannot be changed.
ChangedChecks ChangesOf(const Checks& checks) {
    ChangedChecks changed;
    for (std::size_t index = 0; index < CHANGEABLE_CHECKS; ++index) {
        const Action action = checks.actionOf(static_cast<Check>(index));
        const QString name = CHECK_ROWS[index].name;
        const bool isKnown = !changed.empty() && changed.back().first == name;
        if (action != CHECK_ROWS[index].action && !isKnown) {
            changed.emplace_back(name, ACTIONS[static_cast<std::size_t>(action)]);
        }
    }
    return changed;
}

QString Checks::set(const QString& name, const QString& action) {
    const auto* const found = std::find(std::begin(ACTIONS), std::end(ACTIONS), action);
    if (found == std::end(ACTIONS)) {
        return QStringLiteral("a check is %1, not %2").arg(OneOf(ACTIONS), Quoted(action));
    }
    bool isThere = false;
    for (std::size_t index = 0; index < CHANGEABLE_CHECKS; ++index) {
        if (CHECK_ROWS[index].name == name) {
            actions_[index] = static_cast<Action>(found - std::begin(ACTIONS));
            isThere = true;
        }
    }
    return isThere ? QString() : QStringLiteral("no check has the name ") + Quoted(name);
}

QString NameOf(Check check) {
    return CHECK_ROWS[static_cast<std::size_t>(check)].name;
}
