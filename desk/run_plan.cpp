#include "run_plan.h"

#include "facts/input.h"
#include "options.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

constexpr int MOST_UNTIL = 1'000'000;  // cycles that a condition is waited for

QString About(const char* option, const QString& fault) {
    return QLatin1String(option) + QStringLiteral(": ") + fault;
}

// Reads a file with a reader that gives what is wrong.
template <typename Reader>
QString ReadFile(const std::string& path, const Reader& read) {
    if (path.empty()) {
        return {};
    }
    const Input input = ReadInput(TextOfArgument(path));
    const QString fault = input.source ? read(input.source->text().toUtf8()) : input.failure;
    return fault.isEmpty() ? fault : TextOfArgument(path) + QStringLiteral(": ") + fault;
}

QString ReadCheck(const QString& text, Checks& checks) {
    return text.contains(u'=')
               ? checks.set(text.section(u'=', 0, 0), text.section(u'=', 1))
               : QStringLiteral(
                     "NAME=ACTION is expected, where ACTION is off, note or stop, "
                     "not \"%1\"")
                     .arg(text);
}

// A fast run has the checks that are named.
QString ReadChecks(const RunArguments& arguments, RunPlan& plan) {
    plan.checks = arguments.isFast ? NoChecks() : Checks();
    for (const std::string& argument : arguments.checks) {
        const QString fault = ReadCheck(TextOfArgument(argument), plan.checks);
        if (!fault.isEmpty()) {
            return About("--check", fault);
        }
    }
    return {};
}

QString ReadSettings(const char* option, const std::vector<std::string>& texts,
                     const CodeUnit& program, std::vector<Setting>& settings) {
    for (const std::string& text : texts) {
        Setting setting;
        const QString fault = ReadSetting(program, TextOfArgument(text), setting);
        if (!fault.isEmpty()) {
            return About(option, fault);
        }
        settings.push_back(setting);
    }
    return {};
}

QString ReadForced(const RunArguments& arguments, const CodeUnit& program, RunPlan& plan) {
    const QString fault = ReadSettings("--force", arguments.forced, program, plan.forced);
    const bool hasTick =
        std::any_of(plan.forced.begin(), plan.forced.end(),
                    [](const Setting& setting) { return setting.variable == TICK_VARIABLE; });
    return hasTick ? About("--force", QStringLiteral("TICK can be set, not forced")) : fault;
}

QString ReadUntil(const RunArguments& arguments, const CodeUnit& program, RunPlan& plan) {
    static const QRegularExpression tick(QStringLiteral("^\\s*TICK\\s*[=<>]"),
                                         QRegularExpression::CaseInsensitiveOption);
    if (arguments.until.empty()) {
        return {};
    }
    if (TextOfArgument(arguments.until).contains(tick)) {
        return About("--until", QStringLiteral("TICK goes on by --tick in each cycle, so "
                                               "--cycles says how far"));
    }
    const QString fault =
        ReadCondition(program, TextOfArgument(arguments.until), plan.until.emplace());
    return fault.isEmpty() ? fault : About("--until", fault);
}

// Without names all variables are watched.
QString ReadWatched(const RunArguments& arguments, const CodeUnit& program, RunPlan& plan) {
    if (arguments.watched.empty()) {
        plan.variables.resize(program.declarations.size());
        std::iota(plan.variables.begin(), plan.variables.end(), 0);
    }
    for (const std::string& name : arguments.watched) {
        if (IsTick(TextOfArgument(name).trimmed())) {
            return About("--watch",
                         QStringLiteral("TICK is in each trace, in the column \"tick\""));
        }
        const FoundVariable found = FindVariable(program, TextOfArgument(name).trimmed());
        if (found.index == NOWHERE) {
            return About("--watch", found.fault);
        }
        const auto known = std::find(plan.variables.begin(), plan.variables.end(), found.index);
        if (known == plan.variables.end()) {
            plan.variables.push_back(found.index);
        }
    }
    return {};
}

void ReadCycles(const RunArguments& arguments, RunPlan& plan) {
    constexpr qint64 most = std::numeric_limits<int>::max();
    if (arguments.cycles > 0) {
        plan.cycles = arguments.cycles;
    } else if (plan.until) {
        plan.cycles = MOST_UNTIL;
    } else if (!plan.inputs.rows.empty()) {
        plan.cycles = static_cast<int>(std::min(plan.inputs.cycles(), most));
    }
}

// Names that lead to the same file, also where there is none yet.
QString PlaceOf(const std::string& path) {
    const QFileInfo info(TextOfArgument(path));
    const QString folder = info.absoluteDir().canonicalPath();
    return info.exists() ? info.canonicalFilePath() : folder + u'/' + info.fileName();
}

bool IsSameFile(const std::string& one, const std::string& other) {
    return !one.empty() && !other.empty() && PlaceOf(one) == PlaceOf(other);
}

struct OutputOption {
    const char* option;
    const std::string& path;
};

// What is read, or written for another option, must not be overwritten.
QString WhatIsWrongWith(const OutputOption& output, const std::vector<OutputOption>& all,
                        const RunArguments& arguments) {
    if (output.path == STANDARD_INPUT) {
        return &output.path == &arguments.trace ? QString()
                                                : QStringLiteral("needs the name of a file");
    }
    for (const std::string& read : {arguments.path, arguments.inputs, arguments.engine}) {
        if (IsSameFile(output.path, read)) {
            return QStringLiteral("this file is read");
        }
    }
    const bool isUsed = std::any_of(all.begin(), all.end(), [&output](const OutputOption& each) {
        return &each != &output && IsSameFile(each.path, output.path);
    });
    return isUsed ? QStringLiteral("this file has another use") : QString();
}

}  // namespace

QString ReadPlan(const RunArguments& arguments, const CodeUnit& program, RunPlan& plan) {
    QString fault = ReadFile(arguments.engine, [&plan](const QByteArray& text) {
        return SetChoices(plan.profile, text);
    });
    const auto then = [&fault](const auto& read) { fault = fault.isEmpty() ? read() : fault; };
    then([&] { return ReadChecks(arguments, plan); });
    then([&] { return ReadSettings("--set", arguments.settings, program, plan.settings); });
    then([&] { return ReadForced(arguments, program, plan); });
    then([&] { return ReadUntil(arguments, program, plan); });
    then([&] { return ReadWatched(arguments, program, plan); });
    then([&] {
        return ReadFile(arguments.inputs, [&](const QByteArray& text) {
            InputsResult result = ReadInputs(text, program);
            plan.inputs = std::move(result.inputs);
            return result.fault;
        });
    });
    ReadCycles(arguments, plan);
    return fault;
}

QString WhatIsWrongWithFiles(const RunArguments& arguments) {
    const auto inputs = {arguments.path, arguments.inputs, arguments.engine};
    if (std::count(inputs.begin(), inputs.end(), STANDARD_INPUT) > 1) {
        return QStringLiteral("standard input can be read for one purpose alone");
    }
    const std::vector<OutputOption> outputs = {
        {"--trace", arguments.trace}, {"--chart", arguments.chart}, {"--record", arguments.test}};
    for (const OutputOption& output : outputs) {
        const QString fault = WhatIsWrongWith(output, outputs, arguments);
        if (!fault.isEmpty()) {
            return About(output.option, fault);
        }
    }
    if (!arguments.test.empty() && arguments.path == STANDARD_INPUT) {
        return About("--record", QStringLiteral("a test needs the name of the script"));
    }
    if (!arguments.test.empty() && !arguments.forced.empty()) {
        return About("--record",
                     QStringLiteral("a test forces nothing, so --force cannot be used"));
    }
    return {};
}
