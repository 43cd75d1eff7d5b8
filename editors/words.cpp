// Prints the tables of the compiler as JSON, for whatever must know the language: the editors'
// highlighting, the grammar, the tests, the fuzzer's dictionary. scripts/words.py reads it.

#include "qyx_functions.h"
#include "qyx_globals.h"
#include "qyx_messages.h"
#include "qyx_types.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

// What a reserved word is for.
QLatin1String UseOf(Token code) {
    switch (code) {
        case TOKEN_PROGRAM:
        case TOKEN_END_PROGRAM:
        case TOKEN_FUNCTION:
        case TOKEN_END_FUNCTION:
        case TOKEN_FUNCTION_BLOCK:
        case TOKEN_END_FUNCTION_BLOCK:
            return "units"_L1;
        case TOKEN_VAR:
        case TOKEN_VAR_INPUT:
        case TOKEN_VAR_OUTPUT:
        case TOKEN_VAR_GLOBAL:
        case TOKEN_VAR_ARG:
        case TOKEN_VAR_REF:
            return "sections"_L1;
        case TOKEN_VAR_YXGLOBAL:
        case TOKEN_VAR_YXREGISTER:
            return "engineSections"_L1;
        case TOKEN_CONSTANT:
        case TOKEN_END_VAR:
            return "declarations"_L1;
        case TOKEN_TRUE:
        case TOKEN_FALSE:
            return "constants"_L1;
        case TOKEN_RESULT:
        case TOKEN_TICK:
            return "variables"_L1;
        default:
            return code >= TOKEN_PLUS && code <= TOKEN_POWER ? "operators"_L1 : "statements"_L1;
    }
}

QLatin1String UseOf(const token& row) {
    return QChar(row.text.front()).isLetter() ? UseOf(row.code) : "punctuation"_L1;
}

QJsonArray Tokens() {
    QJsonArray rows;
    for (const token& row : TokensTable) {
        rows.append(QJsonObject{{"text", row.text}, {"use", UseOf(row)}});
    }
    return rows;
}

QJsonArray Types() {
    QJsonArray rows;
    for (const typ& row : TypsTable) {
        rows.append(QJsonObject{{"name", row.name}, {"shortName", row.shortName}});
    }
    return rows;
}

QJsonArray ArgumentTypes(const FunctionItem& function) {
    QJsonArray types;
    for (const VarItem& argument : function.arguments) {
        types.append(TypToStr(argument.type));
    }
    return types;
}

// A function block gives no result, whatever its record holds.
QJsonObject BuiltIn(const FunctionItem& function) {
    return {{"name", function.name()},
            {"arguments", ArgumentTypes(function)},
            {"result", function.isFunction ? QJsonValue(TypToStr(function.resultType))
                                           : QJsonValue(QJsonValue::Null)}};
}

QJsonArray BuiltIns() {
    FunctionList functions;
    AddBuildInFunctions(functions);
    QJsonArray rows;
    for (const FunctionItem& function : functions) {
        rows.append(BuiltIn(function));
    }
    return rows;
}

// Each text of the catalogue under the name of its constant.
QJsonObject Messages() {
    return {
#include "messages.inc"
    };
}

}  // namespace

int main() {
    const QJsonObject tables = {{"tokens", Tokens()},
                                {"types", Types()},
                                {"builtIns", BuiltIns()},
                                {"messages", Messages()}};
    std::fputs(QJsonDocument(tables).toJson().constData(), stdout);
    return 0;
}
