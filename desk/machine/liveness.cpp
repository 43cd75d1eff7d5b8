#include "machine/liveness.h"

namespace {

Live Union(const Live& one, const Live& other) {
    return {one.accumulator || other.accumulator, one.register0 || other.register0,
            one.flag || other.flag};
}

// What is live before a move, a binary or a unary operation that is followed by `after`.
Live BeforeOperation(const Instruction& instruction, Live after) {
    const Shape shape = FormOf(instruction.operation).shape;
    const bool isTest = instruction.operation == Operation::Test;
    if (instruction.to.kind == OperandKind::Accumulator) {
        after.accumulator = shape != Shape::Move;
    } else if (instruction.to.kind == OperandKind::Register0) {
        after.register0 = false;
    }
    after.flag = after.flag && !isTest;
    after.accumulator = after.accumulator || instruction.from.kind == OperandKind::Accumulator;
    after.register0 = after.register0 || instruction.from.kind == OperandKind::Register0;
    return after;
}

class Analysis {
public:
    Analysis(const Code& code, const CodeUnit& unit)
        : code_(code), unit_(unit), live_(static_cast<std::size_t>(unit.end - unit.begin) + 1) {}

    // Backwards until nothing changes; loops need a further round or two.
    std::vector<Live> find() {
        for (bool isChanged = true; isChanged;) {
            isChanged = false;
            for (int index = unit_.end - 1; index >= unit_.begin; --index) {
                const Live before = liveBefore(index);
                isChanged = isChanged || !(before == at(index));
                at(index) = before;
            }
        }
        return std::move(live_);
    }

private:
    const Code& code_;
    const CodeUnit& unit_;
    std::vector<Live> live_;

    Live& at(int index) { return live_[static_cast<std::size_t>(index - unit_.begin)]; }

    Live liveBefore(int index) {
        const Instruction& instruction = code_.instructions[static_cast<std::size_t>(index)];
        switch (FormOf(instruction.operation).shape) {
            case Shape::Jump:
                return beforeJump(instruction, at(index + 1));
            case Shape::Call:
                return beforeCall(instruction, at(index + 1));
            case Shape::Nothing:
                return {unit_.result != NOWHERE, false, false};
            default:
                return BeforeOperation(instruction, at(index + 1));
        }
    }

    Live beforeJump(const Instruction& jump, const Live& next) {
        const bool isInside = jump.target >= unit_.begin && jump.target < unit_.end;
        const Live there = isInside ? at(jump.target) : Live();
        if (jump.operation == Operation::Jump) {
            return there;
        }
        return Union(Union(there, next), {false, false, true});
    }

    static Live beforeCall(const Instruction& call, Live after) {
        if (call.operation == Operation::Call || call.target == NOWHERE) {
            return {};
        }
        const bool hasResult =
            EngineBuiltIns()[static_cast<std::size_t>(call.target)].result != TYP_NONE;
        after.accumulator = after.accumulator && !hasResult;
        return after;
    }
};

}  // namespace

std::vector<Live> FindLive(const Code& code, const CodeUnit& unit) {
    return Analysis(code, unit).find();
}
