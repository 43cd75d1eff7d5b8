// Prints the words of the language as JSON, from the compiler's own tables, for whatever must
// know them: the editors' highlighting, the manual's tests, the fuzzer's dictionary.
//
// The reserved words stand under "keywords", all of them, and once more by what they are for.

#include "qyx_functions.h"
#include "qyx_globals.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace {

// Appends the text to the list of that name.
void Append(QJsonObject& words, QLatin1String list, const QString& text) {
    QJsonArray texts = words[list].toArray();
    texts.append(text);
    words[list] = texts;
}

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

void AddTokens(QJsonObject& words) {
    for (const token& row : TokensTable) {
        if (QChar(row.text.front()).isLetter()) {
            Append(words, "keywords"_L1, row.text);
            Append(words, UseOf(row.code), row.text);
        } else {
            Append(words, "punctuation"_L1, row.text);
        }
    }
}

void AddTypes(QJsonObject& words) {
    for (const typ& row : TypsTable) {
        Append(words, "types"_L1, row.name);
    }
}

void AddBuiltIns(QJsonObject& words) {
    FunctionList functions;
    AddBuildInFunctions(functions);
    for (const FunctionItem& function : functions) {
        Append(words, function.isFunction ? "functions"_L1 : "functionBlocks"_L1, function.name);
    }
}

}  // namespace

int main() {
    QJsonObject words;
    AddTokens(words);
    AddTypes(words);
    AddBuiltIns(words);
    std::fputs(QJsonDocument(words).toJson().constData(), stdout);
    return 0;
}
