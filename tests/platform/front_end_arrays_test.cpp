#include "platform/front_end_arrays.h"

#include <gtest/gtest.h>

#include "quorva/automation.h"

namespace quorva {
namespace {

TEST(FrontEndArrays, AnEqualStringKeepsTheCallersAllocation) {
    HostString strings[] = {SysAllocString(u"same"), SysAllocString(u"old"), nullptr};
    const HostString kept = strings[0];
    matrix<std::u16string> table(3, 1);
    table(1, 1) = u"same";
    table(2, 1) = u"new";
    writeBackHostStrings(table, strings);
    EXPECT_EQ(strings[0], kept);
    EXPECT_EQ(textOf(strings[1]), u"new");
    EXPECT_EQ(strings[2], nullptr) << "null is the empty text already";
    for (HostString text : strings) {
        SysFreeString(text);
    }
}

TEST(FrontEndArrays, StringsAreReadInStorageOrder) {
    HostString strings[] = {SysAllocString(u"a"), nullptr, SysAllocString(u"c"), SysAllocStringLen(u"d\0e", 3)};
    const auto table = readHostStrings(strings, 2, 2);
    EXPECT_EQ(table(1, 1), u"a");
    EXPECT_EQ(table(2, 1), u"");
    EXPECT_EQ(table(1, 2), u"c");
    EXPECT_EQ(table(2, 2), std::u16string(u"d\0e", 3));
    for (HostString text : strings) {
        SysFreeString(text);
    }
}

TEST(FrontEndArrays, HostStringArraysMayStartAtAnyBound) {
    HostStringArray* array = SafeArrayCreateVector(hostStringVariant, -3, 2);
    void* data = nullptr;
    ASSERT_EQ(SafeArrayAccessData(array, &data), 0);
    static_cast<HostString*>(data)[0] = SysAllocString(u"first");
    static_cast<HostString*>(data)[1] = SysAllocString(u"second");
    SafeArrayUnaccessData(array);
    const auto read = fromHostStringArray(array, 3);
    EXPECT_EQ(read(1, 1), u"first");
    EXPECT_EQ(read(2, 1), u"second");
    EXPECT_EQ(read(3, 1), u"");
    SafeArrayDestroy(array);
    EXPECT_EQ(fromHostStringArray(nullptr, 2)(2, 1), u"");
}

TEST(FrontEndArrays, AMatrixBecomesAHostStringArray) {
    matrix<std::u16string> table(2, 1);
    table(1, 1) = u"sheet";
    HostStringArray* array = toHostStringArray(table);
    std::int32_t lower = -1;
    std::int32_t upper = -1;
    EXPECT_EQ(SafeArrayGetDim(array), 1u);
    EXPECT_EQ(SafeArrayGetLBound(array, 1, &lower), 0);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), 0);
    EXPECT_EQ(lower, 0);
    EXPECT_EQ(upper, 1);
    EXPECT_EQ(fromHostStringArray(array, 2)(1, 1), u"sheet");
    SafeArrayDestroy(array);
}

TEST(FrontEndArrays, StringsHoldTheirByteLengthBeforeTheCharacters) {
    HostString text = SysAllocString(u"abc");
    EXPECT_EQ(reinterpret_cast<const std::uint32_t*>(text)[-1], 6u);
    EXPECT_EQ(text[3], 0);
    SysFreeString(text);
}

TEST(HostBooleans, OnlyMinusOneIsTrue) {
    EXPECT_TRUE(isTrue(-1));
    EXPECT_FALSE(isTrue(1));
    EXPECT_FALSE(isTrue(0));
    EXPECT_EQ(toHostBool(true), -1);
}

}  // namespace
}  // namespace quorva
