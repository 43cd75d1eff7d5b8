#include "protocols/lsp_diagnostics.h"

#include "lints/lints.h"

#include "qyx_text.h"

#include <QDir>
#include <QFile>
#include <QUrl>

namespace {

enum class Severity : int { Error = 1, Warning = 2, Information = 3 };

constexpr int UNNECESSARY = 1;  // a tag

constexpr QLatin1String MESSAGE = "message"_L1;
constexpr QLatin1String RANGE = "range"_L1;
constexpr QLatin1String SEVERITY = "severity"_L1;
constexpr QLatin1String SOURCE = "source"_L1;
constexpr QLatin1String PROGRAM = "yxst"_L1;

constexpr QLatin1String DIAGNOSTICS_PAGE = "diagnostics.html"_L1;

Severity SeverityOf(Level level) {
    switch (level) {
        case Level::Error:
            return Severity::Error;
        case Level::Warning:
            return Severity::Warning;
        case Level::Note:
            break;
    }
    return Severity::Information;
}

bool TakesRelated(const Script& script) {
    return script.client[QStringLiteral("textDocument")]
        .toObject()[QStringLiteral("publishDiagnostics")]
        .toObject()[QStringLiteral("relatedInformation")]
        .toBool();
}

// A help that is shown at a place of its own.
bool IsRelated(const Script& script, const Help& help) {
    return !help.span.isEmpty() && TakesRelated(script);
}

// The helps that have no place stand below the message.
QString MessageOf(const Script& script, const Diagnostic& diagnostic) {
    QString message = diagnostic.message;
    for (const Help& help : diagnostic.helps) {
        if (!IsRelated(script, help)) {
            message += QStringLiteral("\nhelp: ") + help.text;
        }
    }
    return message;
}

QJsonArray RelatedTo(const Script& script, const Diagnostic& diagnostic) {
    QJsonArray related;
    for (const Help& help : diagnostic.helps) {
        if (IsRelated(script, help)) {
            const QJsonObject location = {{QStringLiteral("uri"), script.uri},
                                          {RANGE, script.lines.rangeOf(help.span)}};
            related.append(QJsonObject{{QStringLiteral("location"), location},
                                       {MESSAGE, QStringLiteral("help: ") + help.text}});
        }
    }
    return related;
}

bool IsLint(const QString& id) {
    static const QStringList lints = LintIds();
    return lints.contains(id);
}

// The page of the manual that has the entry of a diagnostic.
QString PageOf(const Diagnostic& diagnostic) {
    if (diagnostic.level == Level::Note) {
        return QStringLiteral("check.html");
    }
    return IsLint(diagnostic.id) ? QStringLiteral("lints.html") : DIAGNOSTICS_PAGE;
}

QJsonObject DescriptionOf(const Diagnostic& diagnostic, const QString& manual) {
    if (manual.isEmpty()) {
        return {};
    }
    QUrl url = QUrl::fromLocalFile(QDir(manual).filePath(PageOf(diagnostic)));
    url.setFragment(QStringLiteral("id-") + diagnostic.id);
    return {{QStringLiteral("href"), url.toString(QUrl::FullyEncoded)}};
}

// Whether it is about what could as well not be there.
bool IsUnnecessary(const QString& id) {
    return id.startsWith(QLatin1String("unused-")) || id == QLatin1String("unreachable-code") ||
           id.startsWith(QLatin1String("is-declared-but-never-used"));
}

void AddUnlessEmpty(QJsonObject& object, const QString& name, const QJsonObject& value) {
    if (!value.isEmpty()) {
        object[name] = value;
    }
}

void AddUnlessEmpty(QJsonObject& object, const QString& name, const QJsonArray& value) {
    if (!value.isEmpty()) {
        object[name] = value;
    }
}

QJsonObject LspDiagnostic(const Script& script, const Diagnostic& diagnostic,
                          const QString& manual) {
    QJsonObject object = {{RANGE, script.lines.rangeOf(diagnostic.span)},
                          {SEVERITY, static_cast<int>(SeverityOf(diagnostic.level))},
                          {QStringLiteral("code"), diagnostic.id},
                          {SOURCE, PROGRAM},
                          {MESSAGE, MessageOf(script, diagnostic)}};
    AddUnlessEmpty(object, QStringLiteral("codeDescription"), DescriptionOf(diagnostic, manual));
    AddUnlessEmpty(object, QStringLiteral("tags"),
                   IsUnnecessary(diagnostic.id) ? QJsonArray{UNNECESSARY} : QJsonArray());
    AddUnlessEmpty(object, QStringLiteral("relatedInformation"), RelatedTo(script, diagnostic));
    return object;
}

}  // namespace

QJsonArray LspDiagnostics(const Script& script, const QString& manual) {
    QJsonArray diagnostics;
    for (const Diagnostic& diagnostic : script.model.diagnostics) {
        diagnostics.append(LspDiagnostic(script, diagnostic, manual));
    }
    return diagnostics;
}

QJsonObject LspFailure(const QString& failure) {
    return {{RANGE, LspLines(QString()).rangeOf({0, 0})},
            {SEVERITY, static_cast<int>(Severity::Error)},
            {SOURCE, PROGRAM},
            {MESSAGE, failure}};
}

QString InstalledManual() {
    const QDir programs = QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).dir();
    const QString manual =
        QDir::cleanPath(programs.filePath(QStringLiteral("../share/doc/yxstcmp/html")));
    return QFile::exists(QDir(manual).filePath(DIAGNOSTICS_PAGE)) ? manual : QString();
}
