#include "reports/formats.h"

#include "reports/terminal_text.h"

#include <cstddef>

std::string_view NameOf(Level level) {
    constexpr std::string_view names[] = {"note", "warning", "error"};
    return names[static_cast<std::size_t>(level)];
}

bool HasOwnPlace(const Help& help, const Diagnostic& diagnostic) {
    const bool hasPlace = help.span.end > 0;
    const bool isSame =
        help.span.begin == diagnostic.span.begin && help.span.end == diagnostic.span.end;
    return hasPlace && !isSame;
}

Span SpanOf(const Help& help, const Diagnostic& diagnostic) {
    return HasOwnPlace(help, diagnostic) ? help.span : diagnostic.span;
}

QString PlaceText(const Source& source, Place place) {
    return QStringLiteral("%1:%2:%3:")
        .arg(Harmless(source.name()), QString::number(place.line), QString::number(place.column));
}
