#include "frontend/text/cell_address.h"

#include <gtest/gtest.h>

namespace quorva::frontend {
namespace {

TEST(CellAddress, CellAddressesQuoteSheetNamesThatNeedIt) {
    EXPECT_EQ(cellAddress("", 6, 1), "B7");
    EXPECT_EQ(cellAddress("", 0, 702), "AAA1");
    EXPECT_EQ(cellAddress("Costs", 6, 1), "Costs!B7");
    EXPECT_EQ(cellAddress("My 'own' sheet", 0, 0), "'My ''own'' sheet'!A1");
    EXPECT_EQ(cellAddress("Q1", 0, 0), "'Q1'!A1");  // a sheet that reads as a cell
    EXPECT_EQ(sheetOfHostName("[Book.xlsx]Costs"), "Costs");
}

}  // namespace
}  // namespace quorva::frontend
