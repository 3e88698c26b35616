// The bridge to the host and the temporaries that its arguments are made of.
#include "host/host_call.h"

#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/scratch.h"
#include "platform/platform.h"
#include "quorva/add_in.h"
#include "scripted_host.h"

namespace {

using namespace quorva;
using quorva::testing::ArgumentCopy;
using quorva::testing::host;

class Bridge : public ::testing::Test {
protected:
    void SetUp() override {
        host().reset();
        callHost(hostfunction::free, nullptr);  // leaves this thread's scratch empty
        host().reset();
    }
};

TEST_F(Bridge, PassesFunctionResultAndArgumentsUnchanged) {
    XLOPER result{};
    XLOPER argument{};
    host().override = [&](int function, XLOPER* given, int count, XLOPER** arguments) {
        EXPECT_EQ(function, 12345);
        EXPECT_EQ(given, &result);
        EXPECT_EQ(count, 2);
        EXPECT_EQ(arguments[0], &argument);
        EXPECT_EQ(arguments[1], nullptr);
        return 64;
    };
    EXPECT_EQ(callHost(12345, &result, &argument, static_cast<XLOPER*>(nullptr)), 64);
}

TEST_F(Bridge, PassesNoResultAndNoArguments) {
    host().override = [](int, XLOPER* result, int count, XLOPER**) {
        EXPECT_EQ(result, nullptr);
        EXPECT_EQ(count, 0);
        return 0;
    };
    EXPECT_EQ(callHost(hostfunction::free, nullptr), 0);
}

TEST_F(Bridge, PassesAListOfArguments) {
    std::vector<XLOPER*> arguments{tempInteger(1), tempText(" two"), tempMissing()};
    callHostWith(777, nullptr, arguments);
    ASSERT_EQ(host().calls.size(), 1u);
    const auto& seen = host().calls[0].arguments;
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0].type, 2048);
    EXPECT_EQ(seen[0].integer, 1);
    EXPECT_EQ(seen[1].type, 2);
    EXPECT_EQ(seen[1].text, "two");
    EXPECT_EQ(seen[2].type, 128);
}

TEST_F(Bridge, TemporariesLiveUntilTheThreadsNextCall) {
    const XLOPER* first = tempInteger(1);
    EXPECT_NE(tempInteger(2), first);
    callHost(777, nullptr);
    EXPECT_EQ(tempInteger(3), first);
}

TEST_F(Bridge, TemporariesOutliveTheCallsThatTheHostsCallBackMakes) {
    host().override = [](int function, XLOPER*, int count, XLOPER** arguments) -> std::optional<int> {
        if (function != 777) {
            return std::nullopt;
        }
        const XLOPER* inner = tempText(" inner");
        callHost(778, nullptr, const_cast<XLOPER*>(inner), tempInteger(5));
        callHost(778, nullptr);
        EXPECT_EQ(tempText(" after"), inner) << "the call-back's own are given back";
        EXPECT_EQ(count, 2);
        EXPECT_EQ(quorva::testing::textOf(*arguments[0]), "outer");
        EXPECT_EQ(arguments[1]->value.integer, 3);
        return 0;
    };
    XLOPER* outer = tempText(" outer");
    callHost(777, nullptr, outer, tempInteger(3));
    EXPECT_EQ(scratchAlloc(), outer);
}

TEST_F(Bridge, AnotherThreadsCallLeavesTemporariesAlone) {
    XLOPER* mine = tempText(" mine");
    std::thread([] {
        tempText(" other");
        callHost(777, nullptr);
    }).join();
    EXPECT_EQ(quorva::testing::textOf(*mine), "mine");
    EXPECT_NE(tempMissing(), mine);
}

TEST_F(Bridge, The427thTemporaryIsAbsentAndTheHostReceivesItSo) {
    for (int i = 1; i <= 426; ++i) {
        ASSERT_NE(tempInteger(0), nullptr) << i;
    }
    XLOPER* absentText = tempText(" text");
    XLOPER* absentInteger = tempInteger(0);
    XLOPER* absentMissing = tempMissing();
    EXPECT_EQ(absentText, nullptr);
    EXPECT_EQ(absentInteger, nullptr);
    EXPECT_EQ(absentMissing, nullptr);
    callHost(777, nullptr, absentText, absentInteger, absentMissing);
    ASSERT_EQ(host().calls.size(), 1u);
    for (const ArgumentCopy& argument : host().calls[0].arguments) {
        EXPECT_TRUE(argument.absent);
    }
    for (int i = 1; i <= 426; ++i) {
        ASSERT_NE(scratchAlloc(), nullptr) << "the whole block is available again, yet not value " << i;
    }
    EXPECT_EQ(scratchAlloc(), nullptr);
}

TEST_F(Bridge, AFifthThreadWorksBesideFourOthers) {
    // Scratch is never given up, so threads of earlier tests count as well; each of these has its own block.
    std::vector<const XLOPER*> blocks(6);
    std::vector<std::thread> threads;
    for (auto& block : blocks) {
        std::thread([&] {
            block = tempInteger(1);
            callHost(777, nullptr, const_cast<XLOPER*>(block));
        }).join();
    }
    EXPECT_GE(ScratchPools::instance().capacity(), 8u);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_NE(blocks[i], nullptr);
        for (std::size_t k = 0; k < i; ++k) {
            EXPECT_NE(blocks[i], blocks[k]);
        }
    }
}

TEST_F(Bridge, TextCarriesItsLengthInPlaceOfThePlaceholder) {
    const XLOPER* value = tempText("?abc");
    EXPECT_EQ(value->type, hosttype::text);
    EXPECT_EQ(value->value.text[0], 3);
    EXPECT_EQ(quorva::testing::textOf(*value), "abc");
}

TEST_F(Bridge, TextOfNoCharactersHasLengthZero) {
    const XLOPER* value = tempText(" ");
    EXPECT_EQ(value->type, hosttype::text);
    EXPECT_EQ(value->value.text[0], 0);
    EXPECT_EQ(tempText("")->value.text[0], 0) << "not even a placeholder";
}

TEST_F(Bridge, TextOf255CharactersIsWhole) {
    const std::string text(255, 'x');
    EXPECT_EQ(quorva::testing::textOf(*tempText(" " + text)), text);
}

TEST_F(Bridge, LongerTextIsCutAfter255Characters) {
    EXPECT_EQ(quorva::testing::textOf(*tempText(" " + std::string(300, 'x'))), std::string(255, 'x'));
}

TEST_F(Bridge, IntegerKeepsItsSign) { EXPECT_EQ(tempInteger(-5)->value.integer, -5); }

TEST_F(Bridge, TheAddInManagerIsAnsweredEvenWhenMemoryRunsOut) {
    EXPECT_EQ(xlAddInManagerInfo(host().plainNumber(1.0))->type, hosttype::text);
    host().override = [](int, XLOPER*, int, XLOPER**) -> std::optional<int> { throw std::bad_alloc(); };
    const XLOPER* answer = xlAddInManagerInfo(host().plainNumber(1.0));
    host().override = nullptr;
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer->type, hosttype::error);
    EXPECT_EQ(answer->value.error, hosterror::value);
}

TEST(WideFromHostText, ReadsACountedTextByItsLengthAlone) {
    EXPECT_EQ(wideFromHostText("\x03"
                               "abcdef",
                               hostTrue),
              u"abc");
    EXPECT_EQ(wideFromHostText("\x03"
                               "a\0b",
                               hostTrue),
              std::u16string(u"a\0b", 3));
    EXPECT_EQ(wideFromHostText("\0abc", hostTrue), u"");
    const std::string longest = "\xff" + std::string(255, 'x');
    EXPECT_EQ(wideFromHostText(longest.c_str(), hostTrue), std::u16string(255, u'x'));
}

TEST(WideFromHostText, ReadsAZeroTerminatedTextForAnyOtherFlag) {
    EXPECT_EQ(wideFromHostText("abc", hostFalse), u"abc");
    EXPECT_EQ(wideFromHostText("abc", 1), u"abc");
    EXPECT_EQ(wideFromHostText("", hostFalse), u"");
}

TEST(WideFromHostText, AnAbsentTextIsEmpty) {
    EXPECT_EQ(wideFromHostText(nullptr, hostTrue), u"");
    EXPECT_EQ(wideFromHostText(nullptr, hostFalse), u"");
}

}  // namespace
