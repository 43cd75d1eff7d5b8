#include "language/fixes.h"

#include "facts/compile.h"
#include "language/places.h"
#include "lints/allow.h"
#include "lints/lints.h"

#include <algorithm>

namespace {

bool Touches(Span one, Span other) {
    return one.begin <= other.end && other.begin <= one.end;
}

std::vector<const Diagnostic*> DiagnosticsIn(const Model& model, Span range) {
    std::vector<const Diagnostic*> found;
    for (const Diagnostic& diagnostic : model.diagnostics) {
        if (Touches(diagnostic.span, range)) {
            found.push_back(&diagnostic);
        }
    }
    return found;
}

// A help is no sentence, a title begins like one.
QString TitleOf(const Help& help) {
    return help.text.left(1).toUpper() + help.text.mid(1);
}

// An edit sets its text apart by blanks; one is enough.
Edit WithoutDoubleBlanks(const Source& source, Edit edit) {
    const QString& text = source.text();
    const auto isBlankOr = [&text](int offset, const QString& others) {
        return offset >= 0 && offset < text.size() &&
               (text.at(offset).isSpace() || others.contains(text.at(offset)));
    };
    if (edit.text.startsWith(u' ') && isBlankOr(edit.span.begin - 1, QStringLiteral("("))) {
        edit.text.remove(0, 1);
    }
    if (edit.text.endsWith(u' ') && isBlankOr(edit.span.end, QStringLiteral(";,)"))) {
        edit.text.chop(1);
    }
    return edit;
}

std::vector<Edit> EditsOf(const Source& source, const Help& help) {
    std::vector<Edit> edits;
    for (const Edit& edit : help.offer) {
        edits.push_back(WithoutDoubleBlanks(source, edit));
    }
    return edits;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Mends
// ---------------------------------------------------------------------------------------------

std::vector<Fix> MendsIn(const Model& model, Span range) {
    std::vector<Fix> fixes;
    for (const Diagnostic* diagnostic : DiagnosticsIn(model, range)) {
        for (const Help& help : diagnostic->helps) {
            if (!help.offer.empty()) {
                fixes.push_back(
                    {TitleOf(help), diagnostic, EditsOf(model.source, help), !help.mend.empty()});
            }
        }
    }
    return fixes;
}

namespace {

// Edits at the same place would have no order.
bool MayBeDoneWith(const std::vector<Edit>& mend, const std::vector<Edit>& others) {
    return std::none_of(mend.begin(), mend.end(), [&others](const Edit& edit) {
        return std::any_of(others.begin(), others.end(),
                           [&edit](const Edit& other) { return Touches(edit.span, other.span); });
    });
}

}  // namespace

std::vector<Edit> AllMends(const Model& model) {
    std::vector<Edit> edits;
    for (const Fix& fix : MendsIn(model, {0, model.source.size()})) {
        if (fix.isCertain && MayBeDoneWith(fix.edits, edits)) {
            edits.insert(edits.end(), fix.edits.begin(), fix.edits.end());
        }
    }
    return edits;
}

// ---------------------------------------------------------------------------------------------
// Comments that allow
// ---------------------------------------------------------------------------------------------

namespace {

QSet<QString> KnownLints() {
    const QStringList ids = LintIds();
    return QSet<QString>(ids.begin(), ids.end());
}

// Where the comment of a line has its last identifier, NONE if it allows nothing.
int EndOfAllowances(const Model& model, int line) {
    const Subject subject(model.source, model.facts);
    int end = NONE;
    for (const Allowance& each : AllowancesOf(subject, KnownLints())) {
        end = each.line == line && !each.id.isEmpty() ? each.span.end : end;
    }
    return end;
}

// The comment at the end of the line goes on, or there is a new one.
Edit AllowanceAt(const Model& model, const Diagnostic& finding) {
    const Place place = model.source.placeOf(finding.span.begin);
    const int listed = EndOfAllowances(model, place.line);
    if (listed != NONE) {
        return {{listed, listed}, QStringLiteral(", ") + finding.id};
    }
    const int end = model.source.lineAt(place.line).end;
    const bool isInComment = PlaceKindAt(model, end) == PlaceKind::Comment;
    const QString sign = isInComment ? QStringLiteral(" ") : QStringLiteral("  // ");
    return {{end, end}, sign + QStringLiteral("yxst:allow ") + finding.id};
}

int CountOf(const std::vector<Diagnostic>& findings, const QString& id) {
    return static_cast<int>(
        std::count_if(findings.begin(), findings.end(),
                      [&id](const Diagnostic& each) { return each.id == id; }));
}

// Whether the script says the same after the edit, and one finding fewer is left, if none is new.
bool IsProved(const Model& model, const Edit& edit, const QString& id) {
    Edits edits;
    edits.add(edit);
    const Source after(model.source.name(), edits.applyTo(model.source.text()));
    const CompileResult result = CompileWithin(PATIENCE, after);
    if (!result.facts || result.facts->codes != model.facts.codes) {
        return false;
    }
    const std::vector<Diagnostic> left = FindLints(after, *result.facts, {});
    const std::vector<Diagnostic> found = FindLints(model.source, model.facts, {});
    return left.size() < found.size() && CountOf(left, id) < CountOf(found, id);
}

}  // namespace

std::vector<Fix> AllowancesIn(const Model& model, Span range) {
    std::vector<Fix> fixes;
    if (!model.isWhole) {
        return fixes;
    }
    const QSet<QString> lints = KnownLints();
    // A large range may have many findings, each of which takes a compile: some are enough.
    const auto end = std::chrono::steady_clock::now() + PATIENCE;
    for (const Diagnostic* diagnostic : DiagnosticsIn(model, range)) {
        if (std::chrono::steady_clock::now() > end) {
            break;
        }
        const Edit edit = AllowanceAt(model, *diagnostic);
        if (lints.contains(diagnostic->id) && IsProved(model, edit, diagnostic->id)) {
            const QString title = QStringLiteral("Allow %1 on this line").arg(diagnostic->id);
            fixes.push_back({title, diagnostic, {edit}});
        }
    }
    return fixes;
}
