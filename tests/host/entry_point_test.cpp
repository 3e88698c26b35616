// The call-back address, in a process that has none of its own.
#include "host/entry_point.h"

#include <gtest/gtest.h>

namespace {

TEST(EntryPoint, KeepsTheFirstAddress) {
    int first = 0;
    int second = 0;
    EXPECT_EQ(quorva::hostEntryPoint(), nullptr);
    SetExcel12EntryPt(nullptr);
    EXPECT_EQ(quorva::hostEntryPoint(), nullptr);
    SetExcel12EntryPt(&first);
    EXPECT_EQ(quorva::hostEntryPoint(), &first);
    SetExcel12EntryPt(&second);
    EXPECT_EQ(quorva::hostEntryPoint(), &first);
}

}  // namespace
