#include "language/hints.h"

#include "check/tokens.h"
#include "explain/words.h"
#include "language/literals.h"

#include <QHash>

#include <algorithm>

namespace {

struct Parameter {
    QString text;
    int name;
};

std::vector<Parameter> BuiltInParameters(const QString& name) {
    std::vector<Parameter> parameters;
    const BuiltInRow* const row = BuiltInRowOf(name);
    for (const QString& text : row == nullptr ? QStringList() : ParameterTexts(*row)) {
        parameters.push_back({text, NONE});
    }
    return parameters;
}

std::vector<Parameter> ParametersOfCall(const Model& model, int name) {
    if (NameOf(model, name).isBuiltIn) {
        return BuiltInParameters(TextOfName(model, name));
    }
    std::vector<Parameter> parameters;
    const int unit = UnitNamed(model, name);
    for (const int each : unit == NONE ? std::vector<int>() : ParametersOf(model, unit)) {
        parameters.push_back({TextOfName(model, each), each});
    }
    return parameters;
}

// The hints of one script.
class Hinter {
public:
    explicit Hinter(const Model& model) : model_(model), tokens_(model.source, model.facts) {}

    void addCall(const UseFact& use) {
        const std::vector<Parameter>& parameters = parametersOf(use.name);
        const int name = tokens_.at(use.span.begin);
        const std::vector<int> actuals = actualsOf(name);
        for (std::size_t index = 0; index < std::min(actuals.size(), parameters.size());
             ++index) {
            addParameter(actuals[index], parameters[index]);
        }
    }

    void addLiteral(int token) {
        const TokenFact& fact = model_.facts.tokens[static_cast<std::size_t>(token)];
        if (fact.code != TOKEN_NUMBER || IsChanged(model_, fact.span)) {
            return;
        }
        const QString value = valueText(token);
        const bool isType = !isInitial(token) && (!value.isEmpty() || !isUsual(fact.type));
        const QString type = isType ? QStringLiteral(": ") + NameOfType(fact.type) : QString();
        const QString text = (value + u' ' + type).trimmed();
        if (!text.isEmpty()) {
            hints_.push_back({fact.span.end, text, false, NONE});
        }
    }

    std::vector<Hint> take() {
        std::stable_sort(hints_.begin(), hints_.end(), [](const Hint& one, const Hint& other) {
            return one.offset < other.offset;
        });
        return std::move(hints_);
    }

private:
    const Model& model_;
    Tokens tokens_;
    std::vector<Hint> hints_;
    QHash<int, std::vector<Parameter>> parameters_;  // of the definitions that are called

    const std::vector<Parameter>& parametersOf(int name) {
        if (!parameters_.contains(name)) {
            parameters_.insert(name, ParametersOfCall(model_, name));
        }
        return parameters_[name];
    }

    // The first token of each actual parameter of a call.
    std::vector<int> actualsOf(int name) const {
        std::vector<int> actuals;
        if (!tokens_.is(name + 1, TOKEN_LEFT_PARENTHESIS)) {
            return actuals;
        }
        actuals.push_back(name + 2);
        int depth = 1;
        for (int index = name + 2; depth > 0 && index < tokens_.count(); ++index) {
            depth += tokens_.is(index, TOKEN_LEFT_PARENTHESIS) ? 1 : 0;
            depth -= tokens_.is(index, TOKEN_RIGHT_PARENTHESIS) ? 1 : 0;
            if (depth == 1 && tokens_.is(index, TOKEN_COMMA)) {
                actuals.push_back(index + 1);
            }
        }
        return actuals;
    }

    // None where the actual parameter is the same word.
    void addParameter(int actual, const Parameter& parameter) {
        const bool isAlone = tokens_.isOneOf(actual + 1, {TOKEN_COMMA, TOKEN_RIGHT_PARENTHESIS});
        const bool isSame = isAlone && IsSameName(tokens_.text(actual), parameter.text);
        if (!parameter.text.isEmpty() && !isSame) {
            hints_.push_back(
                {tokens_.span(actual).begin, parameter.text + u':', true, parameter.name});
        }
    }

    // The value of a number with a base.
    QString valueText(int token) const {
        const std::optional<Integer> integer = IntegerOf(tokens_.text(token));
        const bool hasBase = integer && integer->base != DECIMAL;
        return hasBase ? QStringLiteral("= %1").arg(integer->value) : QString();
    }

    // Whether it is the initial value of a variable, whose type stands before it.
    bool isInitial(int token) const {
        const int before = tokenBefore(token);
        return tokens_.is(before, TOKEN_ASSIGN) && tokens_.typeNamed(before - 1) != TYP_NONE;
    }

    // The one before the sign of a literal, if it has one.
    int tokenBefore(int token) const {
        const int before = token - 1;
        return tokens_.isOneOf(before, {TOKEN_PLUS, TOKEN_MINUS}) ? before - 1 : before;
    }

    static bool isUsual(Typ type) {
        return type == TYP_SINT || type == TYP_INT || type == TYP_DINT || type == TYP_REAL;
    }
};

}  // namespace

std::vector<Hint> HintsIn(const Model& model, Span piece) {
    Hinter hinter(model);
    for (const UseFact& use : model.facts.uses) {
        const bool isCall = use.kind == UseKind::Call && use.name != NONE;
        if (isCall && use.span.begin >= piece.begin && use.span.begin <= piece.end &&
            !IsChanged(model, use.span)) {
            hinter.addCall(use);
        }
    }
    const Tokens tokens(model.source, model.facts);
    for (int index = tokens.at(piece.begin);
         index < tokens.count() && tokens.span(index).begin <= piece.end; ++index) {
        hinter.addLiteral(index);
    }
    return hinter.take();
}
