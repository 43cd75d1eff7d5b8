// The limit on nesting.

#include "qyx_nesting.h"

#include <deque>

#include "support.h"

namespace {

class Nesting : public CompilerTest {};

TEST_F(Nesting, EndsTheRunBeyondItsLimit) {
    std::deque<NestingGuard> guards(NESTING_LIMIT);
    ExpectFailure([] { const NestingGuard guard; }, ErrorAt(0, 0, "Too deep nesting"));
}

TEST_F(Nesting, ALevelThatWasLeftCountsNoMore) {
    for (int i = 0; i < 2; ++i) {
        const std::deque<NestingGuard> guards(NESTING_LIMIT);
        EXPECT_EQ(guards.size(), static_cast<std::size_t>(NESTING_LIMIT));
    }
}

}  // namespace
