#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "filled_run.h"
#include "quorva/front_end.h"
#include "results/sensitivity.h"

namespace quorva {
namespace {

using testing::ElementsAre;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class Sensitivity : public testing::Test {
protected:
    void TearDown() override { run = RunState{}; }

    /// The sensitivity table of field `iField`, whose associations with all fields are given.
    static matrix<double> explained(const std::vector<double>& associations, int iField, int inputs, int order,
                                    double before = 0.0) {
        const int n = static_cast<int>(associations.size());
        matrix<double> table(n, n, 99.0);
        for (int j = 1; j <= n; ++j) {
            table(iField, j) = associations[static_cast<std::size_t>(j - 1)];
        }
        std::vector<double> result(static_cast<std::size_t>(inputs) * 4 + 1, before);
        result.back() = 4242;
        Cpp_GetSensitivity(n, table.data(), inputs, iField, order, result.data());
        EXPECT_EQ(result.back(), 4242);
        return {inputs, 4, result.data()};
    }

    static std::vector<double> column(const matrix<double>& table, int k) {
        return {table.column(k), table.column(k) + table.rows()};
    }
};

TEST_F(Sensitivity, ContributionsAreSignedSharesOfTheSquares) {
    fillRun({1, 1, 3}, 2);
    const auto table = explained({0.6, -0.8, 1.0}, 3, 2, 0);
    EXPECT_THAT(column(table, 1), ElementsAre(1, 2));
    EXPECT_THAT(column(table, 2), ElementsAre(0.6, -0.8));
    EXPECT_DOUBLE_EQ(table(1, 3), 0.36);
    EXPECT_DOUBLE_EQ(table(2, 3), -0.64);
    EXPECT_DOUBLE_EQ(table(1, 4), 0.36);
    EXPECT_DOUBLE_EQ(table(2, 4), 0.64);
}

TEST_F(Sensitivity, RankedPutsTheLargestContributionFirst) {
    fillRun({1, 1, 3}, 2);
    const auto table = explained({0.6, -0.8, 1.0}, 3, 2, 1);
    EXPECT_THAT(column(table, 1), ElementsAre(2, 1));
    EXPECT_THAT(column(table, 2), ElementsAre(-0.8, 0.6));
    EXPECT_DOUBLE_EQ(table(1, 3), -0.64);
}

TEST_F(Sensitivity, OnlyAnOrderOfOneRanks) {
    fillRun({1, 1, 3}, 2);
    for (const int order : {0, 2, -1}) {
        EXPECT_THAT(column(explained({0.6, -0.8, 1.0}, 3, 2, order), 1), ElementsAre(1, 2));
    }
}

TEST_F(Sensitivity, EqualContributionsKeepFieldNumberOrder) {
    fillRun({1, 3, 1, 1, 1}, 2);
    const auto table = explained({0.5, 1, -0.5, 0.7, 0.5}, 2, 4, 1);
    EXPECT_THAT(column(table, 1), ElementsAre(4, 1, 3, 5));
}

TEST_F(Sensitivity, NoAssociationGivesZeros) {
    fillRun({1, 1, 3}, 2);
    const auto table = explained({0, 0, 1}, 3, 2, 1);
    EXPECT_THAT(column(table, 3), ElementsAre(0, 0));
    EXPECT_THAT(column(table, 4), ElementsAre(0, 0));
}

TEST_F(Sensitivity, OnlyDistributionsTakePart) {
    fillRun({3, 1, 2, 4, 1, 3, 1}, 2);
    const auto table = explained({9, 0.1, 9, 9, 0.2, 9, 0.3}, 1, 3, 0);
    EXPECT_THAT(column(table, 1), ElementsAre(2, 5, 7));
    EXPECT_THAT(column(table, 2), ElementsAre(0.1, 0.2, 0.3));
    EXPECT_NEAR(table(1, 4) + table(2, 4) + table(3, 4), 1.0, 1e-15);
}

// Intended: a missing association goes through the same formula and overflows, so that it ranks first.
TEST_F(Sensitivity, AMissingAssociationIsInfiniteAndRanksFirst) {
    fillRun({1, 1, 1, 3}, 2);
    const auto table = explained({0.6, MissingValue, 0.8, 1}, 4, 3, 1);
    EXPECT_THAT(column(table, 1), ElementsAre(2, 3, 1));
    EXPECT_THAT(column(table, 2), ElementsAre(MissingValue, 0.8, 0.6));
    EXPECT_EQ(table(1, 3), -kInfinity);
    EXPECT_EQ(table(1, 4), kInfinity);
    EXPECT_DOUBLE_EQ(table(2, 3), 0.64);  // the sum leaves it out
    EXPECT_DOUBLE_EQ(table(3, 3), 0.36);
}

TEST_F(Sensitivity, WithNothingButMissingAssociationsTheSumIsZeroAndSoIsEverything) {
    fillRun({1, 3}, 2);
    const auto table = explained({MissingValue, 1}, 2, 1, 1);
    EXPECT_EQ(table(1, 3), 0.0);
    EXPECT_EQ(table(1, 4), 0.0);
}

TEST_F(Sensitivity, AnAssociationThatIsNoNumberSpoilsTheSum) {
    fillRun({1, 1, 3}, 2);
    const auto table = explained({kNaN, 0.8, 1}, 3, 2, 1);
    EXPECT_TRUE(std::isnan(table(1, 3)));
    EXPECT_TRUE(std::isnan(table(2, 4)));
    EXPECT_EQ(table(2, 2), 0.8);
}

TEST_F(Sensitivity, AFieldOutsideTheTableReadsMinusOneEverywhere) {
    fillRun({1, 1, 3}, 2);
    for (const int iField : {0, 4, -1, std::numeric_limits<int>::max()}) {
        double associations[9] = {};
        double table[8] = {};
        Cpp_GetSensitivity(3, associations, 2, iField, 0, table);
        EXPECT_THAT(table, ElementsAre(1, 2, -1, -1, -0.5, -0.5, 0.5, 0.5)) << iField;
    }
}

TEST_F(Sensitivity, FewerRowsThanDistributionsDropTheRestButCountThem) {
    fillRun({1, 1, 3}, 2);
    const auto table = explained({0.6, -0.8, 1.0}, 3, 1, 0);
    EXPECT_EQ(table(1, 1), 1.0);
    EXPECT_DOUBLE_EQ(table(1, 3), 0.36);
}

TEST_F(Sensitivity, RowsBeyondTheDistributionsAreComputedFromWhatTheCallerPassed) {
    fillRun({1, 3}, 2);
    const auto table = explained({0.5, 1}, 2, 2, 0, 0.25);
    EXPECT_EQ(table(2, 1), 0.25);
    EXPECT_EQ(table(2, 2), 0.25);
    EXPECT_DOUBLE_EQ(table(2, 3), 0.25);
    EXPECT_DOUBLE_EQ(table(2, 4), 0.25);
}

TEST_F(Sensitivity, RowsBeyondThoseAskedForStay) {
    fillRun({1, 1, 1, 3}, 2);
    matrix<double> associations(4, 4, 0.5);
    matrix<double> table(3, 4, 99.0);
    GetSensitivity(4, &associations, 2, 4, 1, &table);
    EXPECT_THAT(column(table, 1), ElementsAre(1, 2, 99));
    EXPECT_DOUBLE_EQ(table(2, 3), 1 / 3.0);  // the sum takes in the third
    EXPECT_THAT(column(table, 4), ElementsAre(testing::DoubleEq(1 / 3.0), testing::DoubleEq(1 / 3.0), 99));
}

TEST_F(Sensitivity, NoRowsAreNothingToDo) {
    fillRun({1, 3}, 2);
    for (const int rows : {0, -1, std::numeric_limits<int>::min()}) {
        Cpp_GetSensitivity(0, nullptr, rows, 1, 1, nullptr);
    }
}

}  // namespace
}  // namespace quorva
