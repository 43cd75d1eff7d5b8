#include "protocols/script_build.h"

#include "lints/lints.h"
#include "protocols/script.h"

namespace {

FindMore LintsBut(const QStringList& disabled) {
    return [disabled](const Source& source, const Facts& facts) {
        return FindLints(source, facts, disabled);
    };
}

}  // namespace

ScriptBuild::ScriptBuild(const QString& uri, const QString& text, const Settings& settings)
    : build_(Source(uri, CompiledText(text)), settings.maxErrors, LintsBut(settings.disabled)),
      compile_(build_.next(), Detail::All),
      limit_(settings.timeLimit),
      deadline_(Clock::now() + limit_) {}

bool ScriptBuild::goOn() {
    if (descriptor() >= 0 && compile_.takeSome()) {
        return true;
    }
    const CompileResult result = compile_.result();
    failure_ = result.failure;
    if (!result.facts || !build_.take(*result.facts)) {
        return false;
    }
    compile_ = CompileProcess(build_.next(), Detail::All);
    return descriptor() >= 0 || goOn();
}

void ScriptBuild::stop() {
    failure_ = QStringLiteral("the compiler was ended after %1 seconds")
                   .arg(static_cast<double>(limit_.count()) / 1000);
}
