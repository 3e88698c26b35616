#include "common/cell_names.h"

#include <gtest/gtest.h>

namespace quorva {
namespace {

TEST(CellNames, ReadBackWhatTheyName) {
    for (const int row : {0, 8, 9, 999, maxRows - 1}) {
        for (const int column : {0, 25, 26, 701, 702, maxColumns - 1}) {
            int readRow = -1;
            int readColumn = -1;
            ASSERT_TRUE(parseCellName(cellName(row, column), readRow, readColumn)) << cellName(row, column);
            EXPECT_EQ(readRow, row);
            EXPECT_EQ(readColumn, column);
        }
    }
    EXPECT_EQ(cellName(maxRows - 1, maxColumns - 1), "XFD1048576");
}

TEST(CellNames, RefuseWhatIsNoCell) {
    int row = -1;
    int column = -1;
    for (const char* text : {"", "A", "1", "A0", "XFE1", "A1048577", "A1 ", "$$A1", "A$", "AAAA1", "A99999999"}) {
        EXPECT_FALSE(parseCellName(text, row, column)) << text;
    }
    EXPECT_TRUE(parseCellName("$b$3", row, column));
    EXPECT_EQ(cellName(row, column), "B3");
}

TEST(CellNames, SheetsAreQuotedWhereAReferenceCouldNotBeReadOtherwise) {
    EXPECT_EQ(sheetPrefix("Costs"), "Costs!");
    EXPECT_EQ(sheetPrefix("Gr\xC3\xB6\xC3\x9F"), "Gr\xC3\xB6\xC3\x9F!");
    for (const char* name : {"My sheet", "2024", ".x", "Q1", "XFD12", "R", "rc", "a-b"}) {
        EXPECT_EQ(sheetPrefix(name), "'" + std::string(name) + "'!");
    }
    EXPECT_EQ(sheetPrefix("Bob's"), "'Bob''s'!");
}

}  // namespace
}  // namespace quorva
