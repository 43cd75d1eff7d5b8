// Asks all that an editor asks of a script, at every place of scripts, and tells what cannot be
// right. With --rename=N every Nth name of all scripts that compile gets another name.
//
//     language_check [--rename=N] FILE...

#include "language/hints.h"
#include "language/hover.h"
#include "language/rename.h"
#include "language/symbols.h"
#include "language/target_code.h"
#include "protocols/script.h"

#include <QFile>

#include <algorithm>
#include <iostream>

namespace {

constexpr int MOST_ERRORS = 20;
constexpr int EVERY_PLACE = 3000;  // the size up to which a script is asked at each place

struct Totals {
    int scripts = 0;
    int compiled = 0;
    int places = 0;
    int hovers = 0;
    int uses = 0;
    int names = 0;
    int renamed = 0;
    int faults = 0;
};

class Check {
public:
    Check(QString name, const Model& model, Totals& totals)
        : name_(std::move(name)), model_(model), totals_(totals) {}

    void askEverything() {
        ++totals_.scripts;
        totals_.compiled += IsBroken(model_) ? 0 : 1;
        for (const int offset : offsets()) {
            ++totals_.places;
            askAt(offset);
        }
        lookAtOccurrences();
        lookAtSymbols(SymbolsOf(model_), {0, model_.source.size()});
        lookAtCode();
        lookAtHints();
        if (!IsBroken(model_)) {
            lookAtUses();
        }
    }

    void renameEvery(int step) {
        const int count = static_cast<int>(model_.facts.names.size());
        for (int name = 0; !IsBroken(model_) && name < count; ++name) {
            const NameFact& fact = NameOf(model_, name);
            const bool isOwn = !fact.isBuiltIn && !IsResult(fact);
            totals_.names += isOwn ? 1 : 0;
            if (isOwn && totals_.names % step == 0) {
                rename(name);
            }
        }
    }

private:
    QString name_;
    const Model& model_;
    Totals& totals_;

    void expect(bool isRight, const char* what, int offset) {
        if (!isRight) {
            ++totals_.faults;
            std::cout << name_.toStdString() << ": " << what << " at " << offset << "\n";
        }
    }

    // Each place of a short script, the ends of the tokens of a long one.
    std::vector<int> offsets() const {
        std::vector<int> all;
        for (int offset = 0; offset <= std::min(model_.source.size(), EVERY_PLACE); ++offset) {
            all.push_back(offset);
        }
        constexpr std::size_t step = 50;
        for (std::size_t token = 0; token < model_.facts.tokens.size(); token += step) {
            all.push_back(model_.facts.tokens[token].span.begin);
            all.push_back(model_.facts.tokens[token].span.end);
        }
        all.push_back(model_.source.size());
        return all;
    }

    void askAt(int offset) {
        const std::optional<Hover> hover = HoverAt(model_, offset);
        totals_.hovers += hover ? 1 : 0;
        expect(!hover || isAt(hover->span, offset), "hover is about another place", offset);
        expect(!hover || !hover->markdown.isEmpty(), "hover is empty", offset);
        const std::optional<Occurrence> found = OccurrenceAt(model_, offset);
        expect(!found || isAt(found->span, offset), "name is another", offset);
        const RenameTarget target = RenameTargetAt(model_, offset);
        expect(found.has_value() == (target.name != NONE), "rename is of another", offset);
    }

    static bool isAt(Span span, int offset) {
        return span.begin <= offset && offset <= span.end && !span.isEmpty();
    }

    void lookAtOccurrences() {
        int end = 0;
        for (const Occurrence& each : OccurrencesIn(model_)) {
            const bool isName = IsSameName(model_.source.text(each.span).toString().toUpper(),
                                           TextOfName(model_, each.name).toUpper());
            expect(isName, "text is not that of the name", each.span.begin);
            expect(each.span.begin >= end, "names lie in each other", each.span.begin);
            end = each.span.end;
        }
    }

    void lookAtSymbols(const std::vector<Symbol>& symbols, Span parent) {
        for (const Symbol& symbol : symbols) {
            const bool isNested =
                parent.begin <= symbol.range.begin && symbol.range.end <= parent.end &&
                symbol.range.begin <= symbol.selection.begin &&
                symbol.selection.end <= symbol.range.end && !symbol.name.isEmpty();
            expect(isNested, "symbol is not nested", symbol.range.begin);
            lookAtSymbols(symbol.children, symbol.range);
        }
    }

    void lookAtCode() {
        const std::vector<CodeItem> code = CodeFor(model_, {0, model_.source.size() + 1});
        const std::size_t count = IsBroken(model_) ? 0 : model_.facts.items.size();
        expect(code.size() == count, "code is not whole", 0);
        for (const CodeItem& item : code) {
            expect(item.piece.end > item.piece.begin && item.piece.end <= model_.source.size(),
                   "piece of code is none", item.piece.begin);
        }
    }

    void lookAtHints() {
        for (const Hint& hint : HintsIn(model_, {0, model_.source.size()})) {
            expect(!hint.text.isEmpty() && hint.offset <= model_.source.size(), "hint is none",
                   hint.offset);
        }
    }

    // Each use leads to the declaration of its name.
    void lookAtUses() {
        for (const UseFact& use : model_.facts.uses) {
            ++totals_.uses;
            const std::optional<Occurrence> found = OccurrenceAt(model_, use.span.begin);
            expect(found && found->name == use.name, "use leads elsewhere", use.span.begin);
            const bool isDeclared = !DeclaredAt(model_, use.name).isEmpty();
            expect(isDeclared != NameOf(model_, use.name).isBuiltIn, "use leads nowhere",
                   use.span.begin);
        }
    }

    // The proof is a part of the renaming.
    void rename(int name) {
        const int begin = DeclaredAt(model_, name).begin;
        const Renaming renaming = RenameTo(model_, begin, QStringLiteral("Fresh_Name"));
        const auto uses = std::count_if(model_.facts.uses.begin(), model_.facts.uses.end(),
                                        [name](const UseFact& use) { return use.name == name; });
        const bool isRenamed = static_cast<std::ptrdiff_t>(renaming.places.size()) == uses + 1;
        expect(isRenamed, qPrintable(QStringLiteral("not renamed: ") + renaming.refusal), begin);
        totals_.renamed += isRenamed ? 1 : 0;
    }
};

void CheckFile(const QString& name, int renames, Totals& totals) {
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        std::cout << name.toStdString() << ": cannot be read\n";
        ++totals.faults;
        return;
    }
    const QString text = CompiledText(QString::fromUtf8(file.readAll()));
    const Model model = ModelOf(Source(name, text), MOST_ERRORS);
    Check check(name, model, totals);
    check.askEverything();
    if (renames > 0) {
        check.renameEvery(renames);
    }
}

}  // namespace

int main(int count, char** arguments) {
    const QString option = QStringLiteral("--rename=");
    Totals totals;
    int renames = 0;
    for (int index = 1; index < count; ++index) {
        const QString argument = QString::fromLocal8Bit(arguments[index]);
        if (argument.startsWith(option)) {
            renames = argument.mid(option.size()).toInt();
        } else {
            CheckFile(argument, renames, totals);
        }
    }
    std::cout << totals.scripts << " scripts, " << totals.compiled << " compiled, "
              << totals.places << " places, " << totals.hovers << " hovers, " << totals.uses
              << " uses, " << totals.names << " names, " << totals.renamed << " renamed, "
              << totals.faults << " faults\n";
    return totals.faults == 0 ? 0 : 1;
}
