#include "common/unicode.h"

#include <gtest/gtest.h>

#include <array>

namespace quorva {
namespace {

TEST(Unicode, EveryCodePointSurvivesTheWayThere) {
    for (char32_t point = 1; point <= 0x10FFFF; point += point < 0x3000 ? 1 : 97) {
        if (point >= 0xD800 && point < 0xE000) {
            continue;
        }
        std::string bytes;
        appendUtf8(bytes, point);
        std::size_t position = 0;
        bool valid = true;
        ASSERT_EQ(nextCodePoint(bytes, position, LoneSurrogates::Replace, &valid), point);
        ASSERT_EQ(position, bytes.size());
        ASSERT_TRUE(valid);
        ASSERT_EQ(utf8FromUtf16(utf16FromUtf8(bytes)), bytes);
    }
}

TEST(Unicode, MalformedBytesBecomeTheReplacementCharacter) {
    // a continuation without a beginning, an overlong form, an end in the middle, a byte that never occurs
    constexpr std::array malformed{"\x80", "\xC0\xAF", "\xE2\x82", "\xF8", "\xF4\x90\x80\x80", "\xED\xA0\x80"};
    for (const char* bytes : malformed) {
        bool valid = true;
        const std::u16string units = utf16FromUtf8(bytes, LoneSurrogates::Replace, &valid);
        EXPECT_FALSE(valid) << bytes;
        EXPECT_EQ(units.find_first_not_of(u'\uFFFD'), std::u16string::npos) << bytes;
        EXPECT_FALSE(units.empty()) << bytes;
    }
}

TEST(Unicode, HalvesOfACutPairAreKeptWhereTheCallerJoinsThemAgain) {
    const std::u16string half(1, u'\xD83D');
    EXPECT_EQ(utf8FromUtf16(half), "\xEF\xBF\xBD");
    EXPECT_EQ(utf16FromUtf8(utf8FromUtf16(half, LoneSurrogates::Keep), LoneSurrogates::Keep), half);
}

}  // namespace
}  // namespace quorva
