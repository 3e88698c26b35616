#include "frontend/text/text.h"

#include <gtest/gtest.h>

namespace quorva::frontend {
namespace {

TEST(Text, SuggestsTheNearestName) {
    const std::vector<std::string> names{"Profit", "Cost", "Revenue"};
    EXPECT_EQ(nearestName("profits", names), "Profit");
    EXPECT_EQ(nearestName("xyzzy", names), "");
}

TEST(Text, WidthOnATerminalCountsWideAndCombiningCharacters) {
    EXPECT_EQ(displayWidth("日本"), 4u);
    EXPECT_EQ(displayWidth("e\xCC\x81"), 1u);
    EXPECT_EQ(fitLeft("日本語", 4), "日… ");
    EXPECT_EQ(fitLeft("日本", 6), "日本  ");
    EXPECT_EQ(shortened("abcdef", 4), "abc…");
    EXPECT_EQ(shortened("abcd", 4), "abcd");
}

}  // namespace
}  // namespace quorva::frontend
