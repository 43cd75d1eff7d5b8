#include "machine/verifier.h"

#include "machine/flow.h"
#include "machine/simulation.h"
#include "machine/structure.h"

#include <QSet>

#include <algorithm>
#include <optional>

namespace {

// ---------------------------------------------------------------------------------------------
// What is reached
// ---------------------------------------------------------------------------------------------

// Marks what control can reach from the begin of any unit, jumps between units included.
class Reach {
public:
    explicit Reach(const Code& code) : code_(code), isReached_(code.instructions.size(), false) {}

    std::vector<bool> find() {
        for (const CodeUnit& unit : code_.units) {
            add(unit.begin, unit);
        }
        addLabelsOfOneName();
        while (!waiting_.empty()) {
            const int index = waiting_.back();
            waiting_.pop_back();
            follow(index);
        }
        return std::move(isReached_);
    }

private:
    const Code& code_;
    std::vector<bool> isReached_;
    std::vector<int> waiting_;

    void add(int index) {
        const auto place = static_cast<std::size_t>(index);
        if (index >= 0 && place < isReached_.size() && !isReached_[place]) {
            isReached_[place] = true;
            waiting_.push_back(index);
        }
    }

    void add(int index, const CodeUnit& unit) {
        if (index < unit.end) {
            add(index);
        }
    }

    // Nobody knows which of them a jump means.
    void addLabelsOfOneName() {
        QSet<QString> names;
        for (const CodeLabel& label : code_.labels) {
            if (names.contains(label.name)) {
                add(label.instruction, code_.units[static_cast<std::size_t>(label.unit)]);
            }
            names.insert(label.name);
        }
    }

    void follow(int index) {
        const Instruction& it = InstructionAt(code_, index);
        if (IsJump(it.operation)) {
            add(it.target);
        }
        if (it.operation != Operation::Jump && it.operation != Operation::Return) {
            const CodeUnit& unit = code_.units[static_cast<std::size_t>(code_.unitOf(index))];
            add(index + 1, unit);
        }
    }
};

// ---------------------------------------------------------------------------------------------
// One unit
// ---------------------------------------------------------------------------------------------

class UnitProof {
public:
    UnitProof(const Code& code, int unit, const std::vector<bool>& isReached, ValueStacks& stacks,
              Proof& proof)
        : code_(code),
          unit_(code.units[static_cast<std::size_t>(unit)]),
          flow_(code, unit),
          simulation_(code, unit_, flow_, stacks),
          stacks_(stacks),
          isReached_(isReached),
          proof_(proof),
          states_(static_cast<std::size_t>(unit_.end - unit_.begin)) {}

    void prove() {
        if (unit_.begin < unit_.end) {
            reach(unit_.begin, simulation_.atBegin());
        }
        settle();
        for (int index = unit_.begin; index < unit_.end; ++index) {
            if (!stateAt(index)) {
                begin(index);
                settle();
            }
        }
        for (int index = unit_.begin; index < unit_.end; ++index) {
            report(index);
        }
        tellOfUnreachable();
    }

private:
    const Code& code_;
    const CodeUnit& unit_;
    Flow flow_;
    Simulation simulation_;
    ValueStacks& stacks_;
    const std::vector<bool>& isReached_;
    Proof& proof_;
    std::vector<std::optional<State>> states_;  // before each instruction
    std::vector<int> waiting_;
    std::vector<int> gotos_;
    QSet<int> refused_;  // instructions that ways with different heights lead to

    const Instruction& at(int index) const { return InstructionAt(code_, index); }
    bool isInUnit(int index) const { return index >= unit_.begin && index < unit_.end; }
    bool isReached(int index) const { return isReached_[static_cast<std::size_t>(index)]; }
    std::optional<State>& stateAt(int index) {
        return states_[static_cast<std::size_t>(index - unit_.begin)];
    }
    int heightOf(const State& state) const { return stacks_.height(state.stack); }

    // -----------------------------------------------------------------------------------------
    // What is known before each instruction
    // -----------------------------------------------------------------------------------------

    // A statement begins there, of which nothing else is known.
    void begin(int index) {
        State state;
        state.stack = stacks_.unknown(flow_.around(index).height());
        reach(index, state);
    }

    void reach(int index, const State& state) {
        std::optional<State>& known = stateAt(index);
        if (known && heightOf(*known) != heightOf(state)) {
            return;
        }
        const State merged = known ? simulation_.merged(*known, state) : state;
        if (!known || !(merged == *known)) {
            known = merged;
            waiting_.push_back(index);
        }
    }

    // What is never executed tells nothing of what is.
    void reachFrom(int source, int index, const State& state) {
        if (isInUnit(index) && (isReached(source) || !isReached(index))) {
            reach(index, state);
        }
    }

    void settle() {
        while (!waiting_.empty() || !gotos_.empty()) {
            std::vector<int>& list = waiting_.empty() ? gotos_ : waiting_;
            const int index = list.back();
            list.pop_back();
            &list == &gotos_ ? follow(index) : step(index);
        }
    }

    void step(int index) {
        const Instruction& it = at(index);
        const State after = simulation_.after(index, *stateAt(index));
        if (it.operation != Operation::Jump && it.operation != Operation::Return) {
            reachFrom(index, index + 1, after);
        }
        if (it.operation == Operation::Jump && isInUnit(it.target) && mayBeGoto(index, after)) {
            gotos_.push_back(index);
        } else if (IsJump(it.operation)) {
            reachFrom(index, it.target, after);
        }
    }

    // A jump that may be a GOTO is followed when all others have been: it may lead to where the
    // stack is of another height.
    bool mayBeGoto(int index, const State& after) const {
        const int target = at(index).target;
        const bool isInSame = flow_.around(index).innermost == flow_.around(target).innermost;
        const bool isAsHigh = heightOf(after) == flow_.around(target).height();
        return isLabelOfScript(index) || (!isInSame && !isAsHigh);
    }

    bool isLabelOfScript(int index) const {
        constexpr std::size_t keyword = 4;  // "JMP "
        return !IsGeneratedLabel(TextOf(code_.items.item(at(index).item).substr(keyword)));
    }

    void follow(int index) {
        const int target = at(index).target;
        const State after = simulation_.after(index, *stateAt(index));
        if (!stateAt(target) && heightOf(after) != flow_.around(target).height()) {
            begin(target);
        } else if (!changesStack(index, after)) {
            reachFrom(index, target, after);
        }
    }

    // Whether a GOTO leads to where other statements keep their values on the stack.
    bool changesStack(int index, const State& after) {
        const int target = at(index).target;
        const std::optional<State>& there = stateAt(target);
        const bool isOther = flow_.around(index).innermost != flow_.around(target).innermost;
        return (there && heightOf(*there) != heightOf(after)) ||
               (isOther && isLabelOfScript(index));
    }

    // -----------------------------------------------------------------------------------------
    // What is told
    // -----------------------------------------------------------------------------------------

    void report(int index) {
        const State before = *stateAt(index);
        const Instruction& it = at(index);
        prove(index, before);
        const State after = simulation_.after(index, before, &proof_.findings);
        if (it.operation == Operation::Jump) {
            reportJump(index, after);
        } else if (it.operation != Operation::Return) {
            compare(index + 1, after);
        }
        if (it.operation != Operation::Jump && IsJump(it.operation)) {
            compare(it.target, after);
        }
    }

    void prove(int index, const State& before) {
        const bool pops = flow_.effectOf(index).taken > 0 && !IsCall(at(index).operation);
        const KnownValue top = pops ? stacks_.top(before.stack) : NOTHING;
        proof_.instructions[static_cast<std::size_t>(index)] = {
            heightOf(before), before.accumulator.type, before.register0.type, top.type,
            isReached(index)};
    }

    void compare(int index, const State& state) {
        if (!isInUnit(index) || refused_.contains(index)) {
            return;
        }
        const int height = heightOf(*stateAt(index));
        if (height != heightOf(state)) {
            refused_.insert(index);
            proof_.findings.push_back(
                {Level::Error, QStringLiteral("stack-heights-differ"),
                 QStringLiteral("reached with %1 and with %2 values on the value stack")
                     .arg(std::min(height, heightOf(state)))
                     .arg(std::max(height, heightOf(state))),
                 at(index).item});
        }
    }

    // A GOTO stands between statements and leads to between statements.
    void reportJump(int index, const State& after) {
        const int target = at(index).target;
        if (!isInUnit(target) || !changesStack(index, after)) {
            return;
        }
        const bool isGoto = heightOf(after) == flow_.around(index).height() &&
                            heightOf(*stateAt(target)) == flow_.around(target).height();
        if (isGoto) {
            proof_.findings.push_back(
                {Level::Warning, QStringLiteral("goto-changes-stack"),
                 QStringLiteral("a GOTO out of or into a FOR or CASE, from %1 to %2 values on "
                                "the value stack")
                     .arg(heightOf(after))
                     .arg(heightOf(*stateAt(target))),
                 at(index).item});
        } else {
            compare(target, after);
        }
    }

    // -----------------------------------------------------------------------------------------
    // What is not reached
    // -----------------------------------------------------------------------------------------

    void tellOfUnreachable() {
        bool isTold = false;
        for (int index = unit_.begin; index < unit_.end;) {
            const int compilers = isReached(index) ? 0 : lengthOfCompilersOwn(index);
            if (!isReached(index) && compilers == 0 && !isTold) {
                proof_.findings.push_back({Level::Warning, QStringLiteral("unreached-code"),
                                           QStringLiteral("no way of control leads here"),
                                           at(index).item});
            }
            isTold = !isReached(index) && (isTold || compilers == 0);
            index += std::max(compilers, 1);
        }
    }

    // What the compiler itself writes after statements, whether they let control through or not:
    // jumps, drops, returns, the step of a FOR.
    int lengthOfCompilersOwn(int index) const {
        const Instruction& it = at(index);
        const bool isReturn = it.operation == Operation::Return;
        if (it.operation == Operation::Jump || isReturn || IsDrop(it)) {
            return 1;
        }
        if (it.operation == Operation::Move && it.from.kind == OperandKind::Variable) {
            return isResultOfReturn(index) ? 2 : isStep(index) ? 4 : 0;
        }
        return 0;
    }

    Operation operationAt(int index) const {
        return isInUnit(index) ? at(index).operation : Operation::Test;
    }

    bool isResultOfReturn(int index) const {
        return at(index).from.index == unit_.result && unit_.result != NOWHERE &&
               operationAt(index + 1) == Operation::Return;
    }

    bool isStep(int index) const {
        const Operation step = operationAt(index + 1);
        return (step == Operation::Add || step == Operation::Subtract) &&
               at(index + 1).from.kind == OperandKind::Literal &&
               operationAt(index + 2) == Operation::Move &&
               at(index + 2).to.kind == OperandKind::Variable &&
               operationAt(index + 3) == Operation::Jump;
    }
};

}  // namespace

bool Proof::isSound() const {
    return std::none_of(findings.begin(), findings.end(),
                        [](const Finding& each) { return each.level == Level::Error; });
}

bool Proof::isExact() const {
    return std::all_of(findings.begin(), findings.end(), [](const Finding& each) {
        return each.id == QLatin1String("unreached-code");
    });
}

namespace {

Proof ProofOf(const Code& code) {
    Proof proof;
    proof.instructions.resize(code.instructions.size());
    CheckStructure(code, proof.findings);
    const std::vector<bool> isReached = Reach(code).find();
    ValueStacks stacks;
    for (std::size_t unit = 0; unit < code.units.size(); ++unit) {
        UnitProof(code, static_cast<int>(unit), isReached, stacks, proof).prove();
    }
    std::stable_sort(proof.findings.begin(), proof.findings.end(),
                     [](const Finding& a, const Finding& b) { return a.item < b.item; });
    return proof;
}

bool IsWrongType(const Finding& finding) {
    return finding.level == Level::Error && finding.id == QLatin1String("wrong-type");
}

std::ptrdiff_t WrongTypesOf(const Proof& proof) {
    return std::count_if(proof.findings.begin(), proof.findings.end(), IsWrongType);
}

std::vector<Declaration*> MissingDeclarations(Code& code) {
    std::vector<Declaration*> missing;
    for (CodeUnit& unit : code.units) {
        for (Declaration& declaration : unit.declarations) {
            if (declaration.isMissing) {
                missing.push_back(&declaration);
            }
        }
    }
    return missing;
}

// Takes the type off a declaration that is missing and was not that of a BOOL: without it fewer
// types are wrong.
void TakeOffType(Code& code, Declaration& missing, Proof& proof) {
    missing.type = TYP_NONE;
    Proof without = ProofOf(code);
    if (WrongTypesOf(without) < WrongTypesOf(proof)) {
        proof = std::move(without);
    } else {
        missing.type = TYP_BOOL;
    }
}

}  // namespace

// Where many declarations are missing the first ones are tried, so that time stays linear.
Proof Verify(const Code& code) {
    constexpr std::size_t mostTried = 8;
    Proof proof = ProofOf(code);
    if (WrongTypesOf(proof) == 0) {
        return proof;
    }
    Code changed = code;
    const std::vector<Declaration*> missing = MissingDeclarations(changed);
    for (std::size_t index = 0; index < std::min(missing.size(), mostTried); ++index) {
        TakeOffType(changed, *missing[index], proof);
    }
    return proof;
}
