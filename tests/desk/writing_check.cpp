// Asks what helps to write scripts, at every place of scripts, and tells what cannot be right.
// What may come next is asked at every Nth place, and after the first letter of every Nth name
// that a script uses.
//
//     writing_check --propose=N FILE...

#include "language/completion.h"
#include "language/fixes.h"
#include "language/folds.h"
#include "language/selection.h"
#include "language/semantics.h"
#include "language/signature.h"
#include "protocols/script.h"

#include <QFile>

#include <algorithm>
#include <iostream>

namespace {

constexpr int MOST_ERRORS = 20;

struct Totals {
    int scripts = 0;
    int compiled = 0;
    int places = 0;
    int asked = 0;
    int proposals = 0;
    int uses = 0;
    int signatures = 0;
    int colours = 0;
    int folds = 0;
    int mends = 0;
    int faults = 0;
};

class Check {
public:
    Check(const Model& model, int step, Totals& totals)
        : model_(model), step_(step), totals_(totals) {}

    void askEverything() {
        ++totals_.scripts;
        lookAtFolds();
        lookAtColours();
        lookAtMends();
        for (int offset = 0; offset <= model_.source.size(); ++offset) {
            askAt(offset);
        }
        if (model_.facts.isCompiled() && model_.isWhole) {
            ++totals_.compiled;
            lookAtUses();
        }
    }

private:
    const Model& model_;
    int step_;
    Totals& totals_;

    void expect(bool isRight, const char* what, int offset) {
        if (!isRight) {
            ++totals_.faults;
            std::cout << model_.source.name().toStdString() << ": " << what << " at " << offset
                      << "\n";
        }
    }

    bool isPlace(Span span) const {
        return span.begin >= 0 && span.begin <= span.end && span.end <= model_.source.size();
    }

    // Two folds are apart, or one lies in the other.
    void lookAtFolds() {
        std::vector<Span> open;
        std::vector<Fold> folds = FoldsOf(model_);
        std::sort(folds.begin(), folds.end(), [](const Fold& a, const Fold& b) {
            return a.span.begin != b.span.begin ? a.span.begin < b.span.begin
                                                : a.span.end > b.span.end;
        });
        for (const Fold& fold : folds) {
            while (!open.empty() && open.back().end <= fold.span.begin) {
                open.pop_back();
            }
            const bool isNested = open.empty() || fold.span.end <= open.back().end;
            expect(isPlace(fold.span) && isNested, "fold is not nested", fold.span.begin);
            open.push_back(fold.span);
            ++totals_.folds;
        }
    }

    void lookAtColours() {
        int end = 0;
        for (const Colour& colour : ColoursOf(model_)) {
            const bool isApart = isPlace(colour.span) && colour.span.begin >= end;
            const bool isInLine = !model_.source.text(colour.span).contains(u'\n');
            expect(isApart && isInLine && !colour.span.isEmpty(), "colour overlaps another",
                   colour.span.begin);
            end = colour.span.end;
            ++totals_.colours;
        }
    }

    void lookAtMends() {
        for (const Fix& fix : MendsIn(model_, {0, model_.source.size()})) {
            ++totals_.mends;
            for (const Edit& edit : fix.edits) {
                expect(isPlace(edit.span), "mend is elsewhere", edit.span.begin);
            }
        }
    }

    void askAt(int offset) {
        lookAtSelections(offset);
        if (const std::optional<Signature> signature = SignatureAt(model_, offset)) {
            ++totals_.signatures;
            expect(signature->parameter >= 0, "parameter is none", offset);
        }
        if (++totals_.places % step_ == 0) {
            ++totals_.asked;
            const Proposals found = ProposalsAt(model_, offset);
            totals_.proposals += static_cast<int>(found.proposals.size());
            expect(found.word.begin <= offset && offset <= found.word.end, "word is another",
                   offset);
        }
    }

    void lookAtSelections(int offset) {
        Span inner = {offset, offset};
        for (const Span& span : SelectionsAt(model_, offset)) {
            const bool holds =
                isPlace(span) && span.begin <= inner.begin && inner.end <= span.end;
            expect(holds, "selection does not hold the one before", offset);
            inner = span;
        }
        expect(inner.length() == model_.source.size(), "selection ends early", offset);
    }

    void lookAtUses() {
        for (const UseFact& use : model_.facts.uses) {
            if (++totals_.uses % step_ == 0) {
                lookAtUse(use);
            }
        }
    }

    // The script with the first letter of the name alone.
    void lookAtUse(const UseFact& use) {
        const int offset = use.span.begin + 1;
        QString text = model_.source.text();
        text.remove(offset, use.span.length() - 1);
        const Model model = ModelOf(Source(model_.source.name(), text), MOST_ERRORS);
        const Facts& facts = model_.facts;
        const QStringView name =
            facts.textOf(facts.names[static_cast<std::size_t>(use.name)].text);
        const Proposals found = ProposalsAt(model, offset);
        const bool isThere = std::any_of(
            found.proposals.begin(), found.proposals.end(), [name](const Proposal& proposal) {
                return name.compare(proposal.name, Qt::CaseInsensitive) == 0;
            });
        expect(isThere, "name is not proposed", use.span.begin);
    }
};

void CheckFile(const QString& name, int step, Totals& totals) {
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        std::cout << name.toStdString() << ": cannot be read\n";
        ++totals.faults;
        return;
    }
    const QString text = CompiledText(QString::fromUtf8(file.readAll()));
    const Model model = ModelOf(Source(name, text), MOST_ERRORS);
    Check(model, step, totals).askEverything();
}

}  // namespace

int main(int count, char** arguments) {
    const QString option = QStringLiteral("--propose=");
    Totals totals;
    int step = 1;
    for (int index = 1; index < count; ++index) {
        const QString argument = QString::fromLocal8Bit(arguments[index]);
        if (argument.startsWith(option)) {
            step = std::max(argument.mid(option.size()).toInt(), 1);
        } else {
            CheckFile(argument, step, totals);
        }
    }
    std::cout << totals.scripts << " scripts, " << totals.compiled << " compiled, "
              << totals.places << " places, " << totals.asked << " asked, " << totals.proposals
              << " proposals, " << totals.uses << " uses, " << totals.signatures
              << " signatures, " << totals.colours << " colours, " << totals.folds << " folds, "
              << totals.mends << " mends, " << totals.faults << " faults\n";
    return totals.faults == 0 ? 0 : 1;
}
