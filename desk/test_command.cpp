// yxst test PATH...: executes the tables of tests that stand beside scripts.

#include "check/check_files.h"
#include "facts/input.h"
#include "machine/test_skeleton.h"
#include "options.h"
#include "reports/interrupt.h"
#include "reports/make_report.h"
#include "reports/make_test_report.h"
#include "reports/terminal_text.h"
#include "reports/test_text.h"
#include "subcommands.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <map>
#include <system_error>

namespace {

struct TestArguments {
    std::vector<std::string> paths;
    TestFormat format = TestFormat::Human;
    TestReportOptions report;
    ColorWish color = ColorWish::Auto;
    std::string caseText;
    int jobs = QThread::idealThreadCount();
    bool isNew = false;
};

// A table that is ready to be executed, and the place for what comes of it.
struct TestJob {
    TestedFile tested;
    TestSubject subject;
    TestPlan plan;
};

// ---------------------------------------------------------------------------------------------
// Scripts
// ---------------------------------------------------------------------------------------------

// What check finds in a script that does not compile.
std::optional<FileReport> ErrorsOf(const QString& script) {
    std::optional<FileReport> report;
    CheckFiles({script}, {}, [&report](const CheckedFile& file) { report = file.report; });
    return report;
}

QString BesideTable(const QString& table, const QString& name) {
    return table == QLatin1String(STANDARD_INPUT)
               ? name
               : QDir::cleanPath(QFileInfo(table).dir().filePath(name));
}

QString ScriptOf(const QString& table, const TestPreamble& preamble) {
    const QString beside = QFileInfo(table).completeBaseName() + QStringLiteral(".st");
    return BesideTable(table, preamble.script.isEmpty() ? beside : preamble.script);
}

// ---------------------------------------------------------------------------------------------
// Tables
// ---------------------------------------------------------------------------------------------

void Fail(TestedFile& tested, Place place, const QString& message) {
    const QString at =
        place.line == 0 ? QString() : QStringLiteral(":%1:%2").arg(place.line).arg(place.column);
    tested.failure = tested.path + at + QStringLiteral(": ") + Harmless(message);
}

// Choices of the table come after those of its file. False if something is wrong with it.
bool ReadEngine(const TestPreamble& preamble, TestJob& job) {
    if (!preamble.engineFile.isEmpty()) {
        const Input input = ReadInput(BesideTable(job.tested.path, preamble.engineFile));
        const QString fault = input.source
                                  ? SetChoices(job.subject.profile, input.source->text().toUtf8())
                                  : input.failure;
        if (!fault.isEmpty()) {
            Fail(job.tested, preamble.enginePlace,
                 preamble.engineFile + QStringLiteral(": ") + fault);
            return false;
        }
    }
    return SetChoices(job.subject.profile, preamble.choices.join(u'\n').toUtf8()).isEmpty();
}

// False if there is nothing to execute.
bool LoadScript(const TestPreamble& preamble, TestJob& job) {
    const QString script = ScriptOf(job.tested.path, preamble);
    job.tested.loaded = Load(script);
    const Loaded& loaded = job.tested.loaded;
    if (loaded.isReady()) {
        job.subject.code = loaded.code;
        return true;
    }
    if (loaded.failure.isEmpty() && !loaded.fault) {
        job.tested.errors = ErrorsOf(script);
    }
    if (!loaded.fault && !job.tested.errors) {
        Fail(job.tested, preamble.scriptPlace, script + QStringLiteral(": ") + loaded.failure);
    }
    return false;
}

void PlanJob(const TestText& text, TestJob& job) {
    TestSubject& subject = job.subject;
    const Loaded& loaded = job.tested.loaded;
    subject.checks = text.preamble.checks;
    subject.tickStep = text.preamble.tickStep;
    subject.interrupt = &Interrupts();
    if (loaded.facts) {
        subject.uninitialized = VariablesWithoutValue(*loaded.facts, loaded.code);
    }
    std::optional<CsvFault> fault = DeclareObjects(text.preamble, subject.code.units.back());
    if (!fault) {
        job.plan = PlanTests(text, subject.code.program());
        fault = job.plan.fault;
    }
    if (fault) {
        Fail(job.tested, fault->place, fault->message);
        job.plan.cases.clear();
    }
}

TestJob JobOf(const QString& path) {
    TestJob job;
    job.tested.path = path;
    const Input input = ReadInput(path);
    if (!input.source) {
        job.tested.failure = path + QStringLiteral(": ") + input.failure;
        return job;
    }
    const TestText text = ReadTestText(input.source->text().toUtf8());
    if (text.fault) {
        Fail(job.tested, text.fault->place, text.fault->message);
    } else if (ReadEngine(text.preamble, job) && LoadScript(text.preamble, job)) {
        PlanJob(text, job);
    }
    return job;
}

// Leaves the cases with that text in their names. Whether any is left, or is not known.
bool Select(const QString& text, TestJob& job) {
    std::vector<PlannedCase>& cases = job.plan.cases;
    const auto isOther = [&text](const PlannedCase& each) {
        return !each.name.contains(text, Qt::CaseInsensitive);
    };
    cases.erase(std::remove_if(cases.begin(), cases.end(), isOther), cases.end());
    return !cases.empty() || !job.tested.isExecuted();
}

std::vector<TestJob> JobsOf(const QStringList& files, const TestArguments& arguments) {
    const QString text = TextOfArgument(arguments.caseText);
    std::vector<TestJob> jobs;
    for (const QString& file : files) {
        TestJob job = JobOf(file);
        job.subject.isCounting = arguments.report.coverage != CoverageForm::None;
        if (Select(text, job)) {
            job.tested.cases.resize(job.plan.cases.size());
            jobs.push_back(std::move(job));
        }
    }
    return jobs;
}

// ---------------------------------------------------------------------------------------------
// Execution
// ---------------------------------------------------------------------------------------------

struct CaseTask {
    TestJob* job;
    std::size_t index;
};

// No compile runs while this does: a process with several threads does not fork well.
void ExecuteAll(const std::vector<CaseTask>& tasks, int jobs) {
    std::atomic<std::size_t> next = 0;
    const auto work = [&tasks, &next] {
        for (std::size_t at = next++; at < tasks.size(); at = next++) {
            TestJob& job = *tasks[at].job;
            const std::size_t index = tasks[at].index;
            job.tested.cases[index] = RunCase(job.subject, job.plan.cases[index]);
        }
    };
    std::vector<std::future<void>> helpers;
    try {
        for (std::size_t count = 1; count < std::min(tasks.size(), std::size_t(jobs)); ++count) {
            helpers.push_back(std::async(std::launch::async, work));
        }
    } catch (const std::system_error&) {
        // No more threads: those that there are do it.
    }
    work();
    for (std::future<void>& helper : helpers) {
        helper.get();
    }
}

void Execute(std::vector<TestJob>& jobs, int threads) {
    std::vector<CaseTask> tasks;
    for (TestJob& job : jobs) {
        for (std::size_t index = 0; index < job.plan.cases.size(); ++index) {
            tasks.push_back({&job, index});
        }
    }
    ExecuteAll(tasks, threads);
}

// ---------------------------------------------------------------------------------------------
// Results
// ---------------------------------------------------------------------------------------------

using Executions = std::vector<qint64>;

void AddTo(Executions& sums, const Executions& executions) {
    sums.resize(executions.size());
    std::transform(executions.begin(), executions.end(), sums.begin(), sums.begin(),
                   std::plus<>());
}

// A script is covered by all tables that are about it.
void ReportCoverage(const std::vector<TestJob>& jobs, TestReport& report) {
    std::map<QString, std::pair<const Loaded*, Executions>> scripts;
    for (const TestJob& job : jobs) {
        if (!job.tested.isExecuted() || !job.tested.loaded.isScript()) {
            continue;
        }
        const Loaded& loaded = job.tested.loaded;
        auto& [script, sums] = scripts[QFileInfo(loaded.source.name()).canonicalFilePath()];
        script = script == nullptr ? &loaded : script;
        for (const CaseResult& result : job.tested.cases) {
            AddTo(sums, result.executions);
        }
    }
    for (const auto& [path, script] : scripts) {
        const Loaded& loaded = *script.first;
        report.coverage({loaded.source,
                         CoverageOf(loaded.source, *loaded.facts, loaded.code, script.second)});
    }
}

Status ReportAll(const std::vector<TestJob>& jobs, const TestArguments& arguments) {
    const TestReportOptions& options = arguments.report;
    const std::unique_ptr<TestReport> report = MakeTestReport(arguments.format, options);
    TestSummary summary;
    bool hasFailures = false;
    report->begin();
    for (const TestJob& job : jobs) {
        if (!job.tested.failure.isEmpty()) {
            Complain(job.tested.failure);
            hasFailures = true;
        }
        report->file(job.tested);
        summary.add(job.tested, options.isStrict);
    }
    if (options.coverage != CoverageForm::None) {
        ReportCoverage(jobs, *report);
    }
    report->end(summary);
    if (summary.skipped > 0) {
        Complain(
            QStringLiteral("interrupted; %1 not executed")
                .arg(CasesText(summary.skipped) +
                     (summary.skipped == 1 ? QStringLiteral(" was") : QStringLiteral(" were"))));
    }
    const bool isFine = summary.failed == 0 && summary.broken == 0 && summary.skipped == 0;
    return hasFailures ? STATUS_FAILED : isFine ? STATUS_FINE : STATUS_NOT_FINE;
}

Status RunTests(const TestArguments& arguments) {
    const FoundFiles found =
        FindFiles(ListOf(arguments.paths), {QStringLiteral("test")}, QStringLiteral("tests"));
    for (const QString& failure : found.failures) {
        Complain(failure);
    }
    std::vector<TestJob> jobs = JobsOf(found.files, arguments);
    if (jobs.empty() && !found.files.isEmpty()) {
        Complain(QStringLiteral("no case has \"%1\" in its name")
                     .arg(TextOfArgument(arguments.caseText)));
        return STATUS_FAILED;
    }
    RememberInterrupts();
    Execute(jobs, arguments.jobs);
    const Status status = ReportAll(jobs, arguments);
    return found.failures.isEmpty() ? status : STATUS_FAILED;
}

// ---------------------------------------------------------------------------------------------
// New tables
// ---------------------------------------------------------------------------------------------

Status ReportUnready(const Loaded& loaded, const QString& script, bool hasColors) {
    const std::optional<FileReport> errors = ErrorsOf(script);
    if (!loaded.failure.isEmpty() || !loaded.facts || !errors) {
        const QString why = QStringLiteral("is no script");
        Complain(script + QStringLiteral(": ") +
                 (loaded.failure.isEmpty() ? why : loaded.failure));
        return STATUS_FAILED;
    }
    MakeReport({ReportFormat::Human, hasColors, true})->file(*errors);
    return STATUS_NOT_FINE;
}

// A table that is there already stays.
Status WriteSkeleton(const Loaded& loaded, const QString& script) {
    const QFileInfo info(script);
    const QString table = info.dir().filePath(info.completeBaseName() + QStringLiteral(".test"));
    const QByteArray text = SkeletonOf(loaded.code, info.fileName()).toUtf8();
    QFile file(QDir::cleanPath(table));
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        Complain(file.fileName() + (file.exists() ? QStringLiteral(": is there already")
                                                  : QStringLiteral(": cannot be written")));
        return STATUS_FAILED;
    }
    if (file.write(text) != text.size() || !file.flush()) {
        file.remove();
        Complain(file.fileName() + QStringLiteral(": cannot be written"));
        return STATUS_FAILED;
    }
    Print(file.fileName() + u'\n');
    return STATUS_FINE;
}

Status WriteNew(const TestArguments& arguments) {
    Status worst = STATUS_FINE;
    for (const QString& script : ListOf(arguments.paths)) {
        const Loaded loaded = Load(script);
        const Status status = loaded.isReady() && loaded.isScript()
                                  ? WriteSkeleton(loaded, script)
                                  : ReportUnready(loaded, script, arguments.report.hasColors);
        worst = std::max(worst, status);
    }
    return worst;
}

Status RunTest(TestArguments arguments) {
    TestReportOptions& report = arguments.report;
    report.hasColors = HasColors(arguments.color, STDOUT_FILENO);
    if (report.coverage != CoverageForm::None && arguments.format == TestFormat::Junit) {
        Complain(QStringLiteral("--coverage has no place in --format=junit"));
        return STATUS_FAILED;
    }
    return arguments.isNew ? WriteNew(arguments) : RunTests(arguments);
}

}  // namespace

Runner DeclareTest(CLI::App& command) {
    const auto arguments = std::make_shared<TestArguments>();
    const std::map<std::string, TestFormat> formats(std::begin(TEST_FORMATS),
                                                    std::end(TEST_FORMATS));
    const std::map<std::string, CoverageForm> forms = {{"none", CoverageForm::None},
                                                       {"summary", CoverageForm::Summary},
                                                       {"listing", CoverageForm::Listing}};
    command
        .add_option("PATH", arguments->paths,
                    "Tables of tests, or folders of them; - is standard input")
        ->required();
    AddChoiceOption(command, "--format", arguments->format, formats, "FORMAT",
                    "How it is shown: human, tap or junit");
    AddChoiceOption(command, "--coverage", arguments->report.coverage, forms, "FORM",
                    "What was executed of the scripts: none, summary or listing");
    command.add_option("--case", arguments->caseText, "Only cases with this text in their names")
        ->option_text("TEXT");
    command.add_flag("--strict", arguments->report.isStrict, "A case with notes has failed");
    command.add_flag("--quiet", arguments->report.isQuiet, "Show what has failed, nothing else");
    AddCountOption(command, "--jobs", arguments->jobs,
                   "Cases executed at the same time; as many as there are processors");
    command.add_flag("--new", arguments->isNew,
                     "Write a table to begin with beside each script PATH");
    AddColorOption(command, arguments->color);
    return [arguments] { return RunTest(*arguments); };
}
