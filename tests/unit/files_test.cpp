// Files: the one that discards, and what outputs take of messages.

#include "qyx_files.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "support.h"

namespace {

TEST(Files, TheDiscardingOneTakesWhateverIsWritten) {
    const auto file = FileHandle::discarding();
    const std::string text(1'000'000, 'x');
    file->appendText(text);
    file->appendText(text);
    EXPECT_TRUE(file->finish());
}

struct Outputs {
    bool screen;
    bool messages;
    bool listing;
    bool results;
    bool areTaken;
};

void Choose(const Outputs& outputs) {
    flag_ShowOnScreen = outputs.screen;
    flag_ShowMessages = outputs.messages;
    flag_SaveListFile = outputs.listing;
    flag_SaveResFile = outputs.results;
}

// A text that no output takes is not even put together.
TEST(Files, DiagnosticsAreTakenWhereAnOutputShowsThem) {
    constexpr std::array<Outputs, 7> rows = {{{false, false, false, false, false},
                                              {true, false, false, false, true},
                                              {false, true, false, false, false},
                                              {false, false, true, false, false},
                                              {false, true, true, false, true},
                                              {false, false, false, true, true},
                                              {true, true, true, true, true}}};
    for (const Outputs& row : rows) {
        Choose(row);
        EXPECT_EQ(AreDiagnosticsTaken(), row.areTaken)
            << row.screen << row.messages << row.listing << row.results;
    }
    Choose({});
}

}  // namespace
