#include "frontend/text/unicode.h"

#include <gtest/gtest.h>

namespace quorva::frontend {
namespace {

TEST(Unicode, RoundTripsBetweenUtf8AndUtf16) {
    const std::string text = "Kosten € und 😀";
    EXPECT_EQ(toUtf8(toUtf16(text)), text);
    EXPECT_EQ(toUtf16("😀").size(), 2u);
}

TEST(Unicode, ReplacesMalformedBytesAndLoneSurrogates) {
    EXPECT_EQ(toUtf8(toUtf16("a\xFFz")), "a\xEF\xBF\xBDz");
    EXPECT_EQ(toUtf8(std::u16string{u'a', char16_t(0xD800)}), "a\xEF\xBF\xBD");
}

}  // namespace
}  // namespace quorva::frontend
