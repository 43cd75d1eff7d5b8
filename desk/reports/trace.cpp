#include "reports/trace.h"

#include "reports/terminal_text.h"

std::string TraceHead(const QString& script, const QStringList& choices,
                      const ChangedChecks& checks, const QStringList& variables) {
    QString head =
        QStringLiteral("# script: %1\n# version: yxst " YXST_VERSION "\n").arg(Harmless(script));
    if (choices.isEmpty()) {
        head += QStringLiteral("# engine: default\n");
    }
    for (const QString& choice : choices) {
        head += QStringLiteral("# engine: ") + choice + u'\n';
    }
    for (const auto& [name, action] : checks) {
        head += QStringLiteral("# check: %1 = %2\n").arg(name, action);
    }
    const QStringList columns = QStringList{"cycle", "tick"} + variables;
    return (head + columns.join(u',') + u'\n').toStdString();
}

std::string TraceRow(qint64 cycle, quint32 tick, const std::vector<Value>& values) {
    std::string row = std::to_string(cycle) + ',' + std::to_string(tick);
    for (const Value& value : values) {
        row += ',' + TextOf(value).toStdString();
    }
    return row + '\n';
}
