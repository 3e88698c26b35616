#include "engine/latin_hypercube.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

#include "uniforms_consumed.h"

using namespace quorva;
using namespace quorva::testing;

namespace {

class LatinHypercube : public ::testing::Test {
protected:
    void TearDown() override { run = RunState{}; }

    /// Fields in the rows from 0 on with the streams 1, 2, ..., and a last one without a stream, one column on.
    static void start(int streams, int strata) {
        run = RunState{};
        FieldTables& fields = run.fields;
        fields.nFields = streams + 1;
        fields.nDist = streams;
        fields.FieldTable = matrix<double>(fields.nFields, fieldcolumn::columns);
        fields.FieldNames = matrix<std::u16string>(fields.nFields, namecolumn::columns);
        for (int field = 1; field <= fields.nFields; ++field) {
            fields.FieldTable(field, fieldcolumn::row) = field - 1;
            fields.FieldTable(field, fieldcolumn::column) = field > streams ? 1 : 0;
            fields.FieldTable(field, fieldcolumn::stream) = field > streams ? 0 : field;
        }
        run.sampling.inbuckets = strata;
        if (strata > 0) {
            run.sampling.LhsTable = matrix<double>(strata + 1, streams);
        }
        startGenerator(99);
    }
    static double draw(int stream, double lower = 0.0, double upper = 1.0) {
        SeedState& s = run.sampling.seed;
        return getLHSRandom01(0, stream, lower, upper, &s.seed, s.initialise, &s.updated);
    }
};

// A uniform of 1 would be drawn as the end of the law: infinity for most.
TEST(Stratum, TheLastOneNeverRoundsToOneAndTheOnlyOneIsTheUniformItself) {
    for (const int strata : {2, 3, 1000, 65537, 100'000'000}) {
        EXPECT_EQ(uniformInStratum(1 - 0x1p-53, strata, strata), 1 - 0x1p-53) << strata;
        EXPECT_EQ(uniformInStratum(0.5, strata, strata), (strata - 0.5) / strata) << strata;
        EXPECT_EQ(uniformInStratum(0.25, 1, strata), 0.25 / strata) << strata;
    }
    for (const double uniform : {0x1p-53, 0.3, 1 - 0x1p-53}) {
        EXPECT_EQ(uniformInStratum(uniform, 1, 1), uniform);
    }
}

TEST_F(LatinHypercube, StrataAreTakenFromTheBottomOfThePermutation) {
    start(1, 4);
    const double first = draw(1);
    const matrix<double>& table = run.sampling.LhsTable;
    EXPECT_EQ(table(5, 1), 3.0);
    EXPECT_EQ(std::floor(first * 4) + 1, table(4, 1));
    const double second = draw(1);
    EXPECT_EQ(std::floor(second * 4) + 1, table(3, 1));
    std::set<double> permutation{table(1, 1), table(2, 1), table(3, 1), table(4, 1)};
    EXPECT_EQ(permutation, (std::set<double>{1, 2, 3, 4}));
}

TEST_F(LatinHypercube, OneStratumGivesThePlainUniformAfterThePermutationsOwn) {
    start(1, 1);
    std::vector<double> drawn{draw(1), draw(1)};
    int seed = 99;
    short keep = hostTrue;
    int out = 0;
    GetSeed(&seed, &keep, &out);
    std::vector<double> stream;
    for (int i = 0; i < 4; ++i) {
        stream.push_back(GenerateRandom01(&seed, keep, &out));
        seed = out;
    }
    EXPECT_EQ(drawn[0], stream[1]);
    EXPECT_EQ(drawn[1], stream[3]);
}

TEST_F(LatinHypercube, BoundsOfZeroAndOneNeverRedraw) {
    start(1, 0);
    for (int i = 0; i < 1000; ++i) {
        draw(1, 0.0, 1.0);
    }
    EXPECT_EQ(uniformsConsumed(99, 2000), 1000);
}

TEST_F(LatinHypercube, AnEmptyIntervalGivesUpAfterTenThousandRedraws) {
    start(2, 0);
    draw(1, 0.5, 0.5);
    EXPECT_EQ(run.error.flag, hostTrue);
    EXPECT_EQ(run.error.code, -14);
    EXPECT_EQ(uniformsConsumed(99, 20'000), 10'002);
}

TEST_F(LatinHypercube, TheDrawAfterTheLimitIsAnErrorEvenInsideTheBounds) {
    start(2, 0);
    std::vector<double> stream;
    for (int k = 0; k < 10'002; ++k) {
        stream.push_back(draw(1));
    }
    for (const std::size_t inside : {10'000U, 10'001U}) {
        startGenerator(99);
        run.error = {};
        draw(1, stream[inside], stream[inside]);
        EXPECT_EQ(run.error.flag, toHostBool(inside == 10'001U)) << inside << " draws outside before";
    }
}

TEST_F(LatinHypercube, AnEmptyIntervalGivesUpWithStrataToo) {
    start(2, 4);
    draw(2, 0.3, 0.3);
    EXPECT_EQ(run.error.code, -14);
    EXPECT_EQ(uniformsConsumed(99, 30'000), 10'002 + 10'004) << "a rejected draw uses up its stratum";
}

TEST_F(LatinHypercube, TheErrorNamesTheFieldOfTheStreamButNeverComparesTheLastField) {
    start(3, 0);  // the streams 1, 2, 3
    run.fields.FieldNames.scratch() = u"scratch";
    draw(2, 0.5, 0.5);
    const CellLocation& cell = run.error.first;
    EXPECT_EQ(cell.line, 1);
    EXPECT_EQ(cell.column, 0);
    EXPECT_EQ(cell.sheet, u"scratch") << "column 20 of the names";
    draw(77, 0.5, 0.5);
    EXPECT_EQ(cell.line, 3) << "no match: where the scan ends";
    EXPECT_EQ(cell.column, 1);
}

TEST_F(LatinHypercube, AStreamOfZeroIsAnErrorOnlyWithStrata) {
    start(1, 4);
    draw(0);
    EXPECT_EQ(run.error.code, -12);
    EXPECT_EQ(run.error.first.line, 0);
    start(1, 0);
    EXPECT_GT(draw(0), 0.0);
    EXPECT_EQ(run.error.flag, hostFalse);
}

}  // namespace
