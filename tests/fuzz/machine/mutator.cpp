#include "mutator.h"

#include "../literals.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <numeric>
#include <utility>

namespace {

constexpr int MOST_CHANGES = 6;
constexpr std::size_t LONGEST_RUN = 24;
constexpr std::size_t MOST_TERMS = 3;
constexpr std::size_t MOST_ARGUMENTS = 3;
constexpr unsigned BYTES = 256;

using Word = std::string;

bool IsJumpWord(const Word& word) {
    return word == "JMP" || word == "JMPF" || word == "JMPT";
}

// A label that the compiler might make, far beyond those that are there.
Word LabelOf(std::size_t number) {
    return "L" + std::to_string(number);
}

}  // namespace

std::unique_ptr<AnyMutator> MakeMutator(std::istream& dictionary, unsigned seed) {
    return std::make_unique<MachineMutator>(dictionary, seed);
}

// ---------------------------------------------------------------------------------------------
// The choice of mutations
// ---------------------------------------------------------------------------------------------

struct MachineMutator::Weighted {
    Mutation mutation;
    std::size_t weight;
};

MachineMutator::Mutation MachineMutator::chooseMutation() {
    static constexpr std::array<Weighted, 13> MUTATIONS = {{
        {&MachineMutator::replaceKeyword, 5},
        {&MachineMutator::replaceOperand, 8},
        {&MachineMutator::replaceType, 5},
        {&MachineMutator::replaceSection, 2},
        {&MachineMutator::replaceInitial, 4},
        {&MachineMutator::deleteRun, 3},
        {&MachineMutator::copyRun, 7},
        {&MachineMutator::swapRuns, 2},
        {&MachineMutator::loopRun, 2},
        {&MachineMutator::skipRun, 3},
        {&MachineMutator::insertAssignment, 6},
        {&MachineMutator::insertCall, 3},
        {&MachineMutator::replaceEntry, 1},
    }};
    static const std::size_t sum = std::accumulate(
        MUTATIONS.begin(), MUTATIONS.end(), std::size_t{0},
        [](std::size_t total, const Weighted& row) { return total + row.weight; });
    std::size_t place = random_.below(sum);
    const auto* row = MUTATIONS.begin();
    while (place >= row->weight) {
        place -= row->weight;
        ++row;
    }
    return row->mutation;
}

// An assignment can always be inserted.
void MachineMutator::changeCode() {
    const bool isListing = input_.parts[CODE].find('\n') != std::string::npos;
    items_ = ReadItems(input_.parts[CODE], words_);
    otherItems_ = ReadItems(other_.parts[CODE], words_);
    int changes = 0;
    do {
        while (!(this->*chooseMutation())()) {
        }
    } while (++changes < MOST_CHANGES && random_.oneIn(2));
    input_.parts[CODE] = JoinItems(items_, isListing != random_.oneIn(16));
}

bool MachineMutator::needsTable(Part part) const {
    return !input_.parts[part].empty() || !other_.parts[part].empty();
}

std::string MachineMutator::mutate(std::string_view input, std::string_view other,
                                   std::size_t maxSize) {
    input_ = SplitInput(input);
    other_ = SplitInput(other);
    input_.choices.resize(CHOICE_BYTES, '0');
    if (random_.oneIn(3)) {
        input_.choices[random_.below(CHOICE_BYTES)] = static_cast<char>(random_.below(BYTES));
    }
    if (!random_.oneIn(3)) {
        changeCode();
    }
    for (const Part part : {ENGINE, INPUTS, ARGUMENTS, TESTS}) {
        if (random_.oneIn(needsTable(part) ? 3 : 16)) {
            changeTable(part);
        }
    }
    std::string text = JoinInput(input_);
    return text.size() <= maxSize ? text : std::string(input.substr(0, maxSize));
}

// ---------------------------------------------------------------------------------------------
// Single words
// ---------------------------------------------------------------------------------------------

// Mostly by one of the same form.
bool MachineMutator::replaceKeyword() {
    const auto at = choose([this](const CodeItem& item) { return IsInstruction(item, words_); });
    if (!at) {
        return false;
    }
    Word& keyword = items_[*at][0];
    keyword = random_.oneOf(words_.group(words_.groupOf(keyword)));
    return true;
}

bool MachineMutator::replaceOperand() {
    const auto at = choose([this](const CodeItem& item) { return IsInstruction(item, words_); });
    if (!at) {
        return false;
    }
    CodeItem& item = items_[*at];
    Word& operand = item[1 + random_.below(item.size() - 1)];
    if (IsJumpWord(item[0])) {
        operand = makeTarget(*at);
    } else if (words_.groupOf(item[0]) == "call") {
        operand = makeCallee(item[0]);
    } else {
        operand = makeOperand(*at, operand);
    }
    return true;
}

bool MachineMutator::replaceType() {
    const auto at = choose([this](const CodeItem& item) { return IsDeclaration(item, words_); });
    if (at) {
        items_[*at][2] = random_.oneOf(words_.group("type"));
    }
    return at.has_value();
}

// By one with as many numbers mostly, else with numbers made to fit.
bool MachineMutator::replaceSection() {
    const auto at = choose([this](const CodeItem& item) { return IsDeclaration(item, words_); });
    if (!at) {
        return false;
    }
    CodeItem& item = items_[*at];
    const bool isOfMany = random_.oneIn(6);
    item[1] = random_.oneOf(words_.group(isOfMany ? "sectionOfMany" : "section"));
    item.resize(isOfMany ? 7 : 4, "0");
    return true;
}

bool MachineMutator::replaceInitial() {
    const auto at = choose([this](const CodeItem& item) { return IsDeclaration(item, words_); });
    if (at) {
        CodeItem& item = items_[*at];
        item[3 + random_.below(item.size() - 3)] = makeLiteral();
    }
    return at.has_value();
}

// A label or an entry.
bool MachineMutator::replaceEntry() {
    const auto at = choose(IsLabel);
    if (at) {
        items_[*at][0] =
            random_.oneIn(3) ? random_.oneOf(words_.group("entry")) : makeTarget(*at) + ':';
    }
    return at.has_value();
}

// ---------------------------------------------------------------------------------------------
// Runs of items that leave the stack as high as it was
// ---------------------------------------------------------------------------------------------

bool MachineMutator::deleteRun() {
    const auto run = chooseRun(items_);
    if (run) {
        replace(*run, {});
    }
    return run.has_value();
}

bool MachineMutator::copyRun() {
    const CodeItems& from = otherItems_.empty() || random_.oneIn(2) ? items_ : otherItems_;
    const auto run = chooseRun(from);
    const auto place = choosePlace();
    if (!run || !place) {
        return false;
    }
    const auto begin = from.begin();
    insert(*place,
           adapt({begin + static_cast<long>(run->begin), begin + static_cast<long>(run->end)},
                 *place));
    return true;
}

bool MachineMutator::swapRuns() {
    const auto one = chooseRun(items_);
    const auto other = chooseRun(items_);
    if (!one || !other || one->end > other->begin) {
        return false;
    }
    const auto begin = items_.begin();
    std::rotate(begin + static_cast<long>(one->begin), begin + static_cast<long>(one->end),
                begin + static_cast<long>(other->end));
    return true;
}

// The run once more as long as a variable is not 0.
bool MachineMutator::loopRun() {
    const auto run = chooseRun(items_);
    if (!run) {
        return false;
    }
    const Word label = makeLabel();
    const Word name = "@" + chooseName(run->begin);
    insert(run->end,
           {{"MOV", name, "#A0"}, {"TST", "#A0"}, {random_.oneIn(2) ? "JMPT" : "JMPF", label}});
    insert(run->begin, {{label + ':'}});
    return true;
}

bool MachineMutator::skipRun() {
    const auto run = chooseRun(items_);
    if (!run) {
        return false;
    }
    const Word label = makeLabel();
    const Word name = "@" + chooseName(run->begin);
    insert(run->end, {{label + ':'}});
    insert(run->begin,
           {{"MOV", name, "#A0"}, {"TST", "#A0"}, {random_.oneIn(4) ? "JMPT" : "JMPF", label}});
    return true;
}

bool MachineMutator::insertAssignment() {
    const std::size_t place = choosePlace().value_or(items_.size());
    insert(place, makeAssignment(place));
    return true;
}

// With as many arguments as may fit.
bool MachineMutator::insertCall() {
    const auto place = choosePlace();
    if (!place) {
        return false;
    }
    CodeItems items;
    for (std::size_t count = random_.below(MOST_ARGUMENTS + 1); count > 0; --count) {
        const bool isAddress = random_.oneIn(4);
        items.push_back({isAddress ? "MOVA" : "MOV", "@" + chooseName(*place), "#A0"});
        items.push_back({"MOV", "#A0", "$PUSH"});
    }
    const Word& keyword = random_.oneOf(words_.group("call"));
    items.push_back({keyword, makeCallee(keyword)});
    items.push_back(random_.oneIn(2) ? CodeItem{"MOV", "$POP", "#NIL"}
                                     : CodeItem{"MOV", "#A0", "@" + chooseName(*place)});
    insert(*place, items);
    return true;
}

// ---------------------------------------------------------------------------------------------
// What to put there
// ---------------------------------------------------------------------------------------------

std::string MachineMutator::makeLiteral() {
    const Word number = random_.oneIn(12) ? MakeString(random_) : MakeNumber(random_);
    return random_.oneIn(6) ? "-" + number : number;
}

// Of the kind that stands there mostly.
std::string MachineMutator::makeOperand(std::size_t place, const std::string& former) {
    const bool isVariable = former.substr(0, 1) == "@" || former.substr(0, 1) == "^";
    if (isVariable ? !random_.oneIn(4) : random_.oneIn(4)) {
        return (random_.oneIn(8) ? "^" : "@") + chooseName(place);
    }
    return random_.oneIn(2) ? makeLiteral() : random_.oneOf(words_.group("place"));
}

// A value to begin an expression with.
std::string MachineMutator::makeValue(std::size_t place) {
    return random_.oneIn(3) ? makeLiteral() : "@" + chooseName(place);
}

CodeItems MachineMutator::makeAssignment(std::size_t place) {
    CodeItems items = {{"MOV", makeValue(place), "#A0"}};
    for (std::size_t terms = random_.below(MOST_TERMS + 1); terms > 0; --terms) {
        items.push_back({"MOV", "#A0", "$PUSH"});
        items.push_back({"MOV", makeValue(place), "#A0"});
        if (random_.oneIn(4)) {
            items.push_back({random_.oneOf(words_.group("unary")), "#A0"});
        }
        items.push_back({random_.oneOf(words_.group("binary")), "$POP", "#A0"});
    }
    items.push_back({"MOV", "#A0", random_.oneIn(20) ? "*TICK" : "@" + chooseName(place)});
    return items;
}

std::string MachineMutator::makeLabel() {
    std::set<Word> known;
    for (const CodeItem& item : items_) {
        known.insert(item.back());
    }
    std::size_t number = items_.size();
    while (known.count(LabelOf(number) + ':') > 0) {
        ++number;
    }
    return LabelOf(number);
}

// A label of the code, near the place mostly.
std::string MachineMutator::makeTarget(std::size_t place) {
    std::vector<Word> labels;
    const std::size_t begin = random_.oneIn(4) ? 0 : place - std::min(place, LONGEST_RUN);
    for (std::size_t at = begin; at < items_.size(); ++at) {
        if (IsLabel(items_[at])) {
            labels.push_back(items_[at][0].substr(0, items_[at][0].size() - 1));
        }
    }
    return labels.empty() ? makeLabel() : random_.oneOf(labels);
}

std::string MachineMutator::makeCallee(const std::string& keyword) {
    if ((keyword == "EXEC") != random_.oneIn(16)) {
        return random_.oneOf(words_.group("builtIn"));
    }
    return makeTarget(0);
}

// ---------------------------------------------------------------------------------------------
// Items from elsewhere
// ---------------------------------------------------------------------------------------------

// A name that is not declared there mostly becomes one that is.
void MachineMutator::adaptName(CodeItem& item, std::size_t place) {
    const std::vector<Word> declared = declaredFor(place);
    for (Word& word : item) {
        const bool isName = word.size() > 1 && (word[0] == '@' || word[0] == '^');
        const bool isKnown = isName && std::find(declared.begin(), declared.end(),
                                                 word.substr(1)) != declared.end();
        if (isName && !isKnown && !random_.oneIn(16)) {
            word = word[0] + chooseName(place);
        }
    }
}

// The labels in it become new ones.
CodeItems MachineMutator::adapt(CodeItems run, std::size_t place) {
    std::map<Word, Word> renamed;
    const Word label = makeLabel();
    for (CodeItem& item : run) {
        if (IsLabel(item) && !random_.oneIn(16)) {
            const Word name = label + std::to_string(renamed.size());
            renamed.emplace(item[0].substr(0, item[0].size() - 1), name);
            item[0] = name + ':';
        }
    }
    for (CodeItem& item : run) {
        const auto found = renamed.find(item.back());
        if (IsJumpWord(item[0]) && found != renamed.end()) {
            item.back() = found->second;
        }
        adaptName(item, place);
    }
    return run;
}

// ---------------------------------------------------------------------------------------------
// Places
// ---------------------------------------------------------------------------------------------

template <typename Predicate>
std::optional<std::size_t> MachineMutator::choose(const Predicate& isSought) {
    std::vector<std::size_t> places;
    for (std::size_t at = 0; at < items_.size(); ++at) {
        if (isSought(items_[at])) {
            places.push_back(at);
        }
    }
    return places.empty() ? std::nullopt : std::optional(random_.oneOf(places));
}

// From a place on as far as one of those where the stack is as high again, and was not lower.
// At times anything else.
std::optional<MachineMutator::Run> MachineMutator::chooseRun(const CodeItems& items) {
    if (items.empty()) {
        return std::nullopt;
    }
    const std::size_t begin = random_.below(items.size());
    const std::size_t limit = std::min(items.size(), begin + LONGEST_RUN);
    const bool isAny = random_.oneIn(8);
    std::vector<Run> runs;
    int height = 0;
    for (std::size_t at = begin; at < limit && (height >= 0 || isAny); ++at) {
        height += HeightChange(items[at]);
        if (height == 0 || isAny) {
            runs.push_back({begin, at + 1});
        }
    }
    return runs.empty() ? std::nullopt : std::optional(random_.oneOf(runs));
}

// Before an instruction, where the accumulator holds nothing that is needed mostly.
std::optional<std::size_t> MachineMutator::choosePlace() {
    return choose([this](const CodeItem& item) {
        const bool isBegin = item[0] == "MOV" && item.size() == 3 && item[2] == "#A0";
        return item[0] == "RET" || isBegin || (IsInstruction(item, words_) && random_.oneIn(8));
    });
}

// The names that are declared last before the place.
std::vector<std::string> MachineMutator::declaredFor(std::size_t place) const {
    std::vector<Word> names;
    for (std::size_t at = std::min(place, items_.size()); at-- > 0;) {
        if (IsDeclaration(items_[at], words_)) {
            names.push_back(items_[at][0]);
        } else if (!names.empty()) {
            break;
        }
    }
    return names;
}

std::string MachineMutator::chooseName(std::size_t place) {
    const std::vector<Word> names = declaredFor(place);
    return names.empty() ? "x" : random_.oneOf(names);
}

void MachineMutator::insert(std::size_t place, const CodeItems& items) {
    replace({place, place}, items);
}

void MachineMutator::replace(Run run, const CodeItems& items) {
    const auto begin = items_.begin();
    const auto after =
        items_.erase(begin + static_cast<long>(run.begin), begin + static_cast<long>(run.end));
    items_.insert(after, items.begin(), items.end());
}
