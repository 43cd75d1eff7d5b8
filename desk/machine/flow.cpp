#include "machine/flow.h"

#include <QSet>

#include <algorithm>

namespace {

int CountOf(std::size_t size) {
    return static_cast<int>(size);
}

bool IsMove(const Instruction& instruction, OperandKind from, OperandKind to) {
    return instruction.operation == Operation::Move && instruction.from.kind == from &&
           instruction.to.kind == to;
}

// The instruction after that one if it is the next item too, else none.
const Instruction& NextItem(const Code& code, const CodeUnit& unit, int index) {
    const bool isThere = index + 1 < unit.end && InstructionAt(code, index + 1).item ==
                                                     InstructionAt(code, index).item + 1;
    return isThere ? InstructionAt(code, index + 1) : NO_INSTRUCTION;
}

// Whether it belongs to a statement that ends before the call of the first statement.
bool EndsStatement(const Instruction& instruction) {
    switch (instruction.operation) {
        case Operation::Move:
            return instruction.to.kind == OperandKind::Variable ||
                   instruction.to.kind == OperandKind::Referred ||
                   instruction.to.kind == OperandKind::Tick ||
                   instruction.to.kind == OperandKind::Nil;
        case Operation::Jump:
        case Operation::JumpIfFalse:
        case Operation::Return:
            return true;
        default:
            return false;
    }
}

// The call of itself that a unit makes in its first statement, or NOWHERE.
int FirstSelfCall(const Code& code, int unit) {
    const CodeUnit& own = code.units[static_cast<std::size_t>(unit)];
    for (int index = own.begin + 2 * CountOf(own.parameters.size()); index < own.end; ++index) {
        const Instruction& here = InstructionAt(code, index);
        if (here.operation == Operation::Call && here.target == unit) {
            return index;
        }
        if (EndsStatement(here)) {
            return NOWHERE;
        }
    }
    return NOWHERE;
}

}  // namespace

bool IsJump(Operation operation) {
    return operation == Operation::Jump || operation == Operation::JumpIfFalse ||
           operation == Operation::JumpIfTrue;
}

bool IsCall(Operation operation) {
    return operation == Operation::Call || operation == Operation::Execute;
}

bool IsDrop(const Instruction& instruction) {
    return IsMove(instruction, OperandKind::Pop, OperandKind::Nil);
}

int CallTarget::parameters() const {
    return unit != nullptr      ? CountOf(unit->parameters.size())
           : builtIn != nullptr ? CountOf(builtIn->parameters.size())
                                : 0;
}

CallTarget TargetOf(const Code& code, const Instruction& call) {
    if (call.target == NOWHERE) {
        return {};
    }
    const auto index = static_cast<std::size_t>(call.target);
    if (call.operation == Operation::Execute) {
        const BuiltIn& builtIn = EngineBuiltIns()[index];
        return {true, builtIn.result, nullptr, &builtIn};
    }
    const CodeUnit& unit = code.units[index];
    const Typ result = unit.kind == UnitKind::Function
                           ? unit.declarations[static_cast<std::size_t>(unit.result)].type
                           : TYP_NONE;
    return {true, result, &unit, nullptr};
}

namespace {

// From the first instruction to the last one, which drops the value.
struct Region {
    int first;
    int last;
    bool isCase;
};

// Finds the regions of a unit by what the compiler writes for their tests:
// "MOV $POP #R0", a comparison, "TST #A0", "MOV #R0 $PUSH", "JMPF" to the end of a FOR, or to the
// branch of a CASE.
class RegionFinder {
public:
    RegionFinder(const Code& code, const CodeUnit& unit) : code_(code), unit_(unit) {}

    std::vector<Region> find() {
        for (int index = unit_.begin; index + TEST_LENGTH <= unit_.end; ++index) {
            if (isTest(index)) {
                addRegion(index);
            }
        }
        return std::move(regions_);
    }

private:
    static constexpr int TEST_LENGTH = 5;

    const Code& code_;
    const CodeUnit& unit_;
    std::vector<Region> regions_;
    QSet<int> cases_;  // the ends of those that are found

    const Instruction& at(int index) const { return InstructionAt(code_, index); }
    bool isInUnit(int index) const { return index >= unit_.begin && index < unit_.end; }

    bool isTest(int index) const {
        return IsMove(at(index), OperandKind::Pop, OperandKind::Register0) &&
               at(index + 1).from.kind == OperandKind::Register0 &&
               at(index + 2).operation == Operation::Test &&
               IsMove(at(index + 3), OperandKind::Register0, OperandKind::Push) &&
               at(index + 4).operation == Operation::JumpIfFalse;
    }

    void addRegion(int test) {
        const Operation comparison = at(test + 1).operation;
        const int target = at(test + TEST_LENGTH - 1).target;
        if (comparison == Operation::GreaterOrEqual || comparison == Operation::LessOrEqual) {
            add({test, target, false});
        } else if (comparison == Operation::NotEqual || comparison == Operation::Greater) {
            addCase(target);
        }
    }

    // The jump before the branch leads to the next element, and the one before that to the end.
    void addCase(int branch) {
        const int next = targetOfJumpBefore(branch);
        const int end = next == NOWHERE ? NOWHERE : targetOfJumpBefore(next);
        if (end != NOWHERE && !cases_.contains(end)) {
            cases_.insert(end);
            add({branch, end, true});
        }
    }

    int targetOfJumpBefore(int index) const {
        const bool isJump =
            isInUnit(index) && index > unit_.begin && at(index - 1).operation == Operation::Jump;
        return isJump ? at(index - 1).target : NOWHERE;
    }

    void add(const Region& region) {
        if (isInUnit(region.last) && region.first < region.last && IsDrop(at(region.last))) {
            regions_.push_back(region);
        }
    }
};

// Walks through a unit and keeps count of the regions around each instruction. Regions of sound
// code hold each other or are apart; of others that overlap, what begins last is the innermost.
class RegionWalk {
public:
    RegionWalk(const CodeUnit& unit, std::vector<Region> regions)
        : begin_(unit.begin),
          regions_(std::move(regions)),
          all_(static_cast<std::size_t>(unit.end - unit.begin)),
          ended_(all_.size() + 1) {
        std::sort(regions_.begin(), regions_.end(),
                  [](const Region& a, const Region& b) { return a.first < b.first; });
    }

    std::vector<Surroundings> walk() {
        for (std::size_t place = 0; place < all_.size(); ++place) {
            enter(begin_ + static_cast<int>(place));
            leave(place);
            all_[place] = now_;
        }
        return std::move(all_);
    }

private:
    int begin_;
    std::vector<Region> regions_;
    std::vector<Surroundings> all_;
    std::vector<Surroundings> ended_;  // how many have ended before an instruction
    std::vector<Region> open_;
    std::size_t next_ = 0;
    Surroundings now_;

    static int& countOf(Surroundings& counts, const Region& region) {
        return region.isCase ? counts.cases : counts.loops;
    }

    void enter(int index) {
        for (; next_ < regions_.size() && regions_[next_].first == index; ++next_) {
            const Region& region = regions_[next_];
            countOf(now_, region) += 1;
            countOf(ended_[static_cast<std::size_t>(region.last + 1 - begin_)], region) += 1;
            open_.push_back(region);
        }
    }

    void leave(std::size_t place) {
        now_.cases -= ended_[place].cases;
        now_.loops -= ended_[place].loops;
        while (!open_.empty() && open_.back().last < begin_ + static_cast<int>(place)) {
            open_.pop_back();
        }
        now_.innermost = open_.empty() ? NOWHERE : open_.back().last;
    }
};

}  // namespace

Flow::Flow(const Code& code, int unit)
    : code_(code),
      unit_(code.units[static_cast<std::size_t>(unit)]),
      selfCall_(unit_.kind == UnitKind::FunctionBlock ? FirstSelfCall(code, unit) : NOWHERE),
      surroundings_(RegionWalk(unit_, RegionFinder(code, unit_).find()).walk()) {}

CallKind Flow::kindOfCall(int instruction) const {
    if (!IsDrop(NextItem(code_, unit_, instruction))) {
        return CallKind::Plain;
    }
    const CallTarget target = TargetOf(code_, InstructionAt(code_, instruction));
    if (target.result != TYP_NONE || !target.isKnown) {
        return CallKind::Dropped;
    }
    return instruction == selfCall_ ? CallKind::DroppedWithoutValue : CallKind::Plain;
}

StackEffect Flow::effectOf(int instruction) const {
    const Instruction& it = InstructionAt(code_, instruction);
    if (IsCall(it.operation)) {
        const bool isDropped = kindOfCall(instruction) != CallKind::Plain;
        return {TargetOf(code_, it).parameters(), isDropped ? 1 : 0};
    }
    const auto takes = [](OperandKind kind) {
        return kind == OperandKind::Pop || kind == OperandKind::ElementByPop ? 1 : 0;
    };
    return {takes(it.from.kind) + takes(it.to.kind), it.to.kind == OperandKind::Push ? 1 : 0};
}

// The height that all code of the compiler has before such an instruction. The selector of a CASE
// is there before its first branch begins.
std::optional<int> Flow::heightDueAt(int index) const {
    const Instruction& it = InstructionAt(code_, index);
    const int height = around(index).height();
    if (IsMove(it, OperandKind::Pop, OperandKind::Register0)) {
        const Operation comparison = NextItem(code_, unit_, index).operation;
        const bool isLoop =
            comparison == Operation::GreaterOrEqual || comparison == Operation::LessOrEqual;
        return isLoop ? height : height + 1;
    }
    const bool isDue = it.operation == Operation::Test || IsJump(it.operation) ||
                       (EndsStatement(it) && !IsDrop(it));
    return isDue ? std::optional(height) : std::nullopt;
}

// What is too much at the next place where the height is known.
int Flow::takenByUnknown(int call, int height) const {
    constexpr int farthest = 1000;
    int left = height + effectOf(call).left;
    const int end = std::min(unit_.end, call + farthest);
    for (int index = call + 1; index < end; ++index) {
        if (const std::optional<int> due = heightDueAt(index)) {
            return std::clamp(left - *due, 0, height);
        }
        const StackEffect effect = effectOf(index);
        left += effect.left - effect.taken;
    }
    return 0;
}

const Surroundings& Flow::around(int instruction) const {
    return surroundings_[static_cast<std::size_t>(instruction - unit_.begin)];
}
