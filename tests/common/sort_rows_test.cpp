#include "common/sort_rows.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace quorva {
namespace {

TEST(SortRows, CarriesTheOtherColumnsAndKeepsTheOrderOfEqualKeys) {
    const double source[] = {2, 1, 2, 1, 10, 20, 30, 40};
    matrix<double> table(4, 2, source);
    SortQMatrixCol(table, 4, 2, 1, 0, 4, false);
    EXPECT_EQ(table(1, 2), 20);
    EXPECT_EQ(table(2, 2), 40);
    EXPECT_EQ(table(3, 2), 10);
    EXPECT_EQ(table(4, 2), 30);
    SortQMatrixCol(table, 4, 2, 1, 0, 4, true);
    EXPECT_EQ(table(1, 2), 10);
    EXPECT_EQ(table(2, 2), 30);
    EXPECT_EQ(table(3, 2), 20);
}

TEST(SortRows, LeavesRowsBeyondTheCount) {
    const double source[] = {3, 2, 1, 0};
    matrix<double> table(4, 1, source);
    SortQMatrixCol(table, 4, 1, 1, 0, 2, false);
    EXPECT_EQ(table(1, 1), 2);
    EXPECT_EQ(table(2, 1), 3);
    EXPECT_EQ(table(3, 1), 1);
}

TEST(SortRows, SortsLargeTablesAsSmallOnes) {
    constexpr int rows = 30'000;
    matrix<double> table(rows, 3);
    std::mt19937 random(7);
    for (int i = 1; i <= rows; ++i) {
        table(i, 1) = i;
        table(i, 2) = static_cast<double>(random() % 1000);
        table(i, 3) = -i;
    }
    SortQMatrixCol(table, rows, 3, 2, 0, rows, false);
    for (int i = 1; i <= rows; ++i) {
        ASSERT_EQ(table(i, 1), -table(i, 3));
        if (i > 1) {
            ASSERT_LE(table(i - 1, 2), table(i, 2));
            if (table(i - 1, 2) == table(i, 2)) {
                ASSERT_LT(table(i - 1, 1), table(i, 1)) << "equal keys keep their order";
            }
        }
    }
}

TEST(SortRows, ComparesStringsByCodeUnit) {
    matrix<std::u16string> names(4, 2);
    const char16_t* keys[] = {u"b", u"B", u"\u00e4", u"a"};
    for (int i = 1; i <= 4; ++i) {
        names(i, 1) = keys[i - 1];
        names(i, 2) = std::u16string(1, static_cast<char16_t>(u'0' + i));
    }
    SortQMatrixCol(names, 4, 2, 1, 0, 4, false);
    EXPECT_EQ(names(1, 1), u"B");
    EXPECT_EQ(names(2, 1), u"a");
    EXPECT_EQ(names(3, 1), u"b");
    EXPECT_EQ(names(4, 1), u"\u00e4");
    EXPECT_EQ(names(1, 2), u"2");
}

TEST(SortRows, PutsNanKeysLast) {
    const double source[] = {std::numeric_limits<double>::quiet_NaN(), 2, 1};
    matrix<double> table(3, 1, source);
    SortQMatrixCol(table, 3, 1, 1, 0, 3, true);
    EXPECT_EQ(table(1, 1), 2);
    EXPECT_EQ(table(2, 1), 1);
}

TEST(SortRows, IgnoresAKeyColumnThatDoesNotExist) {
    matrix<double> table(2, 1, 3.0);
    SortQMatrixCol(table, 2, 1, 2, 0, 2, false);
    SortQMatrixCol(table, 2, 1, 0, 0, 2, false);
    EXPECT_EQ(table(1, 1), 3.0);
}

}  // namespace
}  // namespace quorva
