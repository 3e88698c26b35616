#include "platform/platform.h"

#include <gtest/gtest.h>

#include <thread>

namespace quorva {
namespace {

#ifdef _WIN32
constexpr bool codePageIsTheSystems = true;
#else
constexpr bool codePageIsTheSystems = false;
#endif

TEST(Platform, ThreadsHaveIdentifiersOfTheirOwn) {
    const auto own = currentThreadId();
    EXPECT_EQ(currentThreadId(), own);
    std::uint32_t other = own;
    std::thread([&] { other = currentThreadId(); }).join();
    EXPECT_NE(other, own);
}

TEST(Platform, AsciiTextWidensUnchanged) {
    EXPECT_EQ(wideFromBytes("Net present value"), u"Net present value");
    EXPECT_EQ(wideFromBytes(""), u"");
}

TEST(Platform, TextIsUtf8WhereItCanBe) {
    if (codePageIsTheSystems) {
        GTEST_SKIP() << "the code page is the system's own setting";
    }
    EXPECT_EQ(wideFromBytes("caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"), u"caf\u00e9 \u20ac \U0001F600");
}

TEST(Platform, TextThatIsNotUtf8IsReadAsWindows1252) {
    if (codePageIsTheSystems) {
        GTEST_SKIP() << "the code page is the system's own setting";
    }
    EXPECT_EQ(wideFromBytes("caf\xE9 \x80"), u"caf\u00e9 \u20ac");
    EXPECT_EQ(wideFromBytes("\xC0\x80"), u"\u00c0\u20ac") << "an overlong sequence is not UTF-8";
    EXPECT_EQ(wideFromBytes("\xED\xA0\x80"), u"\u00ed\u00a0\u20ac") << "nor is half a surrogate pair";
}

TEST(Platform, ASymbolThatTheHostProcessLacksIsNull) { EXPECT_EQ(hostProcessSymbol("no such symbol"), nullptr); }

}  // namespace
}  // namespace quorva
