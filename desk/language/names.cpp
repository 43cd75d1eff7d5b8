#include "language/names.h"

#include "check/tokens.h"

#include "qyx_scanner.h"
#include "qyx_text.h"

#include <algorithm>

bool IsSameName(QStringView one, QStringView other) {
    return StrCmp(one, other, true) == 0;
}

const NameFact& NameOf(const Model& model, int name) {
    return model.facts.names[static_cast<std::size_t>(name)];
}

const UnitFact& UnitOf(const Model& model, int unit) {
    return model.facts.units[static_cast<std::size_t>(unit)];
}

QString TextOfName(const Model& model, int name) {
    return model.facts.textOf(NameOf(model, name).text).toString();
}

bool IsResult(const NameFact& name) {
    return name.kind == NameKind::Variable && name.section == TOKEN_RESULT;
}

// ---------------------------------------------------------------------------------------------
// Tokens and units
// ---------------------------------------------------------------------------------------------

namespace {

// The index of the last token that begins at an offset or before it, or NONE.
int LastTokenFrom(const Model& model, int offset) {
    const std::vector<TokenFact>& tokens = model.facts.tokens;
    const auto after =
        std::upper_bound(tokens.begin(), tokens.end(), offset,
                         [](int at, const TokenFact& token) { return at < token.span.begin; });
    return static_cast<int>(after - tokens.begin()) - 1;
}

Span TokenSpan(const Model& model, int index) {
    return model.facts.tokens[static_cast<std::size_t>(index)].span;
}

bool IsWord(const Model& model, Span span) {
    return !span.isEmpty() && IsAlphaOrDigitR(model.source.text().at(span.begin));
}

}  // namespace

int TokenIndexAt(const Model& model, int offset) {
    const int index = LastTokenFrom(model, offset);
    return index != NONE && offset < TokenSpan(model, index).end ? index : NONE;
}

int WordIndexAt(const Model& model, int offset) {
    const int index = TokenIndexAt(model, offset);
    if (index != NONE && IsWord(model, TokenSpan(model, index))) {
        return index;
    }
    const int before = offset == 0 ? NONE : TokenIndexAt(model, offset - 1);
    return before != NONE && IsWord(model, TokenSpan(model, before)) ? before : NONE;
}

Span ExtentOfUnit(const Model& model, int unit) {
    const std::vector<UnitFact>& units = model.facts.units;
    const auto index = static_cast<std::size_t>(unit);
    const Span span = units[index].span;
    if (units[index].isEnded) {
        return span;
    }
    const int end = index + 1 < units.size() ? units[index + 1].span.begin : model.source.size();
    return {span.begin, std::max(span.end, end)};
}

int UnitAt(const Model& model, int offset) {
    const int count = static_cast<int>(model.facts.units.size());
    for (int unit = count - 1; unit >= 0; --unit) {
        const Span extent = ExtentOfUnit(model, unit);
        if (offset >= extent.begin) {
            return offset <= extent.end ? unit : NONE;
        }
    }
    return NONE;
}

int UnitNamed(const Model& model, int name) {
    const std::vector<UnitFact>& units = model.facts.units;
    const auto found = std::find_if(units.begin(), units.end(),
                                    [name](const UnitFact& unit) { return unit.name == name; });
    return found == units.end() ? NONE : static_cast<int>(found - units.begin());
}

std::vector<int> ParametersOf(const Model& model, int unit) {
    std::vector<int> parameters;
    const int count = static_cast<int>(model.facts.names.size());
    for (int index = 0; index < count; ++index) {
        const NameFact& name = NameOf(model, index);
        const bool isParameter = name.section == TOKEN_VAR_ARG || name.section == TOKEN_VAR_REF;
        if (name.kind == NameKind::Variable && name.unit == unit && isParameter) {
            parameters.push_back(index);
        }
    }
    return parameters;
}

bool IsBroken(const Model& model) {
    return !model.isWhole || !model.facts.isCompiled();
}

bool IsChanged(const Model& model, Span span) {
    return std::any_of(model.changes.begin(), model.changes.end(), [span](Span change) {
        return change.begin <= span.end && change.end >= span.begin;
    });
}

// ---------------------------------------------------------------------------------------------
// Occurrences
// ---------------------------------------------------------------------------------------------

namespace {

// Whether the script has the name there, and not what was put in to get past an error.
bool IsWritten(const Model& model, Span span, int name) {
    return model.isWhole || IsSameName(model.source.text(span), TextOfName(model, name));
}

OccurrenceKind KindOf(UseKind use) {
    switch (use) {
        case UseKind::Read:
            return OccurrenceKind::Read;
        case UseKind::Write:
            return OccurrenceKind::Write;
        case UseKind::Reference:
            return OccurrenceKind::Reference;
        case UseKind::Call:
            return OccurrenceKind::Call;
        case UseKind::Goto:
            break;
    }
    return OccurrenceKind::Goto;
}

bool IsBefore(const Occurrence& one, const Occurrence& other) {
    return one.span.begin < other.span.begin;
}

std::vector<Occurrence> ToldOccurrences(const Model& model) {
    std::vector<Occurrence> all;
    const int count = static_cast<int>(model.facts.names.size());
    for (int name = 0; name < count; ++name) {
        const Span span = DeclaredAt(model, name);
        if (!span.isEmpty() && !IsResult(NameOf(model, name))) {
            all.push_back({span, name, OccurrenceKind::Declaration});
        }
    }
    for (const UseFact& use : model.facts.uses) {
        if (use.name != NONE && IsWritten(model, use.span, use.name)) {
            all.push_back({use.span, use.name, KindOf(use.kind)});
        }
    }
    std::stable_sort(all.begin(), all.end(), IsBefore);
    return all;
}

// Finds the names of a script by their texts.
class NamesByText {
public:
    explicit NamesByText(const Model& model) : model_(model) {
        const int count = static_cast<int>(model.facts.names.size());
        for (int name = 0; name < count; ++name) {
            if (NameOf(model, name).kind != NameKind::Program) {
                order_.push_back(name);
            }
        }
        std::stable_sort(order_.begin(), order_.end(), [this](int one, int other) {
            return StrCmp(textOf(one), textOf(other), true) < 0;
        });
    }

    // The variable of the unit, else what every unit sees; NONE if there is neither.
    int find(QStringView text, int unit) const {
        const auto first = std::lower_bound(order_.begin(), order_.end(), text,
                                            [this](int name, QStringView sought) {
                                                return StrCmp(textOf(name), sought, true) < 0;
                                            });
        int seenByAll = NONE;
        for (auto each = first; each != order_.end() && IsSameName(textOf(*each), text); ++each) {
            const NameFact& name = NameOf(model_, *each);
            if (name.unit == unit && unit != NONE) {
                return *each;
            }
            seenByAll = name.unit == NONE && seenByAll == NONE ? *each : seenByAll;
        }
        return seenByAll;
    }

private:
    const Model& model_;
    std::vector<int> order_;

    QStringView textOf(int name) const { return model_.facts.textOf(NameOf(model_, name).text); }
};

// Follows the tokens of a script and tells what each word means of which the compiler told
// nothing.
class Guesser {
public:
    explicit Guesser(const Model& model)
        : model_(model), tokens_(model.source, model.facts), names_(model) {}

    std::vector<Occurrence> guess(const std::vector<Occurrence>& told) {
        auto next = told.begin();
        std::vector<Occurrence> guessed;
        for (int index = 0; index < tokens_.count(); ++index) {
            const Span span = tokens_.span(index);
            enter(index);
            while (next != told.end() && next->span.begin < span.begin) {
                ++next;
            }
            const bool isTold = next != told.end() && next->span.begin == span.begin;
            const bool isName = tokens_.isOneOf(index, {TOKEN_IDENTIFIER, TOKEN_RESULT});
            const int name = isName && !isTold ? names_.find(tokens_.text(index), unit_) : NONE;
            if (name != NONE) {
                guessed.push_back({span, name, kindAt(index, name)});
            }
        }
        return guessed;
    }

private:
    const Model& model_;
    Tokens tokens_;
    NamesByText names_;
    int unit_ = NONE;
    std::size_t unitsSeen_ = 0;

    void enter(int index) {
        const std::vector<UnitFact>& units = model_.facts.units;
        const int begin = tokens_.span(index).begin;
        while (unitsSeen_ < units.size() && units[unitsSeen_].span.begin < begin) {
            ++unitsSeen_;
        }
        if (unitsSeen_ < units.size() && units[unitsSeen_].span.begin == begin) {
            unit_ = static_cast<int>(unitsSeen_);
        } else if (IsUnitBegin(tokens_.code(index)) || IsUnitEnd(tokens_.code(index))) {
            unit_ = NONE;
        }
    }

    OccurrenceKind kindAt(int index, int name) const {
        const NameKind kind = NameOf(model_, name).kind;
        if (kind == NameKind::Label) {
            return OccurrenceKind::Goto;
        }
        if (kind != NameKind::Variable) {
            return OccurrenceKind::Call;
        }
        return tokens_.is(index + 1, TOKEN_ASSIGN) ? OccurrenceKind::Write : OccurrenceKind::Read;
    }
};

}  // namespace

Span DeclaredAt(const Model& model, int name) {
    const NameFact& fact = NameOf(model, name);
    if (IsResult(fact)) {
        const int function = UnitOf(model, fact.unit).name;
        return DeclaredAt(model, function);
    }
    return IsWritten(model, fact.span, name) ? fact.span : Span();
}

std::vector<Occurrence> OccurrencesIn(const Model& model) {
    std::vector<Occurrence> all = ToldOccurrences(model);
    if (IsBroken(model)) {
        const std::vector<Occurrence> guessed = Guesser(model).guess(all);
        const auto middle = all.insert(all.end(), guessed.begin(), guessed.end());
        std::inplace_merge(all.begin(), middle, all.end(), IsBefore);
    }
    return all;
}

std::vector<Occurrence> OccurrencesOf(const Model& model, int name) {
    std::vector<Occurrence> all = OccurrencesIn(model);
    const auto isOther = [name](const Occurrence& each) { return each.name != name; };
    all.erase(std::remove_if(all.begin(), all.end(), isOther), all.end());
    return all;
}

std::optional<Occurrence> OccurrenceOfToken(const Model& model, int token) {
    const Span span = TokenSpan(model, token);
    const std::vector<Occurrence> all = OccurrencesIn(model);
    const auto found =
        std::lower_bound(all.begin(), all.end(), Occurrence{span, NONE, {}}, IsBefore);
    const bool isThere = found != all.end() && found->span.begin == span.begin;
    return isThere ? std::optional(*found) : std::nullopt;
}

std::optional<Occurrence> OccurrenceAt(const Model& model, int offset) {
    const int token = WordIndexAt(model, offset);
    return token == NONE ? std::nullopt : OccurrenceOfToken(model, token);
}
