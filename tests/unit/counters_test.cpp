// Counters at the end of what they can count: the widest numbers print.

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "qyx_files.h"
#include "qyx_globals.h"
#include "qyx_il.h"
#include "support.h"

namespace {

constexpr qint64 BEYOND_32_BITS = std::numeric_limits<qint32>::max();
constexpr qint64 WIDEST = std::numeric_limits<qint64>::max();

class Counters : public CompilerTest {
protected:
    // The listing of an item that follows so many others.
    std::string listingAfter(qint64 items) const {
        flag_SaveListFile = true;
        flag_ShowLinesNumber = true;
        g_OutputCodeFileCurrentLineCount = items;
        openOutput(OpenOutputCodeFile, "code");
        openOutput(OpenOutputListFile, "list");
        WriteItem("RET"_L1);
        CloseAllFiles();
        return ContentOf(path("list"));
    }

    // The item that posts the label drawn then.
    std::string labelDrawnAt(qint64 number) const {
        LabelCount = number;
        flag_SaveListFile = true;
        openOutput(OpenOutputCodeFile, "code");
        openOutput(OpenOutputListFile, "list");
        Label label;
        GetNewLabel(label);
        PostLabel(label);
        CloseAllFiles();
        return ContentOf(path("list"));
    }
};

TEST_F(Counters, LinesAreNumberedBeyond32Bits) {
    EXPECT_EQ(listingAfter(BEYOND_32_BITS), "2147483648\tRET\n");
}

TEST_F(Counters, TheWidestLineNumberPrints) {
    EXPECT_EQ(listingAfter(WIDEST - 1), std::to_string(WIDEST) + "\tRET\n");
}

TEST_F(Counters, LabelsAreNumberedBeyond32Bits) {
    EXPECT_EQ(labelDrawnAt(BEYOND_32_BITS + 1), "L2147483648:\n");
}

TEST_F(Counters, TheWidestLabelPrints) {
    EXPECT_EQ(labelDrawnAt(WIDEST - 1), "L" + std::to_string(WIDEST - 1) + ":\n");
}

}  // namespace
