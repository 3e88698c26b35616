#include "control_test.h"

using namespace quorva;
using namespace quorva::testing;

namespace {

class RunControl : public ControlTest {
protected:
    void smallModel() {
        normal({0, 0}, "b");
        result({1, 0}, "a", [this] { return 2 * value(0); });
    }
};

TEST_F(RunControl, StatusFollowsTheCallsOfARun) {
    smallModel();
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
    init();
    EXPECT_EQ(Cpp_SimGetStatus(), 1);
    recalculate();
    EXPECT_EQ(init2(), 0);
    EXPECT_EQ(Cpp_SimGetStatus(), 2);
    recalculate();
    EXPECT_EQ(begin(10), 0);
    EXPECT_EQ(Cpp_SimGetStatus(), 3);
}

TEST_F(RunControl, ResetEndsEveryStatus) {
    smallModel();
    for (const RunStatus status :
         {RunStatus::Idle, RunStatus::Initialised, RunStatus::Prepared, RunStatus::Running, RunStatus::Analysing}) {
        prepare();
        begin(5);
        run.status.become(status);
        ASSERT_EQ(Cpp_SimGetStatus(), static_cast<int>(status));
        reset();
        EXPECT_EQ(Cpp_SimGetStatus(), 0);
        EXPECT_TRUE(run.fields.FieldTable.empty());
        EXPECT_TRUE(run.sampling.SampleStore.empty());
        EXPECT_FALSE(run.sheets.grids[0].allocated());
    }
}

TEST_F(RunControl, SeedOfInitReproducesTheRunAndResetHandsOutTheNextOne) {
    int given = 4711;
    int next = 0;
    Cpp_SimInit(0, &given, hostTrue, &next);
    EXPECT_EQ(next, 4711);
    EXPECT_EQ(given, 4711);
    int drawn = 0;
    Cpp_SimInit(0, &given, hostFalse, &drawn);
    EXPECT_GT(drawn, 0);
    EXPECT_EQ(given, 4711) << "the seed given is not written back";
    int again = 0;
    Cpp_SimInit(0, &drawn, hostTrue, &again);
    EXPECT_EQ(again, drawn);
}

TEST_F(RunControl, InitMakesTheModelVolatileAndResetMakesItPlainAgain) {
    init();
    fakeHost.requests.clear();
    Cpp_SimVolatile();
    EXPECT_TRUE(fakeHost.requests.empty()) << "volatile already";
    reset();
    EXPECT_FALSE(fakeHost.requests.empty());
    fakeHost.requests.clear();
    Cpp_SimNotVolatile();
    EXPECT_TRUE(fakeHost.requests.empty());
}

TEST_F(RunControl, BeginWithoutResultFieldIsRefused) {
    normal({0, 0}, "only");
    init();
    recalculate();
    run.fields.nRes = 1;  // the registration pass counted one that the description pass does not meet
    ASSERT_EQ(init2(), 0);
    recalculate();
    EXPECT_EQ(begin(10), -2);
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
    EXPECT_EQ(counts.all, -7) << "counts are written by a successful start only";
}

TEST_F(RunControl, MoreFieldsDescribedThanRegisteredAreRefused) {
    smallModel();
    init();
    recalculate();
    ASSERT_EQ(init2(), 0);
    normal({5, 5}, "late");
    recalculate();
    EXPECT_EQ(begin(10), -11);
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
}

TEST_F(RunControl, SampleStoreMayHoldExactly64MillionCells) {
    smallModel();
    prepare();
    EXPECT_EQ(begin(32'000'001), -12);
    EXPECT_TRUE(run.sampling.SampleStore.empty()) << "tested before anything is allocated";
    EXPECT_EQ(begin(32'000'000), 0);
    EXPECT_EQ(run.sampling.SampleStore.size(), 64'000'000U);
}

TEST_F(RunControl, AProductThatWrapsAround32BitsIsOutOfMemoryInsteadOfAHugeTable) {
    smallModel();
    prepare();
    EXPECT_EQ(begin(2'147'483'647), -15);
    EXPECT_EQ(reportedError().code, -15);
}

TEST_F(RunControl, TooManyCellsAreReportedBeforeStrataBeyondMemory) {
    smallModel();
    prepare();
    EXPECT_EQ(begin(32'000'001, 2'147'483'647), -12);
    EXPECT_EQ(reportedError().code, 0) << "nothing is recorded";
    EXPECT_TRUE(run.sampling.LhsTable.empty());
}

// 2,685 distributions with 100,000 strata, or as here one with as many cells: 2.1 GB.
TEST_F(RunControl, StrataAreLimitedByMemoryAlone) {
    constexpr int strata = 268'502'685;
    if (!std::unique_ptr<double[]>(new (std::nothrow) double[strata + 1])) {
        GTEST_SKIP() << "this machine has not the memory";
    }
    smallModel();
    prepare();
    EXPECT_EQ(begin(10, strata), 0);
    EXPECT_EQ(run.sampling.LhsTable.rows(), strata + 1);
}

TEST_F(RunControl, StrataBeyondMemoryAreReported) {
    smallModel();
    prepare();
    EXPECT_EQ(begin(10, 2'147'483'647), -15);
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
}

TEST_F(RunControl, FieldNumbersFollowTheNamesWhateverTheOrderOfDescription) {
    normal({3, 0}, "charlie");
    normal({4, 1}, "Bravo");
    result({5, 2}, "alpha", [] { return 1.0; });
    result({6, 3}, "delta", [] { return 2.0; });
    prepare();
    ASSERT_EQ(begin(3), 0);
    EXPECT_EQ(run.fields.FieldNames(1, 1), u"Bravo") << "code units: upper case first";
    EXPECT_EQ(run.fields.FieldNames(2, 1), u"alpha");
    EXPECT_EQ(run.fields.FieldNames(3, 1), u"charlie");
    EXPECT_EQ(run.fields.FieldNames(4, 1), u"delta");
    EXPECT_EQ(getFieldInfo(0, 3, 0), 3U);
    EXPECT_EQ(getFieldInfo(1, 4, 0), 1U);
    EXPECT_EQ(run.fields.FieldTable(2, fieldcolumn::row), 5);
    EXPECT_EQ(run.fields.FieldTable(2, fieldcolumn::kind), 3);
    EXPECT_EQ(run.fields.FieldOrder(1, 1), 3) << "the field described first is third by name";
    EXPECT_EQ(run.fields.FieldOrder(3, 1), 2);
    EXPECT_EQ(run.fields.FieldTable(1, fieldcolumn::stream), 2) << "streams keep the order of description";
    EXPECT_EQ(counts.all, 4);
    EXPECT_EQ(counts.distributions, 2);
    EXPECT_EQ(counts.scenarios, 0);
    EXPECT_EQ(counts.results, 2);
    EXPECT_EQ(counts.statistics, 0);
}

TEST_F(RunControl, OneNameOnTwoSheetsIsADuplicate) {
    normal({0, 0, "[B]One"}, "same");
    normal({7, 8, "[B]Two"}, "same");
    result({1, 0, "[B]One"}, "r", [] { return 1.0; });
    prepare(true);
    EXPECT_EQ(begin(5), -17);
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
    const ReportedError first = reportedError();
    EXPECT_EQ(first.code, -17);
    EXPECT_EQ(first.line, 0);
    EXPECT_EQ(first.texts, std::vector<std::u16string>{u"[B]One"});
    const ReportedError second = reportedError(-1);
    EXPECT_EQ(second.line, 7);
    EXPECT_EQ(second.column, 8);
    EXPECT_EQ(second.texts, (std::vector<std::u16string>{u"[B]Two", u"same"}));
    EXPECT_EQ(reportedError(-2).texts, first.texts) << "-1 alone asks for the second cell";
    const ReportedError same = reportedError2();
    EXPECT_EQ(same.code, -17);
    EXPECT_EQ(same.line, 7);
    EXPECT_EQ(same.texts, second.texts);
}

TEST_F(RunControl, ErrorIsSilentWithoutTheFlagAndError2IsNot) {
    ReportedError untouched{99, 98, 97, {}};
    HostStringArray* sheets = nullptr;
    Cpp_SimError(&untouched.code, &untouched.line, &untouched.column, &sheets);
    EXPECT_EQ(untouched.code, 99);
    EXPECT_EQ(untouched.line, 98);
    EXPECT_EQ(sheets, nullptr);
    EXPECT_EQ(reportedError2().texts.size(), 2U);
    run.error.code = -17;
    EXPECT_EQ(reportedError2().code, -17) << "whatever the flag";
}

TEST_F(RunControl, ConvergenceIsSwitchedOffWithoutAMonitoredResult) {
    smallModel();
    prepare();
    ASSERT_EQ(begin(10, 0, true, false), 0);
    EXPECT_EQ(run.convergence.iCheckConv, hostFalse);
    EXPECT_EQ(run.fields.FieldFlags(numberOf(u"a"), 1), 0.0);
    reset();
    prepare();
    ASSERT_EQ(begin(10, 0, true, true), 0);
    EXPECT_EQ(run.convergence.iCheckConv, hostTrue);
    EXPECT_EQ(run.convergence.table.rows(), 3);
    EXPECT_EQ(run.convergence.table.columns(), 2);
    EXPECT_EQ(run.convergence.firstCheck, hostTrue);
    EXPECT_EQ(run.fields.FieldFlags(numberOf(u"a"), 1), 1.0);
    EXPECT_EQ(run.fields.FieldFlags(numberOf(u"b"), 1), 0.0);
}

TEST_F(RunControl, AMarkedResultAloneIsMonitored) {
    smallModel();
    result(
        {2, 0}, "marked", [] { return 1.0; }, true);
    prepare();
    ASSERT_EQ(begin(10, 0, true, false), 0);
    EXPECT_EQ(run.convergence.iCheckConv, hostTrue);
    EXPECT_EQ(run.fields.FieldFlags(numberOf(u"marked"), momentcolumn::collect), 1.0);
    EXPECT_EQ(run.fields.FieldFlags(numberOf(u"a"), momentcolumn::collect), 0.0);
}

TEST_F(RunControl, APlainOneIsNoHostTrue) {
    smallModel();
    prepare();
    FieldCounts n;
    ASSERT_EQ(Cpp_SimBegin(10, 0, 1, 0, 3, 0.95, 1, 1, 0.5, &n.all, &n.distributions, &n.scenarios, &n.results,
                           &n.statistics),
              0);
    EXPECT_EQ(run.convergence.iCheckConv, hostFalse);
    reset();
    int seed = 4711;
    int used = 0;
    Cpp_SimInit(1, &seed, 1, &used);
    EXPECT_NE(used, 4711) << "a seed of its own, but for one chance in 2^31";
}

TEST_F(RunControl, MonitoredResultsAreMarkedEvenWithoutChecking) {
    smallModel();
    prepare();
    run.convergence.iconvPerc = 77;
    run.convergence.firstCheck = hostFalse;
    ASSERT_EQ(begin(10, 0, false, true), 0);
    EXPECT_EQ(run.convergence.iCheckConv, hostFalse);
    EXPECT_EQ(run.fields.FieldFlags(numberOf(u"a"), 1), 1.0);
    EXPECT_EQ(run.convergence.iconvPerc, 77) << "the other settings are taken only with checking";
    EXPECT_TRUE(run.convergence.table.empty());
    EXPECT_EQ(run.convergence.firstCheck, hostFalse);
}

TEST_F(RunControl, AnErrorOfTheRegistrationPassStopsTheSetUpAndLastsUntilReset) {
    smallModel();
    init();
    recalculate();
    evaluate(0);  // met twice
    EXPECT_EQ(init2(), -10);
    EXPECT_EQ(Cpp_SimGetStatus(), 1);
    EXPECT_EQ(init2(), -10);
    EXPECT_EQ(Cpp_SimNext(), -1);
    reset();
    EXPECT_EQ(run.error.flag, hostFalse);
    prepare();
    EXPECT_EQ(begin(5), 0) << "a run after an aborted one";
}

TEST_F(RunControl, AnErrorOfTheDescriptionPassIsTheResultOfBegin) {
    smallModel();
    prepare();
    evaluate(0);  // numbered twice
    EXPECT_EQ(begin(5), -10);
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
    EXPECT_EQ(reportedError().code, -10);
}

TEST_F(RunControl, IterationsAreCountedAndTheStoreIsFilledRowByRow) {
    smallModel();
    prepare();
    ASSERT_EQ(begin(3), 0);
    std::vector<double> seen;
    for (int k = 1; k <= 5; ++k) {  // two more than planned: the rows start again
        ASSERT_EQ(iterate(), 0);
        EXPECT_EQ(run.sampling.iteration, k);
        seen.push_back(value(1));
        EXPECT_EQ(stored((k - 1) % 3 + 1, u"a"), value(1));
    }
    EXPECT_EQ(stored(2, u"b"), seen[4] / 2);
    EXPECT_EQ(stored(3, u"b"), seen[2] / 2);
}

TEST_F(RunControl, ARecalculationBeforeTheFirstIterationLeavesTheStoreAlone) {
    smallModel();
    prepare();
    ASSERT_EQ(begin(2), 0);
    recalculate();
    for (std::size_t i = 0; i < run.sampling.SampleStore.size(); ++i) {
        EXPECT_EQ(run.sampling.SampleStore.data()[i], 0.0);
    }
}

TEST_F(RunControl, NoIterationsAtAll) {
    smallModel();
    prepare();
    ASSERT_EQ(begin(0), 0);
    EXPECT_EQ(iterate(), 0);
    EXPECT_EQ(run.sampling.SampleStore.size(), 0U);
}

TEST_F(RunControl, AModelThatWasNotDescribedDoesNotBegin) {
    smallModel();
    init();
    recalculate();
    run.sampling.iteration = 9;
    EXPECT_EQ(begin(10, 3), -2);
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
    EXPECT_EQ(run.sampling.iteration, 0) << "what is told comes first";
    EXPECT_EQ(run.sampling.nSim, 10);
    EXPECT_EQ(run.sampling.inbuckets, 3);
    EXPECT_TRUE(run.sampling.LhsTable.empty());
}

TEST_F(RunControl, OfSeveralCausesTheFirstInTheOrderOfTheChecksIsReported) {
    normal({0, 0}, "same");
    result({1, 0}, "same", [] { return 1.0; });
    prepare();
    EXPECT_EQ(begin(32'000'001, 2), -12) << "too many cells before the duplicate name";
    EXPECT_EQ(run.error.flag, hostFalse);
    EXPECT_EQ(run.sampling.LhsTable.rows(), 3) << "strata come before";
    EXPECT_EQ(begin(10), -17);

    reset();
    init();
    recalculate();
    ASSERT_EQ(init2(), 0);
    normal({2, 0}, "late");
    recalculate();
    EXPECT_EQ(begin(32'000'001, 2), -11) << "fields that were not registered before too many cells";
    EXPECT_TRUE(run.sampling.LhsTable.empty());
}

TEST_F(RunControl, EveryColumnMovesWithItsField) {
    smallModel();  // described as "b", "a"
    prepare();
    const std::vector<int> free{2, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 21, 22};
    for (const int column : free) {
        run.fields.FieldTable(1, column) = 100 + column;
        run.fields.FieldTable(2, column) = 200 + column;
    }
    ASSERT_EQ(begin(10), 0);
    for (const int column : free) {
        EXPECT_EQ(run.fields.FieldTable(1, column), 200 + column);
        EXPECT_EQ(run.fields.FieldTable(2, column), 100 + column);
    }
}

TEST_F(RunControl, AResetLeavesNothingThatANewRunCouldInherit) {
    normal({0, 0, "[B]One"}, "x");
    normal({1, 0, "[B]Two"}, "y");
    result({2, 0, "[B]Two"}, "r", [] { return 1.0; });
    init(true);
    recalculate();
    Correlations correlations{{u"x", u"y"}, {1, 0.5, 0.5, 1}};
    Capabilities limits{{u"r"}, {1}, {2}, {3}};
    ASSERT_EQ(init2(correlations, &limits), 0);
    recalculate();
    ASSERT_EQ(begin(5, 4, true, true), 0);
    ASSERT_EQ(iterate(), 0);
    Field stranger = cells[0];
    stranger.address.row = 40;
    evaluate(stranger);
    ASSERT_EQ(run.error.flag, hostTrue);
    ASSERT_FALSE(run.sampling.LhsTable.empty());
    ASSERT_FALSE(run.convergence.table.empty());
    ASSERT_TRUE(run.sheets.grids[1].allocated());

    int seed = 5;
    int next = 0;
    Cpp_SimReset(&seed, hostFalse, &next);
    EXPECT_EQ(run.sampling.seed.initialise, hostTrue) << "from here on the seed in use counts";
    EXPECT_EQ(run.sampling.inbuckets, 0);
    EXPECT_EQ(run.correlation.UseCorr, hostFalse);
    EXPECT_EQ(run.correlation.nCorr, 0);
    EXPECT_EQ(run.error.flag, hostFalse);
    EXPECT_TRUE(run.fields.FieldTable.empty());
    EXPECT_TRUE(run.fields.FieldFlags.empty());
    EXPECT_TRUE(run.fields.FieldNames.empty());
    EXPECT_TRUE(run.sampling.SampleStore.empty());
    EXPECT_TRUE(run.sampling.LhsTable.empty());
    EXPECT_TRUE(run.convergence.table.empty());
    EXPECT_TRUE(run.correlation.CorrGroups.empty());
    EXPECT_TRUE(run.capability.SpcTable.empty());
    for (const FieldGrid& grid : run.sheets.grids) {
        EXPECT_FALSE(grid.allocated());
    }
    EXPECT_EQ(run.sheets.inUse, 0);
    EXPECT_EQ(Cpp_SimGetStatus(), 0);
}

TEST_F(RunControl, InitCountsFromNothing) {
    smallModel();
    scenario({2, 0}, "s");
    statistic({3, 0}, "t", {0, 0});
    prepare(true);
    ASSERT_EQ(begin(5), 0);
    ASSERT_EQ(run.fields.nSVar, 1);
    ASSERT_EQ(run.fields.nStat, 1);
    init();
    EXPECT_EQ(run.sheets.workbookModel, hostFalse);
    EXPECT_EQ(run.fields.registered, 0);
    EXPECT_EQ(run.fields.nDist, 0);
    EXPECT_EQ(run.fields.nSVar, 0);
    EXPECT_EQ(run.fields.nRes, 0);
    EXPECT_EQ(run.fields.nStat, 0);
    EXPECT_TRUE(run.sheets.grids[0].allocated());
    EXPECT_EQ(getFieldInfo(0, 0, 0), 0U);
}

}  // namespace
