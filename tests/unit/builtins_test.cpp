// The catalogue of the built-ins, record by record.

#include "qyx_functions.h"
#include "support.h"

#include <vector>

namespace {

// "FUNCTION name(formal TYPE, ...) TYPE" or "FUNCTION_BLOCK ..."
std::string Signature(const FunctionItem& function) {
    std::string formals;
    for (const VarItem& formal : function.arguments) {
        const std::string comma = formals.empty() ? "" : ", ";
        formals += comma + Utf8(formal.name()) + ' ' + TypToStr(formal.type).data();
    }
    const std::string kind = function.isFunction ? "FUNCTION " : "FUNCTION_BLOCK ";
    return kind + Utf8(function.name()) + '(' + formals + ") " +
           TypToStr(function.resultType).data();
}

class BuiltIns : public CompilerTest {
protected:
    BuiltIns() { AddBuildInFunctions(functions_); }

    FunctionList functions_;
};

TEST_F(BuiltIns, StandInTheirOrderWithTheirParameters) {
    std::vector<std::string> expected;
    for (const char* name : {"cos", "sin", "tan", "acos", "asin", "atan", "ceil", "floor",
                             "round", "exp", "fabs", "ln", "log10"}) {
        expected.push_back(std::string("FUNCTION ") + name + "(arg1 LREAL) LREAL");
    }
    expected.insert(expected.end(), {"FUNCTION pow(arg1 LREAL, arg1 LREAL) LREAL",
                                     "FUNCTION sqrt(arg1 LREAL) LREAL",
                                     "FUNCTION_BLOCK yxSetGV(arg1 UINT, arg2 LREAL) LREAL",
                                     "FUNCTION yxGetGV(arg1 UINT) LREAL"});
    const QString words = QStringLiteral("W0 UDINT, W1 UDINT, W2 UDINT, W3 UDINT");
    for (const char* form :
         {"FUNCTION yxGetReg%1(%2) %1", "FUNCTION_BLOCK yxSetReg%1(%2, V %1) LREAL"}) {
        for (const char* type : {"USINT", "UINT", "UDINT", "REAL", "LREAL"}) {
            expected.push_back(QString(form).arg(QString(type), words).toStdString());
        }
    }
    std::vector<std::string> found;
    for (const FunctionItem& function : functions_) {
        found.push_back(Signature(function));
    }
    EXPECT_EQ(found, expected);
}

TEST_F(BuiltIns, AreMarkedSoThatNothingWarnsOfThem) {
    for (const FunctionItem& function : functions_) {
        SCOPED_TRACE(Utf8(function.name()));
        EXPECT_TRUE(function.isUsed);
        EXPECT_TRUE(function.isBuiltIn);
        for (const VarItem& formal : function.arguments) {
            EXPECT_TRUE(formal.isInitialized);
            EXPECT_FALSE(formal.mayBeUninitialized);
            EXPECT_FALSE(formal.isReference);
            EXPECT_FALSE(formal.isConstant);
        }
    }
}

}  // namespace
