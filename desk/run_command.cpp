// yxst run FILE: executes a script or target code, cycle by cycle.

#include "check/file_check.h"
#include "facts/input.h"
#include "machine/engine_objects.h"
#include "machine/load.h"
#include "options.h"
#include "reports/interrupt.h"
#include "reports/make_report.h"
#include "reports/progress.h"
#include "reports/run_outputs.h"
#include "reports/run_report.h"
#include "run_plan.h"
#include "subcommands.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int MOST_ERRORS = 20;  // shown of a script

bool IsTraceShown(const RunArguments& arguments) {
    return arguments.trace == STANDARD_INPUT;
}

// ---------------------------------------------------------------------------------------------
// What cannot be executed
// ---------------------------------------------------------------------------------------------

Status ReportErrors(const Loaded& loaded, const QString& path, bool hasColors) {
    FileCheck check(loaded.source, MOST_ERRORS);
    bool goesOn = check.take(*loaded.facts);
    while (goesOn) {
        const CompileResult result = CompileAndWait(check.next(), Detail::IfMessages);
        if (!result.facts) {
            Complain(path + QStringLiteral(": ") + result.failure);
            return STATUS_FAILED;
        }
        goesOn = check.take(*result.facts);
    }
    const FileReport found = check.report();
    Summary summary;
    summary.add(found);
    const auto report = MakeReport({ReportFormat::Human, hasColors, false});
    report->file(found);
    report->end(summary);
    return STATUS_NOT_FINE;
}

Status ReportUnready(const Loaded& loaded, const QString& path, bool hasColors) {
    if (!loaded.failure.isEmpty()) {
        Complain(path + QStringLiteral(": ") + loaded.failure);
        return STATUS_FAILED;
    }
    if (loaded.fault) {
        PrintFault(loaded, *loaded.fault);
        return STATUS_NOT_FINE;
    }
    return ReportErrors(loaded, path, hasColors);
}

// ---------------------------------------------------------------------------------------------
// The run
// ---------------------------------------------------------------------------------------------

void Prepare(Machine& machine, const Loaded& loaded, const RunPlan& plan,
             const RunArguments& arguments) {
    machine.setTickStep(arguments.tick);
    machine.setInterrupt(Interrupts());
    if (arguments.isFast) {
        machine.setUncounted();
    }
    if (loaded.facts) {
        for (const UnitVariable& each : VariablesWithoutValue(*loaded.facts, loaded.code)) {
            machine.setUninitialized(each.unit, each.variable);
        }
    }
    for (const Setting& setting : plan.settings) {
        Put(setting, machine);
    }
    for (const Setting& setting : plan.forced) {
        machine.force(setting.variable, setting.value);
    }
}

bool IsOver(const RunPlan& plan, const Machine& machine, const RunOutputs& outputs) {
    return IsInterrupted() || !outputs.failure().isEmpty() || std::ferror(stdout) != 0 ||
           machine.cycles() == plan.cycles ||
           (plan.until && machine.cycles() > 0 &&
            Holds(*plan.until, machine.value(plan.until->setting.variable)));
}

// Executes cycles until the plan is done, a check stops the run or the user does.
void Execute(const RunPlan& plan, const CodeUnit& program, Machine& machine, RunOutputs& outputs,
             Progress* progress) {
    InputFeed feed(plan.inputs, program);
    while (!IsOver(plan, machine, outputs)) {
        std::vector<Setting> given =
            machine.cycles() == 0 ? plan.settings : std::vector<Setting>();
        const std::vector<Setting>& fed = feed.feed(machine);
        given.insert(given.end(), fed.begin(), fed.end());
        outputs.beginCycle(machine, given);
        if (!machine.cycle()) {
            return;
        }
        outputs.endCycle(machine);
        if (progress != nullptr) {
            progress->show(static_cast<int>(machine.cycles()));
        }
    }
}

// ---------------------------------------------------------------------------------------------
// How it ended
// ---------------------------------------------------------------------------------------------

// Standard output belongs to the trace where it is shown.
void ShowFindings(const RunArguments& arguments, const Loaded& loaded,
                  const std::vector<Finding>& findings) {
    if (IsTraceShown(arguments)) {
        ComplainOfFindings(loaded, findings);
    } else {
        PrintFindings(loaded, findings, HasColors(arguments.color, STDOUT_FILENO));
    }
}

void ReportRun(const RunArguments& arguments, const RunPlan& plan, const Loaded& loaded,
               const Machine& machine) {
    std::vector<Finding> findings;
    if (!arguments.isQuiet) {
        findings = FindingsOf(machine.notes());
    }
    if (machine.stop()) {
        findings.push_back(FindingOf(*machine.stop()));
    }
    ShowFindings(arguments, loaded, findings);
    if (!arguments.isQuiet && !IsTraceShown(arguments)) {
        PrintVariables(loaded.code.program(), plan.variables, machine);
        PrintSummary(machine, arguments.tick);
    }
}

Status ComplainOfFile(const QString& path) {
    Complain(path + QStringLiteral(": cannot be written"));
    return STATUS_FAILED;
}

void ComplainOfInterruption(const Loaded& loaded, const Machine& machine) {
    const QString place = machine.interruption()
                              ? QStringLiteral(", in the next one at ") +
                                    PlaceOf(loaded, machine.interruption()->item)
                              : QString();
    Complain(QStringLiteral("interrupted after %1 cycles").arg(machine.cycles()) + place);
}

Status StatusOf(const RunArguments& arguments, const RunPlan& plan, const Loaded& loaded,
                const Machine& machine) {
    if (machine.stop()) {
        return STATUS_NOT_FINE;
    }
    if (plan.until && Holds(*plan.until, machine.value(plan.until->setting.variable))) {
        return STATUS_FINE;
    }
    if (IsInterrupted()) {
        ComplainOfInterruption(loaded, machine);
        return STATUS_NOT_FINE;
    }
    if (plan.until) {
        Complain(QStringLiteral("--until: %1 did not hold within %2 cycles")
                     .arg(TextOfArgument(arguments.until))
                     .arg(machine.cycles()));
    }
    return plan.until ? STATUS_NOT_FINE : STATUS_FINE;
}

std::vector<int> VariablesOf(const std::vector<Setting>& settings) {
    std::vector<int> variables(settings.size());
    std::transform(settings.begin(), settings.end(), variables.begin(),
                   [](const Setting& setting) { return setting.variable; });
    return variables;
}

RunDescription DescriptionOf(const RunArguments& arguments, const RunPlan& plan,
                             const QString& script) {
    std::vector<int> given = VariablesOf(plan.settings);
    given.insert(given.end(), plan.inputs.variables.begin(), plan.inputs.variables.end());
    return {script,
            ChangedChoices(plan.profile),
            ChangesOf(plan.checks),
            arguments.tick,
            !arguments.watched.empty(),
            plan.variables,
            given,
            plan.written};
}

// The machine must be ready.
Status RunOn(Machine& machine, const RunArguments& arguments, const RunPlan& plan,
             const Loaded& loaded) {
    const CodeUnit& program = loaded.code.program();
    const RunFiles files = {TextOfArgument(arguments.trace), TextOfArgument(arguments.chart),
                            TextOfArgument(arguments.test)};
    RunOutputs outputs(files, DescriptionOf(arguments, plan, loaded.source.name()), program);
    if (!outputs.failure().isEmpty()) {
        return ComplainOfFile(outputs.failure());
    }
    Prepare(machine, loaded, plan, arguments);
    RememberInterrupts();
    {
        Progress progress(plan.cycles);
        Execute(plan, program, machine, outputs, IsTraceShown(arguments) ? nullptr : &progress);
    }
    outputs.finish(machine);
    ReportRun(arguments, plan, loaded, machine);
    return outputs.failure().isEmpty() ? StatusOf(arguments, plan, loaded, machine)
                                       : ComplainOfFile(outputs.failure());
}

// A check may stop the machine at an initial value already; then it has no variables.
Status RunPlanned(const RunArguments& arguments, const RunPlan& plan, const Loaded& loaded) {
    Machine machine(loaded.code, plan.profile, plan.checks);
    if (machine.stop()) {
        ShowFindings(arguments, loaded, {FindingOf(*machine.stop())});
        return STATUS_NOT_FINE;
    }
    return RunOn(machine, arguments, plan, loaded);
}

// Gives names to the objects of the engine; those that the script writes.
std::vector<int> NameObjects(Code& code) {
    const EngineUses uses = EngineUsesOf(code);
    NameEngineObjects(uses, code.units.back());
    const std::vector<Declaration>& declarations = code.program().declarations;
    std::vector<int> written;
    for (std::size_t index = 0; index < declarations.size(); ++index) {
        if (UseOf(uses, declarations[index]).isWritten) {
            written.push_back(static_cast<int>(index));
        }
    }
    return written;
}

Status RunRun(const RunArguments& arguments) {
    const QString path = TextOfArgument(arguments.path);
    QString fault = WhatIsWrongWithFiles(arguments);
    if (!fault.isEmpty()) {
        Complain(fault);
        return STATUS_FAILED;
    }
    Loaded loaded = Load(path);
    if (!loaded.isReady()) {
        return ReportUnready(loaded, path, HasColors(arguments.color, STDOUT_FILENO));
    }
    RunPlan plan;
    plan.written = NameObjects(loaded.code);
    fault = ReadPlan(arguments, loaded.code.program(), plan);
    if (!fault.isEmpty()) {
        Complain(fault);
        return STATUS_FAILED;
    }
    return RunPlanned(arguments, plan, loaded);
}

// ---------------------------------------------------------------------------------------------
// Options
// ---------------------------------------------------------------------------------------------

void AddTextOption(CLI::App& command, const char* option, std::string& text,
                   const char* valueName, const char* description) {
    command.add_option(option, text, description)->option_text(valueName);
}

void AddTickOption(CLI::App& command, quint32& tick) {
    command.add_option("--tick", tick, "What a cycle adds to the tick counter, 100")
        ->option_text("T")
        ->check([](const std::string& text) {
            bool isNumber = false;
            QString::fromStdString(text).toUInt(&isNumber);
            return isNumber ? std::string() : text + " is no whole number from 0 to 4294967295";
        });
}

// An option that may be given several times.
CLI::Option* AddTextsOption(CLI::App& command, const char* option,
                            std::vector<std::string>& texts, const char* valueName,
                            const char* description) {
    return command.add_option(option, texts, description)
        ->option_text(valueName)
        ->allow_extra_args(false);
}

}  // namespace

Runner DeclareRun(CLI::App& command) {
    const auto arguments = std::make_shared<RunArguments>();
    RunArguments& into = *arguments;
    command.add_option("FILE", into.path, "A script or target code; - is standard input")
        ->required();
    AddCountOption(command, "--cycles", into.cycles, "How many cycles are executed, 1");
    AddTickOption(command, into.tick);
    AddTextOption(command, "--inputs", into.inputs, "FILE",
                  "A table of what is put in before the cycles");
    AddTextsOption(command, "--set", into.settings, "NAME=VALUE",
                   "Begin with this value; may be given several times");
    AddTextsOption(command, "--force", into.forced, "NAME=VALUE",
                   "Keep this value, whatever is stored; may be given several times");
    AddTextOption(command, "--trace", into.trace, "FILE",
                  "Write the values after each cycle; - is standard output");
    AddTextsOption(command, "--watch", into.watched, "NAME,...",
                   "Show these variables instead of all")
        ->delimiter(',');
    AddTextOption(command, "--chart", into.chart, "FILE", "Draw the values on a web page");
    AddTextOption(command, "--until", into.until, "NAME=VALUE",
                  "End as soon as this holds; <, >, <=, >= and <> do too");
    AddTextOption(command, "--engine", into.engine, "FILE",
                  "What the machine does where the code leaves it open");
    AddTextsOption(command, "--check", into.checks, "NAME=ACTION",
                   "Turn a check off, or make it a note or a stop");
    command.add_flag("--fast", into.isFast,
                     "Without checks, but for those of --check, and without counts");
    AddTextOption(command, "--record", into.test, "FILE", "Write what happened as a test");
    command.add_flag("--quiet", into.isQuiet, "No table of the variables and no notes");
    AddColorOption(command, into.color);
    return [arguments] { return RunRun(*arguments); };
}
