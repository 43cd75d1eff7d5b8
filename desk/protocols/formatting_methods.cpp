#include "protocols/formatting_methods.h"

#include "format/layout.h"
#include "language/formatting.h"
#include "protocols/workspace_edit.h"

#include <algorithm>

namespace {

// Blanks for a level, as the editor is set.
int IndentOf(const QJsonObject& params) {
    constexpr int most = 16;
    const QJsonObject options = params[QStringLiteral("options")].toObject();
    return std::clamp(options[QStringLiteral("tabSize")].toInt(DEFAULT_INDENT), 1, most);
}

// Line ends that the compiler does not see would get lost.
void RefuseLoneReturns(const Script& script) {
    const QString fault = script.lines.ends().fault();
    if (!fault.isEmpty()) {
        throw RequestFailed{fault};
    }
}

}  // namespace

QJsonValue FormattingMethod(const Script& script, const QJsonObject& params) {
    RefuseLoneReturns(script);
    const Formatting formatting = FormattingOf(script.source(), IndentOf(params));
    if (!formatting.reason.isEmpty()) {
        throw RequestFailed{formatting.reason};
    }
    return TextEdits(script, formatting.edits);
}

QJsonValue RangeFormattingMethod(const Script& script, const QJsonObject& params) {
    RefuseLoneReturns(script);
    const Span range = script.lines.spanOf(params[QStringLiteral("range")].toObject());
    return TextEdits(script, FormattingIn(script.source(), range, IndentOf(params)));
}

QJsonValue OnTypeFormattingMethod(const Script& script, const QJsonObject& params) {
    if (!script.lines.ends().fault().isEmpty()) {
        return QJsonArray();
    }
    const int offset = script.lines.offsetOf(params[QStringLiteral("position")].toObject());
    return TextEdits(script, FormattingOfEnded(script.source(), offset, IndentOf(params)));
}

QJsonValue OnTypeFormattingOptions() {
    return QJsonObject{{QStringLiteral("firstTriggerCharacter"), QStringLiteral(";")}};
}
