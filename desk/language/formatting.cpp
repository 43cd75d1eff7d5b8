#include "language/formatting.h"

#include "facts/compile.h"
#include "format/format.h"
#include "language/model.h"

#include <algorithm>

namespace {

QString Applied(const Source& source, const std::vector<Edit>& edits) {
    Edits all;
    for (const Edit& edit : edits) {
        all.add(edit);
    }
    return all.applyTo(source.text());
}

// The script in its layout, or why it has none.
FormatResult ProvedText(const Source& source, const Facts& facts, int indent) {
    const FormatOptions options = {indent, true};
    const FormatResult result = FormatScript(source, facts, options);
    if (!result.text) {
        return result;
    }
    const Source after(source.name(), *result.text);
    const CompileResult compiled = CompileWithin(PATIENCE, after);
    const QString fault = compiled.facts ? FaultOfFormatted(ContentOf(source, facts), after,
                                                            *compiled.facts, options)
                                         : compiled.failure;
    return fault.isEmpty() ? result : FormatResult{std::nullopt, fault};
}

// Whether the compiler tells the same of the script after some of the edits.
bool AreProved(const Source& source, const Facts& facts, const std::vector<Edit>& edits) {
    const CompileResult after =
        CompileWithin(PATIENCE, Source(source.name(), Applied(source, edits)));
    return after.facts && after.facts->codes == facts.codes &&
           after.facts->isCompiled() == facts.isCompiled() &&
           after.facts->comments.size() == facts.comments.size();
}

// ---------------------------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------------------------

// Divides lines that change into the smallest groups of lines that hold the same.
class LineGroups {
public:
    LineGroups(const QString& before, const QString& after) : before_(before), after_(after) {}

    std::vector<Edit> edits() {
        for (const LineChange& change : ChangesBetween(before_, after_)) {
            divide(change);
        }
        return std::move(edits_);
    }

private:
    TextLines before_;
    TextLines after_;
    std::vector<Edit> edits_;

    void divide(const LineChange& change) {
        LineChange rest = change;
        for (int line = change.before.begin + 1; line < change.before.end; ++line) {
            const int other = lineOfAfter(rest.after, before_.inkBefore(line));
            if (other != NONE) {
                add({{rest.before.begin, line}, {rest.after.begin, other}});
                rest.before.begin = line;
                rest.after.begin = other;
            }
        }
        add(rest);
    }

    // The last line of the change before which as many characters stand.
    int lineOfAfter(Span lines, int ink) const {
        int found = NONE;
        for (int line = lines.begin; line < lines.end && after_.inkBefore(line) <= ink; ++line) {
            found = after_.inkBefore(line) == ink ? line : found;
        }
        return found;
    }

    void add(const LineChange& change) {
        const QStringView text = after_.text(change.after);
        if (before_.text(change.before) != text) {
            edits_.push_back({before_.offsets(change.before), text.toString()});
        }
    }
};

// From the begin of the first line to the end of the last, of which some lies in the range: one
// that ends at the begin of a line has nothing of that.
Span LinesOf(const Source& source, Span range) {
    const int last = std::max(range.begin, range.end - 1);
    return {source.lineAt(source.placeOf(range.begin).line).begin,
            source.lineAt(source.placeOf(last).line).end};
}

std::vector<Edit> FormattingIn(const Source& source, const Facts& facts, Span range, int indent) {
    const std::optional<QString> after = ProvedText(source, facts, indent).text;
    const Span lines = LinesOf(source, range);
    std::vector<Edit> edits =
        after ? LineGroups(source.text(), *after).edits() : std::vector<Edit>();
    edits.erase(std::remove_if(edits.begin(), edits.end(),
                               [lines](const Edit& edit) {
                                   return edit.span.begin > lines.end ||
                                          edit.span.end <= lines.begin;
                               }),
                edits.end());
    return edits.empty() || AreProved(source, facts, edits) ? edits : std::vector<Edit>();
}

// The longest one that ends there.
template <typename Record>
Span EndedAt(const std::vector<Record>& records, int offset) {
    Span found = {offset, offset};
    for (const Record& record : records) {
        const bool isLonger = record.span.length() > found.length();
        found = record.isEnded && record.span.end == offset && isLonger ? record.span : found;
    }
    return found;
}

}  // namespace

Formatting FormattingOf(const Source& source, int indent) {
    const CompileResult compiled = CompileWithin(PATIENCE, source);
    if (!compiled.facts) {
        return {{}, compiled.failure};
    }
    const FormatResult result = ProvedText(source, *compiled.facts, indent);
    return result.text ? Formatting{EditsBetween(source.text(), *result.text), {}}
                       : Formatting{{}, result.reason};
}

std::vector<Edit> FormattingIn(const Source& source, Span range, int indent) {
    const CompileResult result = CompileWithin(PATIENCE, source);
    return result.facts ? FormattingIn(source, *result.facts, range, indent)
                        : std::vector<Edit>();
}

std::vector<Edit> FormattingOfEnded(const Source& source, int offset, int indent) {
    const CompileResult result = CompileWithin(PATIENCE, source);
    if (!result.facts) {
        return {};
    }
    const Span statement = EndedAt(result.facts->statements, offset);
    const Span ended =
        statement.isEmpty() ? EndedAt(result.facts->declarations, offset) : statement;
    return ended.isEmpty() ? std::vector<Edit>()
                           : FormattingIn(source, *result.facts, ended, indent);
}
