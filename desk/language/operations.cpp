#include "language/operations.h"

#include "language/literals.h"
#include "lints/subject.h"

#include <algorithm>

namespace {

constexpr int LONGEST_OPERAND = 200;

bool IsSame(Span one, Span other) {
    return one.begin == other.begin && one.end == other.end;
}

const OperationFact* OperationOver(const Model& model, Span span) {
    const std::vector<OperationFact>& all = model.facts.operations;
    const auto found = std::find_if(all.begin(), all.end(), [span](const OperationFact& each) {
        return IsSame(each.span(), span);
    });
    return found == all.end() ? nullptr : &*found;
}

// What is spelled in parentheses.
class Speller {
public:
    explicit Speller(const Model& model) : model_(model), subject_(model.source, model.facts) {}

    QString operation(const OperationFact& operation) const {
        const QString op = model_.source.text(operation.op).toString().toUpper();
        const QString right = operand(operation.right);
        return operation.left.isEmpty() ? op + u' ' + right
                                        : operand(operation.left) + u' ' + op + u' ' + right;
    }

private:
    const Model& model_;
    Subject subject_;

    QString operand(Span span) const {
        const Span inner = withoutParentheses(span);
        const OperationFact* const found =
            inner.length() > LONGEST_OPERAND ? nullptr : OperationOver(model_, inner);
        if (found != nullptr) {
            return u'(' + operation(*found) + u')';
        }
        const QString text = Shortened(OneLine(subject_, span));
        return isSigned(span) ? u'(' + text + u')' : text;
    }

    bool isSigned(Span span) const {
        return subject_.tokens.isOneOf(subject_.tokens.at(span.begin), {TOKEN_PLUS, TOKEN_MINUS});
    }

    // Whether the parenthesis that begins at a token is closed by another.
    bool areTogether(int opening, int closing) const {
        int depth = 0;
        for (int index = opening; index < closing; ++index) {
            depth += subject_.tokens.is(index, TOKEN_LEFT_PARENTHESIS) ? 1 : 0;
            depth -= subject_.tokens.is(index, TOKEN_RIGHT_PARENTHESIS) ? 1 : 0;
            if (depth == 0) {
                return false;
            }
        }
        return depth == 1 && subject_.tokens.is(closing, TOKEN_RIGHT_PARENTHESIS);
    }

    Span withoutParentheses(Span span) const {
        int first = subject_.tokens.at(span.begin);
        int last = subject_.tokens.at(span.end) - 1;
        while (first < last && span.length() <= LONGEST_OPERAND && areTogether(first, last)) {
            ++first;
            --last;
        }
        return {subject_.tokens.span(first).begin, subject_.tokens.span(last).end};
    }
};

QString TypesText(const OperationFact& operation) {
    const QString right = NameOfType(operation.rightType);
    return operation.left.isEmpty() ? QStringLiteral("operand `%1`").arg(right)
                                    : QStringLiteral("left `%1`, right `%2`")
                                          .arg(NameOfType(operation.leftType), right);
}

}  // namespace

const OperationFact* OperationAt(const Model& model, int token) {
    const Span span = model.facts.tokens[static_cast<std::size_t>(token)].span;
    const std::vector<OperationFact>& all = model.facts.operations;
    const auto found = std::find_if(all.begin(), all.end(), [span](const OperationFact& each) {
        return IsSame(each.op, span);
    });
    return found == all.end() || IsChanged(model, found->span()) ? nullptr : &*found;
}

QString GroupedText(const Model& model, const OperationFact& operation) {
    return Speller(model).operation(operation);
}

QString OperationText(const Model& model, const OperationFact& operation) {
    return QStringLiteral("```st\n%1\n```\n%2")
        .arg(GroupedText(model, operation), TypesText(operation));
}
