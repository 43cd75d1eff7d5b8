// What the accumulator, register 0, the flag and the entries of the stack hold while code is
// lowered: expressions of slots, which are emitted where their value is needed.
#pragma once

#include "machine/profile.h"
#include "machine/register_code.h"

#include <functional>
#include <limits>
#include <set>
#include <vector>

constexpr int UNKNOWN = -1;  // the index of an expression that is not known
constexpr Limits WIDEST = {std::numeric_limits<qint64>::min(),
                           std::numeric_limits<qint64>::max()};
constexpr Limits TRUTH = {0, 1};

// Thrown where register code cannot go on.
struct Unusual {};

inline bool IsReal(Typ type) {
    return type == TYP_REAL || type == TYP_LREAL;
}

inline bool IsNumber(Typ type) {
    return type > TYP_NONE && type < TYP_STRING;
}

inline Limits LimitsOf(Typ type) {
    return {RangeOf(type).least, RangeOf(type).greatest};
}

// What the accumulator, an entry of the stack and so on are known to hold.
enum class NodeKind : unsigned char {
    Slot,        // the value of the slot `left`
    Comparison,  // of two slots
    And,         // of two nodes
    Not,         // of a node
};

struct Node {
    NodeKind kind = NodeKind::Slot;
    Typ type = TYP_BOOL;
    RegisterOperation comparison = RegisterOperation::IsEqual;
    qint32 left = 0;
    qint32 right = 0;
    Limits limits = TRUTH;  // of a whole number
    bool isSingle = false;  // a real that has 32 bits
    Typ meant = TYP_NONE;   // the type of the variable that an address leads to
    int size = 1;           // the nodes that it is made of

    bool isReal() const { return IsReal(type); }
};

// What the machine holds at a point of the code, by nodes.
struct HeldValues {
    int accumulator = UNKNOWN;
    int register0 = UNKNOWN;
    int flag = UNKNOWN;
    std::vector<int> stack;
};

// Whether a slot is meant.
using SlotTest = std::function<bool(qint32)>;

// The base of what lowers a unit: emits code for values and keeps what is known of them.
class Expressions {
public:
    Expressions(RegisterCodeBuilder& builder, Width width)
        : builder_(builder), isTyped_(width == Width::Typed) {}

protected:
    RegisterCodeBuilder& builder_;
    HeldValues held_;
    int item_ = 0;  // of the instruction that is lowered

    int add(const Node& node);
    // The node, which must be known.
    const Node& node(int index) const;
    int addValue(qint32 slot, Typ type, const Limits& limits, bool isSingle = false);
    // A value that fits its type.
    int addFitting(qint32 slot, Typ type);
    int addWhole(Typ type, qint64 number);
    int addReal(Typ type, double number);

    // Slots that nothing else changes.
    void keepAsTemporaries(const std::vector<qint32>& slots);
    bool isConstant(int index) const;
    qint32 newTemporary();
    // Where other ways of the code may come from: nothing is known.
    void forget();

    // Copies what depends on those slots into temporaries, before they change. Whether there was
    // anything.
    bool save(const SlotTest& isMeant);
    // A slot that holds the value.
    qint32 slotOf(int index);
    void copyInto(qint32 slot, int index);
    // Whether others than the instruction that is lowered may change the slot.
    bool mayChange(qint32 slot) const;
    // Stores a value, made to fit, in a slot that is no temporary.
    void storeIn(qint32 slot, Typ type, int stored, int storeItem);
    // A node for the value made to fit a type.
    int fitted(Typ type, int index, int storeItem);
    void fitInto(qint32 slot, Typ type, int index, int storeItem);

    // What an operation gives.
    int operated(Operation operation, int left, int right);
    // A node that is 1 or 0.
    int truthOf(int index);
    // The other truth value of one.
    int negated(int index);
    // What BNOT gives.
    int complement(int index);

private:
    bool isTyped_;
    std::vector<Node> nodes_;
    std::vector<qint32> temporaries_;
    std::size_t temporariesUsed_ = 0;
    std::set<qint32> allTemporaries_;
    int lastOperation_ = UNKNOWN;  // where the last arithmetic instruction lies

    int addComparison(RegisterOperation comparison, qint32 left, qint32 right);
    bool isTemporary(qint32 slot) const;
    bool uses(int index, const SlotTest& isMeant) const;
    std::vector<int*> entries();
    // All that holds the node holds a temporary afterwards.
    qint32 intoTemporary(int index);
    // Makes the last instruction give its result to the variable instead of a temporary that is
    // used for nothing else.
    bool redirect(qint32 slot, Typ type, int stored, int storeItem);
    bool isUsed(qint32 slot);
    // Whether the last instruction can make its result fit the type; then it does.
    bool canStore(const Node& value, Typ type);
    bool narrow(RegisterInstruction& last, const Limits& limits);
    void fitReal(qint32 slot, Typ type, int index, Origin& origin);
    // A slot that holds the number as a real.
    qint32 asReal(int index);
    int combined(Operation operation, int left, int right);
    // The same truth; what is made of many others is worked out first, once for all uses.
    int small(int index);
    int comparedWholes(Operation operation, int left, int right);
    bool holds(RegisterOperation comparison, int left, int right) const;
    int comparedReals(Operation operation, int left, int right);
    Origin originOf(Operation operation, Typ left, Typ right) const;
    int emitOperation(RegisterOperation done, qint32 left, qint32 right, const Origin& origin,
                      quint16 limits);
    int reals(Operation operation, int left, int right);
    int wholes(Operation operation, int left, int right);
};
