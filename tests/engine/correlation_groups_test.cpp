#include "engine/correlation_groups.h"

#include <gtest/gtest.h>

#include "engine/run_state.h"

using namespace quorva;

namespace {

TEST(CorrelationGroups, AGroupGrowsLabelByLabelAndSeparatePairsAreSeparateGroups) {
    matrix<double> factor(4, 4);
    factor(2, 1) = 0.5;
    factor(4, 3) = 0.5;
    matrix<double> groups(4, 5, 9.0);
    int count = 99;
    FindSubGroups(&factor, 4, &groups, &count);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(groups(1, 1), 1);
    EXPECT_EQ(groups(2, 1), 1);
    EXPECT_EQ(groups(3, 1), 2);
    EXPECT_EQ(groups(4, 1), 2);
    // The link 2-3 is met before 3-4: label 3 joins the first group and takes label 4 along.
    factor(3, 2) = 0.5;
    FindSubGroups(&factor, 4, &groups, &count);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(groups(4, 1), 1);
}

TEST(CorrelationGroups, ALaterLinkBetweenTwoGroupsChangesNothing) {
    // Labels 1-4 and 2-3 first, then the link 3-4 between the groups.
    matrix<double> factor(4, 4);
    factor(4, 1) = 0.3;
    factor(3, 2) = 0.3;
    factor(4, 3) = 0.3;
    matrix<double> groups(4, 5, 9.0);
    int count = 0;
    FindSubGroups(&factor, 4, &groups, &count);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(groups(1, 1), 1);
    EXPECT_EQ(groups(4, 1), 1);
    EXPECT_EQ(groups(2, 1), 2);
    EXPECT_EQ(groups(3, 1), 2);
    EXPECT_EQ(groups(1, groupcolumn::opening), 1) << "the label that opened the group";
    EXPECT_EQ(groups(2, groupcolumn::opening), 2);
    EXPECT_EQ(groups(3, groupcolumn::opening), 9) << "the fifth column is not cleared";
}

TEST(CorrelationGroups, GroupsReadBelowTheDiagonalAndSkipMissingEntries) {
    matrix<double> factor(3, 3);
    factor(1, 2) = 0.7;  // above the diagonal
    factor(3, 1) = MissingValue;
    matrix<double> groups;
    int count = 5;
    FindSubGroups(&factor, 3, &groups, &count);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(groups.rows(), 3);
    EXPECT_EQ(groups.columns(), 4) << "a table that is too small is made anew";
}

}  // namespace
