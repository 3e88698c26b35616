// Scratch memory: the block of one thread, and the slots of all.
#include "host/scratch.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace {

using quorva::ScratchPools;
using quorva::ThreadScratch;
using quorva::XLOPER;

TEST(ThreadScratch, HoldsAsManyValuesAsFitIntoItsBlock) {
    ThreadScratch scratch;
    for (int i = 1; i <= 426; ++i) {
        ASSERT_NE(scratch.allocate(), nullptr) << i;
    }
    EXPECT_EQ(scratch.allocate(), nullptr);
}

TEST(ThreadScratch, IsWhollyAvailableAgainAfterACall) {
    ThreadScratch scratch;
    const XLOPER* first = scratch.allocate();
    while (scratch.allocate()) {
    }
    scratch.endCall({});
    EXPECT_EQ(scratch.allocate(), first);
    for (int i = 2; i <= 426; ++i) {
        ASSERT_NE(scratch.allocate(), nullptr) << i;
    }
    EXPECT_EQ(scratch.allocate(), nullptr);
}

TEST(ThreadScratch, HandsOutValuesSideBySide) {
    ThreadScratch scratch;
    const XLOPER* first = scratch.allocate();
    EXPECT_EQ(scratch.allocate(), first + 1);
    EXPECT_EQ(sizeof(XLOPER), 24u);
}

TEST(ThreadScratch, KeepsWhatAnOuterCallIsUsing) {
    ThreadScratch scratch;
    const XLOPER* outer = scratch.allocate();
    const char* text = scratch.keepText(" outer");
    const auto aroundOuter = scratch.beginCall();
    const XLOPER* inner = scratch.allocate();
    EXPECT_EQ(inner, outer + 1);
    const auto aroundInner = scratch.beginCall();
    scratch.keepText(" inner");
    scratch.endCall(aroundInner);
    EXPECT_EQ(scratch.allocate(), inner);
    EXPECT_EQ(std::string(text, 6), "\x05outer");
    scratch.endCall(aroundOuter);
    EXPECT_EQ(scratch.allocate(), outer);
}

TEST(ScratchPools, StartWithFourFreeSlots) {
    const ScratchPools pools;
    EXPECT_EQ(pools.capacity(), 4u);
    EXPECT_EQ(pools.inUse(), 0u);
}

TEST(ScratchPools, GiveAThreadTheSameSlotEveryTime) {
    ScratchPools pools;
    ThreadScratch& slot = pools.forThread(7);
    EXPECT_EQ(slot.owner(), 7u);
    pools.forThread(8);
    EXPECT_EQ(&pools.forThread(7), &slot);
    EXPECT_EQ(pools.inUse(), 2u);
}

TEST(ScratchPools, DoubleForAFifthThreadAndTheFirstFourKeepTheirBlocks) {
    ScratchPools pools;
    std::vector<XLOPER*> blocks;
    for (std::uint32_t thread = 1; thread <= 4; ++thread) {
        blocks.push_back(pools.forThread(thread).allocate());
    }
    EXPECT_EQ(pools.capacity(), 4u);

    XLOPER* fifth = pools.forThread(5).allocate();
    EXPECT_EQ(pools.capacity(), 8u);
    EXPECT_EQ(pools.inUse(), 5u);
    for (std::uint32_t thread = 1; thread <= 4; ++thread) {
        ThreadScratch& slot = pools.forThread(thread);
        EXPECT_EQ(slot.owner(), thread);
        EXPECT_EQ(slot.valuesInUse(), 0u) << "nothing is in use after a growth";
        EXPECT_EQ(slot.allocate(), blocks[thread - 1]);
        EXPECT_NE(fifth, blocks[thread - 1]);
    }
}

TEST(ScratchPools, KeepTextsReadableWhenTheyGrowWhileTheHostReadsThem) {
    ScratchPools pools;
    const char* text = pools.forThread(1).keepText(" kept");
    for (std::uint32_t thread = 2; thread <= 5; ++thread) {
        pools.forThread(thread).keepText(" other");
    }
    EXPECT_EQ(std::string(text, 5), "\x04kept");
}

TEST(ScratchPools, DoubleAgainForANinthThread) {
    ScratchPools pools;
    for (std::uint32_t thread = 1; thread <= 9; ++thread) {
        pools.forThread(thread);
    }
    EXPECT_EQ(pools.capacity(), 16u);
    EXPECT_EQ(pools.inUse(), 9u);
}

}  // namespace
