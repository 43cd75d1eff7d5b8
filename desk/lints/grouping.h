// How the operations of a script lie in each other, and where that is not what most expect.
#pragma once

#include "lints/subject.h"

#include <QHash>
#include <QPair>

// The operations of a subject. An operand that is an operation is one without parentheses.
class Grouping {
public:
    explicit Grouping(const Subject& subject);

    // The operations whose operands lie in each other as the usual rules have it not. Of those
    // that lie in each other it is the outermost of a kind: conditions are comparisons and
    // operations between BOOL, all others are arithmetic. Of a chain that is too long to be shown
    // it is the operation in it whose operands surprise.
    std::vector<const OperationFact*> surprises(bool areConditions) const;

    // The operation in one line, with parentheses where the usual rules need them.
    QString spelled(const OperationFact& operation) const;

private:
    struct Node {
        const OperationFact* operation;
        int left = NONE;  // the operands that are operations, by their index
        int right = NONE;
        int parent = NONE;
        bool isSurprising = false;   // by its operands
        bool holdsSurprise = false;  // it or an operand in it
    };

    const Subject& subject_;
    std::vector<Node> nodes_;
    QHash<QPair<int, int>, int> bySpan_;

    void link(int index);
    void judge(int index);
    bool isSignTaken(const OperationFact& operation) const;
    bool isOfReals(const OperationFact& operation) const;
    bool isFixed(Span operand) const;
    bool isHardlyOfBits(const OperationFact& operation) const;
    bool needsParentheses(const Node& parent, int operand) const;
    bool isSurprisingItself(const Node& node) const;
    const OperationFact* causeOf(const Node& node) const;
    QString operandText(const Node& parent, int operand, Span span) const;
};

// Whether a comparison, or an operation between BOOL.
bool IsCondition(const OperationFact& operation);
bool IsComparison(Token code);
