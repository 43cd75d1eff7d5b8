#include "lints/lints.h"

#include "check/context.h"
#include "explain/distance.h"
#include "lints/allow.h"
#include "lints/flow.h"
#include "lints/lints_table.h"

#include "qyx_text.h"

#include <algorithm>

namespace {

// Those that are found together.
constexpr QLatin1String FLOW_LINTS[] = {"unset-read"_L1, "unused-store"_L1, "unreachable-code"_L1,
                                        "loop-variable-changed"_L1};
const QString USELESS_ALLOW = QStringLiteral("useless-allow");

const Lints& AllLints() {
    static const Lints lints = [] {
        Lints all;
        for (const auto group :
             {LintsOfStatements, LintsOfDeclarations, LintsOfExpressions, LintsOfConditions}) {
            const Lints rows = group();
            all.insert(all.end(), rows.begin(), rows.end());
        }
        return all;
    }();
    return lints;
}

std::vector<Diagnostic> AllFindings(const Subject& subject) {
    std::vector<Diagnostic> findings = FlowLints(subject.source, subject.facts);
    for (const Lint& lint : AllLints()) {
        for (Diagnostic& each : lint.find(subject)) {
            each.id = lint.id;
            findings.push_back(std::move(each));
        }
    }
    return findings;
}

// ---------------------------------------------------------------------------------------------
// What comments allow
// ---------------------------------------------------------------------------------------------

// The identifiers that lines allow, and which of them something was found for.
class Allowances {
public:
    explicit Allowances(const Subject& subject)
        : subject_(subject), all_(AllowancesOf(subject)), areUsed_(all_.size(), false) {}

    // Whether the finding is allowed.
    bool take(const Diagnostic& finding) {
        bool isAllowed = false;
        const int line = subject_.lineOf(finding.span.begin);
        const auto first = std::lower_bound(
            all_.begin(), all_.end(), line,
            [](const Allowance& allowance, int wanted) { return allowance.line < wanted; });
        for (auto each = first; each != all_.end() && each->line == line; ++each) {
            if (each->id == finding.id) {
                areUsed_[static_cast<std::size_t>(each - all_.begin())] = true;
                isAllowed = true;
            }
        }
        return isAllowed;
    }

    // What is of no use, but for the identifiers of a kind.
    std::vector<Diagnostic> useless(bool areAllowing) const {
        std::vector<Diagnostic> findings;
        for (std::size_t index = 0; index < all_.size(); ++index) {
            if (!areUsed_[index] && (all_[index].id == USELESS_ALLOW) == areAllowing) {
                findings.push_back(finding(all_[index]));
            }
        }
        return findings;
    }

private:
    const Subject& subject_;
    std::vector<Allowance> all_;
    std::vector<bool> areUsed_;

    static Diagnostic finding(const Allowance& allowance);
};

Diagnostic Allowances::finding(const Allowance& allowance) {
    if (allowance.id.isEmpty()) {
        return Finding(allowance.span, QStringLiteral("This comment names no lint to allow"));
    }
    if (LintIds().contains(allowance.id)) {
        return Finding(allowance.span,
                       QStringLiteral("%1 finds nothing on this line").arg(Quoted(allowance.id)),
                       QStringLiteral("leave %1 out of the comment").arg(Code(allowance.id)));
    }
    return Finding(allowance.span,
                   QStringLiteral("There is no lint %1").arg(Quoted(allowance.id)),
                   QStringLiteral("did you mean %1?").arg(Code(NearestLint(allowance.id))));
}

void RemoveAllowed(std::vector<Diagnostic>& findings, Allowances& allowances) {
    findings.erase(
        std::remove_if(findings.begin(), findings.end(),
                       [&](const Diagnostic& finding) { return allowances.take(finding); }),
        findings.end());
}

// What is found of comments may be allowed by others, but for what is found of those.
void ApplyComments(const Subject& subject, std::vector<Diagnostic>& findings) {
    Allowances allowances(subject);
    RemoveAllowed(findings, allowances);
    for (const bool areAllowing : {false, true}) {
        std::vector<Diagnostic> useless = allowances.useless(areAllowing);
        for (Diagnostic& each : useless) {
            each.id = USELESS_ALLOW;
        }
        if (!areAllowing) {
            RemoveAllowed(useless, allowances);
        }
        findings.insert(findings.end(), useless.begin(), useless.end());
    }
}

}  // namespace

std::vector<Diagnostic> FindLints(const Source& source, const Facts& facts,
                                  const QStringList& disabled) {
    if (!facts.isCompiled()) {
        return {};
    }
    const Subject subject(source, facts);
    std::vector<Diagnostic> findings = AllFindings(subject);
    ApplyComments(subject, findings);
    findings.erase(
        std::remove_if(findings.begin(), findings.end(),
                       [&](const Diagnostic& each) { return disabled.contains(each.id); }),
        findings.end());
    for (Diagnostic& each : findings) {
        for (Help& help : each.helps) {
            help.id = each.id;
        }
    }
    std::stable_sort(
        findings.begin(), findings.end(),
        [](const Diagnostic& a, const Diagnostic& b) { return a.span.begin < b.span.begin; });
    return findings;
}

QStringList LintIds() {
    QStringList ids;
    for (const Lint& lint : AllLints()) {
        ids.append(QString(lint.id));
    }
    for (const QLatin1String id : FLOW_LINTS) {
        ids.append(QString(id));
    }
    return ids << USELESS_ALLOW;
}

QString NearestLint(const QString& id) {
    const QStringList ids = LintIds();
    return *std::min_element(ids.begin(), ids.end(), [&id](const QString& a, const QString& b) {
        return EditDistance(id, a) < EditDistance(id, b);
    });
}
