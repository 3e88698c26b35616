#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "filled_run.h"
#include "host_strings.h"
#include "quorva/front_end.h"
#include "results/matrices.h"

namespace quorva {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr int rows = 4;
constexpr double guard = 4242.0;

/// Fields of kinds 1, 2, 3, 1, 4, 3 with four iterations.
class Matrices : public testing::Test {
protected:
    void SetUp() override { fillRun({1, 2, 3, 1, 4, 3}, rows); }
    void TearDown() override { run = RunState{}; }
};

/// A front end's array of nSim x nFields with a guard behind it.
struct Table {
    Table(int nSim, int nFields)
        : nSim_(nSim), values(static_cast<std::size_t>(nSim) * static_cast<std::size_t>(nFields), guard) {
        values.push_back(guard);
    }
    double* data() { return values.data(); }
    bool guarded() const { return values.back() == guard; }
    std::vector<double> column(int k) const { return {values.begin() + (k - 1) * nSim_, values.begin() + k * nSim_}; }
    int nSim_;
    std::vector<double> values;
};

std::vector<double> stored(int field) {
    return {100.0 * field + 1, 100.0 * field + 2, 100.0 * field + 3, 100.0 * field + 4};
}

TEST_F(Matrices, SortedDeliversDistributionsResultsAndStatisticsByKind) {
    Table table(rows, 5);
    HostStrings names(5);
    Cpp_GetSimMatSorted(rows, 5, table.data(), names.data());
    const int order[] = {1, 4, 3, 6, 5};
    for (int k = 1; k <= 5; ++k) {
        EXPECT_EQ(table.column(k), stored(order[k - 1])) << k;
    }
    EXPECT_THAT(names.texts(), ElementsAre(u"a", u"d", u"c", u"f", u"e"));
    EXPECT_TRUE(table.guarded());
}

TEST_F(Matrices, ReducedLeavesOutScenarioVariablesAndStatistics) {
    Table table(rows, 4);
    HostStrings names(4);
    Cpp_GetSimMatRed(rows, 4, table.data(), names.data());
    const int order[] = {1, 4, 3, 6};
    for (int k = 1; k <= 4; ++k) {
        EXPECT_EQ(table.column(k), stored(order[k - 1])) << k;
    }
    EXPECT_THAT(names.texts(), ElementsAre(u"a", u"d", u"c", u"f"));
    EXPECT_TRUE(table.guarded());
}

TEST_F(Matrices, GroupDeliversOneKindWithNames) {
    Table table(rows, 3);
    HostStrings names(3, u"as passed");
    Cpp_GetSimMatGrp(rows, 3, table.data(), 2, names.data());
    EXPECT_EQ(table.column(1), stored(2));
    EXPECT_THAT(table.column(2), Each(0.0));
    EXPECT_THAT(table.column(3), Each(0.0));
    EXPECT_THAT(names.texts(), ElementsAre(u"b", u"as passed", u"as passed"));
}

TEST_F(Matrices, AKindThatNoFieldHasLeavesZerosAndTheNames) {
    for (const int kind : {7, 0, -1, std::numeric_limits<int>::min()}) {
        Table table(rows, 2);
        HostStrings names(2, u"as passed");
        Cpp_GetSimMatGrp(rows, 2, table.data(), kind, names.data());
        EXPECT_THAT(table.column(1), Each(0.0));
        EXPECT_THAT(table.column(2), Each(0.0));
        EXPECT_THAT(names.texts(), Each(std::u16string(u"as passed")));
        EXPECT_TRUE(table.guarded());
    }
}

TEST_F(Matrices, AKindThatIsNoNumberMatchesNoKind) {
    run.fields.FieldTable(1, fieldcolumn::kind) = std::numeric_limits<double>::quiet_NaN();
    Table table(rows, 5);
    HostStrings names(5);
    Cpp_GetSimMatSorted(rows, 5, table.data(), names.data());
    EXPECT_THAT(names.texts(), ElementsAre(u"d", u"c", u"f", u"e", u""));
}

TEST_F(Matrices, FewerColumnsThanFieldsDropTheRest) {
    Table table(rows, 2);
    HostStrings names(2);
    Cpp_GetSimMatSorted(rows, 2, table.data(), names.data());
    EXPECT_EQ(table.column(1), stored(1));
    EXPECT_EQ(table.column(2), stored(4));
    EXPECT_THAT(names.texts(), ElementsAre(u"a", u"d"));
    EXPECT_TRUE(table.guarded());
}

// Asked for no columns, the table still has one.
TEST_F(Matrices, NoColumnsAskedForMeansOneColumnAndNoNames) {
    Table table(rows, 1);
    Cpp_GetSimMatSorted(rows, 0, table.data(), nullptr);
    EXPECT_EQ(table.column(1), stored(1));
    EXPECT_TRUE(table.guarded());
}

TEST_F(Matrices, NamesGoToTheEntriesThatExist) {
    matrix<double> values(rows, 1);
    matrix<std::u16string> names(3, 1);
    GetSimMatSorted(rows, 1, &values, &names);
    EXPECT_EQ(values(4, 1), 104.0);
    EXPECT_EQ(names(1, 1), u"a");
    EXPECT_EQ(names(2, 1), u"d");
    EXPECT_EQ(names(3, 1), u"c");
}

TEST_F(Matrices, AShortTableIsNotOverrun) {
    Table table(3, 4);
    HostStrings names(4);
    Cpp_GetSimMatRed(3, 4, table.data(), names.data());
    EXPECT_THAT(table.column(1), ElementsAre(101, 102, 103));
    EXPECT_THAT(table.column(4), ElementsAre(601, 602, 603));
    EXPECT_TRUE(table.guarded());
}

// The number of iterations asked for does not cut what is packed into a table of the store's length.
TEST_F(Matrices, PackingCopiesTheWholeStoredColumnWhateverTheIterationsAskedFor) {
    matrix<double> values(rows, 4);
    matrix<std::u16string> names(4, 1);
    GetSimMatRed(2, 4, &values, &names);
    EXPECT_EQ(values(4, 1), 104.0);
    EXPECT_EQ(values(4, 4), 604.0);
}

TEST_F(Matrices, RowsBeyondTheStoreStayZeroInPackedTables) {
    Table table(6, 4);
    HostStrings names(4);
    Cpp_GetSimMatRed(6, 4, table.data(), names.data());
    EXPECT_THAT(table.column(2), ElementsAre(401, 402, 403, 404, 0, 0));
}

TEST_F(Matrices, AFieldBeyondTheStoreKeepsItsColumnOfZeros) {
    run.sampling.SampleStore = matrix<double>(rows, 3, 1.5);
    Table table(rows, 4);
    HostStrings names(4);
    Cpp_GetSimMatRed(rows, 4, table.data(), names.data());
    EXPECT_THAT(table.column(1), Each(1.5));
    EXPECT_THAT(table.column(2), Each(0.0));
    EXPECT_THAT(table.column(3), Each(1.5));
    EXPECT_THAT(names.texts(), ElementsAre(u"a", u"d", u"c", u"f"));
}

TEST_F(Matrices, AllFieldsComeInFieldNumberOrder) {
    Table table(rows, 6);
    Cpp_GetSimMat(rows, 6, table.data());
    for (int k = 1; k <= 6; ++k) {
        EXPECT_EQ(table.column(k), stored(k));
    }
    EXPECT_TRUE(table.guarded());
}

TEST_F(Matrices, AllFieldsAreCutToTheColumnsAndRowsAskedFor) {
    Table table(2, 3);
    Cpp_GetSimMat(2, 3, table.data());
    EXPECT_THAT(table.column(3), ElementsAre(301, 302));
    EXPECT_TRUE(table.guarded());
}

// What the store has not is copied as its fill value.
TEST_F(Matrices, AllFieldsBeyondTheStoreReadMinusOne) {
    Table table(5, 7);
    Cpp_GetSimMat(5, 7, table.data());
    EXPECT_THAT(table.column(6), ElementsAre(601, 602, 603, 604, -1));
    EXPECT_THAT(table.column(7), Each(-1.0));
    EXPECT_TRUE(table.guarded());
}

TEST_F(Matrices, NoFieldsAskedForGivesOneColumnOfZeros) {
    Table table(rows, 1);
    Cpp_GetSimMat(rows, 0, table.data());
    EXPECT_THAT(table.column(1), Each(0.0));
    EXPECT_TRUE(table.guarded());
}

TEST_F(Matrices, OneFieldsValues) {
    Table table(rows, 1);
    Cpp_GetSimRes(6, rows, table.data());
    EXPECT_EQ(table.column(1), stored(6));
    Table shorter(2, 1);
    Cpp_GetSimRes(3, 2, shorter.data());
    EXPECT_THAT(shorter.column(1), ElementsAre(301, 302));
    EXPECT_TRUE(shorter.guarded());
    Table longer(5, 1);
    Cpp_GetSimRes(3, 5, longer.data());
    EXPECT_THAT(longer.column(1), ElementsAre(301, 302, 303, 304, -1));
}

TEST_F(Matrices, AFieldThatDoesNotExistGivesZeros) {
    for (const int field : {7, 0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        Table table(rows, 1);
        Cpp_GetSimRes(field, rows, table.data());
        EXPECT_THAT(table.column(1), Each(0.0)) << field;
        EXPECT_TRUE(table.guarded());
    }
}

TEST_F(Matrices, TheInnerFormLeavesTheTableOfAFieldThatDoesNotExist) {
    matrix<double> values(rows, 1, 5.0);
    GetSimRes(0, rows, &values);
    GetSimRes(7, rows, &values);
    EXPECT_EQ(values(1, 1), 5.0);
}

TEST_F(Matrices, DuringARunTheIterationsNotYetCalculatedAreZero) {
    run.sampling.SampleStore = matrix<double>(rows, 6);
    run.sampling.SampleStore(1, 1) = 9;
    Table table(rows, 1);
    Cpp_GetSimRes(1, rows, table.data());
    EXPECT_THAT(table.column(1), ElementsAre(9, 0, 0, 0));
}

TEST_F(Matrices, ANameThatIsAlreadyThereKeepsItsString) {
    HostStrings names(1, u"b");
    const auto before = names.at(0);
    Table table(rows, 1);
    Cpp_GetSimMatGrp(rows, 1, table.data(), 2, names.data());
    EXPECT_EQ(names.at(0), before);
}

TEST_F(Matrices, NothingIsWrittenWhereThereIsNoArray) {
    for (const int n : {0, -1, std::numeric_limits<int>::min()}) {
        Cpp_GetSimRes(1, n, nullptr);
        Cpp_GetSimMat(n, n, nullptr);
        Cpp_GetSimMatGrp(n, n, nullptr, 1, nullptr);
        Cpp_GetSimMatRed(n, n, nullptr, nullptr);
        Cpp_GetSimMatSorted(n, n, nullptr, nullptr);
    }
    run = RunState{};
    Table table(rows, 2);
    HostStrings names(2, u"as passed");
    Cpp_GetSimMatSorted(rows, 2, table.data(), names.data());
    EXPECT_THAT(table.column(1), Each(0.0));
    EXPECT_EQ(names.text(0), u"as passed");
}

}  // namespace
}  // namespace quorva
