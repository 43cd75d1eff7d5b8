#include "check/edits.h"

#include <QRegularExpression>

#include <algorithm>

QString NeutralText(QStringView piece, const QString& neutral) {
    QString blanks = piece.toString();
    for (QChar& c : blanks) {
        c = c == u'\n' ? c : QChar(u' ');
    }
    const bool hasRoom = blanks.leftRef(neutral.size()).count(u' ') == neutral.size();
    return neutral + blanks.mid(hasRoom ? neutral.size() : 0);
}

Edit BlankOut(const Source& source, Span span) {
    return {span, NeutralText(source.text(span), QString())};
}

namespace {

bool IsBlank(const QString& text, int offset) {
    return offset >= 0 && offset < text.size() &&
           (text.at(offset) == u' ' || text.at(offset) == u'\t');
}

bool IsAnyOf(const QString& text, int offset, const QString& chars) {
    return offset < 0 || offset >= text.size() || chars.contains(text.at(offset));
}

}  // namespace

Edit TakeOut(const Source& source, Span span) {
    const QString& text = source.text();
    const QString lineEnds = QStringLiteral("\r\n");
    int begin = span.begin;
    while (IsBlank(text, begin - 1)) {
        --begin;
    }
    int end = span.end;
    while (IsBlank(text, end)) {
        ++end;
    }
    const bool isBeginOfLine = IsAnyOf(text, begin - 1, lineEnds);
    const bool isEndOfLine = IsAnyOf(text, end, lineEnds);
    if (isBeginOfLine && isEndOfLine) {
        return {{begin, end < text.size() ? text.indexOf(u'\n', end) + 1 : end}, QString()};
    }
    const bool isBefore = isEndOfLine || IsAnyOf(text, end, QStringLiteral(";,)"));
    const bool isAfter = begin < span.begin || isBeginOfLine || text.at(begin - 1) == u'(';
    return {{isBefore && !isBeginOfLine ? begin : span.begin, isAfter ? end : span.end},
            QString()};
}

bool KeepComments(const Source& source, const std::vector<Edit>& edits) {
    static const QRegularExpression comment(QStringLiteral(R"(\(\*.*?\*\)|//[^\n]*)"),
                                            QRegularExpression::DotMatchesEverythingOption);
    QString replaced;
    QString written;
    for (const Edit& edit : edits) {
        replaced += source.text(edit.span).toString() + u'\n';
        written += edit.text + u'\n';
    }
    auto matches = comment.globalMatch(replaced);
    while (matches.hasNext()) {
        if (!written.contains(matches.next().captured())) {
            return false;
        }
    }
    return true;
}

namespace {

bool IsWithin(const Edit& inner, const Edit& outer) {
    const bool isPutInBefore = inner.span.isEmpty() && inner.span.begin == outer.span.begin;
    return inner.span.begin >= outer.span.begin && inner.span.end <= outer.span.end &&
           !isPutInBefore && !outer.span.isEmpty();
}

// What is put in at the begin of a piece comes before it.
bool IsBefore(const Edit& a, const Edit& b) {
    return a.span.begin != b.span.begin ? a.span.begin < b.span.begin
                                        : a.span.isEmpty() && !b.span.isEmpty();
}

}  // namespace

void Edits::add(Edit edit) {
    const auto isWithin = [&edit](const Edit& older) { return IsWithin(older, edit); };
    edits_.erase(std::remove_if(edits_.begin(), edits_.end(), isWithin), edits_.end());
    edits_.insert(std::upper_bound(edits_.begin(), edits_.end(), edit, IsBefore),
                  std::move(edit));
}

QString Edits::applyTo(const QString& text) const {
    QString changed;
    int done = 0;
    for (const Edit& edit : edits_) {
        changed.append(text.midRef(done, edit.span.begin - done));
        changed.append(edit.text);
        done = edit.span.end;
    }
    return changed.append(text.midRef(done));
}

namespace {

// The edit whose text holds the offset, or comes first after it; `shift` is how much the changed
// text is longer up to there.
struct Position {
    const Edit* edit;
    int shift;
};

Position PositionOf(const std::vector<Edit>& edits, int offset) {
    int shift = 0;
    for (const Edit& edit : edits) {
        if (offset < edit.span.begin + shift + edit.text.size()) {
            return {&edit, shift};
        }
        shift += edit.text.size() - edit.span.length();
    }
    return {nullptr, shift};
}

}  // namespace

int Edits::originalBegin(int offset) const {
    const Position position = PositionOf(edits_, offset);
    const int original = offset - position.shift;
    return position.edit == nullptr ? original : std::min(original, position.edit->span.begin);
}

int Edits::originalEnd(int offset) const {
    const Position position = PositionOf(edits_, offset);
    const int original = offset - position.shift;
    const bool isWithin = position.edit != nullptr && original > position.edit->span.begin;
    return isWithin ? position.edit->span.end : original;
}

std::optional<Span> Edits::exact(Span span) const {
    int shift = 0;
    int shiftBefore = 0;
    for (const Edit& edit : edits_) {
        const int begin = edit.span.begin + shift;
        const int end = begin + edit.text.size();
        if (span.begin < end && span.end > begin) {
            return std::nullopt;
        }
        shift += edit.text.size() - edit.span.length();
        shiftBefore = end <= span.begin ? shift : shiftBefore;
    }
    return Span{span.begin - shiftBefore, span.end - shiftBefore};
}
