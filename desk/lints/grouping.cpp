#include "lints/grouping.h"

#include "lints/literals.h"

#include "qyx_types.h"

#include <algorithm>
#include <iterator>

namespace {

// The usual rules, which most languages have: the larger, the tighter an operator binds.
struct Tightness {
    Token code;
    int value;
};

constexpr Tightness USUAL[] = {
    {TOKEN_OR, 1},       {TOKEN_XOR, 2},           {TOKEN_AND, 3},
    {TOKEN_EQUAL, 4},    {TOKEN_NOT_EQUAL, 4},     {TOKEN_LESS, 4},
    {TOKEN_GREATER, 4},  {TOKEN_LESS_OR_EQUAL, 4}, {TOKEN_GREATER_OR_EQUAL, 4},
    {TOKEN_SHL, 5},      {TOKEN_SHR, 5},           {TOKEN_ROL, 5},
    {TOKEN_ROR, 5},      {TOKEN_PLUS, 6},          {TOKEN_MINUS, 6},
    {TOKEN_MULTIPLY, 7}, {TOKEN_DIVIDE, 7},        {TOKEN_MOD, 7},
    {TOKEN_POWER, 8},    {TOKEN_NOT, 9},
};

int UsualTightness(Token code) {
    return std::find_if(std::begin(USUAL), std::end(USUAL),
                        [code](const Tightness& each) { return each.code == code; })
        ->value;
}

// Whether an operator gives the same however several of it are grouped.
bool IsAssociative(Token code) {
    return code == TOKEN_MULTIPLY || code == TOKEN_AND || code == TOKEN_OR || code == TOKEN_XOR;
}

bool IsLogical(Token code) {
    return code == TOKEN_AND || code == TOKEN_OR || code == TOKEN_XOR;
}

bool IsRealNumber(const Subject& subject, int token) {
    return subject.tokens.is(token, TOKEN_NUMBER) && NumberOf(subject.tokens.text(token)).isReal;
}

// The ")" of a call that begins at a token.
int LastOfCall(const Subject& subject, int token) {
    int open = 0;
    do {
        ++token;
        open += subject.tokens.is(token, TOKEN_LEFT_PARENTHESIS) ? 1 : 0;
        open -= subject.tokens.is(token, TOKEN_RIGHT_PARENTHESIS) ? 1 : 0;
    } while (open > 0);
    return token;
}

constexpr int LONGEST_SPELLED = 200;

}  // namespace

bool IsComparison(Token code) {
    return UsualTightness(code) == UsualTightness(TOKEN_EQUAL);
}

bool IsCondition(const OperationFact& operation) {
    return IsComparison(operation.code) || IsTypBoolean(operation.rightType);
}

// Outer operations stand before those that lie in them.
Grouping::Grouping(const Subject& subject) : subject_(subject) {
    for (const OperationFact& each : subject.facts.operations) {
        const Span span = each.span();
        bySpan_.insert({span.begin, span.end}, static_cast<int>(nodes_.size()));
        nodes_.push_back({&each});
    }
    const int count = static_cast<int>(nodes_.size());
    for (int index = 0; index < count; ++index) {
        link(index);
    }
    for (int index = count - 1; index >= 0; --index) {
        judge(index);
    }
}

void Grouping::link(int index) {
    Node& node = nodes_[static_cast<std::size_t>(index)];
    const Span left = node.operation->left;
    const Span right = node.operation->right;
    node.left = bySpan_.value({left.begin, left.end}, NONE);
    node.right = bySpan_.value({right.begin, right.end}, NONE);
    for (const int operand : {node.left, node.right}) {
        if (operand != NONE) {
            nodes_[static_cast<std::size_t>(operand)].parent = index;
        }
    }
}

// A sign binds tighter than a power here.
bool Grouping::isSignTaken(const OperationFact& operation) const {
    return operation.code == TOKEN_POWER &&
           subject_.tokens.is(subject_.tokens.at(operation.left.begin), TOKEN_MINUS);
}

// Whether a name, a number or what a call gives is a real. The types of the operation itself are
// those of all that stands before it too.
bool Grouping::isOfReals(const OperationFact& operation) const {
    const int end = subject_.tokens.at(operation.right.end);
    for (int token = subject_.tokens.at(operation.left.begin); token < end; ++token) {
        const UseFact* const use = UseAt(subject_, token);
        const bool isReal = use == nullptr ? IsRealNumber(subject_, token)
                                           : IsReal(subject_.name(use->name).type);
        if (isReal) {
            return true;
        }
        if (use != nullptr && use->kind == UseKind::Call) {
            token = LastOfCall(subject_, token);
        }
    }
    return false;
}

// Whether an operand has a value that is known before the script runs: a number with its signs,
// or the name of a constant.
bool Grouping::isFixed(Span operand) const {
    const int token = subject_.tokens.at(operand.begin);
    const int end = subject_.tokens.at(operand.end);
    const UseFact* const use = end == token + 1 ? UseAt(subject_, token) : nullptr;
    return SignedNumber(subject_, token, end).has_value() ||
           (use != nullptr && subject_.name(use->name).isConstant);
}

// Whether an AND, OR or XOR on the right of a comparison is hardly meant as one of bits: what is
// compared is a plain number, or what is fixed. One mask of an AND is meant.
bool Grouping::isHardlyOfBits(const OperationFact& operation) const {
    const std::optional<Number> number =
        SignedNumber(subject_, subject_.tokens.at(operation.left.begin),
                     subject_.tokens.at(operation.left.end));
    if (number && !number->hasBase) {
        return true;
    }
    const bool isLeftFixed = isFixed(operation.left);
    const bool isRightFixed = isFixed(operation.right);
    return operation.code == TOKEN_AND ? isLeftFixed && isRightFixed
                                       : isLeftFixed || isRightFixed;
}

// Whether the usual rules would not take the operation at that index, if there is one, for an
// operand of the other. What a rule would refuse for its types nobody can mean: so a comparison
// has no surprise but a fixed value on its right to which an AND or OR belongs. And a * (b / c)
// is (a * b) / c where the division is one of reals.
bool Grouping::needsParentheses(const Node& parent, int operand) const {
    if (operand == NONE) {
        return false;
    }
    const OperationFact& inner = *nodes_[static_cast<std::size_t>(operand)].operation;
    const Token outer = parent.operation->code;
    if (IsComparison(outer)) {
        return operand == parent.right && IsLogical(inner.code) && isHardlyOfBits(inner);
    }
    if (outer == TOKEN_NOT) {
        return !IsComparison(inner.code);
    }
    const int tightness = UsualTightness(inner.code) - UsualTightness(outer);
    const bool isSame = outer == TOKEN_MULTIPLY && inner.code == TOKEN_DIVIDE && isOfReals(inner);
    const bool isChain = isSame || (inner.code == outer && IsAssociative(outer));
    return operand == parent.left ? tightness < 0 : tightness <= 0 && !isChain;
}

// In a chain of one operator all have the surprise of the last.
void Grouping::judge(int index) {
    Node& node = nodes_[static_cast<std::size_t>(index)];
    const auto at = [this](int operand) {
        return operand == NONE ? Node{nullptr} : nodes_[static_cast<std::size_t>(operand)];
    };
    const Node left = at(node.left);
    const Node right = at(node.right);
    const bool isChain = right.operation != nullptr &&
                         right.operation->code == node.operation->code && right.isSurprising;
    node.isSurprising = isSurprisingItself(node) || isChain;
    node.holdsSurprise = node.isSurprising || left.holdsSurprise || right.holdsSurprise;
}

bool Grouping::isSurprisingItself(const Node& node) const {
    return isSignTaken(*node.operation) || needsParentheses(node, node.left) ||
           needsParentheses(node, node.right);
}

// Of a chain that is too long to be shown the operation whose operands surprise.
const OperationFact* Grouping::causeOf(const Node& node) const {
    const bool isShown = node.operation->span().length() <= LONGEST_SPELLED;
    const Node* at = &node;
    while (!isShown && !isSurprisingItself(*at)) {
        at = &nodes_[static_cast<std::size_t>(at->right)];
    }
    return at->operation;
}

std::vector<const OperationFact*> Grouping::surprises(bool areConditions) const {
    std::vector<const OperationFact*> found;
    std::vector<bool> areCovered;
    for (const Node& node : nodes_) {
        const bool isCovered =
            node.parent != NONE && areCovered[static_cast<std::size_t>(node.parent)];
        const bool isFound =
            !isCovered && node.isSurprising && IsCondition(*node.operation) == areConditions;
        if (isFound) {
            found.push_back(causeOf(node));
        }
        areCovered.push_back(isCovered || isFound);
    }
    return found;
}

// An operand that is long is not spelled in full.
QString Grouping::operandText(const Node& parent, int operand, Span span) const {
    const bool isSpelled = operand != NONE && span.length() <= LONGEST_SPELLED &&
                           nodes_[static_cast<std::size_t>(operand)].holdsSurprise;
    const QString text = isSpelled ? spelled(*nodes_[static_cast<std::size_t>(operand)].operation)
                                   : Shortened(OneLine(subject_, span));
    const bool isSigned =
        span.begin == parent.operation->left.begin && isSignTaken(*parent.operation);
    return isSigned || needsParentheses(parent, operand) ? u'(' + text + u')' : text;
}

QString Grouping::spelled(const OperationFact& operation) const {
    const Span span = operation.span();
    const Node& node = nodes_[static_cast<std::size_t>(bySpan_.value({span.begin, span.end}))];
    const QString right = QStringLiteral(" ") + operandText(node, node.right, operation.right);
    const QString op = subject_.source.text(operation.op).toString();
    return operation.left.isEmpty()
               ? op + right
               : operandText(node, node.left, operation.left) + u' ' + op + right;
}
