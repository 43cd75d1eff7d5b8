#include "lints/lints.h"

#include "check/context.h"
#include "explain/distance.h"
#include "facts/catalogue.h"
#include "lints/allow.h"
#include "lints/flow.h"
#include "lints/lints_table.h"

#include "qyx_text.h"

#include <QPair>
#include <QSet>

#include <algorithm>
#include <array>

namespace {

// Those that are found together.
constexpr QLatin1String FLOW_LINTS[] = {"unset-read"_L1, "unused-store"_L1, "unreachable-code"_L1,
                                        "loop-variable-changed"_L1};
const QString USELESS_ALLOW = QStringLiteral("useless-allow");

const Lints& AllLints() {
    static const Lints lints = [] {
        Lints all;
        for (const auto group : {LintsOfStatements, LintsOfDeclarations, LintsOfRanges,
                                 LintsOfExpressions, LintsOfConditions}) {
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

QSet<QString> KnownIds() {
    const QStringList ids = LintIds();
    return {ids.begin(), ids.end()};
}

// The identifiers that lines allow, and which of them something was found for.
class Allowances {
public:
    explicit Allowances(const Subject& subject)
        : subject_(subject), known_(KnownIds()), all_(AllowancesOf(subject, known_)) {
        for (const Allowance& each : all_) {
            for (const Key& key : keysOf(each)) {
                allowed_.insert(key);
            }
        }
    }

    // Whether the finding is allowed.
    bool take(const Diagnostic& finding) {
        const Key key = {subject_.lineOf(finding.span.begin), finding.id};
        const bool isAllowed = allowed_.contains(key);
        if (isAllowed) {
            used_.insert(key);
        }
        return isAllowed;
    }

    // What is of no use, but for the identifiers of a kind.
    std::vector<Diagnostic> useless(bool areAllowing) const {
        std::vector<Diagnostic> findings;
        for (const Allowance& each : all_) {
            if (!isUsed(each) && (each.id == USELESS_ALLOW) == areAllowing) {
                findings.push_back(finding(each));
            }
        }
        return findings;
    }

private:
    using Key = QPair<int, QString>;  // line and identifier

    // A comment may begin on another line than its identifier stands on.
    std::array<Key, 2> keysOf(const Allowance& allowance) const {
        return {Key{allowance.line, allowance.id},
                Key{subject_.lineOf(allowance.span.begin), allowance.id}};
    }

    bool isUsed(const Allowance& allowance) const {
        const std::array<Key, 2> keys = keysOf(allowance);
        return std::any_of(keys.begin(), keys.end(),
                           [this](const Key& key) { return used_.contains(key); });
    }

    const Subject& subject_;
    QSet<QString> known_;
    std::vector<Allowance> all_;
    QSet<Key> allowed_;
    QSet<Key> used_;

    Diagnostic finding(const Allowance& allowance) const;
};

bool IsOfCompiler(const QString& id) {
    for (int constant = 0; constant < ConstantsCount(); ++constant) {
        if (IdOf(constant) == id) {
            return true;
        }
    }
    return false;
}

Diagnostic NoLint(const Allowance& allowance) {
    const QString message = QStringLiteral("There is no lint %1").arg(Quoted(allowance.id));
    if (IsOfCompiler(allowance.id)) {
        return Finding(allowance.span, message,
                       QStringLiteral("warnings of the compiler cannot be allowed"));
    }
    const QString nearest = NearestLint(allowance.id);
    return nearest.isEmpty() ? Finding(allowance.span, message)
                             : Finding(allowance.span, message,
                                       QStringLiteral("did you mean %1?").arg(Code(nearest)));
}

Diagnostic Allowances::finding(const Allowance& allowance) const {
    if (allowance.isMisspelled) {
        return Finding(allowance.span, QStringLiteral("This comment allows nothing"),
                       QStringLiteral("write `yxst:allow`, in small letters and without blanks"));
    }
    if (allowance.id.isEmpty()) {
        return Finding(allowance.span, QStringLiteral("This comment names no lint to allow"));
    }
    if (!known_.contains(allowance.id)) {
        return NoLint(allowance);
    }
    return Finding(allowance.span,
                   QStringLiteral("%1 finds nothing on this line").arg(Quoted(allowance.id)),
                   QStringLiteral("leave %1 out of the comment").arg(Code(allowance.id)));
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

// A label that no way leads to is told as a statement that is never reached, not as unused too.
void RemoveUnreachedLabels(std::vector<Diagnostic>& findings) {
    QSet<int> unreached;
    for (const Diagnostic& each : findings) {
        if (each.id == "unreachable-code"_L1) {
            unreached.insert(each.span.begin);
        }
    }
    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [&](const Diagnostic& each) {
                                      return each.id == "unused-label"_L1 &&
                                             unreached.contains(each.span.begin);
                                  }),
                   findings.end());
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
    RemoveUnreachedLabels(findings);
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
    return NearestWord(id, LintIds());
}
